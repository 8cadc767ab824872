// reflections.hpp - elementary reflectors and columns that are in the caches.
//
// H = I - tau v v^H with v = (1, x): the 1 stands for itself and is not read. To apply a sequence of
// them, every column is passed once a reflector: the update with one reflector and the product with
// the next are a single loop, so a column is loaded and stored half as often as with one after the
// other.
#pragma once

#include "blas/kernels/panels.hpp"
#include "lapack/kernels/reflection_parameters.hpp"

namespace {

using namespace panels;

VOX_INLINE index_t least(index_t a, index_t b) { return a < b ? a : b; }

// v below its 1, which is in row `head`; v[head + 1] is the first element of x.
template <class T>
struct reflector {
    const T *v;
    index_t head;
};

// What the rows below `from` give: c_k += v w_k, unless there is no v, then sums_k = next^H c_k.
template <bool updated, int C, class T, class Column>
VOX_INLINE void sweep_rows(index_t from, index_t m, const T *v, const T *w, const T *next,
                           Column *const (&c)[C], T *sums) {
    const factors<C, T> f(w);
    column_sums<C, T, 1> along;
    for_rows<1, T>(m - from, [&](auto u, index_t i, auto access) VOX_INLINED {
        const row_factor<T> x(access.get(next + from + i));
        if constexpr (updated) {
            T *below[C];
            unroll<C>([&](auto k) VOX_INLINED { below[k] = c[k] + from; });
            const row_vectors<C, T> rows(below, i, access);
            const auto p = access.get(v + from + i), q = swapped<T>(p);
            unroll<C>([&](auto k) VOX_INLINED {
                auto sum = fma(p, f.straight[k], rows.of[k]);
                if constexpr (is_complex<T>)
                    sum = fma(q, f.crossed[k], sum);
                access.put(below[k] + i, sum);
                along.add(u, k, sum, x);
            });
        } else {
            unroll<C>([&](auto k) VOX_INLINED { along.add(u, k, access.get(c[k] + from + i), x); });
        }
    });
    along.total(sums, joint<T>(true)); // conj(c_k) next
    unroll<C>([&](auto k) VOX_INLINED { sums[k] = conj_if(true, sums[k]); });
}

// w_k = v^H c_k.
template <int C, class T>
__attribute__((noinline)) void multiply(index_t m, reflector<T> h, const T *c, index_t ldc, T *w) {
    const T *columns[C];
    T none[C] = {}, sums[C];
    unroll<C>([&](auto k) VOX_INLINED { columns[k] = c + k * ldc; });
    sweep_rows<false>(h.head + 1, m, h.v, none, h.v, columns, sums);
    unroll<C>([&](auto k) VOX_INLINED { w[k] = columns[k][h.head] + sums[k]; });
}

// c_k -= v w_k, then w_k = next^H c_k. Either may be missing (null): there was none before, or there
// is none to come. The heads are neighbours.
template <int C, class T>
__attribute__((noinline)) void sweep(index_t m, reflector<T> last, reflector<T> next, T *c,
                                     index_t ldc, T *w) {
    if (!last.v)
        return multiply<C>(m, next, c, ldc, w);
    T *columns[C];
    T minus[C], top[C], sums[C];
    unroll<C>([&](auto k) VOX_INLINED {
        columns[k] = c + k * ldc;
        columns[k][last.head] -= w[k];
        minus[k] = -w[k];
    });
    if (!next.v) {
        T *below[C];
        unroll<C>([&](auto k) VOX_INLINED { below[k] = columns[k] + last.head + 1; });
        return update<C>(m - last.head - 1, below, last.v + last.head + 1, minus);
    }
    const bool down = next.head > last.head;
    unroll<C>([&](auto k) VOX_INLINED {
        T *const x = columns[k];
        if (down)
            top[k] = x[next.head] += last.v[next.head] * minus[k];
        else
            top[k] = x[next.head] + conj_if(true, next.v[last.head]) * x[last.head];
    });
    sweep_rows<true>((down ? next.head : last.head) + 1, m, last.v, minus, next.v, columns, sums);
    unroll<C>([&](auto k) VOX_INLINED { w[k] = top[k] + sums[k]; });
}

// body(constant<C>, j) for all of n columns, four at a time.
template <class Body>
VOX_INLINE void for_columns(index_t n, const Body &body) {
    index_t j = 0;
    for (; j + 4 <= n; j += 4)
        body(constant<4>(), j);
    if (n & 2)
        body(constant<2>(), j), j += 2;
    if (n & 1)
        body(constant<1>(), j);
}

// C := H(0) H(1) ... C or, ascending, H(k - 1) ... H(0) C, of adjoints if asked for; column j of v
// holds the reflector whose head is in row j.
template <class T>
void apply_reflectors(index_t m, index_t n, index_t k, const T *v, index_t ldv, const T *tau,
                      bool adjoint, bool ascending, T *c, index_t ldc) {
    for_columns(n, [&](auto group, index_t j) VOX_INLINED {
        T w[group] = {};
        T *const at = c + j * ldc;
        reflector<T> last = {nullptr, 0};
        for (index_t s = 0; s < k; ++s) {
            const index_t i = ascending ? s : k - 1 - s;
            if (vox::is_zero(tau[i])) // H is I, whatever C holds
                continue;
            const reflector<T> next = {v + i * ldv, i};
            if (last.v && next.head != last.head + 1 && next.head != last.head - 1) {
                sweep<group>(m, last, {nullptr, 0}, at, ldc, w);
                last.v = nullptr;
            }
            sweep<group>(m, last, next, at, ldc, w);
            for (T &x : w)
                x *= conj_if(adjoint, tau[i]);
            last = next;
        }
        if (last.v)
            sweep<group>(m, last, {nullptr, 0}, at, ldc, w);
    });
}

// Column j as the reflectors before left it, but for the last: x -= v w below row `head`, and the sum
// of squares.
template <class T>
VOX_INLINE real_of<T> update_and_square(index_t rows, const T *v, T w, T *x) {
    using R = real_of<T>;
    const T minus[1] = {-w};
    const factors<1, T> f(minus);
    vec<R> squares[2] = {};
    for_rows<2, T>(rows, [&](auto u, index_t i, auto access) VOX_INLINED {
        auto sum = access.get(x + i);
        if (v) {
            const auto p = access.get(v + i);
            sum = fma(p, f.straight[0], sum);
            if constexpr (is_complex<T>)
                sum = fma(swapped<T>(p), f.crossed[0], sum);
            access.put(x + i, sum);
        }
        squares[u] = fma(sum, sum, squares[u]);
    });
    return reduce_add(squares[0] + squares[1]);
}

// The reflector that takes (alpha, x) to (beta, 0), with the sum of squares of x at hand. False where
// that has left, or may leave, the range in which it is accurate.
template <class T>
VOX_INLINE bool make_reflector(real_of<T> squares, index_t rows, T &alpha, T *x, T &tau) {
    using R = real_of<T>;
    constexpr bool wide = sizeof(R) == 8;
    constexpr R least_squares = wide ? R(0x1p-900) : R(0x1p-70f);
    constexpr R most_squares = wide ? R(0x1p+1000) : R(0x1p+120f);
    const R re = real(alpha), im = imag(alpha);
    const R total = re * re + im * im + squares;
    if (!(squares >= least_squares && total <= most_squares))
        return false;
    const R length = __builtin_sqrt(total), beta = re < 0 ? length : -length;
    tau = make<T>((beta - re) / beta, -im / beta);
    const T scale = vox::divide(vox::one<T>, alpha - make<T>(beta));
    for_rows<2, T>(rows, [&](auto, index_t i, auto access)
                             VOX_INLINED { access.put(x + i, times(scale, access.get(x + i))); });
    alpha = make<T>(beta);
    return true;
}

// Column j of the triangular factor of H(0) .. H(j), whose first columns are there; v is that of H(j).
template <class T>
VOX_INLINE void extend_factor(index_t m, index_t j, const T *v, index_t ldv, T tau, T *t,
                              index_t ldt) {
    T *const column = t + j * ldt;
    for_columns(j, [&](auto group, index_t c) VOX_INLINED {
        multiply<group>(m, {v + j * ldv, j}, v + c * ldv, ldv, column + c);
    });
    for (index_t i = 0; i < j; ++i) {
        T sum{};
        for (index_t c = i; c < j; ++c) // column[c] is still v_j^H v_c
            sum += t[i + c * ldt] * conj_if(true, column[c]);
        column[i] = -(tau * sum);
    }
    column[j] = tau;
}

template <class T>
void triangular_factor(index_t m, index_t k, const T *v, index_t ldv, const T *tau, T *t,
                       index_t ldt) {
    for (index_t j = 0; j < k; ++j)
        extend_factor(m, j, v, ldv, tau[j], t, ldt);
}

// A := its QR factors, w: n elements. With t, the triangular factor of the block reflector as well.
template <class T>
void factor_columns(index_t m, index_t n, T *a, index_t lda, T *tau, T *w, T *t, index_t ldt,
                    vox::lapack::reflector_maker<T> *larfg) {
    const index_t k = least(m, n);
    reflector<T> last = {nullptr, 0};
    for (index_t j = 0; j < k; ++j) {
        T *const x = a + j * lda;
        const index_t rows = m - j - 1;
        if (last.v) {
            x[j - 1] -= w[j];
            x[j] -= last.v[j] * w[j];
        }
        const auto squares = update_and_square(rows, last.v ? last.v + j + 1 : nullptr,
                                               last.v ? w[j] : T{}, x + j + 1);
        if (!make_reflector(squares, rows, x[j], x + j + 1, tau[j]))
            larfg(rows + 1, x + j, x + j + 1, tau + j);
        const reflector<T> next = {x, j};
        for_columns(n - j - 1, [&](auto group, index_t c) VOX_INLINED {
            c += j + 1;
            sweep<group>(m, last, next, a + c * lda, lda, w + c);
        });
        const bool nothing = vox::is_zero(tau[j]); // whatever A holds
        for (index_t c = j + 1; c < n; ++c)
            w[c] = nothing ? T{} : conj_if(true, tau[j]) * w[c];
        last = next;
        if (t)
            extend_factor(m, j, a, lda, tau[j], t, ldt);
    }
    if (last.v)
        for_columns(n - k, [&](auto group, index_t c) VOX_INLINED {
            sweep<group>(m, last, {nullptr, 0}, a + (k + c) * lda, lda, w + k + c);
        });
}

} // namespace
