// triangular.hpp - inverse, product and systems of triangular matrices.
#pragma once

#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox::lapack {

// A := A^-1 in place; the place of the first zero on the diagonal, A then being as it was, or 0.
template <class T>
index_t trtri(char uplo, char diag, index_t n, T *a, index_t lda);
// The same without a look for zeros.
template <class T>
index_t trti2(char uplo, char diag, index_t n, T *a, index_t lda);

// X of op(A) X = B, in B's place; the place of the first zero on the diagonal, B then being as it
// was, or 0.
template <class T>
index_t trtrs(char uplo, char trans, char diag, index_t n, index_t nrhs, const T *a, index_t lda,
              T *b, index_t ldb);
// The same without a look for zeros; a few right-hand sides are solved for one by one.
template <class T>
void solve_triangle(char uplo, char trans, char diag, index_t n, index_t nrhs, const T *a,
                    index_t lda, T *b, index_t ldb);

// U U^H or L^H L in the triangle's place.
template <class T>
index_t lauum(char uplo, index_t n, T *a, index_t lda);

// Where the recursions over a triangle of order n > triangle_leaf<T> divide it.
constexpr index_t first_part(index_t n) {
    constexpr index_t multiple = 8;
    return (n + multiple) / (2 * multiple) * multiple;
}

} // namespace vox::lapack
