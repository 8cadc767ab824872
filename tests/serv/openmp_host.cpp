// openmp_host.cpp - a program on GNU's OpenMP runtime that calls the library from inside and
// outside of its own parallel regions.
//
//     openmp_host linked|LIBRARY|late LIBRARY
//
// linked: the library is one of the program's own; LIBRARY: it is opened now; late: GNU's runtime is
// not loaded before the library has been used. The regions are what a compiler makes of
// "#pragma omp parallel", so that any compiler builds the program. Prints which file serves the
// program's regions and one line of counts; anything wrong is an exit status.
#include <algorithm>
#include <atomic>
#include <cstring>
#include <dlfcn.h>
#include <string>

#include "tests/hosts/check.h"
#include "vox/vox.h"

extern "C" void GOMP_parallel(void (*body)(void *), void *data, unsigned threads, unsigned flags)
    __attribute__((weak));

namespace {

template <class F>
F *find(void *where, const char *name) {
    void *const symbol = dlsym(where, name);
    CHECK(symbol);
    return reinterpret_cast<F *>(symbol);
}

decltype(vox_get_max_threads) *max_threads;
decltype(vox_set_num_threads_local) *set_threads;
decltype(cblas_ddot) *dot;

constexpr int length = 100000; // large enough for threads
double ones[length];
bool sum_is_right() { return dot(length, ones, 1, ones, 1) == length; }

std::atomic<int> callers = 0, highest = 0;

void call_from_inside(void *) {
    ++callers;
    for (int repeat = 0; repeat < 20; ++repeat) {
        const int threads = max_threads();
        for (int seen = highest; seen < threads && !highest.compare_exchange_weak(seen, threads);)
            ;
        CHECK(sum_is_right());
        set_threads(3); // against the advice
        CHECK(sum_is_right());
        set_threads(0);
    }
}

} // namespace

int main(int argc, char **argv) {
    std::fill_n(ones, length, 1);
    const std::string mode = argc > 1 ? argv[1] : "";
    const bool late = mode == "late";
    const char *const path = late ? argv[2] : argv[1];
    void *const library = mode == "linked" ? RTLD_DEFAULT : dlopen(path, RTLD_NOW | RTLD_LOCAL);
    max_threads = find<decltype(vox_get_max_threads)>(library, "vox_get_max_threads");
    set_threads = find<decltype(vox_set_num_threads_local)>(library, "vox_set_num_threads_local");
    dot = find<decltype(cblas_ddot)>(library, "cblas_ddot");
    auto *parallel = GOMP_parallel;
    if (late) {
        CHECK(sum_is_right());
        void *const runtime = dlopen("libgomp.so.1", RTLD_NOW | RTLD_LOCAL);
        parallel = find<decltype(GOMP_parallel)>(runtime, "GOMP_parallel");
    }
    CHECK(parallel);
    Dl_info info;
    CHECK(dladdr(reinterpret_cast<void *>(parallel), &info));
    const char *const file = std::strrchr(info.dli_fname, '/');
    std::printf("%.7s: ", file ? file + 1 : info.dli_fname);

    const int before = max_threads();
    if (late) { // a new runtime is noticed when the first of its workers calls
        parallel(call_from_inside, nullptr, 3, 0);
        callers = highest = 0;
    }
    for (int repeat = 0; repeat < 3; ++repeat) {
        CHECK(sum_is_right());
        parallel(call_from_inside, nullptr, 3, 0);
    }
    std::printf("outside %d %d, callers %d, inside %d", before, max_threads(), callers.load(),
                highest.load());
}
