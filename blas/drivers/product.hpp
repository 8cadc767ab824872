// product.hpp - y := beta y + alpha op(A) x: pieces for strided vectors, parts for threads.
//
// Threads take parts of y. When y is too short for that, they take parts of x, each with a y of its
// own, and these are added in order.
#pragma once

#include "blas/drivers/team.hpp"
#include "blas/drivers/vectors.hpp"
#include "blas/jobs.hpp"
#include "serv/scratch.hpp"

namespace vox::product {

// The rows or columns that belong to y, and those that belong to x.
template <class T>
range of_y(const product_job<T> &job) {
    return job.transposed ? range{job.first_column, job.end_column}
                          : range{job.first_row, job.end_row};
}
template <class T>
range of_x(const product_job<T> &job) {
    return job.transposed ? range{job.first_row, job.end_row}
                          : range{job.first_column, job.end_column};
}
template <class T>
product_job<T> cut(product_job<T> job, range y, range x) {
    const range &rows = job.transposed ? x : y, &columns = job.transposed ? y : x;
    job.first_row = rows.first;
    job.end_row = rows.end;
    job.first_column = columns.first;
    job.end_column = columns.end;
    return job;
}

// In pieces; the matrix is still read once only.
template <class T, class Kernel>
__attribute__((noinline)) void in_pieces(Kernel kernel, const product_job<T> &job,
                                         const strided<const T> &x, const strided<T> &y) {
    const range all_y = of_y(job), all_x = of_x(job);
    piece_to_read<T> x_piece;
    piece_to_add<T> y_piece;
    for (index_t i = all_y.first; i < all_y.end; ++i) // pieces are added to y
        y[i] = is_zero(job.beta) ? T{} : job.beta * y[i];
    if (is_zero(job.alpha))
        return;
    for (range ys = all_y; ys.first < all_y.end; ys.first = ys.end) {
        ys.end = y.contiguous() ? all_y.end : end_of_piece<T>(ys.first, all_y.end);
        T *const sum = y_piece.at(y, ys.first, ys.end);
        for (range xs = all_x; xs.first < all_x.end; xs.first = xs.end) {
            xs.end = x.contiguous() ? all_x.end : end_of_piece<T>(xs.first, all_x.end);
            product_job<T> part = cut(job, ys, xs);
            part.beta = one<T>;
            part.x = x_piece.at(x, xs.first, xs.end);
            part.y = sum;
            kernel(&part);
        }
        y_piece.bring_home(y, ys.first, ys.end);
    }
}

template <class T, class Kernel>
[[gnu::always_inline]] inline void serial(Kernel kernel, product_job<T> &job,
                                          const strided<const T> &x, const strided<T> &y) {
    job.x = x.contiguous();
    job.y = y.contiguous();
    if (VOX_LIKELY(job.x && job.y))
        kernel(&job);
    else
        in_pieces(kernel, job, x, y);
}

// A cache line of y for each thread, at the least.
template <class T>
constexpr index_t block = 64 / index_t(sizeof(real_of<T>));

template <class T, class Kernel>
__attribute__((noinline)) void threaded(Kernel kernel, const product_job<T> &job,
                                        const strided<const T> &x, const strided<T> &y,
                                        index_t threads) {
    const range all_y = of_y(job), all_x = of_x(job);
    const index_t n = all_y.end - all_y.first;
    if (n >= 4 * threads * block<T>)
        return for_parts(threads, [&](index_t part) {
            product_job<T> mine = cut(job, even_part(part, threads, all_y, block<T>), all_x);
            serial(kernel, mine, x, y);
        });
    const scratch<T> sums(threads * n, 128);
    product_job<T> whole = job;
    if (sums.empty())
        return serial(kernel, whole, x, y);
    const auto sum_of = [&](index_t part) {
        return strided<T>(sums.data() + part * n - all_y.first, n, 1);
    };
    for_parts(threads, [&](index_t part) {
        product_job<T> mine = cut(job, all_y, even_part(part, threads, all_x, block<T>));
        mine.beta = T{};
        serial(kernel, mine, x, sum_of(part));
    });
    for (index_t i = all_y.first; i < all_y.end; ++i) {
        T sum = sum_of(0)[i];
        for (index_t part = 1; part < threads; ++part)
            sum += sum_of(part)[i];
        y[i] = is_zero(job.beta) ? sum : job.beta * y[i] + sum;
    }
}

// `stored`: how many elements of A there are in the rows and columns of the job.
template <class T, class Kernel>
[[gnu::always_inline]] inline void run(Kernel kernel, product_job<T> &job,
                                       const strided<const T> &x, const strided<T> &y,
                                       index_t stored) {
    const index_t threads = team_for(stored * index_t(sizeof(T)));
    if (VOX_UNLIKELY(threads > 1))
        threaded(kernel, job, x, y, threads);
    else
        serial(kernel, job, x, y);
}

} // namespace vox::product
