// orthogonal.hpp - the Q of a factorisation, from the reflectors that it left: Q itself (?orgqr,
// ?orglq) and products with it (?ormqr, ?ormlq), with their unblocked forms; unitary for complex
// types, where 'T' is 'C'.
//
// QR: Q = H(1) .. H(k), columns of A. LQ: Q = H(k)^H .. H(1)^H, rows of A.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// The first n columns (m rows) of Q. work: n (m) elements; blocked, lwork, that many at least.
template <class T>
index_t org2r(index_t m, index_t n, index_t k, T *a, index_t lda, const T *tau, T *work);
template <class T>
index_t orgl2(index_t m, index_t n, index_t k, T *a, index_t lda, const T *tau, T *work);
template <class T>
index_t orgqr(index_t m, index_t n, index_t k, T *a, index_t lda, const T *tau, T *work,
              index_t lwork);
template <class T>
index_t orglq(index_t m, index_t n, index_t k, T *a, index_t lda, const T *tau, T *work,
              index_t lwork);

// C := op(Q) C or C op(Q). work: n elements if Q stands left of C, m otherwise; blocked, lwork, that
// many at least.
template <class T>
index_t orm2r(char side, char trans, index_t m, index_t n, index_t k, const T *a, index_t lda,
              const T *tau, T *c, index_t ldc, T *work);
template <class T>
index_t orml2(char side, char trans, index_t m, index_t n, index_t k, const T *a, index_t lda,
              const T *tau, T *c, index_t ldc, T *work);
template <class T>
index_t ormqr(char side, char trans, index_t m, index_t n, index_t k, const T *a, index_t lda,
              const T *tau, T *c, index_t ldc, T *work, index_t lwork);
template <class T>
index_t ormlq(char side, char trans, index_t m, index_t n, index_t k, const T *a, index_t lda,
              const T *tau, T *c, index_t ldc, T *work, index_t lwork);

} // namespace vox::lapack
