// region.hpp - tiles of products of which only a triangle is wanted.
#pragma once

#include "blas/kernels/blocks.hpp"
#include "blas/products.hpp"

namespace {

using vox::region;

// Where a tile is to a region of C.
enum class standing { inside, across, outside };
VOX_INLINE standing standing_of(region part, index_t i, index_t j, index_t rows, index_t columns) {
    if (part == region::all)
        return standing::inside;
    const bool upper = part == region::upper;
    if (upper ? i > j + columns - 1 : i + rows - 1 < j)
        return standing::outside;
    return (upper ? i + rows - 1 >= j : i <= j + columns - 1) ? standing::across : standing::inside;
}

// A tile across the diagonal of C: the whole of it is computed aside, by tile(finish), and what belongs
// to the region joins out.c. The tile starts at (i, j) of the job's C.
template <class T, class Job, class Tile>
VOX_INLINE void diagonal_tile(const Tile &tile, const Job &job, const finish<T> &out, index_t i,
                              index_t j, index_t rows, index_t columns) {
    using R = real_of<T>;
    constexpr index_t L = lanes<R>;
    alignas(64) T aside[tile_rows<T> * tile_width<T> + L]; // its end is read as a whole vector
    tile(finish<T>{out.alpha, T{}, aside, tile_rows<T>});
    const T beta = out.beta;
    const bool overwrite = vox::is_zero(beta);
    for (index_t s = 0; s < columns; ++s) {
        const index_t diagonal = j + s - i; // its row in the tile
        const index_t from = job.part == region::lower ? most(0, diagonal) : 0;
        const index_t end = job.part == region::upper ? least(rows, diagonal + 1) : rows;
        R *to = flat(out.c + s * out.ldc + from);
        const R *x = flat(aside + s * tile_rows<T> + from);
        index_t left = (end - from) * parts<T>;
        for (; left >= L; left -= L, to += L, x += L)
            update_lanes<T>(to, load(x), beta, overwrite);
        if (left > 0)
            update_tail<T>(to, load(x), int(left), beta, overwrite);
        if (job.real_diagonal && diagonal >= 0 && diagonal < rows)
            out.c[s * out.ldc + diagonal] = vox::make<T>(vox::real(out.c[s * out.ldc + diagonal]));
    }
}

} // namespace
