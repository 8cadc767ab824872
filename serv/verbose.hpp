// verbose.hpp - verbose mode: whether calls are logged, and the printing of one call.
//
// The mode is one word that every entry point tests, so switching it takes effect with the next
// call of every thread, and a call with the mode off pays a load and a predicted branch.
#pragma once

#include <atomic>

#include "serv/base.hpp"
#include "vox/service.h"

namespace vox {

// -1 until the environment has been read, then 0 (off) or 1 (on). Public as an int*, hence no
// std::atomic.
extern __attribute__((visibility("hidden"))) int verbose_word;

// Reads the environment if nobody has.
int read_verbose_mode();

inline bool verbose_on() {
    if (VOX_LIKELY(std::atomic_ref<int>(verbose_word).load(std::memory_order_relaxed) == 0))
        return false;
    return read_verbose_mode() != 0;
}

} // namespace vox
