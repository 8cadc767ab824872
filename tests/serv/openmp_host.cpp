// openmp_host.cpp - a program on GNU's OpenMP runtime that calls the library from inside and
// outside of its own parallel regions.
//
//     openmp_host linked|PROBE|late PROBE
//
// linked: the probe library is one of the program's own; PROBE: it is opened now; late: GNU's
// runtime is not loaded before the library has been used. The regions are what a compiler makes of
// "#pragma omp parallel", so that any compiler builds the program. Prints which file serves the
// program's regions and one line of counts; anything wrong is an exit status.
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <string>

extern "C" void GOMP_parallel(void (*body)(void *), void *data, unsigned threads, unsigned flags)
    __attribute__((weak));

namespace {

using region_fn = void(void (*)(void *), void *, unsigned, unsigned);

[[noreturn]] void fail(const char *what) {
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

template <class F>
F *find(void *where, const char *name) {
    void *const symbol = dlsym(where, name);
    if (!symbol)
        fail(name);
    return reinterpret_cast<F *>(symbol);
}

int (*max_threads)();
long (*probe_sum)(int, long);

constexpr long n = 1000, expected = n * (n + 1) / 2;

struct counts {
    std::atomic<int> callers = 0, highest = 0, wrong = 0;
};

void call_from_inside(void *data) {
    counts &c = *static_cast<counts *>(data);
    ++c.callers;
    for (int repeat = 0; repeat < 20; ++repeat) {
        const int threads = max_threads();
        for (int seen = c.highest;
             seen < threads && !c.highest.compare_exchange_weak(seen, threads);)
            ;
        c.wrong += probe_sum(threads, n) != expected;
        c.wrong += probe_sum(3, n) != expected; // against the advice
    }
}

void run(region_fn *parallel, bool late) {
    const int before = max_threads();
    counts c;
    if (late) { // a new runtime is noticed when the first of its workers calls
        parallel(call_from_inside, &c, 3, 0);
        c.callers = c.highest = 0;
    }
    for (int repeat = 0; repeat < 3; ++repeat) {
        if (probe_sum(max_threads(), n) != expected)
            fail("wrong sum outside");
        parallel(call_from_inside, &c, 3, 0);
    }
    if (c.wrong)
        fail("wrong sum inside");
    std::printf("outside %d %d, callers %d, inside %d", before, max_threads(), c.callers.load(),
                c.highest.load());
}

} // namespace

int main(int argc, char **argv) {
    const std::string mode = argc > 1 ? argv[1] : "";
    const bool late = mode == "late";
    const char *const path = late ? argv[2] : argv[1];
    void *const probe = mode == "linked" ? RTLD_DEFAULT : dlopen(path, RTLD_NOW | RTLD_LOCAL);
    max_threads = find<int()>(probe, "vox_get_max_threads");
    probe_sum = find<long(int, long)>(probe, "probe_sum");
    if (late && probe_sum(max_threads(), n) != expected)
        fail("wrong sum before the runtime is loaded");
    void *const gomp = late ? dlopen("libgomp.so.1", RTLD_NOW | RTLD_LOCAL) : nullptr;
    region_fn *const parallel = late ? find<region_fn>(gomp, "GOMP_parallel") : GOMP_parallel;
    if (!parallel)
        fail("no GNU runtime");
    Dl_info info;
    if (!dladdr(reinterpret_cast<void *>(parallel), &info))
        fail("dladdr");
    const char *const file = std::strrchr(info.dli_fname, '/');
    std::printf("%.7s: ", file ? file + 1 : info.dli_fname);
    run(parallel, late);
}
