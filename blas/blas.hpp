// blas.hpp - the internal layers of the BLAS.
//
// A call passes through four: the exported entry (spelling, check, verbose line; 32-bit integers),
// the driver vox_blas_<routine> (quick returns, threads; 64-bit integers from here on), the
// dispatching entry vox_blas_x<routine> (binds once to the code path's copy) and the kernel.
//
// Parameter lists and their arguments stand here, one pair for all routines of a shape: T is the
// element type, I the integer (vox_int at the boundary, index_t inside).
#pragma once

#include "blas/jobs.hpp"
#include "serv/base.hpp"
#include "serv/scalar.hpp"

#define VOX_DOT_PARAMETERS(T, I) (const I *n, const T *x, const I *incx, const T *y, const I *incy)
#define VOX_DOT_ARGUMENTS (n, x, incx, y, incy)

#define VOX_GEMV_PARAMETERS(T, I)                                                                  \
    (const char *trans, const I *m, const I *n, const T *alpha, const T *a, const I *lda,          \
     const T *x, const I *incx, const T *beta, T *y, const I *incy)
#define VOX_GEMV_ARGUMENTS (trans, m, n, alpha, a, lda, x, incx, beta, y, incy)
#define VOX_GBMV_PARAMETERS(T, I)                                                                  \
    (const char *trans, const I *m, const I *n, const I *kl, const I *ku, const T *alpha,          \
     const T *a, const I *lda, const T *x, const I *incx, const T *beta, T *y, const I *incy)
#define VOX_GBMV_ARGUMENTS (trans, m, n, kl, ku, alpha, a, lda, x, incx, beta, y, incy)
#define VOX_SYMV_PARAMETERS(T, I)                                                                  \
    (const char *uplo, const I *n, const T *alpha, const T *a, const I *lda, const T *x,           \
     const I *incx, const T *beta, T *y, const I *incy)
#define VOX_SYMV_ARGUMENTS (uplo, n, alpha, a, lda, x, incx, beta, y, incy)
#define VOX_SBMV_PARAMETERS(T, I)                                                                  \
    (const char *uplo, const I *n, const I *k, const T *alpha, const T *a, const I *lda,           \
     const T *x, const I *incx, const T *beta, T *y, const I *incy)
#define VOX_SBMV_ARGUMENTS (uplo, n, k, alpha, a, lda, x, incx, beta, y, incy)
#define VOX_SPMV_PARAMETERS(T, I)                                                                  \
    (const char *uplo, const I *n, const T *alpha, const T *ap, const T *x, const I *incx,         \
     const T *beta, T *y, const I *incy)
#define VOX_SPMV_ARGUMENTS (uplo, n, alpha, ap, x, incx, beta, y, incy)
#define VOX_TRMV_PARAMETERS(T, I)                                                                  \
    (const char *uplo, const char *trans, const char *diag, const I *n, const T *a, const I *lda,  \
     T *x, const I *incx)
#define VOX_TRMV_ARGUMENTS (uplo, trans, diag, n, a, lda, x, incx)
#define VOX_TBMV_PARAMETERS(T, I)                                                                  \
    (const char *uplo, const char *trans, const char *diag, const I *n, const I *k, const T *a,    \
     const I *lda, T *x, const I *incx)
#define VOX_TBMV_ARGUMENTS (uplo, trans, diag, n, k, a, lda, x, incx)
#define VOX_TPMV_PARAMETERS(T, I)                                                                  \
    (const char *uplo, const char *trans, const char *diag, const I *n, const T *ap, T *x,         \
     const I *incx)
#define VOX_TPMV_ARGUMENTS (uplo, trans, diag, n, ap, x, incx)
#define VOX_GER_PARAMETERS(T, I)                                                                   \
    (const I *m, const I *n, const T *alpha, const T *x, const I *incx, const T *y, const I *incy, \
     T *a, const I *lda)
#define VOX_GER_ARGUMENTS (m, n, alpha, x, incx, y, incy, a, lda)
// S: the type of alpha, real in the Hermitian updates of rank one.
#define VOX_SYR_PARAMETERS(T, S, I)                                                                \
    (const char *uplo, const I *n, const S *alpha, const T *x, const I *incx, T *a, const I *lda)
#define VOX_SYR_ARGUMENTS (uplo, n, alpha, x, incx, a, lda)
#define VOX_SPR_PARAMETERS(T, S, I)                                                                \
    (const char *uplo, const I *n, const S *alpha, const T *x, const I *incx, T *ap)
#define VOX_SPR_ARGUMENTS (uplo, n, alpha, x, incx, ap)
#define VOX_SYR2_PARAMETERS(T, I)                                                                  \
    (const char *uplo, const I *n, const T *alpha, const T *x, const I *incx, const T *y,          \
     const I *incy, T *a, const I *lda)
#define VOX_SYR2_ARGUMENTS (uplo, n, alpha, x, incx, y, incy, a, lda)
#define VOX_SPR2_PARAMETERS(T, I)                                                                  \
    (const char *uplo, const I *n, const T *alpha, const T *x, const I *incx, const T *y,          \
     const I *incy, T *ap)
#define VOX_SPR2_ARGUMENTS (uplo, n, alpha, x, incx, y, incy, ap)

extern "C" {
double vox_blas_ddot VOX_DOT_PARAMETERS(double, vox::index_t);
double vox_blas_xddot VOX_DOT_PARAMETERS(double, vox::index_t);
}

// The dispatching entries that more than one file calls.
#define VOX_LEVEL2_KERNELS(p, P, T)                                                                \
    extern "C" void vox_blas_x##p##gemv(const vox::product_job<T> *job);                           \
    extern "C" void vox_blas_x##p##ger(const vox::update_job<T> *job);
VOX_PRECISIONS(VOX_LEVEL2_KERNELS)
#undef VOX_LEVEL2_KERNELS
