// thread_state.cpp - see thread_state.hpp.
#include "serv/thread_state.hpp"

#include "serv/cleanup.hpp"
#include "serv/lock.hpp"
#include "serv/thread_supply.hpp"

constinit std::atomic<int> vox::state_key = no_key;

namespace {

using vox::no_key;
using vox::state_key;

void thread_ends(void *word) {
    vox::release_workers(std::bit_cast<vox::thread_state>(word).workers);
}

void delete_key() {
    vox::scoped_lock guard(vox::lock_id::thread_key);
    const int key = state_key.exchange(no_key);
    if (key != no_key)
        pthread_key_delete(pthread_key_t(key));
}

int create_key() {
    static constinit vox::cleanup node = {delete_key, nullptr};
    static constinit bool registered = false;
    vox::scoped_lock guard(vox::lock_id::thread_key);
    int key = state_key.load(std::memory_order_relaxed);
    if (key != no_key)
        return key;
    pthread_key_t created;
    if (pthread_key_create(&created, thread_ends) != 0)
        return no_key;
    key = int(created);
    state_key.store(key, std::memory_order_release);
    if (!registered)
        vox::register_cleanup(&node);
    registered = true;
    return key;
}

} // namespace

bool vox::remember(thread_state state) {
    int key = state_key.load(std::memory_order_acquire);
    if (key == no_key)
        key = create_key();
    return key != no_key &&
           pthread_setspecific(pthread_key_t(key), std::bit_cast<void *>(state)) == 0;
}
