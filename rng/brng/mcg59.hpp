// mcg59.hpp - the multiplicative congruential generator x := a x mod 2^59.
//
// Multiplier 13^13: D. Knuth, The Art of Computer Programming, vol. 2, 3.3.4. Leapfrog makes it a power of it.
// Period 2^57 for odd x. The stored x is the number that comes next.
#pragma once

#include <stdint.h>

namespace vox::rng {

struct mcg59_state {
    uint64_t x, a;
    static constexpr uint64_t mask = (uint64_t(1) << 59) - 1, multiplier = 302875106592253;
};

} // namespace vox::rng
