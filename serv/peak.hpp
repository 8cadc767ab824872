// peak.hpp - the optional record of peak memory use.
//
// It counts the bytes and blocks of vox_mem_stat and costs one load while it is off. Switched on,
// it starts from what is held at that moment, exactly so when no other thread allocates meanwhile.
#pragma once

#include <stdint.h>

namespace vox {

// An allocation, or, negative, a release.
void track_peak(int64_t bytes, int64_t blocks);

struct peak_usage {
    bool tracked;
    int64_t bytes, blocks;           // now
    int64_t peak_bytes, peak_blocks; // blocks: when the bytes were at their peak
};
peak_usage peak_now();

} // namespace vox
