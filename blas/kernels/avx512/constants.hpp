// constants.hpp - what level 3 goes by on this code path.
#pragma once

#include "blas/gemm_records.hpp"
#include "blas/kernels/elements.hpp"

namespace {

// The register block: 24 accumulators of 32 registers, 24 x 8 in double precision.
constexpr int tile_vectors = 3, tile_columns = 8;
constexpr bool packed_broadcasts = false;
constexpr int masked_vectors = 3;

// Blocks: B's stays in the second-level cache, a strip of A's passes it.
template <class T>
constexpr vox::block_limits block_limits_of = {320,           128, 512, 256, 5000, 192 / parts<T>,
                                               48 / parts<T>, 48};

// clang-format off
template <class T>
constexpr vox::strategy_limits strategy_limits_of = {
    {9, 12}, 129, 11, 101, 4, 7, 41, 224, 72, 224, 56, 448,
    sizeof(T) == 4 ? 700 : 0, 200 / parts<T>, 48, 1200 / parts<T>};
// clang-format on

// Products of which a triangle is wanted are read in place below this order.
template <class T>
constexpr vox::index_t region_in_place = 448 / parts<T>;

// Columns that a triangle takes at a time: whole tiles either way.
constexpr vox::index_t triangle_depth = 256;

} // namespace

// The rows and columns of a tile in each precision, and its strip of B, for the names of what depends on
// them.
#define VOX_TILE_s 48, 8, 8
#define VOX_TILE_d 24, 8, 8
#define VOX_TILE_c 24, 4, 4
#define VOX_TILE_z 12, 4, 4
