// matrices.hpp - routines that copy, set and scale a matrix or a triangle of one.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// uplo: 'U' or 'L', the triangle with the diagonal (laset: and the diagonal); anything else: the whole.
template <class T>
void lacpy(char uplo, index_t m, index_t n, const T *a, index_t lda, T *b, index_t ldb);
// alpha beside the diagonal, beta on it.
template <class T>
void laset(char uplo, index_t m, index_t n, T alpha, T beta, T *a, index_t lda);

// A := A to / from, without overflow on the way. type: 'G' whole, 'L' and 'U' triangles, 'H' upper
// Hessenberg, 'B' and 'Q' lower and upper half of a symmetric band of kl, ku, 'Z' a band as gbtrf has it.
template <class T>
index_t lascl(char type, index_t kl, index_t ku, real_of<T> from, real_of<T> to, index_t m,
              index_t n, T *a, index_t lda);

} // namespace vox::lapack
