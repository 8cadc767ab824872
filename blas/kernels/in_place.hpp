// in_place.hpp - small products, from A and B where they are.
//
// B's values are broadcast from wherever they stand. A's columns are read as vectors; of a transposed A,
// or one whose rows are no whole vectors on a path without masks, a strip at a time is copied to the
// stack.
#pragma once

#include "blas/kernels/packing.hpp"
#include "blas/kernels/region.hpp"
#include "blas/products.hpp"

namespace {

// Whether a strip of A that is not transposed can be read where it is.
template <class T>
VOX_INLINE bool readable_rows(index_t rows) {
    constexpr index_t L = lanes<real_of<T>>;
    const index_t reals = rows * parts<T>;
    return reals % L == 0 || reals <= masked_vectors * L;
}

// Strides of factors where they are.
template <class T>
VOX_INLINE strides strides_of(index_t lda, index_t ldb, bool b_transposed) {
    return {lda * parts<T>, (b_transposed ? ldb : 1) * parts<T>,
            (b_transposed ? 1 : ldb) * parts<T>};
}

constexpr index_t strip_bytes = 16 * 1024;

// n in as many parts as it takes of at most `most`, all about the same.
VOX_INLINE index_t even_share(index_t n, index_t most) {
    const index_t count = (n + most - 1) / most;
    return count == 1 ? n : count == 2 ? (n + 1) / 2 : (n + count - 1) / count; // division is slow
}

// Rows i0 .. i1 and columns j0 .. j1 of a block of a product in place.
template <class T>
__attribute__((noinline)) void multiply_block_in_place(const vox::product<T> &job, index_t i0,
                                                       index_t i1, index_t j0, index_t j1) {
    constexpr index_t L = lanes<real_of<T>>, mr = tile_rows<T>, nr = tile_width<T>;
    const factor<T> &a = job.a, &b = job.b;
    strides at = strides_of<T>(a.ld, b.ld, b.transposed);
    // Tiles of the same size keep more sums going than full ones and a rest would; only what half a
    // vector holds stands alone.
    const index_t reals = (i1 - i0) * parts<T>, over = reals % L;
    const bool apart = half_vectors && over && over <= L / 2 && reals > 2 * L;
    const index_t vectors = reals / L + (over && !apart);
    const index_t height = even_share(vectors, tile_vectors) * L / parts<T>;
    const index_t width = even_share(j1 - j0, nr), tail = i1 - over / parts<T>;
    for (index_t i = i0, rows; i < i1; i += rows) {
        rows = least(height, i1 - i);
        if (apart && i < tail && i + rows > tail)
            rows = tail - i;
        bool copied = a.transposed;
        if (!copied && !readable_rows<T>(rows)) {
            if constexpr (masked_vectors > 0)
                rows = masked_vectors * L / parts<T>; // the rest in a strip of its own
            else
                copied = true;
        }
        finish<T> out = {job.alpha, job.beta, job.c, job.ldc, a.conjugated, b.conjugated};
        const auto columns = [&](const real_of<T> *strip, index_t p, index_t depth) VOX_INLINED {
            for (index_t j = j0; j < j1; j += width) {
                const index_t count = least(width, j1 - j);
                const auto tile = [&](const finish<T> &to) VOX_INLINED {
                    any_tile<T>(rows, count, depth, strip,
                                flat(b.data) + p * at.b_step + j * at.b_column, at, to);
                };
                out.c = job.c + i + j * job.ldc;
                switch (standing_of(job.part, i, j, rows, count)) {
                case standing::inside:
                    tile(out);
                    break;
                case standing::across:
                    diagonal_tile(
                        [&](finish<T> aside) VOX_INLINED {
                            aside.conjugate_a = out.conjugate_a;
                            aside.conjugate_b = out.conjugate_b;
                            tile(aside);
                        },
                        job, out, i, j, rows, count);
                    break;
                case standing::outside:
                    break;
                }
            }
        };
        if (!copied) {
            columns(flat(a.data + i), 0, job.k);
            continue;
        }
        alignas(64) real_of<T> strip[strip_bytes / sizeof(real_of<T>)];
        constexpr index_t longest = strip_bytes / (mr * index_t(sizeof(T)));
        at.a_step = mr * parts<T>;
        for (index_t p = 0; p < job.k; p += longest) {
            const index_t depth = least(longest, job.k - p);
            copy_stored<T, mr, 1>(a.transposed, false, place(a, i, p), a.ld, rows, depth, strip);
            columns(strip, p, depth);
            out.beta = vox::one<T>;
        }
        at.a_step = a.ld * parts<T>;
    }
}

// Blocks of B that the second-level cache keeps while A passes; a strip of A's columns must not take more
// pages than are at hand.
constexpr index_t block_columns = 256, block_depth = 2048, shallow_block_depth = 64;

// Rows i0 .. i1 and columns j0 .. j1 of a product of general factors; alpha and k are not zero.
template <class T>
VOX_INLINE void multiply_in_place(const vox::product<T> &job, index_t i0, index_t i1, index_t j0,
                                  index_t j1) {
    const index_t columns = j1 - j0;
    const bool one_pass = columns <= block_columns || job.a.transposed || // each pass would copy A
                          job.k <= shallow_block_depth;
    if (VOX_LIKELY(one_pass && job.k <= block_depth))
        return multiply_block_in_place(job, i0, i1, j0, j1);
    const index_t depth = even_share(job.k, block_depth);
    const index_t width = one_pass ? columns : even_share(columns, block_columns);
    vox::product<T> part = job;
    for (index_t p = 0; p < job.k; p += depth) {
        part.k = least(depth, job.k - p);
        part.a.data = place(job.a, 0, p), part.b.data = place(job.b, p, 0);
        for (index_t j = j0; j < j1; j += width)
            multiply_block_in_place(part, i0, i1, j, least(j1, j + width));
        part.beta = vox::one<T>;
    }
}

} // namespace
