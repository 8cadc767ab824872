// level3.hpp - the drivers of level 3: quick returns, the choice of threads, and the kernels.
#pragma once

#include "blas/products.hpp"

namespace vox {

// C := alpha op(A) op(B) + beta C; the operations are 'N', 'T' or 'C' in either case.
template <class T>
void gemm(char transa, char transb, index_t m, index_t n, index_t k, T alpha, const T *a,
          index_t lda, const T *b, index_t ldb, T beta, T *c, index_t ldc);

// All may be called with any sizes, zero included; quick returns are theirs.
template <class T>
void multiply(const product<T> &job);
template <class T>
void triangle_multiply(const triangle_product<T> &job);
template <class T>
void triangle_solve(const triangle_product<T> &job);

// The same product on a given number of threads.
template <class T>
void multiply_in_parallel(const product<T> &job, int threads);

} // namespace vox
