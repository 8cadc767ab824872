// ger.cpp - updates of rank one and two, of a rectangle or of a stored triangle: ?ger, ?syr, ?syr2,
// their Hermitian and packed forms.
#include "blas/jobs.hpp"
#include "blas/kernels/clipped.hpp"

namespace {

using namespace panels;
using vox::is_zero;
using vox::update_job;

// Columns j .. j + C - 1 get x s, or x s + y r in updates of rank two. Columns whose factors are
// zero are left out, NaN or not, as the reference does.
template <int Rank, int C, class T>
VOX_INLINE void step(const update_job<T> &job, index_t j) {
    const bool upper = job.where == job.upper, lower = job.where == job.lower;
    const T *const x = job.x_rows, *const y = job.y_rows;
    T s[C], r[C];
    bool left_out[C], some_left_out = false;
    unroll<C>([&](auto c) VOX_INLINED {
        const T yc = conj_if(job.conjugated, job.y_columns[j + c]);
        s[c] = job.alpha * yc;
        left_out[c] = is_zero(yc);
        if constexpr (Rank == 2) {
            const T xc = conj_if(job.conjugated, job.x_columns[j + c]);
            r[c] = conj_if(job.conjugated, job.alpha) * xc;
            left_out[c] = left_out[c] && is_zero(xc);
        }
        some_left_out |= left_out[c];
    });
    const index_t first = lower ? j + C : job.first_row, end = upper ? j : job.end_row;
    const auto columns_from = [&](auto count, index_t c) VOX_INLINED {
        const pointers<count, T> p(job.a, j + c, first);
        if constexpr (Rank == 1)
            update<count>(end - first, p.at, x + first, s + c);
        else
            update<count>(end - first, p.at, x + first, s + c, y + first, r + c);
    };
    if (VOX_LIKELY(!some_left_out)) {
        columns_from(constant<C>(), 0);
    } else {
        for (int c = 0; c < C; ++c)
            if (!left_out[c])
                columns_from(constant<1>(), c);
    }
    if (!upper && !lower)
        return;
    const pointers<C, T> corner(job.a, j, j);
    unroll<C>([&](auto c) VOX_INLINED {
        T *const column = corner.at[c];
        if (!left_out[c])
            unroll<C>([&](auto i) VOX_INLINED {
                if (upper ? i <= c : i >= c) {
                    T sum = column[i] + x[j + i] * s[c];
                    if constexpr (Rank == 2)
                        sum += y[j + i] * r[c];
                    column[i] = sum;
                }
            });
        if (job.conjugated)
            column[c] = make<T>(real(column[c]));
    });
}

// Real rectangles beyond the second-level cache: one column after the other by half vectors streams faster
// there, see far_bytes.
template <class T>
VOX_INLINE void far_rectangle(const update_job<T> &job) {
    const index_t first = job.first_row, rows = job.end_row - first, whole_rows = rows / 8 * 8;
    for (index_t j = job.first_column; j < job.end_column; ++j) {
        const T y = conj_if(job.conjugated, job.y_columns[j]), s = job.alpha * y;
        if (is_zero(y))
            continue;
        const pointers<1, T> p(job.a, j, first), rest(job.a, j, first + whole_rows);
        update<1, 32>(whole_rows, p.at, job.x_rows + first, &s);
        update<1>(rows - whole_rows, rest.at, job.x_rows + first + whole_rows, &s);
    }
}

template <class T>
VOX_INLINE void ger(const update_job<T> &job) {
    if constexpr (vector_bytes == 64 && !is_complex<T>) {
        const index_t size = (job.end_row - job.first_row) * (job.end_column - job.first_column);
        if (job.where == job.rectangle && !job.rank_two &&
            size * index_t(sizeof(T)) >= 2 * far_bytes)
            return far_rectangle(job);
    }
    if (job.rank_two)
        for_groups<group_of_both<T>, 1>(true, job.first_column, job.end_column,
                                        [&](auto count, index_t j)
                                            VOX_INLINED { step<2, count>(job, j); });
    else
        for_groups<group<T>, 1>(true, job.first_column, job.end_column,
                                [&](auto count, index_t j) VOX_INLINED { step<1, count>(job, j); });
}

} // namespace

#define GER(p, P, T)                                                                               \
    extern "C" void VOX_KERNEL(blas, p##ger)(const vox::update_job<T> *job) { ger(*job); }
VOX_PRECISIONS(GER)
