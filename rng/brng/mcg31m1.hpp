// mcg31m1.hpp - the multiplicative congruential generator x := a x mod 2^31 - 1.
//
// Multiplier 1132489760: P. L'Ecuyer, "Tables of linear congruential generators of different sizes and good
// lattice structure", Math. Comp. 68 (1999) 249-260. Leapfrog makes the multiplier a power of it. Period
// 2^31 - 2. The stored x is the number that comes next.
#pragma once

#include <stdint.h>

namespace vox::rng {

struct mcg31m1_state {
    uint32_t x, a;
    static constexpr uint32_t modulus = 0x7FFFFFFF, multiplier = 1132489760;
};

} // namespace vox::rng
