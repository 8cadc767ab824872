// host_openmp.hpp - the other OpenMP runtime that the program itself may run on.
//
// A program built by GCC brings libgomp, and a Python process may hold several renamed copies of
// it. The library's runtime knows nothing of their regions, so a call from inside one would take
// all processors once per caller. Each copy is found by its file name and asked.
#pragma once

#include <atomic>
#include <stdint.h>

namespace vox {

inline constexpr int max_host_runtimes = 4;

struct host_runtime {
    uintptr_t base; // where it is loaded
    int (*in_parallel)();
};
extern constinit host_runtime host_runtimes[max_host_runtimes];
extern constinit std::atomic<int> host_runtime_count;

// Looks for copies that are loaded now; those found before stay known. Called once per thread,
// which finds a copy loaded later by the first of its workers that calls the library.
void find_host_runtimes();

// Whether the caller is inside an active parallel region of one of them.
inline bool host_in_parallel() {
    for (int i = host_runtime_count.load(std::memory_order_acquire); i-- > 0;)
        if (host_runtimes[i].in_parallel())
            return true;
    return false;
}

} // namespace vox
