// r250.cpp - seeding, see r250.hpp.
#include "rng/brng/r250.hpp"

#include <string.h>

#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace {

// A multiplicative sequence, then as many words as bits made linearly independent: word 3 + 14 k and the one 7
// after it get the bits above 31 - 2 k and 30 - 2 k cleared and that one set.
void fill(uint32_t (&words)[vox::rng::r250_state::size], uint32_t x) {
    constexpr uint32_t multiplier = 69069, square = multiplier * multiplier;
    for (int i = 0; i < vox::rng::r250_state::size; i += 2) {
        words[i] = x * multiplier;
        x *= square;
        words[i + 1] = x;
    }
    for (int k = 0; k < 16; ++k) {
        const uint32_t bit = 0x80000000 >> 2 * k, mask = 0xFFFFFFFF >> 2 * k;
        uint32_t &upper = words[3 + 14 * k], &lower = words[10 + 14 * k];
        upper = (upper & mask) | bit;
        lower = (lower & mask >> 1) | bit >> 1;
    }
}

} // namespace

extern "C" int vox_rng_r250_init(int method, vox::rng::stream *s, int n, const uint32_t *params) {
    using namespace vox::rng;
    r250_state &state = s->state<r250_state>();
    switch (method) {
    case seed:
        if (n >= r250_state::size)
            memcpy(state.words, params, sizeof state.words);
        else
            fill(state.words, n > 0 && params[0] ? params[0] : 1);
        state.next = 0;
        state.back = r250_state::lag;
        return ok;
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip:
        return RSK_ERROR_NO_SKIPAHEAD;
    case validate:
        return state.next < r250_state::size && state.back == r250_state::lag ? ok : bad_state;
    default:
        return unknown_method;
    }
}
