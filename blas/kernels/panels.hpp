// panels.hpp - the inner loops of level 2: a few columns of a matrix against one vector or two.
//
// A panel is C columns of `rows` elements, each given by its first element; vectors are contiguous.
// Every loop reads each element of A once. Complex numbers stay interleaved: a sum across columns
// takes a and a with its parts exchanged, each with a factor that holds the signs; a sum along a
// column takes products with the real and with the imaginary part of x, which are joined at its end.
// Either way a conjugate of A costs nothing.
#pragma once

#include "blas/kernels/elements.hpp"

namespace {
namespace panels {

using vox::conj_if;
using vox::imag;
using vox::make;
using vox::real;

// Elements of a vector.
template <class T>
constexpr int width = lanes<real_of<T>> / parts<T>;

// Columns of a panel that is read; sums along and across columns at once take more registers.
template <class T>
constexpr int group = 4;
template <class T>
constexpr int group_of_along = vector_bytes < 64 ? 4 : 8;
template <class T>
constexpr int group_of_across = vector_bytes < 64 ? 4 : 8 / parts<T>;
template <class T>
constexpr int group_of_both = is_complex<T> &&vector_bytes < 64 ? 2 : 4;

// One vector's worth of elements, all of them or the first n.
template <int Bytes>
struct exactly {
    template <class T>
    VOX_INLINE auto get(const T *p) const {
        return load<Bytes>(flat(p));
    }
    template <class T, class V>
    VOX_INLINE void put(T *p, V v) const {
        store(flat(p), v);
    }
};
using whole = exactly<vector_bytes>;
struct first_few {
    index_t n;
    template <class T>
    VOX_INLINE auto get(const T *p) const {
        return load_partial(flat(p), n * parts<T>);
    }
    template <class T, class V>
    VOX_INLINE void put(T *p, V v) const {
        store_partial(flat(p), v, n * parts<T>);
    }
};

// step(constant<u>, i, access) for every vector of rows; u tells the vectors of an unrolled round
// apart.
template <int Unrolled, class T, int Bytes = vector_bytes, class Step>
VOX_INLINE void for_rows(index_t rows, const Step &step) {
    constexpr int w = Bytes / int(sizeof(T));
    index_t i = 0;
    for (; i + Unrolled * w <= rows; i += Unrolled * w)
        unroll<Unrolled>([&](auto u) VOX_INLINED { step(u, i + u * w, exactly<Bytes>()); });
    if constexpr (Unrolled > 1)
        for (; i + w <= rows; i += w)
            step(constant<0>(), i, exactly<Bytes>());
    if constexpr (Bytes == vector_bytes)
        if (i < rows)
            step(constant<0>(), i, first_few{rows - i});
}

// Factors of C columns, ready for the loop: a s, or conj(a) s, is a straight + swapped(a) crossed.
template <int C, class T, int Bytes = vector_bytes>
struct factors {
    typename vec_of<real_of<T>, Bytes>::type straight[C], crossed[C];
    VOX_INLINE explicit factors(const T *s, bool conjugate = false) {
        unroll<C>([&](auto c) VOX_INLINED {
            const auto re = real(s[c]), im = imag(s[c]);
            if constexpr (is_complex<T>) {
                straight[c] = broadcast_pair<Bytes>(re, conjugate ? -re : re);
                crossed[c] = broadcast_pair<Bytes>(conjugate ? im : -im, im);
            } else {
                straight[c] = broadcast<Bytes>(re);
            }
        });
    }
};

// Signs that join the two sums of complex products: a s, or conj(a) s.
template <class T>
struct joint {
    vec<real_of<T>> of_re, of_im;
    VOX_INLINE explicit joint(bool conjugate) {
        using R = real_of<T>;
        of_re = broadcast_pair(R(1), R(conjugate ? -1 : 1));
        of_im = broadcast_pair(R(conjugate ? 1 : -1), R(1));
    }
};

// One vector of rows of the C columns, all loaded before anything is stored: a store and a load that
// are a multiple of 4096 bytes apart, as in columns of many matrices, wait for each other.
template <int C, class T, int Bytes = vector_bytes>
struct row_vectors {
    typename vec_of<real_of<T>, Bytes>::type of[C];
    template <class Access>
    VOX_INLINE row_vectors(const T *const *a, index_t i, Access access) {
        unroll<C>([&](auto c) VOX_INLINED { of[c] = in_register(access.get(a[c] + i)); });
    }
};

template <class T, class V>
VOX_INLINE V swapped(V v) {
    if constexpr (is_complex<T>)
        return swap_pairs(v);
    else
        return v;
}

// y + sum_c a_c s_c for one vector of rows.
template <int C, class T, int Bytes, class V>
VOX_INLINE V rows_sum(const row_vectors<C, T, Bytes> &a, const factors<C, T, Bytes> &s, V y) {
    V other{}; // a second chain of additions
    unroll<C>([&](auto c) VOX_INLINED {
        y = fma(a.of[c], s.straight[c], y);
        if constexpr (is_complex<T>)
            other = fma(swap_pairs(a.of[c]), s.crossed[c], other);
    });
    if constexpr (is_complex<T>)
        y += other;
    return y;
}

// y += sum_c a_c s_c, or with conj(a_c).
template <int C, class T>
VOX_INLINE void across(index_t rows, const T *const (&a)[C], const T *s, T *y, bool conjugate) {
    const factors<C, T> f(s, conjugate);
    for_rows<2, T>(rows, [&](auto, index_t i, auto access) VOX_INLINED {
        const row_vectors<C, T> v(a, i, access);
        access.put(y + i, rows_sum(v, f, access.get(y + i)));
    });
}

// A vector of x as the sums along columns take it.
template <class T>
struct row_factor {
    vec<real_of<T>> re, im;
    VOX_INLINE explicit row_factor(vec<real_of<T>> x) {
        if constexpr (is_complex<T>) {
            re = even_twice(x);
            im = odd_twice(x);
        } else {
            re = x;
        }
    }
};

// Sums of a_c x along the columns, before they are joined.
template <int C, class T, int Unrolled>
struct column_sums {
    vec<real_of<T>> re[C][Unrolled] = {}, im[C][Unrolled] = {};

