// r250.hpp - the generalised feedback shift register x_n = x_(n-103) xor x_(n-250) of 32-bit words.
//
// S. Kirkpatrick, E. Stoll, J. Comp. Phys. 40 (1981) 517-526. Period 2^250 - 1. The words lie in a ring, the
// oldest at the place where the next one comes.
#pragma once

#include <stdint.h>

namespace vox::rng {

struct r250_state {
    static constexpr int size = 250, lag = 103;
    uint32_t words[size];
    uint32_t next; // the place of x_n and, before it is there, of x_(n-250)
    uint32_t back; // the lag: x_(n-103) is as many places before
};

} // namespace vox::rng
