// parallel.hpp - runs a piece of work on a team of threads.
//
//     parallel(threads, [&](int thread, int team) { ... part `thread` of `team` ... });
//
// The threads are the OpenMP runtime's. The team may come out smaller than asked for, so the body
// divides its work by the size it is given. All of the caller's writes are seen by the body, all of
// the body's by the caller afterwards.
#pragma once

#include <stddef.h>

#include "serv/base.hpp"
#include "serv/thread_state.hpp"

namespace vox {

using region_body = void(const void *context, int thread, int team);
void run_region(int threads, region_body *body, const void *context);

// One thread is a plain call, without a look at the runtime.
template <class Body>
inline void parallel(int threads, const Body &body) {
    if (threads <= 1)
        return body(0, 1);
    run_region(
        threads,
        [](const void *context, int thread, int team) {
            (*static_cast<const Body *>(context))(thread, team);
        },
        &body);
}

// For a body whose team has two threads or more: returns when all of them have come. What each has written
// before, all see after it.
void wait_for_team();

// Whether the caller is inside an active parallel region, of this runtime or of the program's own.
bool in_parallel();

// The calling thread's number in its team, 0 outside of any.
int thread_number();

// in_parallel, and the count that the runtime would use for a region of the calling thread's, for a
// thread that is known to have met the runtime.
bool in_parallel_unchecked();
int runtime_max_threads_unchecked();

// Introduces the calling thread to the runtime; `state` is the thread's.
void get_acquainted(thread_state state);
inline void meet_runtime(thread_state state) {
    if (VOX_UNLIKELY(!state.knows_runtime))
        get_acquainted(state);
}

// The stack that the runtime gives a thread.
size_t runtime_stack_bytes();

} // namespace vox
