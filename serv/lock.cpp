// lock.cpp - see lock.hpp.
#include "serv/lock.hpp"

#include <pthread.h>
#include <sched.h>

#include "serv/inspector.hpp"

namespace {

std::atomic_ref<int> atomic(int *word) { return std::atomic_ref<int>(*word); }

struct alignas(64) padded_word {
    int word;
};

constinit padded_word words[int(vox::lock_id::count)]{};
constinit std::atomic<bool> fork_handlers_installed;
constinit std::atomic<void (*)()> child_action;

void lock_all() {
    for (padded_word &w : words)
        vox_serv_lock(&w.word);
}

void unlock_all() {
    for (padded_word &w : words)
        vox_serv_unlock(&w.word);
}

void enter_child() {
    if (auto action = child_action.load(std::memory_order_acquire))
        action();
    unlock_all();
}

} // namespace

extern "C" void vox_serv_thread_yield() { sched_yield(); }

extern "C" int vox_serv_cmpxchg(int *word, int expected, int desired) {
    atomic(word).compare_exchange_strong(expected, desired, std::memory_order_acq_rel);
    return expected;
}

extern "C" int vox_serv_trylock(int *word) {
    if (atomic(word).exchange(1, std::memory_order_acquire) != 0)
        return 0;
    vox::inspector_acquired(word);
    return 1;
}

extern "C" void vox_serv_lock(int *word) {
    while (!vox_serv_trylock(word)) {
        // Look before trying again, so that waiting threads share the cache line.
        for (int spins = 0; atomic(word).load(std::memory_order_relaxed) != 0; ++spins) {
            if (spins < 64)
                __builtin_ia32_pause();
            else
                vox_serv_thread_yield();
        }
    }
}

extern "C" void vox_serv_unlock(int *word) {
    vox::inspector_releasing(word);
    atomic(word).store(0, std::memory_order_release);
}

void vox::lock(lock_id id) {
    // Two threads may both install the handlers only if neither has taken a lock yet; the exchange
    // lets one of them do it.
    if (VOX_UNLIKELY(!fork_handlers_installed.load(std::memory_order_relaxed)) &&
        !fork_handlers_installed.exchange(true)) {
        inspector_quiet();
        pthread_atfork(lock_all, unlock_all, enter_child);
    }
    vox_serv_lock(&words[int(id)].word);
}

void vox::unlock(lock_id id) { vox_serv_unlock(&words[int(id)].word); }

void vox::after_fork_in_child(void (*action)()) {
    child_action.store(action, std::memory_order_release);
}
