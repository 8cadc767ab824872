// householder.hpp - elementary and block reflectors: ?larfg, ?larf, ?larft, ?larfb.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// H^H (alpha, x) = (beta, 0), H = I - tau (1, v)(1, v)^H: alpha becomes beta, which is real, x
// becomes v.
template <class T>
void larfg(index_t n, T *alpha, T *x, index_t incx, T *tau);

// C := H C (side 'L') or C H, H = I - tau v v^H. work: n elements or m.
template <class T>
void larf(char side, index_t m, index_t n, const T *v, index_t incv, T tau, T *c, index_t ldc,
          T *work);

// The triangular factor of H = H(1) .. H(k), direct 'F', or H(k) .. H(1), direct 'B', whose vectors
// are columns (storev 'C') or rows of V.
template <class T>
void larft(char direct, char storev, index_t n, index_t k, const T *v, index_t ldv, const T *tau,
           T *t, index_t ldt);

// C := op(H) C or C op(H). work: ldwork x k.
template <class T>
void larfb(char side, char trans, char direct, char storev, index_t m, index_t n, index_t k,
           const T *v, index_t ldv, const T *t, index_t ldt, T *c, index_t ldc, T *work,
           index_t ldwork);

} // namespace vox::lapack
