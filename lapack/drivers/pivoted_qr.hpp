// pivoted_qr.hpp - A P = Q R with column pivoting: ?geqp3.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// jpvt, in: 0, or anything else for columns that are to stand in front; out: column j of A P was
// column jpvt[j] of A, counted from 1.
// work: lwork elements, 3 n + 1 at least; of complex types n + 1, and rwork of 2 n numbers, which real ones
// do not look at.
template <class T>
index_t geqp3(index_t m, index_t n, T *a, index_t lda, index_t *jpvt, T *tau, T *work,
              index_t lwork, real_of<T> *rwork = nullptr);

} // namespace vox::lapack
