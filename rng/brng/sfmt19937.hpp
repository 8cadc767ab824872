// sfmt19937.hpp - the SIMD-oriented Fast Mersenne Twister SFMT19937: a recurrence of 156 words of 128 bits, each
// four numbers, the lowest first. Period a multiple of 2^19937 - 1.
//
//   x[i + 156] = x[i] ^ (x[i] << 8) ^ (x[i + 122] >>32 11 & mask) ^ (x[i + 154] >> 8) ^ (x[i + 155] <<32 18)
//
// where <<32 and >>32 shift each 32 bits by themselves.
//
// M. Saito, M. Matsumoto, "SIMD-oriented Fast Mersenne Twister: a 128-bit pseudorandom number generator", Monte
// Carlo and Quasi-Monte Carlo Methods 2006, Springer 2008, 607-622.
#pragma once

#include "rng/stream.hpp"

namespace vox::rng {

struct sfmt19937_state {
    static constexpr int size = 624, lag = 4 * 122;
    static constexpr uint32_t masks[4] = {0xDFFFFFEF, 0xDDFECB7F, 0xBFFAFFFF, 0xBFFFFFF6};

    uint32_t words[size];
    int32_t position; // how many of the block have been delivered
};
static_assert(sizeof(stream) + sizeof(sfmt19937_state) <= 2536);

} // namespace vox::rng