    template <int U>
    VOX_INLINE void add(constant<U>, int c, vec<real_of<T>> a, const row_factor<T> &x) {
        if constexpr (is_complex<T>) {
            a = in_register(a);
            im[c][U] = fma(a, x.im, im[c][U]);
        }
        re[c][U] = fma(a, x.re, re[c][U]);
    }
    VOX_INLINE void total(T *t, const joint<T> &join) {
        vec<real_of<T>> sum[C];
        unroll<C>([&](auto c) VOX_INLINED {
            unroll<Unrolled - 1>([&](auto u) VOX_INLINED {
                re[c][0] += re[c][u + 1];
                im[c][0] += im[c][u + 1];
            });
            if constexpr (is_complex<T>)
                sum[c] = fma(swap_pairs(im[c][0]), join.of_im, re[c][0] * join.of_re);
            else
                sum[c] = re[c][0];
        });
        reduce_add_all<C, parts<T>>(sum, flat(t));
    }
};

// t_c = sum_i a_c[i] x[i], or with conj(a_c).
template <int C, class T>
VOX_INLINE void along(index_t rows, const T *const (&a)[C], const T *x, T *t, bool conjugate) {
    constexpr int unrolled = C * parts<T> >= 8 ? 1 : 2;
    column_sums<C, T, unrolled> sums;
    for_rows<unrolled, T>(rows, [&](auto u, index_t i, auto access) VOX_INLINED {
        const row_factor<T> v(access.get(x + i));
        unroll<C>([&](auto c) VOX_INLINED { sums.add(u, c, access.get(a[c] + i), v); });
    });
    sums.total(t, joint<T>(conjugate));
}

// Both at once, for symmetric matrices: y += sum_c a_c s_c and t_c = sum_i a_c[i] x[i].
template <int C, class T>
VOX_INLINE void across_and_along(index_t rows, const T *const (&a)[C], const T *s, T *y, const T *x,
                                 T *t, bool conjugate_across, bool conjugate_along) {
    const factors<C, T> f(s, conjugate_across);
    column_sums<C, T, 1> sums;
    for_rows<1, T>(rows, [&](auto u, index_t i, auto access) VOX_INLINED {
        const row_vectors<C, T> rows_of_a(a, i, access);
        const row_factor<T> v(access.get(x + i));
        unroll<C>([&](auto c) VOX_INLINED { sums.add(u, c, rows_of_a.of[c], v); });
        access.put(y + i, rows_sum(rows_of_a, f, access.get(y + i)));
    });
    sums.total(t, joint<T>(conjugate_along));
}

// a_c += x s_c. With vectors of fewer bytes, as many whole ones as there are in the rows.
template <int C, int Bytes = vector_bytes, class T>
VOX_INLINE void update(index_t rows, T *const (&a)[C], const T *x, const T *s) {
    const factors<C, T, Bytes> f(s);
    for_rows<2, T, Bytes>(rows, [&](auto, index_t i, auto access) VOX_INLINED {
        const row_vectors<C, T, Bytes> rows_of_a(a, i, access);
        const auto v = access.get(x + i), w = swapped<T>(v);
        unroll<C>([&](auto c) VOX_INLINED {
            auto sum = fma(v, f.straight[c], rows_of_a.of[c]);
            if constexpr (is_complex<T>)
                sum = fma(w, f.crossed[c], sum);
            access.put(a[c] + i, sum);
        });
    });
}

// a_c += x s_c + y r_c.
template <int C, class T>
VOX_INLINE void update(index_t rows, T *const (&a)[C], const T *x, const T *s, const T *y,
                       const T *r) {
    const factors<C, T> f(s), g(r);
    for_rows<1, T>(rows, [&](auto, index_t i, auto access) VOX_INLINED {
        const row_vectors<C, T> rows_of_a(a, i, access);
        const auto v = access.get(x + i), w = access.get(y + i);
        const auto sv = swapped<T>(v), sw = swapped<T>(w);
        unroll<C>([&](auto c) VOX_INLINED {
            auto sum = fma(w, g.straight[c], fma(v, f.straight[c], rows_of_a.of[c]));
            if constexpr (is_complex<T>)
                sum = fma(sw, g.crossed[c], fma(sv, f.crossed[c], sum));
            access.put(a[c] + i, sum);
        });
    });
}

} // namespace panels
} // namespace
