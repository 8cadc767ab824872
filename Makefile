# Makefile - the everyday commands. The build itself is CMake's; its presets are in CMakePresets.json.
#
#   make                     build/libvox.so, build/libvox.a and the tools
#   make run                 runs the tools and examples: the tour
#   make test                all tests; make quick: those of the quick loop
#   make sanitize            the tests under the address, undefined-behaviour and thread sanitizers
#   make clang               the same code with the second compiler
#   make fuzz                the fuzzers, FUZZ_SECONDS each
#   make bench               the benchmarks; BENCH=<program> for one of them
#   make install PREFIX=dir  library, headers and tools (DESTDIR is honoured)
#   make format, format-check, tidy, clean
#
# CMAKE_ARGS goes to the first configuration of a build directory, JOBS is the number of parallel jobs.

PREFIX ?= /usr/local
JOBS ?= $(shell nproc)
CMAKE_ARGS ?=
FUZZ_SECONDS ?= 60

# Run by `make run` and `make bench`, in this order: <folder>/<CMake target>, in RUN with :<argument>.
RUN := examples/regression examples/solve:examples/data/poisson.mtx examples/solve:examples/data/spiral.mtx \
       examples/image:examples/data/hills.ppm tools/vox-info
BENCH ?= bench/peers/peers_blas bench/peers/peers_lapack bench/peers/peers_trans bench/blas/bench_gemm_relatives \
         bench/dnn/bench_conversions bench/dnn/bench_relu bench/rng/random_peers bench/serv/bench_startup \
         bench/serv/bench_pool bench/vm/vm_peers

RELEASE := cmake --build build -j $(JOBS)
SOURCES = $(shell find . -path './build*' -prune -o -name '*.[ch]' -print -o -name '*.[ch]pp' -print)

FUZZERS := conversions layouts

.DEFAULT_GOAL := all
.PHONY: all run test quick sanitize clang fuzz bench install format format-check tidy clean FORCE

all: build/build.ninja
	$(RELEASE) --target vox vox_static vox-info vox-run

run: build/build.ninja
	$(RELEASE) --target $(sort $(foreach step,$(RUN),$(notdir $(firstword $(subst :, ,$(step))))))
	@for step in $(RUN); do set -- $$(echo $$step | tr : ' '); echo; echo "== $$*"; build/"$$@" || exit 1; done

test: build/build.ninja
	$(RELEASE)
	ctest --preset release -j $(JOBS)

quick: build/build.ninja
	$(RELEASE)
	ctest --preset release -j $(JOBS) -L quick

sanitize: test-asan test-tsan

# Large operands are the same to both compilers.
clang: test-clang
test-clang: CTEST_ARGS = -LE slow

test-%: build-%/build.ninja FORCE
	cmake --build --preset $* -j $(JOBS)
	ctest --preset $* -j $(JOBS) $(CTEST_ARGS)

# Inputs that reached something new stay in build-fuzz/corpus for the next time.
fuzz: build-fuzz/build.ninja
	cmake --build --preset fuzz -j $(JOBS) --target $(addprefix fuzz_,$(FUZZERS))
	@for fuzzer in $(FUZZERS); do echo; echo "== $$fuzzer"; mkdir -p build-fuzz/corpus/$$fuzzer; \
	VOX_CPU_VENDOR=ANY build-fuzz/tests/fuzz/fuzz_$$fuzzer -max_total_time=$(FUZZ_SECONDS) -max_len=512 \
	-print_final_stats=1 -artifact_prefix=build-fuzz/ build-fuzz/corpus/$$fuzzer >build-fuzz/$$fuzzer.log 2>&1 || \
	{ cat build-fuzz/$$fuzzer.log; exit 1; }; grep ^stat:: build-fuzz/$$fuzzer.log; done

bench: build/build.ninja
	$(RELEASE) --target $(notdir $(BENCH))
	@for program in $(BENCH); do echo; echo "== $$program"; build/$$program || exit 1; done

install: all
	cmake --install build --prefix $(abspath $(PREFIX))

format:
	@clang-format -i $(SOURCES)

format-check:
	@clang-format --dry-run -Werror $(SOURCES)

# What sources include must be there: tables, and the precompiled header of the tests.
tidy: build-clang/build.ninja
	cmake --build build-clang -j $(JOBS) --target rng vox_test_support
	run-clang-tidy -quiet -p build-clang '/(bench|blas|dnn|examples|lapack|serv|tests|tools|trans|vm)/'

clean:
	rm -rf build build-*

# CMake itself notices changes of its own files; only the presets are read here alone.
build/build.ninja: CMakePresets.json
	cmake --preset release $(CMAKE_ARGS)
	@touch $@

build-%/build.ninja: CMakePresets.json
	cmake --preset $* $(CMAKE_ARGS)
	@touch $@

.PRECIOUS: build-%/build.ninja
