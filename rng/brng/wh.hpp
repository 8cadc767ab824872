// wh.hpp - the Wichmann-Hill generators: four sequences x_i := a_i x_i mod m_i, and u = sum x_i / m_i mod 1.
//
// N. M. MacLaren, "The generation of multiple independent sequences of pseudorandom numbers", Applied
// Statistics 38 (1989) 351-359. The moduli are primes of 24 bits that no two of the 273 members share. Leapfrog
// makes the multipliers powers of a member's. The stored x_i are those of the number that comes next.
#pragma once

#include "rng/stream.hpp"

namespace vox::rng {

struct wh_state {
    uint32_t x[4], a[4];
};

struct wh_member {
    uint32_t m[4];
    uint8_t a[4];
};

// The parameters of the stream's member.
const wh_member &wh_member_of(const stream *s);

} // namespace vox::rng
