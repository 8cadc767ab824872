// pool_bench.cpp - what scratch memory costs: an allocate and release pair in steady state, beside
// the C library's own. Bar: under 60 ns for the pair, no system call.
//
// To see that there is none: perf stat -e raw_syscalls:sys_enter, or strace -c, with
// --benchmark_filter=Pair and two different --benchmark_min_time.
#include <benchmark/benchmark.h>
#include <cstdlib>

#include "vox/service.h"

namespace {

void pooled_pair(benchmark::State &state) {
    const size_t size = size_t(state.range(0));
    for (auto _ : state) {
        void *p = vox_serv_allocate(size, 128);
        benchmark::DoNotOptimize(p);
        vox_serv_deallocate(p);
    }
}

// The buffer is the last of five: the other four stay in use.
void pooled_pair_last(benchmark::State &state) {
    void *held[4];
    for (void *&p : held)
        p = vox_serv_allocate(1000, 128);
    pooled_pair(state);
    for (void *p : held)
        vox_serv_deallocate(p);
}

// What a call with three packing buffers does.
void pooled_three(benchmark::State &state) {
    for (auto _ : state) {
        void *p[3] = {vox_serv_allocate(100000, 128), vox_serv_allocate(200000, 128),
                      vox_serv_allocate(5000, 64)};
        benchmark::DoNotOptimize(p);
        for (void *q : p)
            vox_serv_deallocate(q);
    }
}

void plain_pair(benchmark::State &state) {
    const size_t size = size_t(state.range(0));
    for (auto _ : state) {
        void *p = vox_serv_malloc(size, 64);
        benchmark::DoNotOptimize(p);
        vox_serv_free(p);
    }
}

void c_library_pair(benchmark::State &state) {
    const size_t size = size_t(state.range(0));
    for (auto _ : state) {
        void *p = std::aligned_alloc(64, size);
        benchmark::DoNotOptimize(p);
        std::free(p);
    }
}

BENCHMARK(pooled_pair)->Arg(1 << 10)->Arg(1 << 20)->ThreadRange(1, 2)->UseRealTime();
BENCHMARK(pooled_pair_last)->Arg(1 << 20);
BENCHMARK(pooled_three);
BENCHMARK(plain_pair)->Arg(1 << 10)->Arg(1 << 20);
BENCHMARK(c_library_pair)->Arg(1 << 10)->Arg(1 << 20);

} // namespace

BENCHMARK_MAIN();
