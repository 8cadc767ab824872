// packed.hpp - products of packed blocks.
//
// The depth is taken kb steps at a time. A block of A, mb rows of it, is packed; then B's block of nb
// columns, which stays in the second-level cache while A's strips pass it, one after the other:
//
//     for each block of rows, for each part of the depth:   pack A, mb x kb
//         for each block of columns:                        pack B, kb x nb
//             for each strip of A, for each strip of B:     one tile of C
//
// A team of threads shares the packed blocks of B: each member packs one and multiplies its own rows by
// all of them.
#pragma once

#include "blas/kernels/blocks.hpp"
#include "blas/kernels/kept.hpp"
#include "blas/kernels/packing.hpp"
#include "blas/kernels/region.hpp"
#include "blas/kernels/triangle_in_place.hpp"
#include "blas/team_barrier.hpp"

namespace {

// A team as its members see it. Alone there is nobody to wait for.
struct team_member {
    int rank = 0, size = 1;
    vox::team_barrier *barrier = nullptr;

    VOX_INLINE void wait() const {
        if (size > 1)
            vox_blas_team_wait(barrier, size);
    }
};

// Packed blocks: where they go, and how large they may be.
template <class T>
struct workspace {
    using R = real_of<T>;
    index_t mb, nb, kb;
    R *a;
    R *b;
    index_t b_pitch = 0; // reals from one member's block of B to the next's

    VOX_INLINE R *b_block(index_t member) const { return b + member * b_pitch; }
};

template <class T>
constexpr index_t a_step = strip_step<T, tile_rows<T>, 1>;
template <class T>
constexpr index_t b_step = strip_step<T, tile_width<T>, b_copies<T>>;

template <class T>
VOX_INLINE void pack_a(const factor<T> &a, index_t i0, index_t i1, index_t p0, index_t p1,
                       index_t pitch, real_of<T> *to) {
    pack<T, tile_rows<T>, 1>(a, i0, i1, p0, p1, pitch, to);
}
template <class T>
VOX_INLINE void pack_b(const factor<T> &b, index_t j0, index_t j1, index_t p0, index_t p1,
                       index_t pitch, real_of<T> *to) {
    pack<T, tile_width<T>, b_copies<T>>(transpose_of(b), j0, j1, p0, p1, pitch, to);
}

// Rows i0 .. i1 of A for the steps p0 .. p1: packed into `to`, or where they are kept.
template <class T>
VOX_INLINE strips<T> strips_of_a(const factor<T> &a, index_t i0, index_t i1, index_t p0, index_t p1,
                                 real_of<T> *to) {
    if (is_kept(a))
        return kept_strips<T, tile_rows<T>, 1>(a, i0, p0);
    const index_t pitch = (p1 - p0) * a_step<T>;
    pack_a(a, i0, i1, p0, p1, pitch, to);
    return {to, pitch};
}

// Which steps of a block's depth a triangular factor leaves to a strip: with the diagonal from `at`
// on, strip s of rows or columns needs the steps from s - at, or up to there. The strips on the
// diagonal are the first to meet their place in C, which they overwrite.
//
// A tile on the diagonal multiplies zeros of the triangle, too. Where the other factor holds NaN or
// infinities, that is not for nothing: then `exact` leaves the diagonal's square to single products.
struct triangle_clip {
    enum { none, from_rows, to_rows, from_columns, to_columns } kind = none;
    index_t at = 0;
    bool exact = false;

