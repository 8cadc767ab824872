// lu.hpp - A = P L U: factorisation, solutions, inverse. Pivots are counted from 1; info is 0, or the
// place of the first zero on U's diagonal, counted from 1.
#pragma once

#include "serv/base.hpp"

namespace vox::lapack {

// getf2 and getrf2 are this, too.
template <class T>
index_t getrf(index_t m, index_t n, T *a, index_t lda, index_t *ipiv);

// op(A) X = B from the factors of A; X takes B's place.
template <class T>
index_t getrs(char trans, index_t n, index_t nrhs, const T *a, index_t lda, const index_t *ipiv,
              T *b, index_t ldb);

template <class T>
index_t gesv(index_t n, index_t nrhs, T *a, index_t lda, index_t *ipiv, T *b, index_t ldb);

// The inverse from the factors; these are left as they are when U is singular.
template <class T>
index_t getri(index_t n, T *a, index_t lda, const index_t *ipiv, T *work, index_t lwork);

} // namespace vox::lapack
