// threads.hpp - how many threads a call may use: the rule, and the settings that it follows.
//
// The rule is a pure function of the settings and of the caller's situation. It also says where the
// number came from and what lowered it, since "why only one thread?" is what users ask first.
#pragma once

#include "serv/thread_environment.hpp"

namespace vox {

// Who made a setting.
enum class setter : uint32_t { none, program, environment };

struct alignas(8) setting { // one atomic word
    int32_t value = -1;
    setter by = setter::none;
};

// What a query in one domain goes by.
struct thread_settings {
    setting own = {};     // the domain's; a value of 0 or less: none
    setting all = {};     // of all domains
    setting dynamic = {}; // unset counts as 1
    setting mpi_safe = {};
    // From the environment alone, -1 when it does not say.
    int omp_num_threads = -1;
    int processes_per_node = -1;
    int mpi_thread_level = -1;
};

struct thread_context {
    int local = 0; // the calling thread's own setting; 0: none
    bool in_parallel = false;
    int runtime_threads = 1; // the OpenMP runtime's count; not looked at when one was set
    int cores = 1;
    int quota = 0; // of processors, by control groups; 0: none
};

enum class count_origin : uint8_t { thread, domain, all_domains, runtime };

enum class count_limit : uint8_t {
    none,
    parallel_region,
    cores,
    quota,
    mpi_not_safe,      // the program has cleared its MPI-safe flag
    mpi_thread_level,  // MPI processes share the node, and their thread level is below 1
    processes_per_node // each has its share of the cores
};

struct thread_count {
    int count;
    count_origin origin;
    setter by; // of a domain's or all domains' count
    count_limit limit = count_limit::none;
};

// What was asked for: the domain's own count or that of all; 0 when neither is set and the OpenMP
// runtime's is to be taken.
thread_count wanted_threads(const thread_settings &settings);

thread_count choose_threads(const thread_settings &settings, const thread_context &context);

// What a call of this moment by this thread gets in a domain, or in none for any other code.
thread_count current_threads(int domain);

// Processors that the control groups leave to this process, 0 for no limit.
int process_cpu_quota();

// "VOX_NUM_THREADS or ...", for people.
const char *describe(count_origin origin, setter by);
const char *describe(count_limit limit); // null for none

} // namespace vox
