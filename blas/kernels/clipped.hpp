// clipped.hpp - a panel of columns clipped to the rows that are asked for and that are stored.
#pragma once

#include "blas/columns.hpp"
#include "blas/kernels/panels.hpp"

namespace {
namespace panels {

using vox::columns;

VOX_INLINE index_t larger(index_t a, index_t b) { return a > b ? a : b; }
VOX_INLINE index_t smaller(index_t a, index_t b) { return a < b ? a : b; }

// The C columns of A from column j on, as pointers to their row i.
template <int C, class T>
struct pointers {
    T *at[C];
    VOX_INLINE pointers(const columns<T> &A, index_t j, index_t i) {
        at[0] = A(j) + i;
        index_t step = A.lda + A.bend * j; // from column j to the next
        unroll<C - 1>([&](auto c) VOX_INLINED {
            at[c + 1] = at[c] + step;
            step += A.bend;
        });
    }
};

// panel(from, to) for the rows that columns j .. j + C - 1 share, and element(c, column, i)
// for what column j + c has beyond them, at the ragged ends of band matrices.
template <int C, class T, class Panel, class Element>
VOX_INLINE void clipped(const columns<T> &A, index_t j, index_t first, index_t end,
                        const Panel &panel, const Element &element) {
    if (first >= end)
        return;
    index_t from = larger(first, A.first(j + C - 1)), to = smaller(end, A.end(j));
    if (VOX_LIKELY(from < to)) {
        panel(from, to);
        if (VOX_LIKELY(C == 1 || (from == first && to == end)))
            return;
    } else {
        from = to = end;
    }
    const auto elements = [&](int c, T *column, index_t begin, index_t stop) VOX_INLINED {
        for (index_t i = begin; i < stop; ++i) {
            element(c, column, i);
            stay_scalar();
        }
    };
    T *column = A(j);
    for (int c = 0; c < C; column += A.lda + A.bend * (j + c), ++c) {
        elements(c, column, larger(first, A.first(j + c)), smaller(from, A.end(j + c)));
        elements(c, column, to, smaller(end, A.end(j + c)));
    }
}

// y[i] += sum_j A(i, j) s[j], or with conj(A), over columns j .. j + C - 1 and rows first .. end.
// s is given for column j on, y for row 0 on.
template <int C, class T>
VOX_INLINE void across_clipped(const columns<const T> &A, index_t j, index_t first, index_t end,
                               const T *s, T *y, bool conjugate) {
    clipped<C>(
        A, j, first, end,
        [&](index_t from, index_t to) VOX_INLINED {
            const pointers<C, const T> p(A, j, from);
            across<C>(to - from, p.at, s, y + from, conjugate);
        },
        [&](int c, const T *column, index_t i)
            VOX_INLINED { y[i] += conj_if(conjugate, column[i]) * s[c]; });
}

// t[j] = sum_i A(i, j) x[i], or with conj(A); x is given for row 0 on, t for column j on.
template <int C, class T>
VOX_INLINE void along_clipped(const columns<const T> &A, index_t j, index_t first, index_t end,
                              const T *x, T *t, bool conjugate) {
    unroll<C>([&](auto c) VOX_INLINED { t[c] = T{}; });
    clipped<C>(
        A, j, first, end,
        [&](index_t from, index_t to) VOX_INLINED {
            const pointers<C, const T> p(A, j, from);
            along<C>(to - from, p.at, x + from, t, conjugate);
        },
        [&](int c, const T *column, index_t i)
            VOX_INLINED { t[c] += conj_if(conjugate, column[i]) * x[i]; });
}

// The same, shared by all their callers in a kernel source.
template <int C, class T>
__attribute__((noinline)) void shared_across(const columns<const T> &A, index_t j, index_t first,
                                             index_t end, const T *s, T *y, bool conjugate) {
    across_clipped<C>(A, j, first, end, s, y, conjugate);
}
template <int C, class T>
__attribute__((noinline)) void shared_along(const columns<const T> &A, index_t j, index_t first,
                                            index_t end, const T *x, T *t, bool conjugate) {
    along_clipped<C>(A, j, first, end, x, t, conjugate);
}

// step(constant<C>, j) for all columns, forwards or backwards, in groups of C columns as long as
// they go, then of the next smaller size that is given.
template <int C, int... Smaller, class Step>
VOX_INLINE void for_groups(bool forwards, index_t first, index_t end, const Step &step) {
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
