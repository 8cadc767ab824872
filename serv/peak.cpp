// peak.cpp - see peak.hpp.
#include "serv/peak.hpp"

#include "serv/lock.hpp"

namespace {

using namespace vox;

enum : int { enabled = 1, disabled = -1 };
constinit std::atomic<int> state{disabled};

// Under the lock of the statistics.
constinit peak_usage usage{};

} // namespace

void vox::track_peak(int64_t bytes, int64_t blocks) {
    if (VOX_LIKELY(state.load(std::memory_order_relaxed) != enabled))
        return;
    scoped_lock guard(lock_id::peak_statistics);
    usage.bytes += bytes;
    usage.blocks += blocks;
    if (usage.bytes > usage.peak_bytes) {
        usage.peak_bytes = usage.bytes;
        usage.peak_blocks = usage.blocks;
    }
}

vox::peak_usage vox::peak_now() {
    scoped_lock guard(lock_id::peak_statistics);
    peak_usage copy = usage;
    copy.tracked = state.load(std::memory_order_relaxed) == enabled;
    return copy;
}

extern "C" int64_t vox_serv_peak_mem_usage(int mode) {
    int count = 0;
    const int64_t held = mode == 1 ? vox_serv_mem_stat(&count) : 0;
    scoped_lock guard(lock_id::peak_statistics);
    const bool tracked = state.load(std::memory_order_relaxed) == enabled;
    const int64_t peak = usage.peak_bytes;
    switch (mode) {
    case 1:
        usage = {true, held, count, 0, 0};
        state.store(enabled, std::memory_order_relaxed);
        return 0;
    case 0:
        state.store(disabled, std::memory_order_relaxed);
        return 0;
    case 2:
        return tracked ? peak : -1;
    case -1:
        if (!tracked)
            return -1;
        usage.peak_bytes = usage.bytes;
        usage.peak_blocks = usage.blocks;
        return peak;
    default:
        return -1;
    }
}

VOX_ALIAS(vox_peak_mem_usage, vox_serv_peak_mem_usage);
VOX_FORTRAN_FORM(int64_t, vox_peak_mem_usage, VOX_PEAK_MEM_USAGE, (const vox_int *mode), (*mode));
