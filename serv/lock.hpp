// lock.hpp - the library's locks: spin locks on 32-bit words, and the one list of process-wide
// locks.
//
// Critical sections are a few instructions or happen once per process, so spinning (with a yield)
// is enough. fork() may come at any moment: the list lets its handlers take every lock before the
// fork and release it on both sides, so a child never inherits a lock that nobody will release, nor
// a half-made change. No lock of the list is held while code of the user's runs (handlers,
// allocation hooks).
#pragma once

#include <atomic>

#include "serv/base.hpp"
#include "vox/service.h"

namespace vox {

// Locks may nest in this order, outer first.
enum class lock_id {
    verbose_header,
    detection,
    processor,
    thread_settings,
    thread_key,
    memory_setup,
    pool_registry,
    fast_memory_budget,
    peak_statistics,
    verbose_mode,
    verbose_file,
    timer,
    shared_chunks,
    cleanup,
    environment,
    count
};

void lock(lock_id id);
void unlock(lock_id id);

class scoped_lock {
  public:
    explicit scoped_lock(lock_id id) : id_(id) { lock(id_); }
    ~scoped_lock() { unlock(id_); }
    scoped_lock(const scoped_lock &) = delete;
    scoped_lock &operator=(const scoped_lock &) = delete;

  private:
    lock_id id_;
};

// Runs `body` once per process: test, lock, test again. A caller that finds `done` set sees all
// that the body wrote.
template <class Body>
inline void once(std::atomic<bool> &done, lock_id id, Body body) {
    if (VOX_LIKELY(done.load(std::memory_order_acquire)))
        return;
    scoped_lock guard(id);
    if (!done.load(std::memory_order_relaxed)) {
        body();
        done.store(true, std::memory_order_release);
    }
}

// Work to be done in the child of a fork before the locks are released there (serv/pool).
void after_fork_in_child(void (*action)());

} // namespace vox
