// short_panel.hpp - a panel whose columns are a few vectors each.
//
// It is taken to the stack, where rows stay in their lanes: a row that was a pivot is no longer active,
// and its place among the others is noted. So vectors that were stored are read again as they were, and
// nothing waits for interchanges. Each pivot's products are taken off all columns on the right at once.
// Rows find their places on the way back.
#pragma once

#include "lapack/kernels/pivots.hpp"
#include "lapack/panel.hpp"

namespace {

// So many vectors at the most; with more, panels from the left are faster.
constexpr int short_vectors = vector_bytes == 64 ? 3 : 6;

// m rows, at most those of H vectors; n columns, at most widest_panel.
template <int H, class T>
__attribute__((noinline)) index_t factor_short(index_t m, index_t n, T *a, index_t lda,
                                               index_t *ipiv) {
    using R = real_of<T>;
    constexpr int w = lanes<R>, rows = H * w / parts<T>;
    alignas(64) R x[vox::lapack::widest_panel][H * w];
    int row_at[rows], place_of[rows]; // inverse permutations
    decltype(vec<R>() < vec<R>()) active[H];
    vec<place<R>> row_of_lane;
    for (int i = 0; i < w; ++i)
        row_of_lane[i] = i / parts<T>;
    unroll<H>([&](auto h) VOX_INLINED {
        active[h] = row_of_lane + place<R>(h * (w / parts<T>)) < place<R>(m);
    });
    for (int i = 0; i < rows; ++i)
        row_at[i] = place_of[i] = i;
    for (index_t c = 0; c < n; ++c)
        unroll<H>([&](auto h) VOX_INLINED {
            const index_t left = m * parts<T> - h * w;
            const R *const from = flat(a + c * lda) + h * w;
            store(x[c] + h * w, left >= w  ? load(from)
                                : left > 0 ? load_partial(from, left)
                                           : vec<R>{});
        });

    index_t info = 0;
    for (index_t j = 0; j < n && j < m; ++j) {
        vec<R> key[H], best = broadcast(R(-1));
        unroll<H>([&](auto h) VOX_INLINED {
            key[h] = pivot_key<T>(load(x[j] + h * w));
            key[h] = (active[h] & (key[h] >= R(0))) ? key[h] : broadcast(R(-1));
            best = key[h] > best ? key[h] : best;
        });
        best = broadcast(largest_lane(best));
        uint64_t found = 0;
        unroll<H>([&](auto h)
                      VOX_INLINED { found |= uint64_t(equal_lanes(key[h], best)) << (h * w); });
        T *const column = reinterpret_cast<T *>(x[j]);
        int p = int(j), row = row_at[j];
        if (VOX_LIKELY(!is_nan(column[row])))
            for (p = rows; found; found &= found - 1) {
                const int r = __builtin_ctzll(found) / parts<T>;
                if (place_of[r] < p)
                    p = place_of[r], row = r;
            }
        ipiv[j] = p + 1;
        place_of[row_at[j]] = p, row_at[p] = row_at[j];
        place_of[row] = int(j), row_at[j] = row;

        const T d = column[row];
        if (vox::is_zero(d) && info == 0)
            info = j + 1;
        const T scale = multiplier(d, [&]() VOX_INLINED {
            for (index_t i = j + 1; i < m; ++i) {
                stay_scalar();
                column[row_at[i]] = vox::divide(column[row_at[i]], d);
            }
        });
        vec<R> l[H], crossed[H];
        unroll<H>([&](auto h) VOX_INLINED {
            active[h] &= row_of_lane != place<R>(row - h * (w / parts<T>));
            const vec<R> old = load(x[j] + h * w);
            l[h] = active[h] ? times(scale, old) : old;
            store(x[j] + h * w, l[h]);
            if constexpr (is_complex<T>)
                crossed[h] = swap_pairs(l[h]) * broadcast_pair(R(1), R(-1));
        });
        for (index_t c = j + 1; c < n; ++c) {
            const T u = reinterpret_cast<const T *>(x[c])[row];
            unroll<H>([&](auto h) VOX_INLINED {
                const vec<R> old = load(x[c] + h * w);
                vec<R> y = old - l[h] * broadcast(vox::real(u));
                if constexpr (is_complex<T>)
                    y = fma(crossed[h], broadcast(vox::imag(u)), y);
                store(x[c] + h * w, active[h] ? y : old);
            });
        }
    }

    for (index_t c = 0; c < n; ++c)
        for (index_t i = 0; i < m; ++i) {
            stay_scalar();
            a[i + c * lda] = reinterpret_cast<const T *>(x[c])[row_at[i]];
        }
    return info;
}

} // namespace
