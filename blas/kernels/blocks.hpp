// blocks.hpp - block sizes, strategies and packing buffers of level 3.
#pragma once

#include "blas/gemm_records.hpp"
#include "blas/kernels/tile.hpp"
#include "vox/service.h"

namespace {

using vox::gemm_info;
using vox::gemm_strategy;

VOX_INLINE index_t least(index_t a, index_t b) { return a < b ? a : b; }
VOX_INLINE index_t most(index_t a, index_t b) { return a > b ? a : b; }

// Bytes of a packed value.
template <class T>
constexpr index_t a_bytes = sizeof(T);
template <class T>
constexpr index_t b_bytes = index_t(sizeof(T)) * b_copies<T>;

template <class T>
void set_blocks(const gemm_strategy *s, index_t m, index_t n, index_t k, gemm_info *info) {
    constexpr vox::block_limits l = block_limits_of<T>;
    if (k <= l.whole_depth)
        info->kb = most(rounded_up(k, s->depth_multiple), l.least_depth);
    else
        info->kb = rounded_up(k < l.halved_depth ? k / 2 : l.depth, s->depth_multiple);
    info->mb = rounded_up(least(most(s->rows, m), l.rows), s->rows);
    info->nb =
        rounded_up(least(most(s->columns, n), k < l.shallow_depth ? l.shallow_columns : l.columns),
                   s->columns);
}

// Packed blocks start at these places of a page, so that A, B and C do not meet in the cache's sets;
// blocks of A start on large pages. Packed operands that a program keeps have more room around them.
constexpr index_t a_page = 0x200000, b_page = 4096, a_offset = 1664, b_offset = 768;
constexpr index_t b_slack = 8960, a_slack = 0x400680, both_slack = 4204928;
constexpr index_t team_slack = 0x400000, team_a_slack = 9856;
constexpr index_t kept_a_slack = 0x600680, kept_b_slack = 0x600300;

VOX_INLINE char *at_page(char *p, index_t page, index_t offset) {
    return reinterpret_cast<char *>(rounded_up(index_t(p), page)) + offset;
}

// The buffers of a mode, or null pointers when there is no memory. Does not print.
template <class T>
int get_buffers(gemm_info *info, index_t threads, bool kept) {
    const index_t a = info->mb * info->kb * a_bytes<T>, b = info->nb * info->kb * b_bytes<T>;
    index_t bytes = 0;
    info->a = info->b = nullptr, info->memory = nullptr, info->pitch = 0;
    info->a_offset = a_offset, info->b_offset = b_offset;
    info->a_page = a_page, info->b_page = b_page;
    switch (info->mode) {
    case 1:
        bytes = a + (kept ? kept_a_slack : a_slack);
        break;
    case 2:
        bytes = b + (kept ? kept_b_slack : b_slack);
        break;
    case 3:
        bytes = a + b + (kept ? kept_a_slack + kept_b_slack : both_slack);
        break;
    case 4:
        info->pitch = b + b_slack;
        bytes = info->pitch * threads + team_slack;
        break;
    case 5:
        info->pitch = a + team_a_slack;
        bytes = info->pitch * threads + team_slack;
        break;
    default:
        return 1;
    }
    info->memory = vox_serv_allocate(size_t(bytes), 128);
    if (!info->memory)
        return 0;
    char *const start = static_cast<char *>(info->memory);
    switch (info->mode) {
    case 1:
        info->a = at_page(start, a_page, a_offset);
        break;
    case 2:
        info->b = at_page(start, b_page, b_offset);
        break;
    case 3:
        info->b = at_page(start, b_page, b_offset);
        info->a = at_page(info->b + b, a_page, a_offset);
        break;
    case 4:
        info->b = at_page(start, a_page, b_offset);
        break;
    case 5:
        info->a = at_page(start, a_page, a_offset);
        break;
    }
    return 0;
}

inline void free_buffers(gemm_info *info) {
    vox_serv_deallocate(info->memory);
    info->a = info->b = nullptr, info->memory = nullptr;
}

enum class route { in_place, packed, packed_narrow };

// How a product runs; alpha and beta are not, or are, zero.
template <class T>
VOX_INLINE route choose_route(bool transposed_a, bool transposed_b, index_t m, index_t n, index_t k,
                              bool alpha_zero, bool beta_zero) {
    constexpr vox::strategy_limits l = strategy_limits_of<T>;
    if (m == k && (m == l.square_a[0] || m == l.square_a[1]) && beta_zero)
        return route::in_place;
    if (!transposed_a && !alpha_zero &&
        ((m < l.plain_small && n < l.plain_small && k < l.plain_small) || n <= l.plain_columns ||
         (k < l.plain_depth && n <= l.plain_shallow_columns)))
        return route::in_place;
    if (k < l.shallow_depth && !alpha_zero) {
        if (m * n < l.thin * (m + n)) { // m n / (m + n) < thin
            if (m < l.thin_rows)
                return route::in_place;
            return n < l.thin_columns && k < l.thin_columns ? route::packed_narrow : route::packed;
        }
        if (k < l.tiny_depth && m < l.tiny && n < l.tiny && (!transposed_a || transposed_b))
            return route::in_place;
    }
    if (alpha_zero)
        return route::packed;
    if (m < l.small && n < l.small && k < l.small)
        return route::in_place;
    if (!transposed_a)
        return m < l.rows ? route::in_place : n >= l.columns ? route::packed : route::packed_narrow;
    return m < l.transposed_rows      ? route::in_place
           : n < l.transposed_columns ? route::packed_narrow
                                      : route::packed;
}

} // namespace
