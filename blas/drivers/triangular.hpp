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

// Blocks from the first to the last or the other way round. A solution needs the other elements of
// x when they are solved for, a product while they still have their old values.
template <class T, class Kernel, class Product>
__attribute__((noinline)) void in_blocks(Kernel kernel, Product product_kernel, bool solve,
                                         const triangular_job<T> &job, const strided<T> &x) {
    const index_t n = job.end, size = piece<T>, blocks = (n + size - 1) / size;
    const bool needs_earlier = job.upper == job.transposed; // elements of x before its own
    const bool forwards = needs_earlier == solve;
    for (index_t b = 0; b < blocks; ++b) {
        triangular_job<T> block = job;
        block.first = (forwards ? b : blocks - 1 - b) * size;
        block.end = end_of_piece<T>(block.first, n);
        if (!solve)
            triangle_on_diagonal(kernel, block, x);
        const range mine = {block.first, block.end};
        range others = needs_earlier ? range{0, mine.first} : range{mine.end, n};
        const index_t band = job.a.above + job.a.below; // one of them is 0
        if (needs_earlier && mine.first - band > 0)
            others.first = mine.first - band;
        if (!needs_earlier && mine.end + band < n)
            others.end = mine.end + band;
        if (others.first < others.end) {
            product_job<T> rest = {
                job.a, job.transposed,           job.conjugate, 0,       0,      0,
                0,     solve ? -one<T> : one<T>, one<T>,        nullptr, nullptr};
            rest = product::cut(rest, mine, others);
            const index_t width = others.end - others.first;
            product::run<T>(product_kernel, rest, x, x, width * (mine.end - mine.first));
        }
        if (solve)
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
