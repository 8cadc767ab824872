// twister.hpp - the words of a twister: how seed words fill them, and what may not be their state.
//
// Filling is the initialisation of 2002 that M. Matsumoto and T. Nishimura gave their Mersenne Twister; it works
// for any number of words.
#pragma once

#include <stdint.h>

namespace vox::rng {

template <int N>
void fill_from_word(uint32_t (&w)[N], uint32_t seed) {
    w[0] = seed;
    for (int i = 1; i < N; ++i)
        w[i] = 1812433253u * (w[i - 1] ^ w[i - 1] >> 30) + uint32_t(i);
}

// n > 0 seed words.
template <int N>
void fill_from_array(uint32_t (&w)[N], int n, const uint32_t *seeds) {
    fill_from_word(w, 19650218);
    int i = 1;
    // The word after i; the first one comes round as the last.
    const auto advance = [&] {
        if (++i == N) {
            w[0] = w[N - 1];
            i = 1;
        }
    };
    const auto mixed = [&](uint32_t factor) { return (w[i - 1] ^ w[i - 1] >> 30) * factor; };
    for (int k = 0, j = 0; k < (n > N ? n : N); ++k, j = j + 1 < n ? j + 1 : 0) {
        w[i] = (w[i] ^ mixed(1664525)) + seeds[j] + uint32_t(j);
        advance();
    }
    for (int k = 0; k < N - 1; ++k) {
        w[i] = (w[i] ^ mixed(1566083941)) - uint32_t(i);
        advance();
    }
    w[0] = 0x80000000;
}

// Whether these can be the words of a twister: position of them delivered, at least one, and not all of its
// state zeros, which it would stay at.
template <int N>
bool is_block(const uint32_t (&w)[N], int32_t position, uint32_t bits_of_first) {
    uint32_t any = w[0] & bits_of_first;
    for (int i = 1; i < N; ++i)
        any |= w[i];
    return position >= 1 && position <= N && any != 0;
}

} // namespace vox::rng
