// thread_environment.hpp - what the environment says about threads: from texts to numbers.
//
// -1 stands for "nothing said" throughout. docs/threads.md lists the variables.
#pragma once

#include "vox/service.h"

namespace vox {

inline constexpr int domain_count = VOX_DOMAIN_PARDISO + 1;

struct thread_environment {
    int threads[domain_count] = {-1, -1, -1, -1, -1}; // by domain
    int stripes = -1;
    int dynamic = -1;
    int omp_num_threads = -1;
    int processes_per_node = -1;
    int mpi_thread_level = -1;
};

// VOX_NUM_THREADS and OMP_NUM_THREADS: a number above 0; anything that is no number counts as 1.
int parse_thread_count(const char *text);

// VOX_DOMAIN_NUM_THREADS into the counts that are still -1.
void parse_domain_counts(const char *text, int (&threads)[domain_count]);

// VOX_DYNAMIC: 0 or 1.
int parse_dynamic(const char *text);

// VOX_NUM_STRIPES, a per-node process count, the MPI thread level.
int parse_stripes(const char *text);
int parse_process_count(const char *text);
int parse_mpi_thread_level(const char *text);

thread_environment read_thread_environment();

} // namespace vox
