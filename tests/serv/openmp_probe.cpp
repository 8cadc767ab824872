// openmp_probe.cpp - the library with one more exported function, which runs a region.
//
// A program that runs on another OpenMP runtime loads it in place of the library.
#include <atomic>

#include "serv/parallel.hpp"
#include "vox/service.h"

// The sum of 1 .. n on up to `threads` threads.
extern "C" VOX_API long probe_sum(int threads, long n) {
    std::atomic<long> sum = 0;
    vox::parallel(threads, [&](int thread, int team) {
        long part = 0;
        for (long i = thread + 1; i <= n; i += team)
            part += i;
        sum += part;
    });
    return sum;
}
