// clipped.hpp - a panel of columns clipped to the rows that are asked for and that are stored.
#pragma once

#include "blas/columns.hpp"
#include "blas/kernels/panels.hpp"

namespace {
namespace panels {

using vox::columns;

VOX_PANEL index_t larger(index_t a, index_t b) { return a > b ? a : b; }
VOX_PANEL index_t smaller(index_t a, index_t b) { return a < b ? a : b; }

// The C columns of A from column j on, as pointers to their row i.
template <int C, class T>
struct pointers {
    T *at[C];
    VOX_PANEL pointers(const columns<T> &A, index_t j, index_t i) {
        unroll<C>([&](auto c) VOX_INLINED { at[c] = A(j + c) + i; });
    }
};

// piece(constant<C>, j, first row, end row) for the rows that columns j .. j + C - 1 share, and
// piece(constant<1>, column, ...) for what single columns have beyond them, as in band matrices.
template <int C, class T, class Piece>
VOX_PANEL void clipped(const columns<T> &A, index_t j, index_t first, index_t end,
                       const Piece &piece) {
    if (first >= end)
        return;
    const index_t from = larger(first, A.first(j + C - 1)), to = smaller(end, A.end(j));
    const bool shared = C > 1 && from < to;
    if (shared) {
        piece(constant<C>(), j, from, to);
        if (VOX_LIKELY(from == first && to == end))
            return;
    }
    for (index_t k = j; k < j + C; ++k) {
        const index_t top = larger(first, A.first(k)), bottom = smaller(end, A.end(k));
        for (int below = 0; below <= int(shared); ++below) {
            const index_t begin = below ? larger(top, to) : top;
            const index_t stop = shared && !below ? smaller(bottom, from) : bottom;
            if (begin < stop)
                piece(constant<1>(), k, begin, stop);
        }
    }
}

// The next two are shared by all their callers of a kernel source.

// y[i] += sum_j A(i, j) s[j], or with conj(A), over columns j .. j + C - 1 and rows first .. end.
// s is given for column j on, y for row 0 on.
template <int C, class T>
__attribute__((noinline)) void across_clipped(const columns<const T> &A, index_t j, index_t first,
                                              index_t end, const T *s, T *y, bool conjugate) {
    clipped<C>(A, j, first, end, [&](auto count, index_t k, index_t from, index_t to) VOX_INLINED {
        const pointers<count, const T> p(A, k, from);
        across<count>(to - from, p.at, s + (k - j), y + from, conjugate);
    });
}

// t[j] = sum_i A(i, j) x[i], or with conj(A); x is given for row 0 on, t for column j on.
template <int C, class T>
__attribute__((noinline)) void along_clipped(const columns<const T> &A, index_t j, index_t first,
                                             index_t end, const T *x, T *t, bool conjugate) {
    unroll<C>([&](auto c) VOX_INLINED { t[c] = T{}; });
    clipped<C>(A, j, first, end, [&](auto count, index_t k, index_t from, index_t to) VOX_INLINED {
        const pointers<count, const T> p(A, k, from);
        T part[count];
        along<count>(to - from, p.at, x + from, part, conjugate);
        unroll<count>([&](auto c) VOX_INLINED { t[k - j + c] += part[c]; });
    });
}

// step(constant<C>, j) for all columns, forwards or backwards, in groups of C columns as long as
// they go, then of the next smaller size that is given.
template <int C, int... Smaller, class Step>
VOX_PANEL void for_groups(bool forwards, index_t first, index_t end, const Step &step) {
    if (forwards)
        for (; end - first >= C; first += C)
            step(constant<C>(), first);
    else
        for (; end - first >= C; end -= C)
            step(constant<C>(), end - C);
    if constexpr (sizeof...(Smaller) > 0)
        if (first < end)
            for_groups<Smaller...>(forwards, first, end, step);
}

} // namespace panels
} // namespace
