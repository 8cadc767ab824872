// team_barrier.hpp - what the threads of a product's team share.
#pragma once

#include "blas/gemm_records.hpp"

namespace vox {

struct alignas(64) team_barrier {
    int arrived = 0; // of the present round
    int round = 0;
};

// The groups of a team have columns of their own; a group's members have rows of their own, and share
// the packed blocks of B.
constexpr int most_groups = 16;
struct product_team {
    team_barrier all;
    team_barrier groups[most_groups];
    gemm_info a_blocks, b_blocks; // one for each thread; without memory every thread goes on alone
};

} // namespace vox

// Returns when all `size` threads of the team have called it; what each has written before, all see.
extern "C" void vox_blas_team_wait(vox::team_barrier *barrier, int size);