    VOX_INLINE bool by_rows() const { return kind <= to_rows; }
    VOX_INLINE bool from() const { return kind == from_rows || kind == from_columns; }
};

// A block product: C[i0 .. i1, j0 .. j1] from strips of A and of B.
template <class T>
struct block_product {
    const real_of<T> *a, *b = nullptr;
    index_t a_pitch, b_pitch = 0; // reals from strip to strip
    index_t i0, i1, j0 = 0, j1 = 0, depth = 0;
    T alpha, beta;
    T *c; // the whole of C
    index_t ldc;
    region part = region::all;
    bool real_diagonal = false;
    triangle_clip clip = {};
};

// C += alpha A B for the steps p0 .. p1 of a tile whose diagonal starts at step s, where the triangle has
// something.
template <class T>
__attribute__((noinline)) void multiply_square(const block_product<T> &job, const real_of<T> *a,
                                               const real_of<T> *b, index_t s, index_t p0,
                                               index_t p1, T *c, index_t rows, index_t columns) {
    const auto value = [](const real_of<T> *at, int copies) VOX_INLINED {
        if constexpr (is_complex<T>)
            return T{at[0], at[copies]};
        else
            return (void)copies, *at;
    };
    for (index_t p = p0; p < p1; ++p)
        for (index_t j = 0; j < columns; ++j)
            for (index_t i = 0; i < rows; ++i) {
                const index_t place = s + (job.clip.by_rows() ? i : j);
                if (job.clip.from() ? p < place : p > place)
                    continue;
                c[i + j * job.ldc] +=
                    job.alpha * value(a + p * a_step<T> + i * parts<T>, 1) *
                    value(b + p * b_step<T> + j * parts<T> * b_copies<T>, b_copies<T>);
            }
}

template <class T>
__attribute__((noinline)) void multiply_blocks(const block_product<T> &job) {
    constexpr index_t mr = tile_rows<T>, nr = tile_width<T>, copies = b_copies<T>;
    constexpr strides packed = {a_step<T>, b_step<T>, parts<T> * copies, copies};
    const index_t columns_of_tiles = (job.j1 - job.j0 + nr - 1) / nr;
    const index_t ahead = job.a_pitch / columns_of_tiles;
    const real_of<T> *a = job.a;
    for (index_t i = job.i0; i < job.i1; i += mr, a += job.a_pitch) {
        const index_t rows = least(mr, job.i1 - i);
        const real_of<T> *b = job.b, *next = a + job.a_pitch;
        for (index_t j = job.j0; j < job.j1; j += nr, b += job.b_pitch, next += ahead) {
            const index_t columns = least(nr, job.j1 - j);
            const auto tile = [&](index_t steps, const real_of<T> *x, const real_of<T> *y,
                                  const finish<T> &to) VOX_INLINED {
                if (rows == mr && columns == nr)
                    full_tile<T>(steps, x, y, next, to);
                else
                    any_tile<T>(rows, columns, steps, x, y, packed, to);
            };
            finish<T> out = {job.alpha, job.beta, job.c + i + j * job.ldc, job.ldc};
            const standing where = standing_of(job.part, i, j, rows, columns);
            if (where == standing::outside)
                continue;
            if (where == standing::across) {
                diagonal_tile([&](const finish<T> &to) VOX_INLINED { tile(job.depth, a, b, to); },
                              job, out, i, j, rows, columns);
                continue;
            }
            index_t from = 0, end = job.depth, square = 0, s = -1;
            if (job.clip.kind != triangle_clip::none) {
                s = (job.clip.by_rows() ? i : j) - job.clip.at;
                const index_t size = job.clip.by_rows() ? mr : nr;
                if (s >= 0 && s < job.depth) {
                    out.beta = T{};
                    square = job.clip.exact ? least(size, job.depth - s) : 0;
                }
                if (job.clip.from())
                    from = most(s, 0) + square;
                else
                    end = least(end, square ? s : s + size);
            }
            tile(end - from, a + from * a_step<T>, b + from * b_step<T>, out);
            if (VOX_UNLIKELY(square))
                multiply_square(job, a, b, s, s, s + square, out.c, rows, columns);
        }
    }
}

// Packed rows i0 .. i1 of A times columns j0 .. j1 of B, depth p0 .. p1: of a team's blocks of B, all
// members' one after the other.
template <class T>
void sweep(block_product<T> job, const factor<T> &b, index_t p0, index_t p1, index_t j0, index_t j1,
           const workspace<T> &space, const team_member &team) {
    const bool kept = is_kept(b);
    const auto kept_from = [&](index_t j) VOX_INLINED {
        return kept_strips<T, tile_width<T>, b_copies<T>>(b, j, p0);
    };
    job.depth = p1 - p0;
    job.b_pitch = kept ? kept_from(j0).pitch : job.depth * b_step<T>;
    for (index_t first = j0; first < j1; first += space.nb * team.size) {
        const auto start = [&](int member) { return least(j1, first + member * space.nb); };
        const auto end = [&](int member) { return least(j1, start(member) + space.nb); };
        if (!kept)
            pack_b(b, start(team.rank), end(team.rank), p0, p1, job.b_pitch,
                   space.b_block(team.rank));
        if (job.clip.kind != triangle_clip::none && job.clip.by_rows())
            job.clip.exact = any_not_finite(space.b, rounded_up(end(0) - start(0), tile_width<T>) /
                                                         tile_width<T> * job.b_pitch);
        if (!kept)
            team.wait();
        for (int step = 0; step < team.size; ++step) {
            const int member = (team.rank + step) % team.size;
            job.j0 = start(member), job.j1 = end(member);
            job.b = kept ? kept_from(job.j0).first : space.b_block(member);
            if (job.j0 < job.j1)
                multiply_blocks(job);
        }
        if (!kept)
            team.wait();
    }
}

// Rows i0 .. i1 and columns j0 .. j1 of a product. All members of a team must have as many blocks of
// rows; `rounds` is how many.
template <class T>
void multiply_range(const vox::product<T> &job, index_t i0, index_t i1, index_t j0, index_t j1,
                    index_t rounds, const workspace<T> &space, const team_member &team) {
    for (index_t round = 0; round < rounds; ++round) {
        const index_t first = least(i1, i0 + round * space.mb), last = least(i1, first + space.mb);
        for (index_t p = 0, depth; p < job.k; p += depth) {
            depth = steps_at_once(job.a, p, steps_at_once(job.b, p, least(space.kb, job.k - p)));
            const strips<T> a = strips_of_a(job.a, first, last, p, p + depth, space.a);
            const block_product<T> block = {.a = a.first,
                                            .a_pitch = a.pitch,
                                            .i0 = first,
                                            .i1 = last,
                                            .alpha = job.alpha,
                                            .beta = p ? vox::one<T> : job.beta,
                                            .c = job.c,
                                            .ldc = job.ldc,
                                            .part = job.part,
                                            .real_diagonal = job.real_diagonal};
            // What of the columns these rows have a part of; a team goes through all.
            const bool alone = team.size == 1;
            const index_t from = alone && job.part == region::upper ? most(first, j0) : j0;
            const index_t end = alone && job.part == region::lower ? least(j1, last) : j1;
            sweep(block, job.b, p, p + depth, from, end, space, team);
        }
    }
}

// C := beta C in the region, for products without a product.
template <class T>
void scale_region(const vox::product<T> &job, index_t i0, index_t i1, index_t j0, index_t j1) {
    if (job.beta == vox::one<T> && !job.real_diagonal)
        return;
    for (index_t j = j0; j < j1; ++j) {
        const index_t from = job.part == region::lower ? most(i0, j) : i0;
        const index_t end = job.part == region::upper ? least(i1, j + 1) : i1;
        T *const c = job.c + j * job.ldc;
        if (vox::is_zero(job.beta))
            for (index_t i = from; i < end; ++i)
                c[i] = T{};
        else
            for (index_t i = from; i < end; ++i)
                c[i] = job.beta * c[i];
        if (job.real_diagonal && j >= from && j < end)
            c[j] = vox::make<T>(vox::real(c[j]));
    }
}

// Blocks that fit the stack, for small calls and for those that get no memory: at least a tile's worth
// both ways, and as deep as a triangle's steps must be.
constexpr index_t stack_bytes = 20 * 1024;
constexpr int common_multiple(int a, int b) {
    int m = a;
    while (m % b)
        m += a;
    return m;
}
template <class T>
constexpr int tile_multiple = common_multiple(tile_rows<T>, tile_width<T>);

template <class T>
VOX_INLINE index_t packed_bytes(index_t mb, index_t nb, index_t kb) {
    return kb * (mb * a_bytes<T> + nb * b_bytes<T>);
}

// body(workspace) with blocks as `info` says for a depth, on the stack where they fit or where there is
// no memory.
template <class T, class Body>
void with_workspace(gemm_info info, index_t depth, const Body &body) {
    using R = real_of<T>;
    constexpr index_t mr = tile_rows<T>, step = tile_multiple<T>;
    static_assert(step * (mr * a_bytes<T> + step * b_bytes<T>) <= stack_bytes);
    const index_t kb = least(info.kb, depth);
    if (packed_bytes<T>(info.mb, info.nb, kb) > stack_bytes) {
        info.get(&info, 1);
        if (info.memory) {
            body(workspace<T>{info.mb, info.nb, kb, reinterpret_cast<R *>(info.a),
                              reinterpret_cast<R *>(info.b)});
            info.release(&info);
            return;
        }
        info.mb = mr, info.nb = step;
        info.kb = step;
    } else {
        info.kb = kb;
    }
    alignas(64) char blocks[stack_bytes];
    R *const b = reinterpret_cast<R *>(blocks);
    R *const a = b + info.kb * info.nb * parts<T> * b_copies<T>;
    body(workspace<T>{info.mb, info.nb, info.kb, a, b});
}

} // namespace
