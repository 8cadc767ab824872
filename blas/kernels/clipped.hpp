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
        unroll<C>([&](auto c) { at[c] = A(j + c) + i; });
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

// y[i] += sum_j A(i, j) s[j], or with conj(A), over columns j .. j + C - 1 and rows first .. end.
// s is given for column j on, y for row 0 on.
template <int C, class T>
VOX_PANEL void across_clipped(const columns<const T> &A, index_t j, index_t first, index_t end,
                              const T *s, T *y, bool conjugate) {
    clipped<C>(A, j, first, end, [&](auto count, index_t k, index_t from, index_t to) {
        const pointers<count, const T> p(A, k, from);
        across<count>(to - from, p.at, s + (k - j), y + from, conjugate);
    });
}

// t[j] = sum_i A(i, j) x[i], or with conj(A); x is given for row 0 on, t for column j on.
template <int C, class T>
VOX_PANEL void along_clipped(const columns<const T> &A, index_t j, index_t first, index_t end,
                             const T *x, T *t, bool conjugate) {
    unroll<C>([&](auto c) { t[c] = T{}; });
    clipped<C>(A, j, first, end, [&](auto count, index_t k, index_t from, index_t to) {
        const pointers<count, const T> p(A, k, from);
        T part[count];
        along<count>(to - from, p.at, x + from, part, conjugate);
        unroll<count>([&](auto c) { t[k - j + c] += part[c]; });
    });
}

// step(constant<C>, j) for all columns, in groups as large as they go, forwards or backwards.
template <int C, class Step>
VOX_PANEL void for_groups(bool forwards, index_t first, index_t end, const Step &step) {
    const index_t groups = (end - first) / C, rest = (end - first) % C;
    if (forwards) {
        index_t j = first;
        for (index_t g = 0; g < groups; ++g, j += C)
            step(constant<C>(), j);
        if constexpr (C > 1)
            for (index_t r = 0; r < rest; ++r, ++j)
                step(constant<1>(), j);
    } else {
        index_t j = end;
        for (index_t g = 0; g < groups; ++g)
            step(constant<C>(), j -= C);
        if constexpr (C > 1)
            for (index_t r = 0; r < rest; ++r)
                step(constant<1>(), --j);
    }
}

} // namespace panels
} // namespace
