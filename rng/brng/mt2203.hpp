// mt2203.hpp - the MT2203 family: 6024 Mersenne Twisters of 69 words of 32 bits, of which the upper 27 bits of
// the oldest count. They differ in the twist and the tempering masks, and so in characteristic polynomials
// without common factors, so that their sequences are unrelated. Period 2^2203 - 1.
//
// M. Matsumoto, T. Nishimura, "Dynamic creation of pseudorandom number generators", Monte Carlo and Quasi-Monte
// Carlo Methods 1998, Springer 2000, 56-69. The parameters are in rng/tables/mt2203.csv.
#pragma once

#include "rng/stream.hpp"

namespace vox::rng {

struct mt2203_member {
    uint32_t a, b, c; // twist; tempering masks
};

struct mt2203_state {
    static constexpr int size = 69, lag = 34;
    static constexpr uint32_t upper = 0xFFFFFFE0;

    uint32_t words[size];
    int32_t position; // how many of the block have been delivered
    mt2203_member member;
};
static_assert(sizeof(stream) + sizeof(mt2203_state) <= 312);

} // namespace vox::rng
