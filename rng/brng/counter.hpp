// counter.hpp - generators that encrypt a counter: where they are in their sequence.
//
// A counter of 128 bits gives a block of four words, so the sequence needs no state but the counter of the
// next block and the place in it; a block that is begun is made again by the next request.
#pragma once

#include <stdint.h>

#include "rng/brng/modular.hpp"
#include "rng/stream.hpp"
#include "vox/rsk.h"

namespace vox::rng {

using counter128 = unsigned __int128;

constexpr int block_words = 4;

// The number whose words are params[first], ..., params[first + words - 1], the lowest first; missing words
// are 0.
inline counter128 words_of(const uint32_t *params, int n, int first, int words) {
    counter128 number = 0;
    for (int i = 0; i < words && first + i < n; ++i)
        number |= counter128(params[first + i]) << 32 * i;
    return number;
}

// What seeding leaves: leapfrog, skip-ahead and validation of a state with members counter and position.
template <class State>
int change_counter(State &state, int method, const uint32_t *params) {
    switch (method) {
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip: {
        const counter128 words = counter128(count_of(params)) + state.position;
        state.position = uint32_t(words % block_words);
        state.counter += words / block_words;
        return ok;
    }
    case validate:
        return state.position < uint32_t(block_words) ? ok : bad_state;
    default:
        return unknown_method;
    }
}

} // namespace vox::rng
