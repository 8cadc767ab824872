// transpose.hpp - B := op(A)^T for matrices of any size, in an order that suits caches and pages.
//
// A has `outer` rows of `inner` elements that lie side by side, B has `inner` rows of `outer`. The walk
// goes down all of A over a block of its columns: every cache line of B is written at once and never
// met again, every line of A is read by a few tiles in a row, and the pages of a block's rows of B
// stay known to the processor.
//
// Large results go past the caches in whole lines: straight from registers where the rows of B begin at
// the same place of a line, through a line per row on the stack where they do not, through a block on
// the stack where rows are short.
//
// The last tiles of a row or column overlap the ones before, since op gives the same bits each time.
#pragma once

#include "trans/kernels/copy.hpp"

namespace {
namespace trans {

// Columns of A in a block: what they hold of B must stay in the first-level cache where lines are
// written in two parts.
constexpr index_t block_columns = 128, carried_columns = 64;

template <class T>
struct problem {
    index_t outer, inner;
    const T *a;
    index_t lda;
    T *b;
    index_t ldb;
};

// Rows i0 .. i1-1 and columns j0 .. j1-1 of A.
template <class T>
VOX_INLINE problem<T> part_of(const problem<T> &p, index_t i0, index_t i1, index_t j0, index_t j1) {
    return {i1 - i0, j1 - j0, p.a + i0 * p.lda + j0, p.lda, p.b + j0 * p.ldb + i0, p.ldb};
}

// Tiles at row i of A over columns j0 .. j1-1, Count of them one below the other. put(i, j, v) takes
// the vectors, before(j) is called first.
template <int Lanes, int Count, class T, class Op, class Put, class Before>
VOX_INLINE void tiles(const problem<T> &p, const Op &op, index_t i, index_t j0, index_t j1,
                      const Put &put, const Before &before) {
    constexpr int k = per_lane<T>;
    const auto at = [&](index_t j) VOX_INLINED {
        before(j);
        unroll<Count>([&](auto g) VOX_INLINED {
            const index_t row = i + g * Lanes * k;
            tile<Lanes>(op, p.a + row * p.lda + j, p.lda,
                        [&](auto c, auto v) VOX_INLINED { put(row, j + c, v); });
        });
    };
    index_t j = j0;
    for (; j + k <= j1; j += k)
        at(j);
    if (j < j1)
        at(j1 - k);
}

template <int Lanes, int Count, class T, class Op, class Put>
VOX_INLINE void tiles(const problem<T> &p, const Op &op, index_t i, index_t j0, index_t j1,
                      const Put &put) {
    tiles<Lanes, Count>(p, op, i, j0, j1, put, [](index_t) VOX_INLINED {});
}

template <class T>
VOX_INLINE auto stored(const problem<T> &p) {
    return [&p](index_t i, index_t j, auto v) VOX_INLINED { store(flat(p.b + j * p.ldb + i), v); };
}

// Rows from .. p.outer-1 of A; above the last there are as many as a tile of Lanes lanes has.
template <int Lanes, class T, class Op>
VOX_INLINE void last_rows(const problem<T> &p, const Op &op, index_t from, index_t j0, index_t j1) {
    constexpr int rows = Lanes * per_lane<T>;
    for (index_t i = from; i < p.outer; i += rows)
        tiles<Lanes, 1>(p, op, i + rows <= p.outer ? i : p.outer - rows, j0, j1, stored(p));
}

template <class T, class Op>
VOX_INLINE void through_caches(const problem<T> &p, const Op &op, index_t j0, index_t j1) {
    constexpr int line = per_line<T>;
    index_t i = 0;
    for (; i + line <= p.outer; i += line)
        tiles<tile_lanes<T>, line / tile_rows<T>>(p, op, i, j0, j1, stored(p));
    if (p.outer - i <= per_lane<T>)
        last_rows<1>(p, op, i, j0, j1);
    else
        last_rows<tile_lanes<T>>(p, op, i, j0, j1);
}

// Blocks of columns, the last one with all that would be less than a tile.
template <class T, class Walk>
VOX_INLINE void by_blocks(index_t inner, index_t width, const Walk &walk) {
    for (index_t j0 = 0, j1; j0 < inner; j0 = j1) {
        j1 = inner - j0 < width + per_lane<T> ? inner : j0 + width;
        walk(j0, j1);
    }
}

// All columns, block by block. A whole problem is passed through memory, which takes longer than a small matrix.
template <class T, class Op>
VOX_APART void blocks(const Op op, index_t outer, index_t inner, const T *a, index_t lda, T *b,
                      index_t ldb) {
    const problem<T> p{outer, inner, a, lda, b, ldb};
    by_blocks<T>(inner, block_columns,
                 [&](index_t j0, index_t j1) VOX_INLINED { through_caches(p, op, j0, j1); });
}

template <class T, class Op>
VOX_INLINE void in_caches(const Op &op, const problem<T> &p) {
    if (p.inner < per_lane<T> || p.outer < per_lane<T>)
        for (index_t j = 0; j < p.inner; ++j)
            for (index_t i = 0; i < p.outer; ++i)
                one_element(op, p.a + i * p.lda + j, p.b + j * p.ldb + i);
    else if (p.outer < tile_rows<T>)
        last_rows<1>(p, op, 0, 0, p.inner);
    else
        blocks(op, p.outer, p.inner, p.a, p.lda, p.b, p.ldb);
}

// The same for edges and small blocks of what is walked in another way.
template <class T, class Op>
VOX_APART void piece(const Op op, const problem<T> p) {
    in_caches(op, p);
}

// Where all rows of A have the same place in a cache, and all rows of B, too few lines of a column stay
// there while others are fetched. So pieces of rows are copied to a block on the stack first, which
// is written to B by several lines of a row at a time.
constexpr int gathered_bytes = 256;
template <class T>
constexpr int gathered_rows = gathered_bytes / int(sizeof(T));
template <class T>
constexpr int gathered_cols = gathered_bytes / int(sizeof(T));

template <class T>
VOX_INLINE bool is_gathered(const problem<T> &p) {
    constexpr index_t stride = 2048 / int(sizeof(T));
    return p.lda % stride == 0 && p.ldb % stride == 0 && p.outer >= gathered_rows<T> &&
           p.inner >= gathered_cols<T> && p.outer * p.inner * index_t(sizeof(T)) >= 256 * 1024;
}

template <class T, class Op>
VOX_APART void gathered(const problem<T> p, const Op op) {
    constexpr int m = gathered_rows<T>, n = gathered_cols<T>, ld = n + per_line<T>;
    const index_t rows = p.outer / m * m, cols = p.inner / n * n;
    alignas(64) T block[m * ld];
    for (index_t j0 = 0; j0 < cols; j0 += n)
        for (index_t i0 = 0; i0 < rows; i0 += m) {
            for (int i = 0; i < m; ++i)
                copy_row(moved<T>(), n, p.a + (i0 + i) * p.lda + j0, block + i * ld);
            const problem<T> from_block{m, n, block, ld, p.b + j0 * p.ldb + i0, p.ldb};
            for (int j = 0; j < n; j += per_lane<T>)
                tiles<tile_lanes<T>, m / tile_rows<T>>(from_block, op, 0, j, j + per_lane<T>,
                                                       stored(from_block));
        }
    piece(op, part_of(p, 0, rows, cols, p.inner));
    piece(op, part_of(p, rows, p.outer, 0, p.inner));
}

// Fetches the lines of A that will be needed after this walk along row i: those of some rows for each
// tile of a line. Into the second-level cache, since rows may all have the same place in the first.
template <class T>
VOX_INLINE auto fetching(const problem<T> &p, index_t i) {
    return [=](index_t j) VOX_INLINED {
        constexpr int line = per_line<T>, k = per_lane<T>;
        const T *const next = p.a + (i + line + j / k % 4 * (line / 4)) * p.lda + j / line * line;
        unroll<line / 4>([&](auto r) VOX_INLINED { __builtin_prefetch(next + r * p.lda, 0, 2); });
    };
}

// The rows of B begin at the same place of a line, skip elements before the next one.
template <class T, class Op>
VOX_INLINE void past_caches(const problem<T> &p, const Op &op, index_t j0, index_t j1,
                            index_t skip) {
    constexpr int wide = vector_bytes / 16, line = per_line<T>;
    piece(op, part_of(p, 0, skip, j0, j1));
    index_t i = skip;
    for (; i + line <= p.outer; i += line)
        tiles<wide, line / (wide * per_lane<T>)>(
            p, op, i, j0, j1,
            [&](index_t row, index_t j, auto v)
                VOX_INLINED { stream_vector(flat(p.b + j * p.ldb + row), v); },
            fetching(p, i));
    piece(op, part_of(p, i, p.outer, j0, j1));
}

// The rows of B begin anywhere in a line: what a tile has beyond the last whole line of a row is kept
// until the next one completes it.
template <class T, class Op>
VOX_INLINE void past_caches_carried(const problem<T> &p, const Op &op, index_t j0, index_t j1) {
    constexpr int wide = vector_bytes / 16, line = per_line<T>, k = per_lane<T>;
    struct alignas(64) row_end {
        T begun[line], next[line];
    };
    row_end ends[carried_columns + k];
    int place[carried_columns + k];
    for (index_t j = j0; j < j1; ++j)
        place[j - j0] = place_in_line(p.b + j * p.ldb);
    index_t i = 0;
    for (; i + line <= p.outer; i += line) {
        tiles<wide, line / (wide * per_lane<T>)>(
            p, op, i, j0, j1,
            [&](index_t row, index_t j, auto v)
                VOX_INLINED { store(flat(ends[j - j0].begun + place[j - j0] + (row - i)), v); },
            fetching(p, i));
        for (index_t j = 0; j < j1 - j0; ++j) {
            T *const to = p.b + (j0 + j) * p.ldb + i - place[j];
            if (i > 0 || place[j] == 0)
                stream_line(flat(to), flat(ends[j].begun));
            else
                for (int e = place[j]; e < line; ++e)
                    to[e] = ends[j].begun[e];
            __builtin_memcpy(ends[j].begun, ends[j].next, 64);
        }
    }
    for (index_t j = 0; j < j1 - j0; ++j)
        for (int e = 0; e < place[j]; ++e)
            p.b[(j0 + j) * p.ldb + i - place[j] + e] = ends[j].begun[e];
    piece(op, part_of(p, i, p.outer, j0, j1));
}

// Short rows of B that follow each other without a gap are one long row: blocks of it are put together on
// the stack and streamed as they are.
constexpr int joined_bytes = 20 * 1024;
template <class T>
VOX_INLINE index_t joined_columns(const problem<T> &p) {
    const index_t columns = joined_bytes / int(sizeof(T)) / p.outer / per_lane<T> * per_lane<T>;
    return p.ldb == p.outer && columns >= per_line<T> ? columns : 0;
}
template <class T, class Op>
VOX_INLINE void past_caches_joined(const problem<T> &p, const Op &op, index_t columns) {
    alignas(64) T block[joined_bytes / int(sizeof(T))];
    for (index_t j = 0; j < p.inner; j += columns) {
        const index_t n = p.inner - j < columns ? p.inner - j : columns;
        piece(op, problem<T>{p.outer, n, p.a + j, p.lda, block, p.outer});
        for (index_t i = 0; i < p.outer; ++i)
            for (index_t k = 0; k < columns; k += per_line<T>)
                __builtin_prefetch(p.a + i * p.lda + j + columns + k, 0, 2);
        stream_row(moved<T>(), n * p.outer, block, p.b + j * p.ldb);
    }
}

template <class T>
VOX_INLINE bool goes_past_caches(const problem<T> &p) {
    return streams<T>(p.outer, p.inner) && place_in_line(p.b) >= 0 &&
           (p.outer >= 4 * per_line<T> || joined_columns(p) > 0);
}

template <class T, class Op>
VOX_APART void past_all_caches(const problem<T> p, const Op op) {
    if (const index_t columns = joined_columns(p); columns > 0)
        past_caches_joined(p, op, columns);
    else if (p.ldb % per_line<T> == 0)
        by_blocks<T>(p.inner, block_columns, [&](index_t j0, index_t j1) VOX_INLINED {
            past_caches(p, op, j0, j1, -place_in_line(p.b) & (per_line<T> - 1));
        });
    else
        by_blocks<T>(p.inner, carried_columns, [&](index_t j0, index_t j1) VOX_INLINED {
            past_caches_carried(p, op, j0, j1);
        });
    streaming_done();
}

template <class T, class Op>
VOX_INLINE void transpose(const Op &op, const problem<T> &p) {
    if (goes_past_caches(p))
        past_all_caches(p, op);
    else if (is_gathered(p))
        gathered(p, op);
    else
        in_caches(op, p);
}

} // namespace trans
} // namespace
