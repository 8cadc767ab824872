// triangle_in_place.hpp - a small triangle times a matrix, from both where they are.
//
//        right, upper            B is overwritten a block of columns (right) or of rows (left) at a
//                                time, in the order in which nothing old is needed any more:
//   B := B  * * D *      block := block D + others R
//             * *R*
//               D *      D, the block's square on the diagonal, is written out with its zeros; R, the
//                 *      rest beside it, is read in place. A tile is all of a block's columns or rows,
//                        so it is done with its old values when it stores.
#pragma once

#include "blas/kernels/in_place.hpp"

namespace {

// Whether anything among n numbers is not finite.
template <class R>
bool any_not_finite(const R *x, index_t n) {
    vec<R> sums{}; // of zeros, and of NaN
    index_t i = 0;
    for (; i + lanes<R> <= n; i += lanes<R>) {
        const vec<R> v = load(x + i);
        sums += v - v;
    }
    const vec<R> rest = load_partial(x + i, n - i);
    return reduce_add(sums + (rest - rest)) != 0;
}

// Rows or columns first .. end of the triangle, its square and what it has beside it.
struct triangle_block {
    index_t first, end;
    index_t others, others_end;
};

// body(block) for blocks of `size`, each before those that need its old values are overwritten.
template <class Body>
VOX_INLINE void for_triangle_blocks(index_t order, index_t size, bool ascending, const Body &body) {
    const index_t blocks = (order + size - 1) / size;
    for (index_t s = 0; s < blocks; ++s) {
        const index_t first = (ascending ? s : blocks - 1 - s) * size;
        const index_t end = least(order, first + size);
        body(ascending ? triangle_block{first, end, end, order}
                       : triangle_block{first, end, 0, first});
    }
}

template <class T>
VOX_INLINE void multiply_rest(const factor<T> &a, const factor<T> &b, index_t depth, T alpha,
                              index_t m, index_t n, T *c, index_t ldc) {
    if (depth > 0)
        multiply_in_place<T>({m, n, depth, alpha, a, b, vox::one<T>, c, ldc}, 0, m, 0, n);
}

// op(X) from (i, p) on.
template <class T>
VOX_INLINE factor<T> part_of(const factor<T> &f, index_t i, index_t p) {
    return {place(f, i, p), f.ld, f.transposed, f.conjugated};
}

// The square of order n on a triangle's diagonal from (at, at) on, with its zeros, in columns of `ld`
// numbers: whole vectors.
template <class T>
VOX_INLINE void write_square(const factor<T> &f, index_t at, index_t n, index_t ld, T *to) {
    for (index_t z = 0; z < n * ld * parts<T>; z += lanes<real_of<T>>)
        store(flat(to) + z, vec<real_of<T>>{});
    const T *const x = place(f, at, at);
    const index_t down = f.transposed ? f.ld : 1, right = f.transposed ? 1 : f.ld;
    for (index_t p = 0; p < n; ++p) {
        const index_t from = is_upper(f) ? 0 : p + 1, end = is_upper(f) ? p : n;
        for (index_t i = from; i < end; ++i) {
            stay_scalar();
            to[i + p * ld] = vox::conj_if(f.conjugated, x[i * down + p * right]);
        }
        to[p + p * ld] = f.unit ? vox::one<T> : vox::conj_if(f.conjugated, x[p * (down + right)]);
    }
}

template <class T>
void triangle_in_place_left(const vox::triangle_product<T> &job) {
    using R = real_of<T>;
    constexpr index_t L = lanes<R> / parts<T>, mr = tile_rows<T>, nr = tile_width<T>;
    alignas(64) T square[mr * mr];
    const index_t vectors = job.m <= 2 * L ? 1 : 2;
    const index_t height = least(vectors, tile_vectors) * L;
    for_triangle_blocks(job.m, height, is_upper(job.a), [&](const triangle_block &t) {
        const index_t rows = t.end - t.first;
        write_square(job.a, t.first, rows, height, square);
        for (index_t j = 0; j < job.n; j += nr) {
            T *const b = job.b + t.first + j * job.ldb;
            any_tile<T>(rows, least(nr, job.n - j), rows, flat(square), flat(b),
                        {height * parts<T>, parts<T>, job.ldb * parts<T>},
                        {job.alpha, T{}, b, job.ldb});
        }
        multiply_rest(part_of(job.a, t.first, t.others), {job.b + t.others, job.ldb},
                      t.others_end - t.others, job.alpha, rows, job.n, job.b + t.first, job.ldb);
    });
}

template <class T>
void triangle_in_place_right(const vox::triangle_product<T> &job) {
    constexpr index_t nr = tile_width<T>;
    alignas(64) T square[nr * nr];
    for_triangle_blocks(job.n, nr, !is_upper(job.a), [&](const triangle_block &t) {
        const index_t columns = t.end - t.first;
        write_square(job.a, t.first, columns, nr, square);
        T *const b = job.b + t.first * job.ldb;
        multiply_in_place<T>(
            {job.m, columns, columns, job.alpha, {b, job.ldb}, {square, nr}, T{}, b, job.ldb}, 0,
            job.m, 0, columns);
        multiply_rest({job.b + t.others * job.ldb, job.ldb}, part_of(job.a, t.others, t.first),
                      t.others_end - t.others, job.alpha, job.m, columns, b, job.ldb);
    });
}

// False if it is not small, or if B holds NaN or infinities, which must not meet the square's zeros.
template <class T>
__attribute__((noinline)) bool triangle_in_place(const vox::triangle_product<T> &job) {
    if ((job.left ? job.m : job.n) > region_in_place<T> || job.m > 2 * region_in_place<T>)
        return false;
    for (index_t j = 0; j < job.n; ++j)
        if (any_not_finite(flat(job.b + j * job.ldb), job.m * parts<T>))
            return false;
    if (job.left)
        triangle_in_place_left(job);
    else
        triangle_in_place_right(job);
    return true;
}

} // namespace
