// blocks.hpp - numbers of generators that renew their 624 words a block at a time and in place.
//
// Vectors are loaded from wherever the last request ended, so one in each block lies across its end. That one
// comes from a seam: the last vector of the old block with the first of the new one behind it. What makes a
// block needs it as well, where the recurrence wraps.
//
// Generator:
//   renew(w, seam)  makes the next block in place of w, and the seam
//   output(v)       what is delivered for words v
#pragma once

#include "rng/kernels/outputs.hpp"

namespace {

constexpr int block_size = 624;
static_assert(block_size % output::word_lanes == 0);

struct block_seam {
    static constexpr int lanes = output::word_lanes, first = block_size - lanes;
    uint32_t words[2 * lanes];

    void put_end(const uint32_t *old_block) { simd::store(words, load(old_block + first)); }
    void put_start(const uint32_t *new_block) { simd::store(words + lanes, load(new_block)); }
    // From word i of the old block on.
    const uint32_t *at(int i) const { return words + (i - first); }

    static output::words load(const uint32_t *p) { return simd::load<output::integer_bytes>(p); }
};

template <class Generator, class State, class Out>
int generate_blocks(State &state, vox::index_t n, Out out) {
    constexpr int lanes = output::word_lanes;
    uint32_t *const w = state.words;
    int i = state.position;
    while (n > 0) {
        const int left = block_size - i;
        for (int k = (n < left ? int(n) : left) / lanes; k > 0; --k, i += lanes, n -= lanes)
            out.put(Generator::output(block_seam::load(w + i)));
        if (n == 0)
            break;
        // Fewer than a vector are left of the request or of the block.
        const int k = n < lanes ? int(n) : lanes;
        const uint32_t *from = w + i;
        block_seam seam{};
        if (i + lanes > block_size) {
            if (i + k > block_size)
                Generator::renew(w, seam);
            else
                seam.put_end(w);
            from = seam.at(i);
        }
        const output::words v = Generator::output(block_seam::load(from));
        if (k == lanes)
            out.put(v);
        else
            out.put_first(v, k);
        n -= k;
        i += k;
        if (i > block_size)
            i -= block_size;
    }
    state.position = i;
    return vox::rng::ok;
}

} // namespace
