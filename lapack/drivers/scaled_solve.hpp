// scaled_solve.hpp - triangular systems and divisions that do not overflow.
#pragma once

#include "lapack/blas.hpp"
#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox::lapack {

// Solves op(A) x = s b for x in b's place, with an s >= 0 such that no entry of x overflows, and
// returns s: 1 in the ordinary case. Where A has a zero on its diagonal (or a NaN, if it is found),
// s = 0 and x is not zero: op(A) x = 0. A may be nearly singular and have entries close to overflow.
//
// norms[j] is the sum of |re| + |im| of column j beside the diagonal, found here unless they are
// known from a call before.
template <class T>
real_of<T> scaled_solve(char uplo, char trans, char diag, bool norms_known, index_t n, const T *a,
                        index_t lda, T *x, real_of<T> *norms);

// x := x / divisor; overflows and underflows only where the quotient does.
template <class T>
void rscl(index_t n, real_of<T> divisor, T *x, index_t incx);

// What the estimates measure sizes with: within a factor of 2^0.5 of the absolute value.
template <class T>
constexpr real_of<T> size(T a) {
    return __builtin_fabs(real(a)) + __builtin_fabs(imag(a));
}
// The size of the entry of largest size; n > 0. NaN may be passed over.
template <class T>
real_of<T> largest_size(index_t n, const T *x) {
    return size(x[blas::iamax(n, x, 1) - 1]);
}

} // namespace vox::lapack
