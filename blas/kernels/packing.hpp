// packing.hpp - copies a factor of a product into strips.
//
// A strip is so many rows of the left factor, or columns of the right one: its width. For each step in
// depth (a column of the left factor, a row of the right one) it holds the values across its width, one
// behind the other; what is missing of the width is zero. A right factor is packed as the left factor
// that its transpose is, so here everything is rows (i) by depth (p).
//
// What a stored array stands for is settled here: transposes, conjugates, the mirror image of a
// triangle, zeros beyond it. All but a square on the diagonal of a structured factor is packed as the
// general matrix that it is.
#pragma once

#include "blas/kernels/tile.hpp"
#include "blas/products.hpp"

namespace {

using vox::factor;
using vox::structure;

template <class T>
VOX_INLINE factor<T> transpose_of(factor<T> f) {
    f.transposed = !f.transposed;
    return f;
}

template <class T>
VOX_INLINE bool is_upper(const factor<T> &f) {
    return f.upper != f.transposed;
}

// Where (i, p) is, taken as stored.
template <class T>
VOX_INLINE const T *place(const factor<T> &f, index_t i, index_t p) {
    return f.transposed ? f.data + p + i * f.ld : f.data + i + p * f.ld;
}

// What stands at (i, p).
template <class T>
VOX_INLINE T element_at(const factor<T> &f, index_t i, index_t p) {
    if (f.kind == structure::general)
        return vox::conj_if(f.conjugated, *place(f, i, p));
    if (i == p) {
        if (f.unit)
            return vox::one<T>;
        if (f.kind == structure::hermitian)
            return vox::make<T>(vox::real(*place(f, i, i)));
    } else if (is_upper(f) ? i > p : i < p) {
        if (f.kind == structure::triangular)
            return T{};
        return vox::conj_if(f.conjugated != (f.kind == structure::hermitian), *place(f, p, i));
    }
    return vox::conj_if(f.conjugated, *place(f, i, p));
}

// One value of a strip, as often as it is kept.
template <class T, int Copies>
VOX_INLINE void put(real_of<T> *to, T value) {
    if constexpr (Copies > 1) {
        store(to, broadcast(vox::real(value)));
        if constexpr (is_complex<T>)
            store(to + Copies, broadcast(vox::imag(value)));
    } else {
        stay_scalar();
        *reinterpret_cast<T *>(to) = value;
    }
}

// Reals that a strip of W elements takes for a step in depth.
template <class T, int W, int Copies>
constexpr int strip_step = W *parts<T> *Copies;

template <class T, int Bytes>
VOX_INLINE auto conjugated_if(bool conjugate, typename vec_of<real_of<T>, Bytes>::type v) {
    using R = real_of<T>;
    if constexpr (is_complex<T>)
        return conjugate ? v * broadcast_pair<Bytes>(R(1), R(-1)) : v;
    else
        return v;
}

// As wide as vectors of the path, or as the strip if that is narrower.
template <class T, int W>
constexpr int copy_bytes = W *int(sizeof(T)) < vector_bytes ? W *int(sizeof(T)) : vector_bytes;

// Rows stored side by side, element (i, p) at x[i + p ld]: whole strips, `pitch` reals from one to the
// next, a column of several at a time, since short pieces of far-apart columns are slow to come.
template <class T, int W>
__attribute__((noinline)) void copy_strips_down(const T *x, index_t ld, index_t strips,
                                                index_t depth, bool conjugate, index_t pitch,
                                                real_of<T> *to) {
    constexpr int bytes = copy_bytes<T, W>, each = bytes / int(sizeof(real_of<T>));
    constexpr int reals = W * parts<T>;
    for (index_t p = 0; p < depth; ++p, x += ld, to += reals) {
        const real_of<T> *from = flat(x);
        real_of<T> *strip = to;
        for (index_t s = 0; s < strips; ++s, from += reals, strip += pitch) {
            __builtin_prefetch(from + 8 * ld * parts<T>);
            unroll<reals / each>([&](auto v) VOX_INLINED {
                store(strip + v * each,
                      conjugated_if<T, bytes>(conjugate, load<bytes>(from + v * each)));
            });
        }
    }
}

// The same for one strip, whole or not.
template <class T, int W, int Copies>
__attribute__((noinline)) void copy_down(const T *x, index_t ld, index_t rows, index_t depth,
                                         bool conjugate, real_of<T> *to) {
    if constexpr (Copies == 1)
        if (rows == W)
            return copy_strips_down<T, W>(x, ld, 1, depth, conjugate, 0, to);
    using R = real_of<T>;
    constexpr int reals = W * parts<T>;
    if constexpr (Copies == 1 && reals % lanes<R> == 0) {
        const index_t whole = rows * parts<T> / lanes<R>, tail = rows * parts<T> % lanes<R>;
        for (index_t p = 0; p < depth; ++p, x += ld, to += reals)
            unroll<reals / lanes<R>>([&](auto v) VOX_INLINED {
                const R *const from = flat(x) + v * lanes<R>;
                const vec<R> values = v < whole    ? load(from)
                                      : v == whole ? load_partial(from, tail)
                                                   : vec<R>{};
                store(to + v * lanes<R>, conjugated_if<T, vector_bytes>(conjugate, values));
            });
        return;
    }
    constexpr int each = parts<T> * Copies;
    for (index_t p = 0; p < depth; ++p, x += ld, to += strip_step<T, W, Copies>) {
        if (Copies > 1 && rows == W)
            unroll<W>([&](auto i) VOX_INLINED {
                put<T, Copies>(to + i * each, vox::conj_if(conjugate, x[i]));
            });
        else
            for (index_t i = 0; i < W; ++i)
                put<T, Copies>(to + i * each, i < rows ? vox::conj_if(conjugate, x[i]) : T{});
    }
}

// K vectors of K units of G lanes, transposed: unit j of vector i goes to unit i of vector j.
template <int G, int Step, class V, int... I>
VOX_INLINE void exchange(V &a, V &b, std::integer_sequence<int, I...>) {
    constexpr int n = int(sizeof...(I));
    const V first = __builtin_shufflevector(a, b, (I / G & Step ? n + I - Step * G : I)...);
    b = __builtin_shufflevector(a, b, (I / G & Step ? n + I : I + Step * G)...);
    a = first;
}
template <int G, int Step, int K, class V>
VOX_INLINE void transpose(V (&v)[K]) {
    if constexpr (Step < K) {
        unroll<K>([&](auto i) VOX_INLINED {
            if constexpr (!(i & Step))
                exchange<G, Step>(
                    v[i], v[i + Step],
                    std::make_integer_sequence<int, int(sizeof(V) / sizeof(v[0][0]))>());
        });
        transpose<G, Step * 2>(v);
    }
}

// Rows stored one behind the other: element (i, p) is x[p + i ld]. Squares are transposed in
// registers.
template <class T, int W, int Copies>
__attribute__((noinline)) void copy_right(const T *x, index_t ld, index_t rows, index_t depth,
                                          bool conjugate, real_of<T> *to) {
    constexpr int bytes = copy_bytes<T, W>, K = bytes / int(sizeof(T));
    // Numbers of 8 bytes move as such, whatever they are.
    using unit = std::conditional_t<sizeof(T) == 4, float, double>;
    constexpr int G = int(sizeof(T) / sizeof(unit)), step = strip_step<T, W, Copies>;
    index_t squares_end = 0, rows_done = 0;
    if constexpr (Copies == 1) {
        squares_end = depth - depth % K, rows_done = rows - rows % K;
        for (index_t p = 0; p < squares_end; p += K)
            for (index_t i = 0; i < rows_done; i += K) {
                typename vec_of<unit, bytes>::type square[K];
                unroll<K>([&](auto r) VOX_INLINED {
                    const T *const row = x + p + (i + r) * ld;
                    square[r] = load<bytes>(reinterpret_cast<const unit *>(row));
                });
                transpose<G, 1>(square);
                unroll<K>([&](auto r) VOX_INLINED {
                    using reals = typename vec_of<real_of<T>, bytes>::type;
                    store(to + (p + r) * step + i * parts<T>,
                          conjugated_if<T, bytes>(conjugate, reals(square[r])));
                });
            }
    }
    constexpr int each = parts<T> * Copies;
    if (Copies > 1 && rows == W) {
        for (index_t p = 0; p < depth; ++p)
            unroll<W>([&](auto i) VOX_INLINED {
                put<T, Copies>(to + p * step + i * each, vox::conj_if(conjugate, x[p + i * ld]));
            });
        return;
    }
    for (index_t p = 0; p < depth; ++p) {
        const index_t first = p < squares_end ? rows_done : 0;
        real_of<T> *const step_start = to + p * step;
        if constexpr (Copies == 1) { // zeros by vectors; `first` is a multiple of one
            constexpr int reals = bytes / int(sizeof(real_of<T>));
            for (index_t z = first * parts<T>; z < step; z += reals)
                store(step_start + z, typename vec_of<real_of<T>, bytes>::type{});
        } else {
            for (index_t i = rows; i < W; ++i)
                put<T, Copies>(step_start + i * each, T{});
        }
        for (index_t i = first; i < rows; ++i)
            put<T, Copies>(step_start + i * each, vox::conj_if(conjugate, x[p + i * ld]));
    }
}

// A block of the array, read as stored or as its transpose.
template <class T, int W, int Copies>
VOX_INLINE void copy_stored(bool transposed, bool conjugate, const T *x, index_t ld, index_t rows,
                            index_t depth, real_of<T> *to) {
    if (depth <= 0)
        return;
    if (transposed)
        copy_right<T, W, Copies>(x, ld, rows, depth, conjugate, to);
    else
        copy_down<T, W, Copies>(x, ld, rows, depth, conjugate, to);
}

// A step across the diagonal of a structured factor: rows i .. i + rows - 1 of column p, i <= p <
// i + rows.
template <class T, int W, int Copies>
VOX_INLINE void pack_crossing(const factor<T> &f, index_t i, index_t rows, index_t p,
                              real_of<T> *to) {
    constexpr int each = parts<T> * Copies;
    // What is above the diagonal and what is below: the one is stored, the other its mirror image.
    const auto run = [&](index_t from, index_t end, bool stored) VOX_INLINED {
        if (stored || f.kind != structure::triangular) {
            const bool conjugate = f.conjugated != (!stored && f.kind == structure::hermitian);
            const T *x = stored ? place(f, i, p) : place(f, p, i);
            const index_t next = stored != f.transposed ? 1 : f.ld;
            for (index_t r = from; r < end; ++r)
                put<T, Copies>(to + r * each, vox::conj_if(conjugate, x[r * next]));
        } else {
            for (index_t r = from; r < end; ++r)
                put<T, Copies>(to + r * each, T{});
        }
    };
    run(0, p - i, is_upper(f));
    put<T, Copies>(to + (p - i) * each, element_at(f, p, p));
    run(p - i + 1, rows, !is_upper(f));
    for (index_t r = rows; r < W; ++r)
        put<T, Copies>(to + r * each, T{});
}

// One strip: rows i .. i + rows - 1 (at most W), depth p0 .. p1 - 1.
template <class T, int W, int Copies>
__attribute__((noinline)) void pack_strip(const factor<T> &f, index_t i, index_t rows, index_t p0,
                                          index_t p1, real_of<T> *to) {
    constexpr int step = strip_step<T, W, Copies>;
    if (f.kind == structure::general)
        return copy_stored<T, W, Copies>(f.transposed, f.conjugated, place(f, i, p0), f.ld, rows,
                                         p1 - p0, to);
    const auto clip = [&](index_t p) { return p < p0 ? p0 : p > p1 ? p1 : p; };
    const index_t d0 = clip(i), d1 = clip(i + rows); // where the diagonal runs
    const auto side = [&](index_t from, index_t end, bool stored) VOX_INLINED {
        if (stored)
            copy_stored<T, W, Copies>(f.transposed, f.conjugated, place(f, i, from), f.ld, rows,
                                      end - from, to + (from - p0) * step);
        else if (f.kind == structure::triangular)
            for (index_t z = (from - p0) * step; z < (end - p0) * step; ++z)
                to[z] = 0;
        else
            copy_stored<T, W, Copies>(
                !f.transposed, f.conjugated != (f.kind == structure::hermitian), place(f, from, i),
                f.ld, rows, end - from, to + (from - p0) * step);
    };
    side(p0, d0, !is_upper(f));
    for (index_t p = d0; p < d1; ++p)
        pack_crossing<T, W, Copies>(f, i, rows, p, to + (p - p0) * step);
    side(d1, p1, is_upper(f));
}

// Rows i0 .. i1 - 1 as strips, `pitch` reals from one to the next.
template <class T, int W, int Copies>
VOX_INLINE void pack(const factor<T> &f, index_t i0, index_t i1, index_t p0, index_t p1,
                     index_t pitch, real_of<T> *to) {
    if constexpr (Copies == 1) {
        constexpr index_t wanted = 1 + 767 / (W * index_t(sizeof(T)));
        constexpr index_t together = wanted < 8 ? wanted : 8;
        if (f.kind == structure::general && !f.transposed)
            while (i1 - i0 >= W) {
                const index_t whole = (i1 - i0) / W, strips = whole < together ? whole : together;
                copy_strips_down<T, W>(place(f, i0, p0), f.ld, strips, p1 - p0, f.conjugated, pitch,
                                       to);
                i0 += strips * W, to += strips * pitch;
            }
    }
    for (index_t i = i0; i < i1; i += W, to += pitch)
        pack_strip<T, W, Copies>(f, i, i1 - i < W ? i1 - i : W, p0, p1, to);
}

} // namespace
