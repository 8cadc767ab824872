// philox4x32x10.hpp - Philox4x32 with ten rounds: a counter of 128 bits under a key of 64.
//
// J. K. Salmon, M. A. Moraes, R. O. Dror, D. E. Shaw, "Parallel random numbers: as easy as 1, 2, 3",
// Proc. SC'11 (2011) 16:1-16:12. One round takes the words c0 c1 c2 c3 to
//
//   hi(M1 c2) ^ c1 ^ k0,  lo(M1 c2),  hi(M0 c0) ^ c3 ^ k1,  lo(M0 c0)
//
// and adds the Weyl constants to the keys. Seed words: 0 and 1 the key, 2 to 5 the counter of the first block,
// all with the lowest word first.
#pragma once

#include "rng/brng/counter.hpp"

namespace vox::rng {

struct philox_state {
    counter128 counter; // of the block that comes next, or that is begun
    uint32_t key[2];
    uint32_t position; // in that block, 0 to 3
    uint32_t zero;

    static constexpr int rounds = 10;
    static constexpr uint32_t multiplier[2] = {0xD2511F53, 0xCD9E8D57};
    static constexpr uint32_t weyl[2] = {0x9E3779B9, 0xBB67AE85};
};
static_assert(sizeof(philox_state) == 32);

} // namespace vox::rng
