// tiny.hpp - products and solutions of a few numbers, one number at a time: done before anything could
// be packed.
#pragma once

#include "blas/kernels/packing.hpp"

namespace {

// Up to so many multiplications of real numbers, by what else there is to do them.
constexpr index_t tiny_product = 8, tiny_triangle = 64, tiny_solution = 125;

template <class T>
VOX_INLINE bool is_tiny(index_t m, index_t n, index_t k, index_t work) {
    return m <= work && n <= work && k <= work && m * n * k * (is_complex<T> ? 2 : 1) <= work;
}

// False if the product is not tiny; alpha is not zero.
template <class T>
__attribute__((noinline)) bool multiply_tiny(const vox::product<T> &job) {
    if (!is_tiny<T>(job.m, job.n, job.k, tiny_product))
        return false;
    const bool overwrite = vox::is_zero(job.beta);
    for (index_t j = 0; j < job.n; ++j) {
        const index_t from = job.part == vox::region::lower ? j : 0;
        const index_t end = job.part == vox::region::upper && j < job.m ? j + 1 : job.m;
        for (index_t i = from; i < end; ++i) {
            T sum{};
            for (index_t p = 0; p < job.k; ++p)
                sum += element_at(job.a, i, p) * element_at(job.b, p, j);
            sum *= job.alpha;
            T &c = job.c[i + j * job.ldc];
            c = overwrite ? sum : sum + job.beta * c;
            if (job.real_diagonal && i == j)
                c = vox::make<T>(vox::real(c));
        }
    }
    return true;
}

// A triangle's product or solution in place of B: B's columns, or its rows for a triangle on the right,
// one after the other, from the end that what is still needed of them is not at. False if not tiny.
template <bool Solve, class T>
__attribute__((noinline)) bool triangle_tiny(const vox::triangle_product<T> &job) {
    const index_t order = job.left ? job.m : job.n, others = job.left ? job.n : job.m;
    if (!is_tiny<T>(order, order, others, Solve ? tiny_solution : tiny_triangle))
        return false;
    const factor<T> a = job.left ? job.a : transpose_of(job.a);
    const index_t along = job.left ? 1 : job.ldb, across = job.left ? job.ldb : 1;
    const bool upper = is_upper(a), ascending = upper != Solve;
    for (index_t j = 0; j < others; ++j) {
        T *const b = job.b + j * across;
        for (index_t s = 0; s < order; ++s) {
            const index_t i = ascending ? s : order - 1 - s;
            const index_t from = upper ? i + 1 : 0, end = upper ? order : i;
            T sum{};
            for (index_t p = from; p < end; ++p)
                sum += vox::conj_if(a.conjugated, *place(a, i, p)) * b[p * along];
            T &x = b[i * along];
            if constexpr (Solve) {
                x = job.alpha * x - sum;
                if (!a.unit)
                    x = vox::divide(x, vox::conj_if(a.conjugated, *place(a, i, i)));
            } else {
                sum += a.unit ? x : vox::conj_if(a.conjugated, *place(a, i, i)) * x;
                x = job.alpha * sum;
            }
        }
    }
    return true;
}

} // namespace
