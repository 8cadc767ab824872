// constants.hpp - what level 3 goes by on this code path.
#pragma once

#include "blas/gemm_records.hpp"
#include "blas/kernels/elements.hpp"

namespace {

// The register block: 12 accumulators of 16 registers, 12 x 4 in double precision.
constexpr int tile_vectors = 3, tile_columns = 4;
constexpr bool packed_broadcasts = false;
constexpr int masked_vectors = 2;

// Blocks: B's stays in the second-level cache, a strip of A's passes it.
template <class T>
constexpr vox::block_limits block_limits_of = {256,           128, 384, 192, 5000, 192 / parts<T>,
                                               24 / parts<T>, 48};

template <class T>
constexpr vox::strategy_limits strategy_limits_of = {
    {9, 12}, 129, 11, 101, 4, 7, 41, 72, 72, 56, 56, 400 / parts<T>, 0, 64 / parts<T>};
template <>
constexpr vox::strategy_limits strategy_limits_of<double> = {{9, 12}, 129, 11, 101, 4, 7,
                                                             41,      72,  72, 56,  56};

// Products of which a triangle is wanted are read in place below this order.
template <class T>
constexpr vox::index_t region_in_place = 320 / parts<T>;

// Columns that a triangle takes at a time: whole tiles either way.
constexpr vox::index_t triangle_depth = 192;

} // namespace

// The rows and columns of a tile in each precision, and its strip of B, for the names of what depends on
// them.
#define VOX_TILE_s 24, 4, 4
#define VOX_TILE_d 12, 4, 4
#define VOX_TILE_c 12, 2, 2
#define VOX_TILE_z 6, 2, 2
