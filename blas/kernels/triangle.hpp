// triangle.hpp - the walk over a triangle that trmv and trsv share: groups of columns, each with its
// corner on the diagonal and the rows above or below it.
//
// A routine is a struct of two steps on columns j .. j + C - 1, for A and for its transpose:
//
//   struct product {
//       static constexpr bool solves = false;
//       template <bool Upper, int C, class T> static void across(const triangular_job<T> &, index_t j);
//       template <bool Upper, int C, class T> static void along(const triangular_job<T> &, index_t j);
//   };
#pragma once

#include "blas/jobs.hpp"
#include "blas/kernels/clipped.hpp"

namespace {
namespace panels {

using vox::is_zero;
using vox::triangular_job;

// The rows of a group of columns beside their corner.
struct rows_beside {
    index_t first, end;
};
template <bool Upper, int C, class T>
VOX_INLINE rows_beside beside(const triangular_job<T> &job, index_t j) {
    return {Upper ? job.first : j + C, Upper ? j : job.end};
}

// Whether row r of the corner's column c is stored, off the diagonal.
template <bool Upper, int R, int C>
constexpr bool off_diagonal = Upper ? R<C : R> C;

// x += A(:, j ...) s beside the corner. A zero in s leaves its column out, NaN or not, as the reference
// does.
template <bool Upper, int C, class T>
VOX_INLINE void take_across(const triangular_job<T> &job, index_t j, const T (&s)[C]) {
    const rows_beside rows = beside<Upper, C>(job, j);
    bool some_zero = false;
    unroll<C>([&](auto c) VOX_INLINED { some_zero |= is_zero(s[c]); });
    if (VOX_LIKELY(!some_zero))
        return shared_across<C>(job.a, j, rows.first, rows.end, s, job.x, job.conjugate);
    for (int c = 0; c < C; ++c)
        if (!is_zero(s[c]))
            shared_across<1>(job.a, j + c, rows.first, rows.end, s + c, job.x, job.conjugate);
}

// A product overwrites an element of x when nothing needs its old value any more, a solution uses it
// when it is complete: the same orders, exchanged.
template <class Routine, bool Upper, int C, class T>
VOX_INLINE void all_columns(const triangular_job<T> &job) {
    if (job.transposed)
        for_groups<C, 1>(Upper == Routine::solves, job.first, job.end,
                         [&](auto count, index_t j)
                             VOX_INLINED { Routine::template along<Upper, count>(job, j); });
    else
        for_groups<C, 1>(Upper != Routine::solves, job.first, job.end,
                         [&](auto count, index_t j)
                             VOX_INLINED { Routine::template across<Upper, count>(job, j); });
}

template <class Routine, bool Upper, class T>
__attribute__((noinline)) void whole_triangle(const triangular_job<T> &job) {
    // A band narrower than a group has no corner of full size.
    if (VOX_UNLIKELY(job.a.above + job.a.below < group<T> - 1))
        all_columns<Routine, Upper, 1>(job);
    else
        all_columns<Routine, Upper, group<T>>(job);
}

template <class Routine, class T>
VOX_INLINE void walk(const triangular_job<T> &job) {
    job.upper ? whole_triangle<Routine, true>(job) : whole_triangle<Routine, false>(job);
}

} // namespace panels
} // namespace
