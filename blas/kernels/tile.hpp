// tile.hpp - the register block of level 3: a tile of C from a strip of A's rows and one of B's
// columns.
//
//              n_r columns of B                       C_tile := alpha (A_strip B_strip) + beta C_tile
//             +----------+
//             |          | depth
//             +----------+      A strip: as a packed one holds m_r values (tile_vectors vectors) for each
//    depth    +----------+      step in depth, one behind the other; B strip: n_r values a step. Both are
//  +-------+  |          |      zero-padded, so a tile never has a ragged edge in the inner loop.
//  |       |  |  C tile  | m_r
//  +-------+  +----------+
//
// Complex matrices take the same loop: a complex column of B is two real ones, its real and its
// imaginary parts, and A's numbers are pairs of lanes. What comes out, A Re(b) and A Im(b), is joined
// once a tile, A Re(b) + i A Im(b), so a complex product costs what its real multiplications cost.
// Conjugates, too, are a matter of how the two are joined.
//
// beta = 0 overwrites C, whatever was there.
#pragma once

#include "blas/kernels/elements.hpp"

#define VOX_PATH_FILE_2(path, file) <blas/kernels/path/file>
#define VOX_PATH_FILE_1(path, file) VOX_PATH_FILE_2(path, file)
#define VOX_PATH_FILE(file) VOX_PATH_FILE_1(VOX_PATH, file)
#include VOX_PATH_FILE(constants.hpp)

namespace {

// The rows and the columns of a full tile, in elements of T.
template <class T>
constexpr int tile_rows = tile_vectors *lanes<real_of<T>> / parts<T>;
template <class T>
constexpr int tile_width = tile_columns / parts<T>;

// How often a packed strip of B holds each value: as often as a vector has lanes where the processor
// has no broadcasting load.
template <class T>
constexpr int b_copies = packed_broadcasts ? lanes<real_of<T>> : 1;

// Loops over vectors want them one by one; this is a tile's worth, or that of a smaller one.
template <class R, int V, int N, int Bytes = vector_bytes>
using accumulators = typename vec_of<R, Bytes>::type[V * N];

// A value of B in all lanes.
template <int Bytes = vector_bytes, class R>
VOX_INLINE auto spread(const R *b) {
    return in_register(broadcast<Bytes>(*b));
}

// n rounded up.
VOX_INLINE index_t rounded_up(index_t n, index_t multiple) {
    return (n + multiple - 1) / multiple * multiple;
}

// One step in depth.
template <int N, int V, class X, class Value>
VOX_INLINE void step(const X (&a)[V], const Value &value, X (&sums)[V * N]) {
    unroll<N>([&](auto j) VOX_INLINED {
        const X b = value(j);
        unroll<V>([&](auto v) VOX_INLINED { sums[j * V + v] = fma(a[v], b, sums[j * V + v]); });
    });
}

} // namespace

// multiply_strips(depth, a, b, next, sums, near_end): sums := A B of two full packed strips. `next` is
// what comes after the A strip: a part of it is brought nearer with every tile. near_end() is called
// some time before the last step, to fetch C.
#include VOX_PATH_FILE(strips.hpp)

