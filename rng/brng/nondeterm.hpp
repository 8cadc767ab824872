// nondeterm.hpp - words from the processor's random-number instruction, RDRAND.
//
// Nothing can be repeated here, but the order is defined: a request for n words makes (n + 1) / 2 draws of 64
// bits, whose lower half comes first; of the last draw of an odd request the upper half is dropped. A draw
// that fails is tried again, up to the retry limit, which seed word 1 gives; 0 and a missing word stand for 10.
#pragma once

#include <stdint.h>

namespace vox::rng {

struct nondeterm_state {
    uint32_t method; // 0: RDRAND, the only one
    uint32_t retries;

    static constexpr uint32_t default_retries = 10;
};

// draw(&bits) is tried once, and again as often as retries says, until it is true.
template <class Draw>
inline bool draw_with_retries(Draw draw, uint32_t retries, uint64_t *bits) {
    for (uint64_t tries = uint64_t(retries) + 1; tries; --tries)
        if (draw(bits))
            return true;
    return false;
}

} // namespace vox::rng
