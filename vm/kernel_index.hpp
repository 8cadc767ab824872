// kernel_index.hpp - which of the ten kernel sets vector mathematics runs, and where a function's tables have
// its kernel of an accuracy.
#pragma once

#include <atomic>

#include "serv/base.hpp"
#include "vox/tqm.h"

namespace vox::vm {

inline constexpr int index_count = 10, accuracy_count = 3,
                     table_size = index_count * accuracy_count;

// 0 to 9: this process's (serv/kernel_sets.hpp), or VOX_TQM_CODE_PATH if the processor can run it.
extern constinit std::atomic<int> known_index; // negative: not asked for yet
int find_index();
inline int kernel_index() {
    const int index = known_index.load(std::memory_order_relaxed);
    return VOX_LIKELY(index >= 0) ? index : find_index();
}

// TQM_LA, TQM_HA or TQM_EP; a mode with anything else has the default.
inline uint32_t accuracy_of(uint32_t mode) {
    const uint32_t accuracy = mode & TQM_ACCURACY_MASK;
    return VOX_LIKELY(accuracy >= TQM_LA && accuracy <= TQM_EP) ? accuracy : uint32_t(TQM_HA);
}
inline int table_index(int index, uint32_t accuracy) {
    return index + index_count * int(accuracy - 1);
}

} // namespace vox::vm