namespace {

// Where a strip's values lie: A's from one step in depth to the next (a_step); B's from one step to
// the next, from one column to the next, and from a number's real part to its imaginary one. In reals.
struct strides {
    index_t a_step, b_step, b_column, b_part = 1;
};

// sums := A B for V vectors of rows and N columns of T, wherever they lie; of the last vector's lanes,
// only the first `tail` are read. Vectors of half the width are for what one whole vector holds.
template <class T, int V, int N, int Bytes>
VOX_INLINE void multiply_edges(index_t depth, const real_of<T> *a, const real_of<T> *b, strides at,
                               int tail, accumulators<real_of<T>, V, N * parts<T>, Bytes> &sums) {
    using R = real_of<T>;
    using X = typename vec_of<R, Bytes>::type;
    constexpr int L = Bytes / int(sizeof(R));
    unroll<V * N * parts<T>>([&](auto i) VOX_INLINED { sums[i] = X{}; });
    const index_t three = 3 * at.b_column;
    for (index_t p = 0; p < depth; ++p) {
        X rows[V];
        unroll<V>([&](auto v) VOX_INLINED {
            if constexpr (v == V - 1 && Bytes < vector_bytes)
                rows[v] = low_half(load_partial(a + v * L, tail));
            else if constexpr (v == V - 1 && V <= masked_vectors)
                rows[v] = load_partial(a + v * L, tail);
            else
                rows[v] = in_register(load<Bytes>(a + v * L));
        });
        const R *const far = b + at.b_column * 4;
        step<N * parts<T>>(
            rows,
            [&](auto part) VOX_INLINED {
                constexpr int j = part / parts<T>, side = part % parts<T>;
                const R *const base = j < 4 ? b : far;
                const index_t off = j % 4 == 3 ? three : j % 4 * at.b_column;
                return spread<Bytes>(base + off + (packed_broadcasts ? side * at.b_part : side));
            },
            sums);
        a += at.a_step, b += at.b_step;
    }
}

// What becomes of a product: C := alpha S + beta C, S conjugated as its factors were.
template <class T>
struct finish {
    T alpha, beta;
    T *c;
    index_t ldc;
    bool conjugate_a = false, conjugate_b = false; // where packing has not seen to it
};

// x times the scalar s, complex as pairs of lanes.
template <class T, class V>
VOX_INLINE V scaled(V x, T s) {
    constexpr int bytes = int(sizeof(V));
    using R = real_of<T>;
    if constexpr (is_complex<T>)
        return x * broadcast<bytes>(s.real) +
               swap_pairs(x) * broadcast_pair<bytes>(R(-s.imag), R(s.imag));
    else
        return x * broadcast<bytes>(s);
}

// Vector v of a column of the product, from the column's accumulators.
template <class T, int V, class X>
VOX_INLINE X joined(const X *sums, int v, bool conjugate_a, bool conjugate_b) {
    using R = real_of<T>;
    constexpr int bytes = int(sizeof(X));
    if constexpr (is_complex<T>) {
        const R i = conjugate_a == conjugate_b ? R(1) : R(-1), c = conjugate_a ? R(-1) : R(1);
        // conj(A) b = conj(A conj(b)), hence c on the imaginary parts of both.
        return sums[v] * broadcast_pair<bytes>(R(1), c) +
               swap_pairs(sums[V + v]) * broadcast_pair<bytes>(R(-i), R(i * c));
    } else {
        return sums[v];
    }
}

// C := x + beta C for the lanes of x.
template <class T, class V>
VOX_INLINE void update_lanes(real_of<T> *c, V x, T beta, bool overwrite) {
    if (!overwrite)
        x += scaled(load<int(sizeof(V))>(c), beta);
    store(c, x);
}

// The same for the first `tail` lanes, in pieces of halves: what a mask has stored is not forwarded to
// a load that follows, and small results are read soon.
template <class T, class V>
VOX_INLINE void update_tail(real_of<T> *c, V x, int tail, T beta, bool overwrite) {
    constexpr int n = int(sizeof(V) / sizeof(real_of<T>)), half = n / 2;
    if constexpr (n == 2 && !is_complex<T>) {
        if (tail)
            *c = overwrite ? x[0] : x[0] + beta * *c;
    } else if constexpr (half >= parts<T>) {
        const auto low = low_half(x);
        if (tail & half) {
            update_lanes<T>(c, low, beta, overwrite);
            update_tail<T>(c + half, high_half(x), tail - half, beta, overwrite);
        } else {
            update_tail<T>(c, low, tail, beta, overwrite);
        }
    }
}

template <class T, int V, int N, class X>
VOX_INLINE void update(const X (&sums)[V * N * parts<T>], int tail, const finish<T> &out) {
    using R = real_of<T>;
    const T alpha = out.alpha, beta = out.beta; // C might alias `out`, for all the compiler knows
    constexpr int L = int(sizeof(X) / sizeof(R));
    const bool overwrite = vox::is_zero(beta), whole = tail == L;
    const bool conjugate_a = out.conjugate_a, conjugate_b = out.conjugate_b;
    const index_t column = out.ldc * parts<T>;
    R *c = flat(out.c);
    unroll<N>([&](auto j) VOX_INLINED {
        unroll<V>([&](auto v) VOX_INLINED {
            const X x =
                scaled(joined<T, V>(sums + j * parts<T> * V, v, conjugate_a, conjugate_b), alpha);
            if (v < V - 1 || whole)
                update_lanes<T>(c + v * L, x, beta, overwrite);
            else
                update_tail<T>(c + v * L, x, tail, beta, overwrite);
        });
        c += column;
    });
}

// A full tile from packed strips.
template <class T>
__attribute__((noinline)) void full_tile(index_t depth, const real_of<T> *a, const real_of<T> *b,
                                         const real_of<T> *next, const finish<T> &out) {
    using R = real_of<T>;
    // A tile of C is a few lines, far apart.
    const auto fetch = [&]() VOX_INLINED {
        const R *column = flat(out.c);
        unroll<tile_width<T>>([&](auto) VOX_INLINED {
            unroll<(tile_vectors * vector_bytes + 63) / 64>([&](auto line) VOX_INLINED {
                __builtin_prefetch(column + line * 64 / int(sizeof(R)), 1);
            });
            __builtin_prefetch(column + tile_vectors * lanes<R> - 1, 1);
            column += out.ldc * parts<T>;
        });
    };
    accumulators<R, tile_vectors, tile_columns> sums;
    multiply_strips<R>(depth, a, b, next, sums, fetch);
    update<T, tile_vectors, tile_width<T>>(sums, lanes<R>, out);
}

template <class T, int V, int N, int Bytes>
__attribute__((noinline)) void edge_tile(index_t depth, const real_of<T> *a, const real_of<T> *b,
                                         const strides &at, int tail, const finish<T> &out) {
    accumulators<real_of<T>, V, N * parts<T>, Bytes> sums;
    multiply_edges<T, V, N, Bytes>(depth, a, b, at, tail, sums);
    update<T, V, N>(sums, tail, out);
}

// Rows that half a vector holds cost half where a processor runs wide vectors at half the rate; those of
// one vector go as two halves, since B's values are then spread twice as fast.
constexpr bool half_vectors = vector_bytes == 64;

// body(constant<n>) for 1 <= n <= Most.
template <int Most, class Body>
VOX_INLINE void with_count(index_t n, const Body &body) {
    switch (n) {
#define VOX_COUNT(k)                                                                               \
    case k:                                                                                        \
        if constexpr (k <= Most)                                                                   \
            body(constant<k>());                                                                   \
        break;
        VOX_COUNT(1)
        VOX_COUNT(2) VOX_COUNT(3) VOX_COUNT(4) VOX_COUNT(5) VOX_COUNT(6) VOX_COUNT(7) VOX_COUNT(8)
#undef VOX_COUNT
    }
}

// A tile of so many rows and columns, at most a full one's; strips as `at` says. Rows that are no whole
// vectors are read under a mask if they take up to masked_vectors; else all lanes of the last vector
// are read.
template <class T>
VOX_INLINE void any_tile(index_t rows, index_t columns, index_t depth, const real_of<T> *a,
                         const real_of<T> *b, const strides &at, const finish<T> &out) {
    constexpr int L = lanes<real_of<T>>;
    const index_t reals = rows * parts<T>, vectors = (reals + L - 1) / L;
    const int tail = int(reals - (vectors - 1) * L);
    if constexpr (half_vectors) {
        if (vectors == 1)
            return with_count<tile_width<T>>(columns, [&](auto n) VOX_INLINED {
                constexpr int half = vector_bytes / 2;
                if (reals <= L / 2)
                    edge_tile<T, 1, n, half>(depth, a, b, at, tail, out);
                else
                    edge_tile<T, 2, n, half>(depth, a, b, at, tail - L / 2, out);
            });
    }
    with_count<tile_vectors>(vectors, [&](auto v) VOX_INLINED {
        with_count<tile_width<T>>(columns, [&](auto n) VOX_INLINED {
            if constexpr (v > 1 || !half_vectors)
                edge_tile<T, v, n, vector_bytes>(depth, a, b, at, tail, out);
        });
    });
}

} // namespace
