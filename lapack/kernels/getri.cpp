// getri.cpp - the second half of a small inverse: X L = V, and the columns of X in their places.
//
// X comes to be on the stack, in whole vectors, so that L stays where it is until it has done its part. From
// the right, a column of X is V's less what the columns on its right have a part in.
#include "lapack/kernels/pivots.hpp"
#include "lapack/panel.hpp"

namespace {

using vox::lapack::small_inverse;

template <class T>
struct columns_of_x {
    using R = real_of<T>;
    static constexpr index_t w = lanes<R>, length = small_inverse * parts<T>;
    static_assert(length % w == 0);

    alignas(64) R x[small_inverse][length];

    // V vectors of rows of column j; l: L's column j.
    template <int V>
    VOX_INLINE void take_off(index_t n, index_t j, index_t row, const T *l) {
        // Columns go to different sums in turn, so that enough additions are in flight.
        constexpr int turns = V * parts<T> >= 4 ? 1 : 2;
        vec<R> sum[turns * V] = {}, crossed[turns * V] = {};
        const auto add = [&](auto turn, index_t k) VOX_INLINED {
            unroll<V>([&](auto v) VOX_INLINED {
                const vec<R> y = load(x[k] + row + v * w);
                const int at = turn * V + v;
                sum[at] = fma(y, broadcast(vox::real(l[k])), sum[at]);
                if constexpr (is_complex<T>)
                    crossed[at] = fma(y, broadcast(vox::imag(l[k])), crossed[at]);
            });
        };
        index_t k = n - 1;
        for (; k - turns >= j; k -= turns)
            unroll<turns>([&](auto turn) VOX_INLINED { add(turn, k - turn); });
        for (; k > j; --k)
            add(constant<0>(), k);
        unroll<V>([&](auto v) VOX_INLINED {
            vec<R> all = sum[v];
            if constexpr (turns == 2)
                all += sum[V + v];
            if constexpr (is_complex<T>) {
                vec<R> cross = crossed[v];
                if constexpr (turns == 2)
                    cross += crossed[V + v];
                all += swap_pairs(cross) * broadcast_pair(R(-1), R(1));
            }
            R *const to = x[j] + row + v * w;
            store(to, load(to) - all);
        });
    }
};

template <class T>
VOX_INLINE void finish_inverse(index_t n, T *a, index_t lda, const index_t *ipiv) {
    using R = real_of<T>;
    constexpr index_t w = lanes<R>;
    columns_of_x<T> all;
    const index_t length = (n * parts<T> + w - 1) / w * w;
    for (index_t j = 0; j < n; ++j)
        for (index_t row = 0; row < length; row += w) {
            const index_t left = (j + 1) * parts<T> - row;
            const R *const from = flat(a + j * lda) + row;
            store(all.x[j] + row, left >= w  ? load(from)
                                  : left > 0 ? load_partial(from, left)
                                             : vec<R>{});
        }
    for (index_t j = n - 2; j >= 0; --j) {
        index_t row = 0;
        for (; row + 4 * w <= length; row += 4 * w)
            all.template take_off<4>(n, j, row, a + j * lda);
        if (row + 2 * w <= length) {
            all.template take_off<2>(n, j, row, a + j * lda);
            row += 2 * w;
        }
        if (row < length)
            all.template take_off<1>(n, j, row, a + j * lda);
    }
    int column_at[small_inverse];
    for (index_t j = 0; j < n; ++j)
        column_at[j] = int(j);
    for (index_t j = n - 2; j >= 0; --j) {
        const int kept = column_at[j];
        column_at[j] = column_at[ipiv[j] - 1];
        column_at[ipiv[j] - 1] = kept;
    }
    for (index_t j = 0; j < n; ++j)
        for (index_t row = 0; row < length; row += w) {
            const index_t left = n * parts<T> - row;
            R *const to = flat(a + j * lda) + row;
            const vec<R> v = load(all.x[column_at[j]] + row);
            if (left >= w)
                store(to, v);
            else
                store_partial(to, v, left);
        }
}

} // namespace

#define GETRI(p, P, T)                                                                             \
    extern "C" void VOX_KERNEL(lapack, p##getri)(index_t n, T * a, index_t lda,                    \
                                                 const index_t *ipiv) {                            \
        finish_inverse(n, a, lda, ipiv);                                                           \
    }
VOX_PRECISIONS(GETRI)
