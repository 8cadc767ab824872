// least_squares.hpp - least squares and minimum norms by QR or LQ: ?gels.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// B := the X that makes op(A) X - B smallest or, where op(A) has fewer rows than columns, the
// smallest X of op(A) X = B. A must have full rank: a zero on the diagonal of its triangular factor
// is told by its place, and there is no solution then.
// work: lwork elements, k + max(k, nrhs) at least, k = min(m, n).
template <class T>
index_t gels(char trans, index_t m, index_t n, index_t nrhs, T *a, index_t lda, T *b, index_t ldb,
             T *work, index_t lwork);

} // namespace vox::lapack
