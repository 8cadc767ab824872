// trmm.hpp - a triangle times a matrix, in place of the matrix.
//
// B is taken kb rows (left) or columns (right) at a time: they are packed, and then everything that they
// contribute to is updated, themselves last seen as the old ones. What the triangle multiplies by zero
// is left out, strip by strip.
#pragma once

#include "blas/kernels/packed.hpp"
#include "blas/kernels/tiny.hpp"

namespace {

// Blocks of a triangle of order n: whole tiles, in order or backwards.
template <class Body>
VOX_INLINE void for_blocks(index_t n, index_t kb, bool forward, const Body &body) {
    const index_t blocks = (n + kb - 1) / kb;
    for (index_t b = 0; b < blocks; ++b) {
        const index_t first = (forward ? b : blocks - 1 - b) * kb;
        body(first, least(n, first + kb));
    }
}

// Blocks for a triangle of order n and `others` rows or columns beside it.
template <class T>
gemm_info triangle_blocks(const gemm_strategy &strategy, const vox::triangle_product<T> &job) {
    const index_t order = job.left ? job.m : job.n;
    gemm_info info;
    strategy.fill(&strategy, most(job.m, job.n), most(job.n, order), order, &info);
    const index_t blocks = (order + triangle_depth - 1) / triangle_depth;
    info.kb = rounded_up((order + blocks - 1) / blocks, tile_multiple<T>);
    info.nb = most(info.nb, rounded_up(info.kb, tile_width<T>));
    return info;
}

template <class T>
void trmm_left(const vox::triangle_product<T> &job, const workspace<T> &space) {
    const bool upper = is_upper(job.a);
    const factor<T> b = {job.b, job.ldb};
    for_blocks(job.m, space.kb, upper, [&](index_t p0, index_t p1) {
        const index_t pitch = (p1 - p0) * a_step<T>;
        const auto rows = [&](index_t i0, index_t i1, bool diagonal) {
            pack_a(job.a, i0, i1, p0, p1, pitch, space.a);
            block_product<T> block = {.a = space.a,
                                      .a_pitch = pitch,
                                      .i0 = i0,
                                      .i1 = i1,
                                      .alpha = job.alpha,
                                      .beta = vox::one<T>,
                                      .c = job.b,
                                      .ldc = job.ldb};
            if (diagonal)
                block.clip = {upper ? triangle_clip::from_rows : triangle_clip::to_rows, p0};
            sweep(block, b, p0, p1, 0, job.n, space, {});
        };
        // The diagonal's rows come last, for they are the ones that are packed.
        const index_t i0 = upper ? 0 : p0, i1 = upper ? p1 : job.m;
        if (i1 - i0 <= space.mb)
            return rows(i0, i1, true);
        const index_t off0 = upper ? 0 : p1, off1 = upper ? p0 : job.m;
        for (index_t i = off0; i < off1; i += space.mb)
            rows(i, least(off1, i + space.mb), false);
        rows(p0, p1, true);
    });
}

template <class T>
void trmm_right(const vox::triangle_product<T> &job, const workspace<T> &space) {
    const bool upper = is_upper(job.a);
    const factor<T> b = {job.b, job.ldb};
    for (index_t i = 0; i < job.m; i += space.mb) {
        const index_t end = least(job.m, i + space.mb);
        for_blocks(job.n, space.kb, !upper, [&](index_t p0, index_t p1) {
            const index_t pitch = (p1 - p0) * a_step<T>;
            pack_a(b, i, end, p0, p1, pitch, space.a);
            const bool exact =
                any_not_finite(space.a, rounded_up(end - i, tile_rows<T>) / tile_rows<T> * pitch);
            const block_product<T> block = {
                .a = space.a,
                .a_pitch = pitch,
                .i0 = i,
                .i1 = end,
                .alpha = job.alpha,
                .beta = vox::one<T>,
                .c = job.b,
                .ldc = job.ldb,
                .clip = {upper ? triangle_clip::to_columns : triangle_clip::from_columns, p0,
                         exact}};
            sweep(block, job.a, p0, p1, upper ? p0 : 0, upper ? job.n : p1, space, {});
        });
    }
}

template <class T>
void trmm(const gemm_strategy &strategy, const vox::triangle_product<T> &job) {
    if (triangle_tiny<false>(job) || triangle_in_place(job))
        return;
    const gemm_info info = triangle_blocks(strategy, job);
    with_workspace<T>(info, info.kb, [&](const workspace<T> &space) {
        if (job.left)
            trmm_left(job, space);
        else
            trmm_right(job, space);
    });
}

} // namespace
