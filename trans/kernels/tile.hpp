// tile.hpp - serv/tile.hpp's transposition in registers with an operation on the way.
#pragma once

#include "trans/kernels/operations.hpp"

namespace {
namespace trans {

// op(per_lane columns of A), Lanes per_lane rows of them; put(c, v) takes the c-th column.
template <int Lanes, class T, class Op, class Put>
VOX_INLINE void tile(const Op &op, const T *a, index_t lda, const Put &put) {
    using R = mover<T>;
    constexpr int k = per_lane<T>;
    typename vec_of<R, 16 * Lanes>::type v[k];
    unroll<k>([&](auto r) VOX_INLINED {
        const R *const row = flat(a + r * lda);
        const index_t step = k * lda * parts<T>;
        v[r] = op(load_lanes<Lanes>([&](int l) VOX_INLINED { return row + l * step; }));
    });
    transpose_lanes(v);
    unroll<k>([&](auto c) VOX_INLINED { put(c, v[c]); });
}

} // namespace trans
} // namespace
