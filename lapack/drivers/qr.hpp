// qr.hpp - A = Q R and A = L Q: ?geqrf, ?gelqf and their unblocked forms.
//
// Q = H(1) .. H(k), k = min(m, n), is left as its reflectors below R; that of L Q is the adjoint of
// such a product, and its reflectors are rows beside L.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// work: n elements or, of gelq2, m.
template <class T>
index_t geqr2(index_t m, index_t n, T *a, index_t lda, T *tau, T *work);
template <class T>
index_t gelq2(index_t m, index_t n, T *a, index_t lda, T *tau, T *work);

// work: lwork elements, max(1, n) or, of gelqf, max(1, m) at least.
template <class T>
index_t geqrf(index_t m, index_t n, T *a, index_t lda, T *tau, T *work, index_t lwork);
template <class T>
index_t gelqf(index_t m, index_t n, T *a, index_t lda, T *tau, T *work, index_t lwork);

} // namespace vox::lapack
