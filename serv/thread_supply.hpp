// thread_supply.hpp - how many threads the OpenMP runtime can be asked for.
//
// The runtime ends the process when it cannot create a thread, so a team must never be larger than
// the limits on address space, processes and control groups allow. Before a team grows beyond any
// before it, threads are created on trial, all alive at once and with stacks of the runtime's size;
// if some cannot be made, the team stays smaller. What is counted is the runtime's workers: it
// gives each thread that leads teams its own and keeps them for it, and takes them back into its
// pool when the leader ends.
#pragma once

#include <stdint.h>

namespace vox {

// No team is larger, whatever is asked for: the largest affinity mask has as many processors.
inline constexpr int max_team = 8192;

// The largest team of up to `threads` that the calling thread may lead; at least 1. Where it is
// larger than its teams so far, form(team) is to make the runtime create the threads, while no one
// else creates any.
int obtainable_team(int threads, void (*form)(int team));

// The largest number of workers that have existed at once.
int64_t proven_workers();

// The calling thread's end: its workers may serve others.
void release_workers(uint32_t workers);

// In the child of a fork there are no workers, and one thread that may lead.
void forget_workers();

} // namespace vox
