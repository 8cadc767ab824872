// ars5.hpp - ARS4x32 with five rounds: a counter of 128 bits under a key of 128, by the rounds of AES.
//
// J. K. Salmon, M. A. Moraes, R. O. Dror, D. E. Shaw, "Parallel random numbers: as easy as 1, 2, 3",
// Proc. SC'11 (2011) 16:1-16:12. The counter xor the key goes through four rounds of AES and its last one
// (FIPS 197); the round keys are the key plus multiples of the Weyl constants, one to each half. Seed words: 0
// to 3 the key, 4 to 7 the counter of the first block, both with the lowest word first.
#pragma once

#include "rng/brng/counter.hpp"

namespace vox::rng {

struct ars_state {
    counter128 counter; // of the block that comes next, or that is begun
    uint64_t key[2];
    uint32_t position; // in that block, 0 to 3

    static constexpr int rounds = 5;
    static constexpr uint64_t weyl[2] = {0x9E3779B97F4A7C15, 0xBB67AE8584CAA73B};
};

} // namespace vox::rng
