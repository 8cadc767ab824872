// product.hpp - products on one thread and as a member of a team.
#pragma once

#include "blas/kernels/in_place.hpp"
#include "blas/kernels/packed.hpp"
#include "blas/kernels/small.hpp"
#include "blas/kernels/tiny.hpp"
#include "vox/service.h"

namespace {

template <class T>
VOX_INLINE bool nothing_to_multiply(const vox::product<T> &job) {
    return job.k <= 0 || vox::is_zero(job.alpha);
}

// Whether rows x columns of a product are best read in place.
template <class T>
VOX_INLINE bool suits_in_place(const vox::product<T> &job, index_t rows, index_t columns) {
    if (job.a.kind != structure::general || job.b.kind != structure::general)
        return false;
    if (job.part != region::all)
        return columns < region_in_place<T> && job.k < 2 * region_in_place<T>;
    return choose_route<T>(job.a.transposed, job.b.transposed, rows, columns, job.k, false,
                           vox::is_zero(job.beta)) == route::in_place;
}

// A rectangle of a product, by one thread.
template <class T>
__attribute__((noinline)) void multiply_alone(const gemm_strategy &strategy,
                                              const vox::product<T> &job, index_t i0, index_t i1,
                                              index_t j0, index_t j1) {
    if (i0 >= i1 || j0 >= j1)
        return;
    if (nothing_to_multiply(job))
        return scale_region(job, i0, i1, j0, j1);
    gemm_info info;
    strategy.fill(&strategy, i1 - i0, j1 - j0, job.k, &info);
    const auto multiply = [&](const workspace<T> &space) {
        multiply_range(job, i0, i1, j0, j1, (i1 - i0 + space.mb - 1) / space.mb, space, {});
    };
    if (is_kept(job.a) || is_kept(job.b)) {
        info.mode = is_kept(job.a) ? 2 : 1;
        info.get = [](gemm_info *mine, index_t n) { return get_buffers<T>(mine, n, true); };
        if (is_kept(job.a)) // all rows at a time, so that B is packed once
            info.mb = rounded_up(i1 - i0, tile_rows<T>);
        if (is_kept(job.a) && is_kept(job.b))
            return multiply({info.mb, info.nb, info.kb, nullptr, nullptr});
    }
    with_workspace<T>(info, job.k, multiply);
}

// The whole of a product of any kind, by one thread.
template <class T>
void multiply_by_one(const gemm_strategy &strategy, const vox::product<T> &job) {
    if (nothing_to_multiply(job))
        return scale_region(job, 0, job.m, 0, job.n);
    if (is_kept(job.a) || is_kept(job.b))
        return multiply_alone(strategy, job, 0, job.m, 0, job.n);
    if (multiply_tiny(job))
        return;
    if ((job.a.kind != structure::general || job.b.kind != structure::general) &&
        multiply_small(job))
        return;
    if (suits_in_place(job, job.m, job.n))
        return multiply_in_place(job, 0, job.m, 0, job.n);
    multiply_alone(strategy, job, 0, job.m, 0, job.n);
}

struct extent {
    index_t first, end;
};

// Part `part` of n, in whole tiles.
inline extent share(index_t part, index_t parts, index_t n, index_t tile) {
    index_t length = 0;
    const index_t start = vox_serv_divbythreadsnb(&part, &parts, &n, &tile, &length);
    return {start, start + length};
}

// The same for the rows of a triangle, by area.
inline extent triangle_share(index_t part, index_t parts, index_t n, index_t tile, bool upper) {
    const index_t tiles = (n + tile - 1) / tile;
    index_t length = 0;
    const index_t start =
        vox_serv_divbythreadstr(&part, &parts, &tiles, upper ? "U" : "L", &length);
    return {least(n, start * tile), least(n, (start + length) * tile)};
}

// How a team of `size` divides C: so many groups of columns. What counts is the most that a thread has
// to do, in steps of tiles: multiplying, and packing A and its share of B.
template <class T>
int column_groups(const vox::product<T> &job, int size) {
    constexpr index_t mr = tile_rows<T>, nr = tile_width<T>;
    if (job.part != region::all)
        return 1;
    int best = 1;
    index_t least_work = 0;
    for (int groups = 1; groups <= size && groups <= vox::most_groups; ++groups) {
        if (size % groups)
            continue;
        const index_t members = size / groups;
        const index_t m = rounded_up((job.m + members - 1) / members, mr);
        const index_t n = rounded_up((job.n + groups - 1) / groups, nr);
        const index_t packing = 16; // a packed value costs as much as so many multiplications
        const index_t work = m * n + packing * (m + n / members);
        if (groups == 1 || work < least_work)
            best = groups, least_work = work;
    }
    return best;
}

// Thread `rank` of a team of `size`.
template <class T>
void multiply_in_team(const gemm_strategy &strategy, const vox::product<T> &job,
                      vox::product_team *shared, int rank, int size) {
    using R = real_of<T>;
    constexpr index_t mr = tile_rows<T>, nr = tile_width<T>;
    if (size == 1)
        return multiply_by_one(strategy, job);
    const int groups = column_groups(job, size), members = size / groups;
    const int group = rank / members, member = rank % members;
    const extent columns = share(group, groups, job.n, nr);
    const auto rows_of = [&](int m) {
        return job.part == region::all
                   ? share(m, members, job.m, mr)
                   : triangle_share(m, members, job.m, mr, job.part == region::upper);
    };
    const extent rows = rows_of(member);
    if (nothing_to_multiply(job))
        return scale_region(job, rows.first, rows.end, columns.first, columns.end);
    // What suits every member: the most rows of any, an equal share of the columns.
    index_t most_rows = mr;
    for (int m = 0; m < members; ++m)
        most_rows = most(most_rows, rows_of(m).end - rows_of(m).first);
    const index_t most_columns = (job.n + groups - 1) / groups;
    if (suits_in_place(job, most_rows, most_columns)) {
        if (rows.first < rows.end && columns.first < columns.end)
            multiply_in_place(job, rows.first, rows.end, columns.first, columns.end);
        return;
    }
    // The rows of a triangle end at different columns: nobody waits for anybody.
    if (job.part != region::all)
        return multiply_alone(strategy, job, rows.first, rows.end, columns.first, columns.end);

    const team_member everybody = {rank, size, &shared->all};
    if (rank == 0) {
        gemm_info info;
        strategy.fill(&strategy, most_rows, (most_columns + members - 1) / members, job.k, &info);
        if (is_kept(job.a))
            info.mb = rounded_up(most_rows, mr);
        const auto blocks = [&](int mode, bool needed) {
            info.mode = mode;
            info.a = info.b = nullptr, info.memory = nullptr, info.pitch = 0;
            if (needed)
                info.get(&info, size);
            return info;
        };
        shared->a_blocks = blocks(5, !is_kept(job.a));
        shared->b_blocks = blocks(4, !is_kept(job.b));
    }
    everybody.wait();
    const gemm_info &a = shared->a_blocks, &b = shared->b_blocks;
    if ((!a.memory && !is_kept(job.a)) || (!b.memory && !is_kept(job.b))) {
        multiply_alone(strategy, job, rows.first, rows.end, columns.first, columns.end);
    } else {
        const workspace<T> space = {a.mb,
                                    a.nb,
                                    a.kb,
                                    reinterpret_cast<R *>(a.a + rank * a.pitch),
                                    reinterpret_cast<R *>(b.b + (rank - member) * b.pitch),
                                    b.pitch / index_t(sizeof(R))};
        multiply_range(job, rows.first, rows.end, columns.first, columns.end,
                       (most_rows + a.mb - 1) / a.mb, space,
                       {member, members, &shared->groups[group]});
    }
    everybody.wait();
    if (rank == 0) {
        shared->a_blocks.release(&shared->a_blocks);
        shared->b_blocks.release(&shared->b_blocks);
    }
}

// A general product of one thread, its route chosen by its shape.
template <class T, class Strategy>
__attribute__((noinline)) void multiply_general(Strategy strategy, const vox::product<T> &job) {
    const bool zero = nothing_to_multiply(job);
    const route way = choose_route<T>(job.a.transposed, job.b.transposed, job.m, job.n, job.k,
                                      vox::is_zero(job.alpha), vox::is_zero(job.beta));
    if (zero)
        scale_region(job, 0, job.m, 0, job.n);
    else if (multiply_tiny(job))
        return;
    else if (VOX_LIKELY(way == route::in_place))
        multiply_in_place(job, 0, job.m, 0, job.n);
    else
        multiply_alone(strategy(way == route::packed ? 0 : 16), job, 0, job.m, 0, job.n);
}

} // namespace
