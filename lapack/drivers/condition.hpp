// condition.hpp - estimates of norms of inverses, and of reciprocal condition numbers.
#pragma once

#include <type_traits>

#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox::lapack {

// One step of an estimate of the 1-norm of an operator that the caller applies. kase = 0 at the first
// call; while it comes back as 1, x is to be replaced by A x, as 2, by A^H x, and the routine called
// again, nothing else touched; 0 is the end: est <= |A|_1 is the estimate, and v = A w with
// est = |v|_1 / |w|_1. The second form, without the signs isgn, is that of complex types.
template <class T>
void lacn2(index_t n, T *v, T *x, vox_int *isgn, real_of<T> *est, vox_int *kase, vox_int *isave);
template <class T>
void lacn2(index_t n, T *v, T *x, real_of<T> *est, vox_int *kase, vox_int *isave) {
    static_assert(is_complex<T>);
    lacn2(n, v, x, nullptr, est, kase, isave);
}

// The last work array of the condition estimates: integers for real types, reals for complex ones.
template <class T>
using con_work = std::conditional_t<is_complex<T>, real_of<T>, vox_int>;

// Reciprocal condition numbers in the 1-norm (norm is '1' or 'O') or the infinity norm ('I'): of A
// from its LU factors, of A from its Cholesky factor, of a triangle. anorm is A's norm. work holds
// 4 n entries in gecon, 3 n in the others; 2 n for complex types. The last holds n entries, 2 n in
// complex gecon. A triangle whose diagonal holds a zero or NaN has 0.
template <class T>
index_t gecon(char norm, index_t n, const T *a, index_t lda, real_of<T> anorm, real_of<T> *rcond,
              T *work, con_work<T> *last);
template <class T>
index_t pocon(char uplo, index_t n, const T *a, index_t lda, real_of<T> anorm, real_of<T> *rcond,
              T *work, con_work<T> *last);
template <class T>
index_t trcon(char norm, char uplo, char diag, index_t n, const T *a, index_t lda,
              real_of<T> *rcond, T *work, con_work<T> *last);

} // namespace vox::lapack
