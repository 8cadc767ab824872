// mt19937.hpp - the Mersenne Twister MT19937: a recurrence of 624 words of 32 bits, of which the upper bit of
// the oldest alone counts, and a tempering of what is delivered. Period 2^19937 - 1.
//
// M. Matsumoto, T. Nishimura, "Mersenne Twister: a 623-dimensionally equidistributed uniform pseudo-random
// number generator", ACM TOMACS 8 (1998) 3-30.
#pragma once

#include "rng/stream.hpp"

namespace vox::rng {

struct mt19937_state {
    static constexpr int size = 624, lag = 397;
    static constexpr uint32_t upper = 0x80000000, twist = 0x9908B0DF;

    uint32_t words[size];
    int32_t position; // how many of the block have been delivered
};
static_assert(sizeof(stream) + sizeof(mt19937_state) <= 2520);

} // namespace vox::rng
