// thread_block.hpp - what vector mathematics keeps for each thread.
//
// Thread-local storage of the initial-exec model: a call on one element reads it, and its 32 bytes fit what
// the C library keeps ready for libraries that are opened at run time.
#pragma once

#include <stdint.h>

#include "serv/base.hpp"
#include "vox/tqm.h"

namespace vox::vm {

struct thread_block {
    uint64_t mode;    // the lower 32 bits; 0: not yet asked for
    const void *base; // the caller's first input vector, while a team works on it
    tqmErrorCallBack callback;
    int32_t status;
};

extern __attribute__((tls_model("initial-exec"))) thread_local constinit thread_block this_block;

// tqmGetMode, without a call where it is known.
inline uint32_t current_mode() {
    return VOX_LIKELY(this_block.mode != 0) ? uint32_t(this_block.mode) : tqmGetMode();
}

} // namespace vox::vm
