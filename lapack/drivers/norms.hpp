// norms.hpp - norms of matrices.
//
// norm: 'M', the largest magnitude; 'O' or '1', the largest column sum; 'I', the largest row sum; 'F' or
// 'E', Frobenius; anything else: 0. A NaN that is read is the result. No norm overflows that can be represented.
// work: lange and lantr, m numbers for 'I'; lansy and lanhe, n numbers for 'I', 'O' and '1'.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

template <class T>
real_of<T> lange(char norm, index_t m, index_t n, const T *a, index_t lda, real_of<T> *work);
// The triangle, or trapezoid, of an m x n matrix.
template <class T>
real_of<T> lantr(char norm, char uplo, char diag, index_t m, index_t n, const T *a, index_t lda,
                 real_of<T> *work);
// By a triangle; the imaginary part of a Hermitian diagonal is not read.
template <class T>
real_of<T> lansy(char norm, char uplo, index_t n, const T *a, index_t lda, real_of<T> *work);
template <class T>
real_of<T> lanhe(char norm, char uplo, index_t n, const T *a, index_t lda, real_of<T> *work);

} // namespace vox::lapack
