// thread_supply.cpp - see thread_supply.hpp.
//
// The lock is not one of the list that is taken before a fork: the runtime is called while it is
// held, and has a lock of its own that it takes before a fork.
#include "serv/thread_supply.hpp"

#include <pthread.h>
#include <signal.h>
#include <sys/mman.h>

#include "serv/base.hpp"
#include "serv/parallel.hpp"
#include "serv/thread_state.hpp"
#include "vox/service.h"

namespace {

using namespace vox;

// What a thread takes beyond its stack: records of the runtime's; and address space, for a moment,
// when its first allocation makes an arena of the C library's.
constexpr size_t record_bytes = size_t(128) << 10;
constexpr size_t arena_bytes = size_t(128) << 20;

// After a refusal so many calls make do with what there is before the limits are tried again.
constexpr int calls_between_trials = 1000;

constinit int supply_lock;
constinit std::atomic<int64_t> reserved; // workers of all living leaders
constinit int64_t proven;                // workers that are known to fit; under the lock
constinit int calls_to_skip;             // under the lock

struct supply_guard {
    supply_guard() { vox_serv_lock(&supply_lock); }
    ~supply_guard() { vox_serv_unlock(&supply_lock); }
};

// Threads that each create the next one and wait for it: at the end of the chain all are alive.
struct chain {
    pthread_attr_t attributes;
    int64_t wanted, made;
};

void extend(chain &c);

void *link(void *context) {
    chain &c = *static_cast<chain *>(context);
    ++c.made;
    if (c.made < c.wanted)
        extend(c);
    return nullptr;
}

void extend(chain &c) {
    void *const arena =
        mmap(nullptr, arena_bytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (arena == MAP_FAILED)
        return;
    pthread_t next;
    if (pthread_create(&next, &c.attributes, link, &c) == 0)
        pthread_join(next, nullptr);
    munmap(arena, arena_bytes);
}

// How many of `wanted` further threads can exist.
int64_t try_threads(int64_t wanted) {
    chain c{{}, wanted, 0};
    if (pthread_attr_init(&c.attributes) != 0)
        return 0;
    pthread_attr_setstacksize(&c.attributes, runtime_stack_bytes() + record_bytes);
    // No signal of the program's is handled on a thread that only proves a point.
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, &before);
    extend(c);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    pthread_attr_destroy(&c.attributes);
    return c.made;
}

// Raises `proven` towards `total` workers.
void prove(int64_t total) {
    if (total <= proven)
        return;
    if (calls_to_skip > 0) {
        --calls_to_skip;
        return;
    }
    const int64_t missing = total - proven, made = try_threads(missing);
    if (made == missing) {
        proven = total;
    } else {
        // Going up to the limit would leave none to the program's own threads.
        proven += made / 2;
        calls_to_skip = calls_between_trials;
    }
}

} // namespace

int vox::obtainable_team(int threads, void (*form)(int team)) {
    if (threads > max_team)
        threads = max_team;
    thread_state state = this_thread();
    const int64_t wanted = threads - 1, held = state.workers;
    if (VOX_LIKELY(wanted <= held))
        return threads;
    const supply_guard guard;
    const int64_t others = reserved.load(std::memory_order_relaxed) - held;
    prove(others + wanted);
    const int64_t room = proven - others;
    const int64_t granted = room < wanted ? (room > held ? room : held) : wanted;
    if (granted > held) {
        form(int(granted) + 1);
        state.workers = uint32_t(granted);
        if (remember(state))
            reserved.fetch_add(granted - held, std::memory_order_relaxed);
    }
    return int(granted) + 1;
}

int64_t vox::proven_workers() {
    const supply_guard guard;
    return proven;
}

void vox::release_workers(uint32_t workers) {
    reserved.fetch_sub(workers, std::memory_order_relaxed);
}

void vox::forget_workers() {
    supply_lock = 0; // a thread that is no more may have held it
    reserved.store(0, std::memory_order_relaxed);
    proven = 0;
    calls_to_skip = 0;
}
