// thread_state.hpp - what the library remembers of each thread, in one word under a thread-specific
// key.
//
// The word is the key's value itself, so there is nothing to allocate and nothing to leak. The key
// is created when the first thread has something to remember and deleted by the exit clean-up; a
// thread that still needs it after that gets a new one.
#pragma once

#include <atomic>
#include <bit>
#include <pthread.h>
#include <stdint.h>

#include "serv/base.hpp"

namespace vox {

struct thread_state {
    uint32_t local : 31;        // the thread's own count (vox_set_num_threads_local); 0: none
    uint32_t knows_runtime : 1; // the OpenMP runtime has seen the thread (serv/parallel)
    uint32_t workers;           // reserved for the teams that it leads (serv/thread_supply)
};

inline constexpr int no_key = -1;
extern constinit std::atomic<int> state_key;

// Zeros when nothing is remembered.
inline thread_state this_thread() {
    const int key = state_key.load(std::memory_order_acquire);
    if (VOX_UNLIKELY(key == no_key))
        return {};
    return std::bit_cast<thread_state>(pthread_getspecific(pthread_key_t(key)));
}

// False when the system has no key or no memory for it: the thread stays as it was.
bool remember(thread_state state);

} // namespace vox
