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

} // namespace
