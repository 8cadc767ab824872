// transpose.cpp - copies of a matrix in the other layout, by the family of matrix copies.
#include "lapack/lapacke/helpers.hpp"
#include "trans/trans.hpp"
#include "vox/lapacke.h"

namespace vox::lapacke {
namespace {

#define COPY(p, P, T)                                                                              \
    void copy(char ordering, char trans, index_t rows, index_t cols, const T *a, index_t lda,      \
              T *b, index_t ldb) {                                                                 \
        vox_trans_vox_##p##omatcopy(ordering, trans, rows, cols, make<T>(1), a, lda, b, ldb);      \
    }
VOX_PRECISIONS(COPY)

// The elements of the triangle whose lines begin at in, n of them, into out. A triangle of some size is
// two of half of it and a square.
template <class T>
void transpose_triangle(bool upper, index_t unit, index_t n, const T *in, index_t ldin, T *out,
                        index_t ldout) {
    if (n <= 16) {
        for (index_t j = 0; j < n; ++j)
            for (index_t i = upper ? 0 : j + unit, end = upper ? j + 1 - unit : n; i < end; ++i)
                out[j + i * ldout] = in[i + j * ldin];
        return;
    }
    const index_t half = n / 2, rest = n - half;
    transpose_triangle(upper, unit, half, in, ldin, out, ldout);
    if (upper)
        copy('C', 'T', half, rest, in + half * ldin, ldin, out + half, ldout);
    else
        copy('C', 'T', rest, half, in + half, ldin, out + half * ldout, ldout);
    transpose_triangle(upper, unit, rest, in + half * (ldin + 1), ldin, out + half * (ldout + 1),
                       ldout);
}

} // namespace

template <class T>
void transpose_ge(int layout, index_t m, index_t n, const T *in, index_t ldin, T *out,
                  index_t ldout, bool conjugate) {
    if (in && out)
        copy(layout == column_major ? 'C' : 'R', conjugate ? 'C' : 'T', m, n, in, ldin, out, ldout);
}

template <class T>
void transpose_tr(int layout, char uplo, char diag, index_t n, const T *in, index_t ldin, T *out,
                  index_t ldout) {
    const stored_triangle shape(layout, uplo, diag, n);
    if (in && out && shape.valid)
        transpose_triangle(shape.upper, shape.unit, n, in, ldin, out, ldout);
}

#define INSTANTIATE(p, P, T)                                                                       \
    template void transpose_ge<T>(int, index_t, index_t, const T *, index_t, T *, index_t, bool);  \
    template void transpose_tr<T>(int, char, char, index_t, const T *, index_t, T *, index_t);
VOX_PRECISIONS(INSTANTIATE)

} // namespace vox::lapacke

using namespace vox::lapacke;

#define GENERAL(p, P, T)                                                                           \
    extern "C" void LAPACKE_##p##ge_trans(int matrix_layout, vox_int m, vox_int n, const T *in,    \
                                          vox_int ldin, T *out, vox_int ldout) {                   \
        transpose_ge<T>(matrix_layout, m, n, in, ldin, out, ldout);                                \
    }                                                                                              \
    extern "C" void LAPACKE_##p##tr_trans(int matrix_layout, char uplo, char diag, vox_int n,      \
                                          const T *in, vox_int ldin, T *out, vox_int ldout) {      \
        transpose_tr<T>(matrix_layout, uplo, diag, n, in, ldin, out, ldout);                       \
    }
VOX_PRECISIONS(GENERAL)

#define CONJUGATED(p, P, T)                                                                        \
    extern "C" void LAPACKE_##p##ge_transc(int matrix_layout, vox_int m, vox_int n, const T *in,   \
                                           vox_int ldin, T *out, vox_int ldout) {                  \
        transpose_ge<T>(matrix_layout, m, n, in, ldin, out, ldout, true);                          \
    }
VOX_COMPLEX_PRECISIONS(CONJUGATED)

// The stored half of a symmetric or Hermitian matrix, as it is.
#define HALF(p, kind, T)                                                                           \
    extern "C" void LAPACKE_##p##kind##_trans(int matrix_layout, char uplo, vox_int n,             \
                                              const T *in, vox_int ldin, T *out, vox_int ldout) {  \
        transpose_tr<T>(matrix_layout, uplo, 'N', n, in, ldin, out, ldout);                        \
    }
#define SYMMETRIC(p, P, T) HALF(p, sy, T) HALF(p, po, T)
VOX_PRECISIONS(SYMMETRIC)
#define HERMITIAN(p, P, T) HALF(p, he, T)
VOX_COMPLEX_PRECISIONS(HERMITIAN)
