// counter.hpp - the words of a counter generator in order, from batches of whole blocks.
#pragma once

#include "rng/brng/counter.hpp"
#include "rng/kernels/outputs.hpp"

namespace {

// Batches of blocks come from a class Blocks:
//   Blocks::vectors                 vectors of words in a batch
//   blocks(counter, words (&v)[])   the batch that begins with the block of this counter, inlined
template <class Blocks>
constexpr int batch_words = Blocks::vectors *output::word_lanes;

// A batch in memory, of which not all is wanted; with room for a vector that begins at the last word.
template <class Blocks>
struct stored_batch {
    uint32_t word[batch_words<Blocks> + output::word_lanes];

    __attribute__((noinline)) stored_batch(const Blocks &blocks, vox::rng::counter128 counter) {
        output::words v[Blocks::vectors];
        blocks(counter, v);
        simd::unroll<Blocks::vectors>(
            [&](auto i) VOX_INLINED { simd::store(word + i * output::word_lanes, v[i]); });
    }
    output::words from(output::index_t i) const {
        return simd::load<output::integer_bytes>(word + i);
    }
};

// The next n words of a state with members counter and position.
template <class State, class Blocks, class Out>
void deliver(State &state, output::index_t n, Out &out, const Blocks &blocks) {
    using namespace output;
    using vox::rng::block_words;
    if (state.position && n > 0) {
        const int rest = block_words - int(state.position), k = n < rest ? int(n) : rest;
        out.put_first(stored_batch<Blocks>(blocks, state.counter).from(state.position), k);
        n -= k;
        state.counter += k == rest;
        state.position = (state.position + uint32_t(k)) % block_words;
    }
    constexpr int batch = batch_words<Blocks>;
    for (; n >= batch; n -= batch) {
        words v[Blocks::vectors];
        blocks(state.counter, v);
        simd::unroll<Blocks::vectors>([&](auto i) VOX_INLINED { out.put(v[i]); });
        state.counter += batch / block_words;
    }
    if (n <= 0)
        return;
    const stored_batch<Blocks> last(blocks, state.counter);
    state.counter += uint64_t(n / block_words);
    state.position = uint32_t(n % block_words);
    index_t i = 0;
    for (; n >= word_lanes; n -= word_lanes, i += word_lanes)
        out.put(last.from(i));
    out.put_first(last.from(i), int(n));
}

} // namespace
