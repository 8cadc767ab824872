// mt2203.cpp - numbers of the MT2203 family, see rng/brng/mt2203.hpp.
//
// A block is short, so several are laid out one after another, where the recurrence runs on without wrapping.
#include "rng/brng/mt2203.hpp"

#include "rng/kernels/outputs.hpp"

namespace {

using namespace output;
using vox::rng::mt2203_state;

struct mt2203 {
    vox::rng::mt2203_member member;

    words twist(words x0, words x1, words x_lag) const {
        const words y = (x0 & mt2203_state::upper) | (x1 & ~mt2203_state::upper);
        return x_lag ^ y >> 1 ^ (-(x1 & 1) & member.a);
    }
    words output(words y) const {
        y ^= y >> 12;
        y ^= y << 7 & member.b;
        y ^= y << 15 & member.c;
        return y ^ y >> 18;
    }
};

template <class Out>
int generate(mt2203_state &state, index_t n, Out out) {
    constexpr int size = mt2203_state::size, lag = mt2203_state::lag, blocks = 16;
    constexpr auto load = simd::load<integer_bytes, uint32_t>;
    const mt2203 generator{state.member};

    uint32_t line[blocks * size + word_lanes];
    while (n > 0) {
        int i = state.position;
        const int room = blocks * size - i;
        const int k = n <= room ? int(n) : room / word_lanes * word_lanes, end = i + k;
        const int last = (end - 1) / size * size; // where the block of the last number begins
        __builtin_memcpy(line, state.words, sizeof state.words);
        for (int j = 0; j < last; j += word_lanes) {
            const uint32_t *x = line + j;
            simd::store(line + j + size, generator.twist(load(x), load(x + 1), load(x + lag)));
        }
        for (; i + word_lanes <= end; i += word_lanes)
            out.put(generator.output(load(line + i)));
        if (i < end)
            out.put_first(generator.output(load(line + i)), end - i);
        if (last)
            __builtin_memcpy(state.words, line + last, sizeof state.words);
        state.position = end - last;
        n -= k;
    }
    return vox::rng::ok;
}

} // namespace

VOX_BRNG_KERNELS(mt2203, mt2203_state, bits32)
