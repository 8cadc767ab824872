// symmetric.hpp - y := beta y + alpha A x, A symmetric or Hermitian, of which one triangle is
// stored: pieces for strided vectors, parts for threads.
//
// A thread takes columns of the triangle, of about the same area as any other's, and sums into a y
// of its own; these are added in order.
#pragma once

#include "blas/drivers/team.hpp"
#include "blas/drivers/vectors.hpp"
#include "blas/jobs.hpp"
#include "serv/scratch.hpp"

namespace vox::symmetric {

// Squares on the diagonal and rectangles beside it.
template <class T, class Kernel>
__attribute__((noinline)) void in_pieces(Kernel kernel, symmetric_job<T> job, index_t n,
                                         const strided<const T> &x, const strided<T> &y) {
    piece_to_read<T> x_columns, x_rows;
    piece_to_add<T> y_columns, y_rows;
    constexpr index_t size = piece<T>;
    for (index_t j = 0; j < n; j += size) {
        job.first_column = j;
        job.end_column = end_of_piece<T>(j, n);
        job.x_columns = x_columns.at(x, j, job.end_column);
        job.y_columns = y_columns.at(y, j, job.end_column);
        const auto rows = [&](index_t first, index_t end) {
            job.first_row = first;
            job.end_row = end;
            job.on_diagonal = first == j;
            job.x_rows = job.on_diagonal ? job.x_columns : x_rows.at(x, first, end);
            job.y_rows = job.on_diagonal ? job.y_columns : y_rows.at(y, first, end);
            kernel(&job);
            if (!job.on_diagonal)
                y_rows.bring_home(y, first, end);
        };
        const index_t last = job.end_column - 1;
        const index_t first = job.a.first(j), end = job.a.end(last);
        for (index_t i = 0; i < n; i += size)
            if (end_of_piece<T>(i, n) > first && i < end)
                rows(i, end_of_piece<T>(i, n));
        y_columns.bring_home(y, j, job.end_column);
    }
}

template <class T, class Kernel>
bool threaded(Kernel kernel, const symmetric_job<T> &job, index_t n, const strided<const T> &x,
              const strided<T> &y, index_t threads) {
    // A y for each thread, and x if it is not contiguous.
    const scratch<T> sums((threads + 1) * n, 128);
    if (sums.empty())
        return false;
    const T *all_x = x.contiguous();
    if (!all_x) {
        T *const copy = sums.data() + threads * n;
        for (index_t i = 0; i < n; ++i)
            copy[i] = x.get(i);
        all_x = copy;
    }
    const bool band = job.a.above + job.a.below < n;
    for_parts(threads, [&](index_t part) {
        const range mine =
            band ? even_part(part, threads, {0, n}, 1) : triangle_part(part, threads, n, job.upper);
        T *const sum = sums.data() + part * n;
        for (index_t i = 0; i < n; ++i)
            sum[i] = T{};
        symmetric_job<T> share = job;
        share.first_column = mine.first;
        share.end_column = mine.end;
        share.x_rows = share.x_columns = all_x;
        share.y_rows = share.y_columns = sum;
        kernel(&share);
    });
    for (index_t i = 0; i < n; ++i) {
        T sum = sums[i];
        for (index_t part = 1; part < threads; ++part)
            sum += sums[part * n + i];
        y[i] += sum;
    }
    return true;
}

struct options {
    bool upper, hermitian, conjugate;
};

// `stored`: how many elements of A there are.
template <class T, class Kernel>
[[gnu::always_inline]] inline void run(Kernel kernel, options o, columns<const T> a, index_t n,
                                       index_t stored, T alpha, const strided<const T> &x, T beta,
                                       const strided<T> &y) {
    scale(beta, y, n);
    if (is_zero(alpha))
        return;
    symmetric_job<T> job = {
        a,     o.upper,        o.hermitian,    o.conjugate,    true,          0, n, 0, n,
        alpha, x.contiguous(), x.contiguous(), y.contiguous(), y.contiguous()};
    const index_t threads = team_for(stored * index_t(sizeof(T)));
    if (VOX_UNLIKELY(threads > 1) && threaded(kernel, job, n, x, y, threads))
        return;
    if (VOX_LIKELY(job.x_rows && job.y_rows))
        kernel(&job);
    else
        in_pieces(kernel, job, n, x, y);
}

} // namespace vox::symmetric
