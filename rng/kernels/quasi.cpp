// quasi.cpp - numbers of SOBOL and NIEDERR, see rng/brng/quasi.hpp.
//
// A row of vectors is written while the next one is made from it, in whole registers: what lies beyond a row's end
// is overwritten by the next row, and the last rows of a request go number by number.
#include "rng/brng/quasi.hpp"

#include "rng/kernels/outputs.hpp"

namespace {

using namespace output;
using vox::rng::quasi_shape;
using vox::rng::quasi_state;

inline words load_words(const uint32_t *p) { return simd::load<integer_bytes>(p); }

// The first n numbers of p, behind which a vector may be read.
template <class Out>
inline void put_numbers(const uint32_t *p, index_t n, Out &out) {
    for (; n >= word_lanes; n -= word_lanes, p += word_lanes)
        out.put(load_words(p));
    out.put_first(load_words(p), int(n));
}

inline void change_row(uint32_t *row, const uint32_t *difference, index_t stride) {
    for (index_t i = 0; i < stride; i += word_lanes)
        simd::store(row + i, load_words(row + i) ^ load_words(difference + i));
}

template <class Out>
int generate(quasi_state &state, index_t n, Out out) {
    const uint32_t *rows = quasi_rows(state);
    if (!rows)
        return vox::rng::bad_state;
    const quasi_shape shape(state.dimension);
    const index_t d = shape.dimension, length = shape.row_words(), stride = shape.stride();
    if (n > (quasi_state::all_vectors - index_t(state.vectors)) * d - state.position)
        return RSK_ERROR_SEQUENCE_END;
    if (n <= 0)
        return vox::rng::ok;

    const index_t next = index_t(state.vectors) + 1, rows_of_all = index_t(1)
                                                                   << shape.differences();
    uint32_t *row = state.row();
    index_t number = next >> shape.log_vectors; // of the row
    index_t at = (next - (number << shape.log_vectors)) * d + state.position;
    const auto difference = [&](index_t i) { // of row i from the one before
        return rows + (__builtin_ctzll((unsigned long long)i) + 1) * stride;
    };
    while (n > 0) {
        const index_t k = n < length - at ? n : length - at;
        put_numbers(row + at, k, out);
        n -= k;
        at += k;
        if (at < length)
            break;
        at = 0;
        if (++number == rows_of_all) {
            __builtin_memcpy(row, rows, size_t(stride) * 4); // the end, see make_row
            break;
        }
        change_row(row, difference(number), stride);
        const index_t beyond = (word_lanes - length % word_lanes) % word_lanes;
        for (; n >= length + word_lanes; n -= length) {
            const uint32_t *change = difference(++number);
            for (index_t i = 0; i < length; i += word_lanes) {
                const words v = load_words(row + i);
                out.put(v);
                simd::store(row + i, v ^ load_words(change + i));
            }
            out = out.at(-beyond);
        }
    }
    state.vectors = uint32_t((number << shape.log_vectors) + at / d - 1);
    state.position = uint32_t(at % d);
    return vox::rng::ok;
}

} // namespace

VOX_BRNG_KERNELS(sobol, quasi_state, bits32)
VOX_BRNG_KERNELS(niederr, quasi_state, bits32)
