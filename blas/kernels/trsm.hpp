// trsm.hpp - triangular systems with many right-hand sides, solved in place.
//
// X T = B, B's columns kb at a time. They are packed as strips of rows, the triangle's square as strips of
// columns, and the solution proceeds inside the packed strip, a tile at a time: take off the product of
// what is solved with the columns of T above the tile's square, then divide by that square, all in
// registers. Then the solved columns take part in what is left of B as in any product.
// T X = B is the same for the transposes, X' T' = B': only the packing and what is left differ.
//
// Divisions are multiplications by packed reciprocals, unless one of a block's reciprocals is not exact
// enough or not finite.
#pragma once

#include "blas/kernels/trmm.hpp"

namespace {

// Whether 1 / d is a normal number, far from either end of the range.
template <class T>
VOX_INLINE bool has_reciprocal(T d) {
    using R = real_of<T>;
    constexpr R large = sizeof(R) == 8 ? R(1e290) : R(1e35f), small = 1 / large;
    const R re = vox::real(d) < 0 ? -vox::real(d) : vox::real(d);
    const R im = vox::imag(d) < 0 ? -vox::imag(d) : vox::imag(d);
    const R size = re > im ? re : im;
    return size > small && size < large;
}

// The square p0 .. p1 on T's diagonal as strips of columns, with reciprocals on the diagonal; or the
// diagonal itself, when it says false.
template <class T>
bool pack_triangle(const factor<T> &t, index_t p0, index_t p1, index_t depth, real_of<T> *to) {
    constexpr int nr = tile_width<T>, copies = b_copies<T>;
    const index_t pitch = depth * b_step<T>;
    pack_b(t, p0, p1, p0, p1, pitch, to);
    for (index_t strip = 0; strip < depth * pitch / nr; strip += pitch)
        for (index_t z = (p1 - p0) * b_step<T>; z < pitch; ++z)
            to[strip + z] = 0;
    bool reciprocals = true;
    for (index_t p = p0; p < p1; ++p)
        reciprocals = reciprocals && (t.unit || has_reciprocal(*place(t, p, p)));
    for (index_t p = 0; p < depth; ++p) { // beyond the triangle, ones
        T d = p0 + p < p1 ? element_at(t, p0 + p, p0 + p) : vox::one<T>;
        if (reciprocals)
            d = vox::divide(vox::one<T>, d);
        put<T, copies>(to + p / nr * pitch + p * b_step<T> + p % nr * parts<T> * copies, d);
    }
    return reciprocals;
}

// x - y t for a value t of the packed triangle.
template <class T, class V>
VOX_INLINE V less_product(V x, V y, const real_of<T> *t) {
    using R = real_of<T>;
    constexpr int copies = b_copies<T>;
    if constexpr (is_complex<T>) {
        const R im = t[copies];
        return x - y * spread(t) - swap_pairs(y) * broadcast_pair(R(-im), im);
    } else {
        return x - y * spread(t);
    }
}

// X := (X - A T_beside) T_square^-1 for a tile X of a packed strip; `depth` steps of A and of T beside.
// square: the first of the tile's steps in T's strip.
template <class T, bool Forward>
__attribute__((noinline)) void solve_tile(index_t depth, const real_of<T> *a,
                                          const real_of<T> *beside, const real_of<T> *square,
                                          bool reciprocals, real_of<T> *x) {
    using R = real_of<T>;
    constexpr int V = tile_vectors, N = tile_width<T>, L = lanes<R>, copies = b_copies<T>;
    accumulators<R, V, tile_columns> sums;
    multiply_strips<R>(depth, a, beside, a, sums, []() VOX_INLINED {});
    vec<R> solved[N * V];
    unroll<N>([&](auto j) VOX_INLINED {
        unroll<V>([&](auto v) VOX_INLINED {
            solved[j * V + v] =
                load(x + (j * V + v) * L) - joined<T, V>(sums + j * parts<T> * V, v, false, false);
        });
    });
    unroll<N>([&](auto step) VOX_INLINED {
        constexpr int j = Forward ? step : N - 1 - step;
        unroll<step>([&](auto before) VOX_INLINED {
            constexpr int e = Forward ? before : N - 1 - before;
            const R *const t = square + e * b_step<T> + j * parts<T> * copies;
            unroll<V>([&](auto v) VOX_INLINED {
                solved[j * V + v] = less_product<T>(solved[j * V + v], solved[e * V + v], t);
            });
        });
        const R *const d = square + j * b_step<T> + j * parts<T> * copies;
        T diagonal;
        if constexpr (is_complex<T>)
            diagonal = T{d[0], d[copies]};
        else
            diagonal = *d;
        if (reciprocals) {
            unroll<V>([&](auto v)
                          VOX_INLINED { solved[j * V + v] = scaled(solved[j * V + v], diagonal); });
        } else {
            T column[V * L / parts<T>];
            unroll<V>([&](auto v) VOX_INLINED { store(flat(column) + v * L, solved[j * V + v]); });
            for (T &value : column) {
                stay_scalar();
                value = vox::divide(value, diagonal);
            }
            unroll<V>([&](auto v) VOX_INLINED { solved[j * V + v] = load(flat(column) + v * L); });
        }
        unroll<V>([&](auto v) VOX_INLINED { store(x + (j * V + v) * L, solved[j * V + v]); });
    });
}

// A packed strip of X, `depth` steps in whole tiles.
template <class T>
void solve_strip(index_t depth, const real_of<T> *triangle, bool reciprocals, bool forward,
                 real_of<T> *x) {
    constexpr int nr = tile_width<T>;
    const index_t pitch = depth * b_step<T>;
    if (forward)
        for (index_t p = 0; p < depth; p += nr, triangle += pitch)
            solve_tile<T, true>(p, x, triangle, triangle + p * b_step<T>, reciprocals,
                                x + p * a_step<T>);
    else {
        triangle += (depth / nr - 1) * pitch;
        for (index_t p = depth - nr; p >= 0; p -= nr, triangle -= pitch)
            solve_tile<T, false>(depth - p - nr, x + (p + nr) * a_step<T>,
                                 triangle + (p + nr) * b_step<T>, triangle + p * b_step<T>,
                                 reciprocals, x + p * a_step<T>);
    }
}

// The way back from a packed strip: `rows` of its rows, `depth` steps, (i, p) to place(i, p).
template <class T>
__attribute__((noinline)) void unpack_strip(const real_of<T> *strip, index_t rows, index_t depth,
                                            bool transposed, T *x, index_t ld) {
    constexpr int mr = tile_rows<T>, bytes = copy_bytes<T, mr>, K = bytes / int(sizeof(T));
    using unit = std::conditional_t<sizeof(T) == 4, float, double>;
    constexpr int G = int(sizeof(T) / sizeof(unit));
    const T *const from = reinterpret_cast<const T *>(strip);
    index_t squares_end = 0, rows_done = 0;
    if (transposed) {
        squares_end = depth - depth % K, rows_done = rows - rows % K;
        for (index_t p = 0; p < squares_end; p += K)
            for (index_t i = 0; i < rows_done; i += K) {
                typename vec_of<unit, bytes>::type square[K];
                unroll<K>([&](auto r) VOX_INLINED {
                    square[r] =
                        load<bytes>(reinterpret_cast<const unit *>(from + (p + r) * mr + i));
                });
                transpose<G, 1>(square);
                unroll<K>([&](auto r) VOX_INLINED {
                    store(reinterpret_cast<unit *>(x + p + (i + r) * ld), square[r]);
                });
            }
    }
    for (index_t p = 0; p < depth; ++p) {
        if (!transposed && rows == mr) {
            unroll<tile_vectors>([&](auto v) VOX_INLINED {
                constexpr int each = lanes<real_of<T>>;
                store(flat(x + p * ld) + v * each, load(strip + p * a_step<T> + v * each));
            });
            continue;
        }
        for (index_t i = p < squares_end ? rows_done : 0; i < rows; ++i) {
            stay_scalar();
            x[transposed ? p + i * ld : i + p * ld] = from[p * mr + i];
        }
    }
}

// Rows i0 .. i1 of X (of its transpose, for a triangle on the left), steps p0 .. p1: packed, multiplied
// by alpha, solved and put back. The packed strips stay, `depth` steps each.
template <class T>
void solve_block(const vox::triangle_product<T> &job, T alpha, index_t i0, index_t i1, index_t p0,
                 index_t p1, bool forward, bool reciprocals, const workspace<T> &space) {
    constexpr int mr = tile_rows<T>;
    const index_t depth = rounded_up(p1 - p0, tile_width<T>), pitch = depth * a_step<T>;
    const factor<T> x = {job.b, job.ldb, job.left};
    real_of<T> *strip = space.a;
    for (index_t i = i0; i < i1; i += mr, strip += pitch) {
        const index_t rows = least(mr, i1 - i);
        pack_strip<T, mr, 1>(x, i, rows, p0, p1, strip);
        for (index_t z = (p1 - p0) * a_step<T>; z < pitch; ++z)
            strip[z] = 0;
        if (!(alpha == vox::one<T>))
            for (index_t z = 0; z < pitch; z += lanes<real_of<T>>)
                store(strip + z, scaled(load(strip + z), alpha));
        solve_strip<T>(depth, space.b, reciprocals, forward, strip);
        unpack_strip<T>(strip, rows, p1 - p0, job.left, job.b + (place(x, i, p0) - job.b), job.ldb);
    }
}

// What the solved steps take off rows i .. end of the rest of B, which is scaled by beta on the way: A's
// strips are in the workspace.
template <class T>
block_product<T> rest_of(const vox::triangle_product<T> &job, const workspace<T> &space,
                         index_t a_pitch, index_t i, index_t end, T beta) {
    return {.a = space.a,
            .a_pitch = a_pitch,
            .i0 = i,
            .i1 = end,
            .alpha = -vox::one<T>,
            .beta = beta,
            .c = job.b,
            .ldc = job.ldb};
}

template <class T>
void trsm_left(const vox::triangle_product<T> &job, const workspace<T> &space) {
    const factor<T> t = transpose_of(job.a), b = {job.b, job.ldb};
    const bool forward = is_upper(t);
    T alpha = job.alpha;
    for_blocks(job.m, space.kb, forward, [&](index_t p0, index_t p1) {
        const bool reciprocals =
            pack_triangle(t, p0, p1, rounded_up(p1 - p0, tile_width<T>), space.b);
        for (index_t i = 0; i < job.n; i += space.mb)
            solve_block(job, alpha, i, least(job.n, i + space.mb), p0, p1, forward, reciprocals,
                        space);
        const index_t i0 = forward ? p1 : 0, i1 = forward ? job.m : p0;
        const index_t pitch = (p1 - p0) * a_step<T>;
        for (index_t i = i0; i < i1; i += space.mb) {
            const index_t end = least(i1, i + space.mb);
            pack_a(job.a, i, end, p0, p1, pitch, space.a);
            sweep(rest_of(job, space, pitch, i, end, alpha), b, p0, p1, 0, job.n, space, {});
        }
        alpha = vox::one<T>;
    });
}

template <class T>
void trsm_right(const vox::triangle_product<T> &job, const workspace<T> &space) {
    const bool forward = is_upper(job.a);
    for (index_t i = 0; i < job.m; i += space.mb) {
        const index_t end = least(job.m, i + space.mb);
        T alpha = job.alpha;
        for_blocks(job.n, space.kb, forward, [&](index_t p0, index_t p1) {
            const index_t depth = rounded_up(p1 - p0, tile_width<T>);
            const bool reciprocals = pack_triangle(job.a, p0, p1, depth, space.b);
            solve_block(job, alpha, i, end, p0, p1, forward, reciprocals, space);
            sweep(rest_of(job, space, depth * a_step<T>, i, end, alpha), job.a, p0, p1,
                  forward ? p1 : 0, forward ? job.n : p0, space, {});
            alpha = vox::one<T>;
        });
    }
}

template <class T>
void trsm(const gemm_strategy &strategy, const vox::triangle_product<T> &job) {
    if (triangle_tiny<true>(job))
        return;
    const gemm_info info = triangle_blocks(strategy, job);
    with_workspace<T>(info, info.kb, [&](const workspace<T> &space) {
        if (job.left)
            trsm_left(job, space);
        else
            trsm_right(job, space);
    });
}

} // namespace
