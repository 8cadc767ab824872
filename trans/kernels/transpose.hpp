// transpose.hpp - B := op(A)^T for matrices of any size, in an order that suits caches and pages.
//
// A has `outer` rows of `inner` elements that lie side by side, B has `inner` rows of `outer`. The walk
// goes down all of A over a block of its columns: every cache line of B is written at once and never
// met again, every line of A is read by a few tiles in a row, and the pages of a block's rows of B
// stay known to the processor. So power-of-two leading dimensions, whose lines fall into few sets
// of a cache, find little that could be evicted too early.
//
// Large results go past the caches in whole lines: straight from registers where the rows of B begin at
// the same place of a line, through a line per row on the stack where they do not.
//
// The last tiles of a row or column overlap the ones before, since op gives the same bits each time.
#pragma once

#include "trans/kernels/lines.hpp"

namespace {
namespace trans {

// Columns of A in a block: what they hold of B must stay in the first-level cache where lines are
// written in two parts.
constexpr index_t block_columns = 128, carried_columns = 64;

// Where the rows of A have the same place in a cache, fetching ahead evicts what is needed sooner.
template <class T>
VOX_INLINE bool fetch_ahead(index_t lda) {
    return lda * index_t(sizeof(T)) % 2048 != 0;
}

template <class T>
struct problem {
    index_t outer, inner;
    const T *a;
    index_t lda;
    T *b;
    index_t ldb;
};

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

// Rows from .. to-1 of A, at least Lanes per_lane of them above row `to`.
template <int Lanes, class T, class Op>
VOX_INLINE void some_rows(const problem<T> &p, const Op &op, index_t from, index_t to, index_t j0,
                          index_t j1) {
    constexpr int rows = Lanes * per_lane<T>;
    index_t i = from;
    for (; i + rows <= to; i += rows)
        tiles<Lanes, 1>(p, op, i, j0, j1, stored(p));
    if (i < to)
        tiles<Lanes, 1>(p, op, to - rows, j0, j1, stored(p));
}

template <class T, class Op>
VOX_INLINE void through_caches(const problem<T> &p, const Op &op, index_t j0, index_t j1) {
    constexpr int lanes = vector_bytes / 16, line = per_line<T>;
    index_t i = 0;
    for (; i + line <= p.outer; i += line)
        tiles<lanes, line / per_vector<T>>(p, op, i, j0, j1, stored(p));
    some_rows<lanes>(p, op, i, p.outer, j0, j1);
}

// Fetches the lines of A that will be needed after this walk along row i: those of some rows for each
// tile of a line.
template <class T>
VOX_INLINE auto fetching(const problem<T> &p, index_t i, bool fetch) {
    return [=](index_t j) VOX_INLINED {
        constexpr int line = per_line<T>, k = per_lane<T>;
        if (!fetch)
            return;
        const T *const next = p.a + (i + line + j / k % 4 * (line / 4)) * p.lda + j / line * line;
        unroll<line / 4>([&](auto r) VOX_INLINED { __builtin_prefetch(next + r * p.lda); });
    };
}

// The rows of B begin at the same place of a line, skip elements before the next one.
template <class T, class Op>
VOX_INLINE void past_caches(const problem<T> &p, const Op &op, index_t j0, index_t j1, index_t skip,
                            bool fetch) {
    constexpr int lanes = vector_bytes / 16, line = per_line<T>;
    for (index_t i = 0; i < skip; i += per_vector<T>)
        tiles<lanes, 1>(p, op, i, j0, j1, stored(p));
    index_t i = skip;
    for (; i + line <= p.outer; i += line)
        tiles<lanes, line / per_vector<T>>(
            p, op, i, j0, j1,
            [&](index_t row, index_t j, auto v)
                VOX_INLINED { stream_vector(flat(p.b + j * p.ldb + row), v); },
            fetching(p, i, fetch));
    some_rows<lanes>(p, op, i, p.outer, j0, j1);
}

// The rows of B begin anywhere in a line: what a tile has beyond the last whole line of a row is kept
// until the next one completes it.
template <class T, class Op>
VOX_INLINE void past_caches_carried(const problem<T> &p, const Op &op, index_t j0, index_t j1,
                                    bool fetch) {
    constexpr int lanes = vector_bytes / 16, line = per_line<T>, k = per_lane<T>;
    struct alignas(64) row_end {
        T begun[line], next[line];
    };
    row_end ends[carried_columns + k];
    int place[carried_columns + k];
    for (index_t j = j0; j < j1; ++j)
        place[j - j0] = place_in_line(p.b + j * p.ldb);
    index_t i = 0;
    for (; i + line <= p.outer; i += line) {
        tiles<lanes, line / per_vector<T>>(
            p, op, i, j0, j1,
            [&](index_t row, index_t j, auto v)
                VOX_INLINED { store(flat(ends[j - j0].begun + place[j - j0] + (row - i)), v); },
            fetching(p, i, fetch));
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
    some_rows<lanes>(p, op, i, p.outer, j0, j1);
}

// Blocks of columns, the last one with all that would be less than a tile.
template <class T, class Walk>
VOX_INLINE void by_blocks(index_t inner, index_t width, const Walk &walk) {
    for (index_t j0 = 0, j1; j0 < inner; j0 = j1) {
        j1 = inner - j0 < width + per_lane<T> ? inner : j0 + width;
        walk(j0, j1);
    }
}

template <class T, class Op>
VOX_INLINE void transpose(const Op &op, const problem<T> &p) {
    if (p.inner < per_lane<T> || p.outer < per_lane<T>) {
        for (index_t j = 0; j < p.inner; ++j)
            for (index_t i = 0; i < p.outer; ++i)
                one_element(op, p.a + i * p.lda + j, p.b + j * p.ldb + i);
    } else if (p.outer < per_vector<T>) {
        some_rows<1>(p, op, 0, p.outer, 0, p.inner);
    } else if (const int place = place_in_line(p.b);
               !streams<T>(p.outer, p.inner) || place < 0 || p.outer < 4 * per_line<T>) {
        by_blocks<T>(p.inner, block_columns,
                     [&](index_t j0, index_t j1) VOX_INLINED { through_caches(p, op, j0, j1); });
    } else if (p.ldb % per_line<T> == 0) {
        const index_t skip = -place & (per_line<T> - 1);
        const bool fetch = fetch_ahead<T>(p.lda);
        by_blocks<T>(p.inner, block_columns, [&](index_t j0, index_t j1) VOX_INLINED {
            past_caches(p, op, j0, j1, skip, fetch);
        });
        streaming_done();
    } else {
        const bool fetch = fetch_ahead<T>(p.lda);
        by_blocks<T>(p.inner, carried_columns, [&](index_t j0, index_t j1) VOX_INLINED {
            past_caches_carried(p, op, j0, j1, fetch);
        });
        streaming_done();
    }
}

} // namespace trans
} // namespace
