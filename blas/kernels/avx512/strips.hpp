// strips.hpp - the inner loop of a full tile on this code path: AVX-512, 24 x 8 in double precision.
//
// 24 sums, three vectors of A and one value of B: the compilers keep them in registers as they stand.
#pragma once

namespace {

constexpr index_t steps_ahead = 32; // as long as it takes to fetch a tile of C

template <class R, class NearEnd>
VOX_INLINE void multiply_strips(index_t depth, const R *a, const R *b, const R *next,
                                accumulators<R, tile_vectors, tile_columns> &sums,
                                const NearEnd &near_end) {
    constexpr int V = tile_vectors, N = tile_columns;
    unroll<V * N>([&](auto i) VOX_INLINED { sums[i] = vec<R>{}; });
    if (depth <= steps_ahead)
        near_end();
    for (index_t p = 0; p < depth; ++p) {
        if (VOX_UNLIKELY(p == depth - steps_ahead))
            near_end();
        __builtin_prefetch(next + p, 0, 2);
        vec<R> rows[V];
        unroll<V>([&](auto v) VOX_INLINED { rows[v] = in_register(load(a + v * lanes<R>)); });
        step<N>(
            rows, [&](auto j) VOX_INLINED { return spread(b + j); }, sums);
        a += V * lanes<R>, b += N;
    }
}

} // namespace
