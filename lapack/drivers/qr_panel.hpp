// qr_panel.hpp - what the factorisations and the products with their Q have in common: panels of
// columns, and copies of rows that are to be one.
#pragma once

#include "serv/base.hpp"
#include "vox/trans.h"

namespace vox::lapack {

// The QR factors of a panel, m >= n, with what applying its reflectors takes: V in A as it is, with
// its ones and zeros, R apart, and the triangular factor T. w: n x n elements.
template <class T>
void factor_panel(index_t m, index_t n, T *a, index_t lda, T *r, index_t ldr, T *tau, T *t,
                  index_t ldt, T *w);

// B := A^H, A being m x n.
inline void copy_adjoint(index_t m, index_t n, const float *a, index_t lda, float *b, index_t ldb) {
    VOX_Somatcopy('C', 'T', m, n, 1, a, lda, b, ldb);
}
inline void copy_adjoint(index_t m, index_t n, const double *a, index_t lda, double *b,
                         index_t ldb) {
    VOX_Domatcopy('C', 'T', m, n, 1, a, lda, b, ldb);
}
inline void copy_adjoint(index_t m, index_t n, const vox_complex_float *a, index_t lda,
                         vox_complex_float *b, index_t ldb) {
    VOX_Comatcopy('C', 'C', m, n, {1, 0}, a, lda, b, ldb);
}
inline void copy_adjoint(index_t m, index_t n, const vox_complex_double *a, index_t lda,
                         vox_complex_double *b, index_t ldb) {
    VOX_Zomatcopy('C', 'C', m, n, {1, 0}, a, lda, b, ldb);
}

// The leading dimension of a copy of columns of m elements: whole cache lines, and an odd number of
// them, so that columns do not all fall into the same few sets.
template <class T>
constexpr index_t padded(index_t m) {
    constexpr index_t line = 64 / index_t(sizeof(T));
    return ((m + line - 1) / line | 1) * line;
}

} // namespace vox::lapack
