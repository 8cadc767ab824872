// triangular.hpp - x := op(A) x and the solution of op(A) y = x, in place, A triangular.
//
// What is large, or strided, goes block by block: the triangle on the diagonal by the kernel of the
// operation, what lies between it and the rest as a product, which has threads.
#pragma once

#include "blas/drivers/product.hpp"

namespace vox::triangular {

template <class T, class Kernel>
void triangle_on_diagonal(Kernel kernel, triangular_job<T> job, const strided<T> &x) {
    T copy[piece<T>];
    job.x = x.contiguous();
    if (job.x)
        return kernel(&job);
    for (index_t i = job.first; i < job.end; ++i)
        copy[i - job.first] = x[i];
    job.x = copy - job.first;
    kernel(&job);
    for (index_t i = job.first; i < job.end; ++i)
        x[i] = copy[i - job.first];
}

// A block's columns of the stored triangle are its own corner and, above or below it, a rectangle.
// Untransposed, the rectangle takes the block's part of x to the other rows, transposed it brings
// theirs to the block; either way the columns are read from end to end. A solution is complete
// before it is taken to others, a product while all that is read still has its old value.
template <class T, class Kernel, class Product>
__attribute__((noinline)) void in_blocks(Kernel kernel, Product product_kernel, bool solve,
                                         const triangular_job<T> &job, const strided<T> &x) {
    const index_t n = job.end, size = piece<T>, blocks = (n + size - 1) / size;
    const bool forwards = (job.upper == job.transposed) == solve;
    const bool corner_first = solve != job.transposed;
    for (index_t b = 0; b < blocks; ++b) {
        triangular_job<T> block = job;
        block.first = (forwards ? b : blocks - 1 - b) * size;
        block.end = end_of_piece<T>(block.first, n);
        if (corner_first)
            triangle_on_diagonal(kernel, block, x);
        const range columns = {block.first, block.end};
        range rows = job.upper ? range{0, block.first} : range{block.end, n};
        const index_t band = job.a.above + job.a.below; // one of them is 0
        if (job.upper && rows.end - band > 0)
            rows.first = rows.end - band;
        if (!job.upper && rows.first + band < n)
            rows.end = rows.first + band;
        if (rows.first < rows.end) {
            product_job<T> rest = {
                job.a,    job.transposed, job.conjugate, rows.first,
                rows.end, columns.first,  columns.end,   solve ? -one<T> : one<T>,
                one<T>};
            product::run<T>(product_kernel, rest, x, x,
                            (rows.end - rows.first) * (columns.end - columns.first));
        }
        if (!corner_first)
            triangle_on_diagonal(kernel, block, x);
    }
}

struct options {
    bool upper, transposed, conjugate, unit_diagonal;
};

template <class T, class Kernel, class Product>
[[gnu::always_inline]] inline void run(Kernel kernel, Product product_kernel, bool solve, options o,
                                       columns<const T> a, index_t n, T *x, index_t incx) {
    triangular_job<T> job = {a, o.upper, o.transposed, o.conjugate, o.unit_diagonal, 0, n, x};
    if (VOX_LIKELY(incx == 1 && n <= 2 * piece<T>))
        return kernel(&job);
    const strided<T> all(x, n, incx);
    if (n <= piece<T>)
        triangle_on_diagonal(kernel, job, all);
    else if (incx == 1 && team_for(n * n / 2 * index_t(sizeof(T))) == 1)
        kernel(&job);
    else
        in_blocks(kernel, product_kernel, solve, job, all);
}

} // namespace vox::triangular
