// small.hpp - small products of structured factors: written out on the stack as general matrices, they
// are multiplied in place.
#pragma once

#include "blas/kernels/in_place.hpp"

namespace {

// As much of the stack as one factor may take, in bytes.
constexpr index_t dense_bytes = 10 * 1024;

template <class T>
VOX_INLINE bool fits_dense(index_t m, index_t n) {
    return m <= dense_bytes && n <= dense_bytes && m * n * index_t(sizeof(T)) <= dense_bytes;
}

// op(X) of a structured factor of order n, by columns.
template <class T>
VOX_INLINE factor<T> write_out(const factor<T> &f, index_t n, T *to) {
    for (index_t p = 0; p < n; ++p)
        pack_crossing<T, 0, 1>(f, 0, n, p, flat(to + p * n));
    return {to, n};
}

// Whether anything among n numbers is not finite.
template <class R>
bool any_not_finite(const R *x, index_t n) {
    vec<R> sums{}; // of zeros, and of NaN
    index_t i = 0;
    for (; i + lanes<R> <= n; i += lanes<R>) {
        const vec<R> v = load(x + i);
        sums += v - v;
    }
    const vec<R> rest = load_partial(x + i, n - i);
    return reduce_add(sums + (rest - rest)) != 0;
}

// A product with one symmetric or Hermitian factor; false if it is not small.
template <class T>
__attribute__((noinline)) bool multiply_small(const vox::product<T> &job) {
    const bool left = job.a.kind != structure::general;
    const index_t order = left ? job.m : job.n;
    if (job.part != region::all || !fits_dense<T>(order, order))
        return false;
    alignas(64) char memory[dense_bytes];
    vox::product<T> dense = job;
    (left ? dense.a : dense.b) =
        write_out(left ? job.a : job.b, order, reinterpret_cast<T *>(memory));
    multiply_in_place(dense, 0, job.m, 0, job.n);
    return true;
}

// The same for a triangle in place of B; false, too, where B holds NaN or infinities, which must not
// meet the zeros of the triangle. Beyond these orders multiplying by zeros costs more than packing.
template <class T>
__attribute__((noinline)) bool multiply_small(const vox::triangle_product<T> &job) {
    const index_t order = job.left ? job.m : job.n;
    if (order > (job.left ? 32 : 16) || !fits_dense<T>(order, order) ||
        !fits_dense<T>(job.m, job.n))
        return false;
    alignas(64) char triangle[dense_bytes], old[dense_bytes];
    T *const b = reinterpret_cast<T *>(old);
    for (index_t j = 0; j < job.n; ++j) {
        const real_of<T> *const from = flat(job.b + j * job.ldb);
        real_of<T> *const to = flat(b + j * job.m);
        const index_t reals = job.m * parts<T>, whole = reals - reals % lanes<real_of<T>>;
        for (index_t i = 0; i < whole; i += lanes<real_of<T>>)
            store(to + i, load(from + i));
        for (index_t i = whole; i < reals; ++i) {
            stay_scalar();
            to[i] = from[i];
        }
    }
    if (any_not_finite(flat(b), job.m * job.n * parts<T>))
        return false;
    const factor<T> a = write_out(job.a, order, reinterpret_cast<T *>(triangle));
    const factor<T> x = {b, job.m};
    multiply_in_place<T>(
        {job.m, job.n, order, job.alpha, job.left ? a : x, job.left ? x : a, T{}, job.b, job.ldb},
        0, job.m, 0, job.n);
    return true;
}

} // namespace
