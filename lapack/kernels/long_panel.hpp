// long_panel.hpp - a panel of many rows, column by column from the left.
//
// A column takes its interchanges, what lies above its diagonal is solved with the triangle on the left,
// and one sweep over the rest takes off all products, finds the next pivot and stores. The column
// before is divided by its pivot on that sweep too, so an element is stored twice in all, whatever the
// width; read are, mostly, the columns on the left.
#pragma once

#include "blas/kernels/panels.hpp"
#include "lapack/kernels/pivots.hpp"
#include "lapack/panel.hpp"

namespace {

using panels::first_few;
using panels::whole;
using panels::width;

// The largest key met in each lane, and the first row of the vector that held it.
template <class T>
struct search {
    using R = real_of<T>;
    vec<R> best = broadcast(R(-1));
    vec<place<R>> row{};

    VOX_INLINE void look_at(vec<R> x, index_t at) {
        const vec<R> key = pivot_key<T>(x);
        const auto better = key > best;
        best = better ? key : best;
        row = better ? broadcast(place<R>(at)) : row;
    }
    VOX_INLINE index_t result() const {
        index_t first = std::numeric_limits<index_t>::max();
        place<R> rows[lanes<R>];
        store(rows, row);
        for (unsigned found = equal_lanes(best, broadcast(largest_lane(best))); found;
             found &= found - 1) {
            const int lane = __builtin_ctz(found);
            const index_t r = rows[lane] + lane / parts<T>;
            first = r < first ? r : first;
        }
        return first;
    }
};

template <class T>
struct long_panel {
    using R = real_of<T>;

    T *a;
    index_t lda;
    T scale; // what column j - 1 is yet to be multiplied by
    R minus_u[vox::lapack::widest_panel * parts<T>];

    // Some rows of column j, from `row` on.
    template <int V, class Access>
    VOX_INLINE void sweep_rows(index_t j, index_t row, search<T> &pivot, Access last) {
        constexpr int w = width<T>;
        const auto each = [&](auto body) VOX_INLINED {
            unroll<V - 1>([&](auto v) VOX_INLINED { body(v, whole()); });
            body(constant<V - 1>(), last);
        };
        T *const column = a + j * lda + row, *l = a + row;
        vec<R> x[V], cross[V];
        each([&](auto v, auto some) VOX_INLINED {
            x[v] = some.get(column + v * w);
            cross[v] = vec<R>{};
        });
        const auto take_off = [&](auto v, vec<R> y, index_t k) VOX_INLINED {
            x[v] = fma(y, broadcast(minus_u[k * parts<T>]), x[v]);
            if constexpr (is_complex<T>)
                cross[v] = fma(y, broadcast(minus_u[k * parts<T> + 1]), cross[v]);
        };
        for (index_t k = 0; k < j - 1; ++k, l += lda)
            each([&](auto v, auto some) VOX_INLINED { take_off(v, some.get(l + v * w), k); });
        if (j > 0)
            each([&](auto v, auto some) VOX_INLINED {
                const vec<R> y = times(scale, some.get(l + v * w));
                some.put(l + v * w, y);
                take_off(v, y, j - 1);
            });
        each([&](auto v, auto some) VOX_INLINED {
            if constexpr (is_complex<T>)
                x[v] += swap_pairs(cross[v]) * broadcast_pair(R(-1), R(1));
            some.put(column + v * w, x[v]);
            pivot.look_at(x[v], row + v * w);
        });
    }

    // body(vectors, row, access) for rows first .. end - 1.
    template <class Body>
    static VOX_INLINE void for_rows(index_t first, index_t end, const Body &body) {
        constexpr int most = 4, w = width<T>;
        for (; end - first >= most * w; first += most * w)
            body(constant<most>(), first, whole());
        const index_t left = end - first;
        unroll<most>([&](auto v) VOX_INLINED {
            if (left > v * w && left <= (v + 1) * w)
                body(constant<v + 1>(), first, first_few{left - v * w});
        });
    }

    // The pivot's row, after all products have been taken off column j.
    VOX_INLINE index_t sweep(index_t j, index_t m) {
        search<T> pivot;
        for_rows(j, m, [&](auto vectors, index_t row, auto last) VOX_INLINED {
            sweep_rows<vectors>(j, row, pivot, last);
        });
        return is_nan(a[j + j * lda]) ? j : pivot.result();
    }

    VOX_INLINE void scale_column(index_t j, index_t m) {
        T *const column = a + j * lda;
        for_rows(j + 1, m, [&](auto vectors, index_t row, auto last) VOX_INLINED {
            unroll<vectors>([&](auto v) VOX_INLINED {
                const auto one = [&](auto some) VOX_INLINED {
                    T *const at = column + row + v * width<T>;
                    some.put(at, times(scale, some.get(at)));
                };
                if constexpr (v == vectors - 1)
                    one(last);
                else
                    one(whole());
            });
        });
    }

    // Interchanges, and the substitution above the diagonal.
    VOX_INLINE void solve_above(index_t j, index_t rows, const index_t *ipiv) {
        T *const column = a + j * lda;
        for (index_t k = 0; k < rows; ++k) {
            const T other = column[ipiv[k] - 1];
            column[ipiv[k] - 1] = column[k];
            T u = other;
            for (index_t i = 0; i < k; ++i) {
                stay_scalar();
                const T l = a[k + i * lda];
                const R *const t = minus_u + i * parts<T>;
                if constexpr (is_complex<T>)
                    u = T{u.real + l.real * t[0] - l.imag * t[1],
                          u.imag + l.real * t[1] + l.imag * t[0]};
                else
                    u += l * t[0];
            }
            column[k] = u;
            minus_u[k * parts<T>] = -vox::real(u);
            if constexpr (is_complex<T>)
                minus_u[k * parts<T> + 1] = -vox::imag(u);
        }
    }
};

template <class T>
__attribute__((noinline)) index_t factor_long(index_t m, index_t n, T *a, index_t lda,
                                              index_t *ipiv) {
    long_panel<T> p = {a, lda, vox::one<T>, {}};
    index_t info = 0;
    for (index_t j = 0; j < n; ++j) {
        p.solve_above(j, j < m ? j : m, ipiv);
        if (j >= m)
            continue;
        const index_t row = p.sweep(j, m);
        ipiv[j] = row + 1;
        if (row != j)
            for (index_t k = 0; k <= j; ++k) {
                stay_scalar();
                T *const column = a + k * lda, kept = column[j];
                column[j] = column[row];
                column[row] = kept;
            }
        const T d = a[j + j * lda];
        if (vox::is_zero(d) && info == 0)
            info = j + 1;
        p.scale = multiplier(d, [&]() VOX_INLINED {
            for (index_t i = j + 1; i < m; ++i) {
                stay_scalar();
                a[i + j * lda] = vox::divide(a[i + j * lda], d);
            }
        });
    }
    if (n > 0 && n < m)
        p.scale_column(n - 1, m);
    return info;
}

} // namespace
