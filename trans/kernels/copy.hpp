// copy.hpp - B := op(A), not transposed, row by row. A and B may be the same matrix.
#pragma once

#include "trans/kernels/lines.hpp"

namespace {
namespace trans {

// Elements i .. n-1 of a row by lanes, then one by one, so that nothing is done twice.
template <class T, class Op>
VOX_INLINE void copy_end(const Op &op, index_t i, index_t n, const T *a, T *b) {
    constexpr int k = per_lane<T>;
    for (; i + k <= n; i += k)
        store(flat(b + i), op(load<16>(flat(a + i))));
    for (; i < n; ++i)
        one_element(op, a + i, b + i);
}

// One row.
template <class T, class Op>
VOX_INLINE void copy_row(const Op &op, index_t n, const T *a, T *b) {
    constexpr int w = vector_bytes / int(sizeof(T));
    index_t i = 0;
    const auto step = [&](auto count) VOX_INLINED {
        typename vec_of<mover<T>, vector_bytes>::type v[count];
        unroll<count>([&](auto l) VOX_INLINED { v[l] = op(load(flat(a + i + l * w))); });
        unroll<count>([&](auto l) VOX_INLINED { store(flat(b + i + l * w), v[l]); });
        i += count * w;
    };
    while (i + 4 * w <= n)
        step(constant<4>());
    while (i + w <= n)
        step(constant<1>());
    copy_end(op, i, n, a, b);
}

// The same with stores past the caches, for rows of many lines.
template <class T, class Op>
VOX_INLINE void stream_row(const Op &op, index_t n, const T *a, T *b) {
    constexpr int line = per_line<T>, w = stream_bytes / int(sizeof(T));
    const index_t skip = -place_in_line(b) & (line - 1);
    copy_end(op, 0, skip, a, b);
    index_t i = skip;
    for (; i + line <= n; i += line)
        unroll<64 / stream_bytes>([&](auto l) VOX_INLINED {
            stream(flat(b + i + l * w), op(load<stream_bytes>(flat(a + i + l * w))));
        });
    copy_end(op, i, n, a, b);
}

template <class T, class Op>
VOX_INLINE void copy(const Op &op, index_t outer, index_t inner, const T *a, index_t lda, T *b,
                     index_t ldb) {
    if (lda == inner && ldb == inner) {
        inner *= outer;
        outer = 1;
    }
    const bool past_caches =
        streams<T>(outer, inner) && inner >= 8 * per_line<T> && place_in_line(b) >= 0;
    if (!past_caches) {
        for (index_t i = 0; i < outer; ++i)
            copy_row(op, inner, a + i * lda, b + i * ldb);
    } else {
        for (index_t i = 0; i < outer; ++i)
            stream_row(op, inner, a + i * lda, b + i * ldb);
        streaming_done();
    }
}

} // namespace trans
} // namespace
