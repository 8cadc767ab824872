// update.hpp - updates of rank one and two of a rectangle or a stored triangle: pieces for strided
// vectors, parts of columns for threads.
#pragma once

#include "blas/drivers/team.hpp"
#include "blas/drivers/vectors.hpp"
#include "blas/jobs.hpp"

namespace vox::update {

// x and y as the rows see them; the columns see the same vectors in a triangle, and only y in an
// update of a rectangle, which is of rank one.
template <class T>
struct vectors {
    strided<const T> x, y;
};

// Columns first .. end - 1 in squares and rectangles.
template <class T, class Kernel>
__attribute__((noinline)) void in_pieces(Kernel kernel, update_job<T> job, const vectors<T> &v) {
    piece_to_read<T> x_rows, y_rows, x_columns, y_columns;
    const auto where = job.where;
    const index_t m = job.end_row, n = job.end_column;
    for (index_t j = job.first_column; j < n; j = job.end_column) {
        job.first_column = j;
        job.end_column = end_of_piece<T>(j, n);
        job.y_columns = y_columns.at(v.y, j, job.end_column);
        if (job.rank_two)
            job.x_columns = x_columns.at(v.x, j, job.end_column);
        const auto rows = [&](index_t first, index_t end) {
            job.first_row = first;
            job.end_row = end;
            job.x_rows = x_rows.at(v.x, first, end);
            if (job.rank_two)
                job.y_rows = y_rows.at(v.y, first, end);
            kernel(&job);
        };
        const bool triangle = where != update_job<T>::rectangle;
        job.where = update_job<T>::rectangle;
        const index_t top = where == update_job<T>::lower ? job.end_column : 0;
        const index_t bottom = where == update_job<T>::upper ? j : m;
        for (index_t i = top; i < bottom; i += piece<T>)
            rows(i, end_of_piece<T>(i, bottom));
        if (triangle) {
            job.where = where;
            rows(j, job.end_column);
        }
    }
}

template <class T, class Kernel>
[[gnu::always_inline]] inline void serial(Kernel kernel, update_job<T> &job, const vectors<T> &v) {
    job.x_rows = job.x_columns = v.x.contiguous();
    job.y_rows = job.y_columns = v.y.contiguous();
    if (VOX_LIKELY(job.x_rows && job.y_rows))
        kernel(&job);
    else
        in_pieces(kernel, job, v);
}

// `stored`: how many elements of A there are; each is read and written.
template <class T, class Kernel>
[[gnu::always_inline]] inline void run(Kernel kernel, update_job<T> &job, const vectors<T> &v,
                                       index_t stored) {
    const index_t threads = team_for(stored * index_t(sizeof(T)));
    if (VOX_LIKELY(threads == 1))
        return serial(kernel, job, v);
    const index_t n = job.end_column;
    for_parts(threads, [&](index_t part) {
        const range mine = job.where == update_job<T>::rectangle
                               ? even_part(part, threads, {0, n}, 1)
                               : triangle_part(part, threads, n, job.where == update_job<T>::upper);
        update_job<T> share = job;
        share.first_column = mine.first;
        share.end_column = mine.end;
        serial(kernel, share, v);
    });
}

} // namespace vox::update
