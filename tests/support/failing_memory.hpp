// failing_memory.hpp - allocations of the library that fail when a test says so.
#pragma once

#include <atomic>
#include <cstdlib>

#include "vox/service.h"

namespace test {

constexpr int every_request = -1;
inline std::atomic<int> memory_requests; // so far
inline std::atomic<int> refused_request; // the number of the one that fails, or every_request

inline void *memory_unless_refused(size_t size) {
    const int request = ++memory_requests;
    return refused_request == every_request || refused_request == request ? nullptr
                                                                          : std::malloc(size);
}
// The library looks at its hooks when it first allocates.
inline const bool memory_is_hooked = (i_malloc = memory_unless_refused, true);

} // namespace test
