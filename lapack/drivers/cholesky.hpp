// cholesky.hpp - Hermitian positive definite systems.
//
// One triangle of A is read and written; the imaginary parts of its diagonal count as zero. The info
// of the factorisations is the order of the first leading minor that is not positive.
#pragma once

#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox::lapack {

// A = U^H U or L L^H. Serves potrf2 and potf2 as well.
template <class T>
index_t potrf(char uplo, index_t n, T *a, index_t lda);

// From a factor: the solutions of A X = B in B's place; A^-1 in the factor's.
template <class T>
index_t potrs(char uplo, index_t n, index_t nrhs, const T *a, index_t lda, T *b, index_t ldb);
template <class T>
index_t potri(char uplo, index_t n, T *a, index_t lda);

// Factor and solution together.
template <class T>
index_t posv(char uplo, index_t n, index_t nrhs, T *a, index_t lda, T *b, index_t ldb);

} // namespace vox::lapack
