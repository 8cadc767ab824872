/* blas.h - the BLAS as Fortran calls it. */
#ifndef VOX_BLAS_H
#define VOX_BLAS_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ?dot: the sum of x_i y_i over n elements.
 * n < 1 gives 0 and reads nothing. incx, incy: in elements, any sign; a negative increment walks the
 * vector from its end, as the reference BLAS has it.
 * Accuracy: |error| <= gamma(n) sum |x_i y_i|, gamma(n) = n u / (1 - n u), u = eps / 2.
 * Source: Lawson, Hanson, Kincaid, Krogh, "Basic Linear Algebra Subprograms for Fortran Usage",
 * ACM TOMS 5(3), 1979. */
VOX_FORTRAN(double, ddot, DDOT,
            (const vox_int *n, const double *x, const vox_int *incx, const double *y,
             const vox_int *incy));

/*
 * Level 2: a matrix and a vector or two.
 *
 * Source: Dongarra, Du Croz, Hammarling, Hanson, "An Extended Set of FORTRAN Basic Linear Algebra
 * Subprograms", ACM TOMS 14(1), 1988. What follows holds for every routine of the level.
 *
 * Storage, by columns; i and j count from 0:
 *   full            A(i,j) at a[i + j*lda], lda >= max(1, rows)
 *   band            A(i,j) at a[ku + i - j + j*lda] for -ku <= i - j <= kl, lda >= kl + ku + 1
 *   full triangle   as full; only i <= j ('U') or i >= j ('L') is read or written
 *   band triangle   'U': A(i,j) at a[k + i - j + j*lda] for 0 <= j - i <= k,
 *                   'L': A(i,j) at a[i - j + j*lda] for 0 <= i - j <= k; lda >= k + 1
 *   packed triangle 'U': A(i,j) at ap[i + j*(j + 1)/2] for i <= j,
 *                   'L': A(i,j) at ap[i + j*(2*n - j - 1)/2] for i >= j
 * Nothing else of the arrays is touched. Of a symmetric (A = A^T) or Hermitian (A = A^H) matrix only
 * the triangle that uplo names is stored. The imaginary parts of a Hermitian matrix's diagonal are
 * taken as zero, whatever the array holds, and updates set them to zero.
 *
 * Vectors: element i of n is at x[i*incx] for incx > 0, at x[(i - n + 1)*incx] for incx < 0.
 * Lengths and increments count elements.
 *
 * Letters, of either case:
 *   trans  'N' op(A) = A, 'T' op(A) = A^T, 'C' op(A) = A^H (A^T for real types)
 *   uplo   'U' upper, 'L' lower triangle
 *   diag   'U' the diagonal is all ones and not read, 'N' it is read
 *
 * alpha = 0: A and x are not read. beta = 0: y is overwritten, not multiplied, so it need not be set
 * and a NaN in it vanishes. m = 0 or n = 0: nothing is read or written. A zero in a vector leaves its
 * column of A out, so that no NaN or infinity comes from there: in updates (in ?syr2, ?her2 and the
 * packed ones where x and y both have it), and in triangular routines where op(A) = A. All others
 * propagate as arithmetic has it. Vectors and matrices that overlap give undefined results.
 *
 * Errors: a letter other than those, a negative size, a leading dimension below the one given above
 * or an increment of 0 is reported through xerbla with the parameter's number, the first bad one
 * only; nothing else is done.
 *
 * Accuracy, element by element, k being the number of terms summed (the columns of op(A); 1 or 2
 * for updates), and |z| = |re z| + |im z|:
 *   products  |error| <= gamma(k + 2) (|alpha| |op(A)| |x| + |beta| |y|)
 *   updates   |error| <= gamma(k + 2) (|A| + |alpha| |x| |y^T| + ...)
 *   solutions |b - op(A) x| <= gamma(k + 2) |op(A)| |x|, with no test for singularity
 * with gamma(2*k + 4), for solutions gamma(2*k + 10), in the complex types; gamma as for ?dot.
 *
 * Threads: any number of callers; large calls run on the BLAS domain's threads.
 */

/* ?gemv: y := alpha op(A) x + beta y. A: m by n, full. x has as many elements as op(A) has columns,
 * y as many as it has rows. */
#define VOX_GEMV(T)                                                                                \
    (const char *trans, const vox_int *m, const vox_int *n, const T *alpha, const T *a,            \
     const vox_int *lda, const T *x, const vox_int *incx, const T *beta, T *y,                     \
     const vox_int *incy)
VOX_FORTRAN(void, sgemv, SGEMV, VOX_GEMV(float));
VOX_FORTRAN(void, dgemv, DGEMV, VOX_GEMV(double));
VOX_FORTRAN(void, cgemv, CGEMV, VOX_GEMV(vox_complex_float));
VOX_FORTRAN(void, zgemv, ZGEMV, VOX_GEMV(vox_complex_double));
#undef VOX_GEMV

/* ?gbmv: the same for a band matrix, kl diagonals below and ku above the main one. */
#define VOX_GBMV(T)                                                                                \
    (const char *trans, const vox_int *m, const vox_int *n, const vox_int *kl, const vox_int *ku,  \
     const T *alpha, const T *a, const vox_int *lda, const T *x, const vox_int *incx,              \
     const T *beta, T *y, const vox_int *incy)
VOX_FORTRAN(void, sgbmv, SGBMV, VOX_GBMV(float));
VOX_FORTRAN(void, dgbmv, DGBMV, VOX_GBMV(double));
VOX_FORTRAN(void, cgbmv, CGBMV, VOX_GBMV(vox_complex_float));
VOX_FORTRAN(void, zgbmv, ZGBMV, VOX_GBMV(vox_complex_double));
#undef VOX_GBMV

/* ?symv, ?hemv: y := alpha A x + beta y. A: n by n, symmetric or Hermitian, full triangle. */
#define VOX_SYMV(T)                                                                                \
    (const char *uplo, const vox_int *n, const T *alpha, const T *a, const vox_int *lda,           \
     const T *x, const vox_int *incx, const T *beta, T *y, const vox_int *incy)
VOX_FORTRAN(void, ssymv, SSYMV, VOX_SYMV(float));
VOX_FORTRAN(void, dsymv, DSYMV, VOX_SYMV(double));
VOX_FORTRAN(void, csymv, CSYMV, VOX_SYMV(vox_complex_float));
VOX_FORTRAN(void, zsymv, ZSYMV, VOX_SYMV(vox_complex_double));
VOX_FORTRAN(void, chemv, CHEMV, VOX_SYMV(vox_complex_float));
VOX_FORTRAN(void, zhemv, ZHEMV, VOX_SYMV(vox_complex_double));
#undef VOX_SYMV

/* ?sbmv, ?hbmv: the same for a band triangle with k diagonals beside the main one. */
#define VOX_SBMV(T)                                                                                \
    (const char *uplo, const vox_int *n, const vox_int *k, const T *alpha, const T *a,             \
     const vox_int *lda, const T *x, const vox_int *incx, const T *beta, T *y,                     \
     const vox_int *incy)
VOX_FORTRAN(void, ssbmv, SSBMV, VOX_SBMV(float));
VOX_FORTRAN(void, dsbmv, DSBMV, VOX_SBMV(double));
VOX_FORTRAN(void, chbmv, CHBMV, VOX_SBMV(vox_complex_float));
VOX_FORTRAN(void, zhbmv, ZHBMV, VOX_SBMV(vox_complex_double));
#undef VOX_SBMV

/* ?spmv, ?hpmv: the same for a packed triangle. */
#define VOX_SPMV(T)                                                                                \
    (const char *uplo, const vox_int *n, const T *alpha, const T *ap, const T *x,                  \
     const vox_int *incx, const T *beta, T *y, const vox_int *incy)
VOX_FORTRAN(void, sspmv, SSPMV, VOX_SPMV(float));
VOX_FORTRAN(void, dspmv, DSPMV, VOX_SPMV(double));
VOX_FORTRAN(void, cspmv, CSPMV, VOX_SPMV(vox_complex_float));
VOX_FORTRAN(void, zspmv, ZSPMV, VOX_SPMV(vox_complex_double));
VOX_FORTRAN(void, chpmv, CHPMV, VOX_SPMV(vox_complex_float));
VOX_FORTRAN(void, zhpmv, ZHPMV, VOX_SPMV(vox_complex_double));
#undef VOX_SPMV

/* ?trmv: x := op(A) x. ?trsv: x := op(A)^-1 x. A: n by n, triangular, full triangle. */
#define VOX_TRMV(T)                                                                                \
    (const char *uplo, const char *trans, const char *diag, const vox_int *n, const T *a,          \
     const vox_int *lda, T *x, const vox_int *incx)
VOX_FORTRAN(void, strmv, STRMV, VOX_TRMV(float));
VOX_FORTRAN(void, dtrmv, DTRMV, VOX_TRMV(double));
VOX_FORTRAN(void, ctrmv, CTRMV, VOX_TRMV(vox_complex_float));
VOX_FORTRAN(void, ztrmv, ZTRMV, VOX_TRMV(vox_complex_double));
VOX_FORTRAN(void, strsv, STRSV, VOX_TRMV(float));
VOX_FORTRAN(void, dtrsv, DTRSV, VOX_TRMV(double));
VOX_FORTRAN(void, ctrsv, CTRSV, VOX_TRMV(vox_complex_float));
VOX_FORTRAN(void, ztrsv, ZTRSV, VOX_TRMV(vox_complex_double));
#undef VOX_TRMV

/* ?tbmv, ?tbsv: the same for a band triangle with k diagonals beside the main one. */
#define VOX_TBMV(T)                                                                                \
    (const char *uplo, const char *trans, const char *diag, const vox_int *n, const vox_int *k,    \
     const T *a, const vox_int *lda, T *x, const vox_int *incx)
VOX_FORTRAN(void, stbmv, STBMV, VOX_TBMV(float));
VOX_FORTRAN(void, dtbmv, DTBMV, VOX_TBMV(double));
VOX_FORTRAN(void, ctbmv, CTBMV, VOX_TBMV(vox_complex_float));
VOX_FORTRAN(void, ztbmv, ZTBMV, VOX_TBMV(vox_complex_double));
VOX_FORTRAN(void, stbsv, STBSV, VOX_TBMV(float));
VOX_FORTRAN(void, dtbsv, DTBSV, VOX_TBMV(double));
VOX_FORTRAN(void, ctbsv, CTBSV, VOX_TBMV(vox_complex_float));
VOX_FORTRAN(void, ztbsv, ZTBSV, VOX_TBMV(vox_complex_double));
#undef VOX_TBMV

/* ?tpmv, ?tpsv: the same for a packed triangle. */
#define VOX_TPMV(T)                                                                                \
    (const char *uplo, const char *trans, const char *diag, const vox_int *n, const T *ap, T *x,   \
     const vox_int *incx)
VOX_FORTRAN(void, stpmv, STPMV, VOX_TPMV(float));
VOX_FORTRAN(void, dtpmv, DTPMV, VOX_TPMV(double));
VOX_FORTRAN(void, ctpmv, CTPMV, VOX_TPMV(vox_complex_float));
VOX_FORTRAN(void, ztpmv, ZTPMV, VOX_TPMV(vox_complex_double));
VOX_FORTRAN(void, stpsv, STPSV, VOX_TPMV(float));
VOX_FORTRAN(void, dtpsv, DTPSV, VOX_TPMV(double));
VOX_FORTRAN(void, ctpsv, CTPSV, VOX_TPMV(vox_complex_float));
VOX_FORTRAN(void, ztpsv, ZTPSV, VOX_TPMV(vox_complex_double));
#undef VOX_TPMV

/* ?ger, ?geru: A := alpha x y^T + A. ?gerc: A := alpha x y^H + A.
 * A: m by n, full. x: m elements, y: n elements. */
#define VOX_GER(T)                                                                                 \
    (const vox_int *m, const vox_int *n, const T *alpha, const T *x, const vox_int *incx,          \
     const T *y, const vox_int *incy, T *a, const vox_int *lda)
VOX_FORTRAN(void, sger, SGER, VOX_GER(float));
VOX_FORTRAN(void, dger, DGER, VOX_GER(double));
VOX_FORTRAN(void, cgeru, CGERU, VOX_GER(vox_complex_float));
VOX_FORTRAN(void, zgeru, ZGERU, VOX_GER(vox_complex_double));
VOX_FORTRAN(void, cgerc, CGERC, VOX_GER(vox_complex_float));
VOX_FORTRAN(void, zgerc, ZGERC, VOX_GER(vox_complex_double));
#undef VOX_GER

/* ?syr: A := alpha x x^T + A. ?her: A := alpha x x^H + A, alpha real. A: n by n, symmetric or
 * Hermitian, full triangle. */
#define VOX_SYR(S, T)                                                                              \
    (const char *uplo, const vox_int *n, const S *alpha, const T *x, const vox_int *incx, T *a,    \
     const vox_int *lda)
VOX_FORTRAN(void, ssyr, SSYR, VOX_SYR(float, float));
VOX_FORTRAN(void, dsyr, DSYR, VOX_SYR(double, double));
VOX_FORTRAN(void, csyr, CSYR, VOX_SYR(vox_complex_float, vox_complex_float));
VOX_FORTRAN(void, zsyr, ZSYR, VOX_SYR(vox_complex_double, vox_complex_double));
VOX_FORTRAN(void, cher, CHER, VOX_SYR(float, vox_complex_float));
VOX_FORTRAN(void, zher, ZHER, VOX_SYR(double, vox_complex_double));
#undef VOX_SYR

/* ?spr, ?hpr: the same for a packed triangle. */
#define VOX_SPR(S, T)                                                                              \
    (const char *uplo, const vox_int *n, const S *alpha, const T *x, const vox_int *incx, T *ap)
VOX_FORTRAN(void, sspr, SSPR, VOX_SPR(float, float));
VOX_FORTRAN(void, dspr, DSPR, VOX_SPR(double, double));
VOX_FORTRAN(void, cspr, CSPR, VOX_SPR(vox_complex_float, vox_complex_float));
VOX_FORTRAN(void, zspr, ZSPR, VOX_SPR(vox_complex_double, vox_complex_double));
VOX_FORTRAN(void, chpr, CHPR, VOX_SPR(float, vox_complex_float));
VOX_FORTRAN(void, zhpr, ZHPR, VOX_SPR(double, vox_complex_double));
#undef VOX_SPR

/* ?syr2: A := alpha x y^T + alpha y x^T + A. ?her2: A := alpha x y^H + conj(alpha) y x^H + A.
 * A: n by n, symmetric or Hermitian, full triangle. */
#define VOX_SYR2(T)                                                                                \
    (const char *uplo, const vox_int *n, const T *alpha, const T *x, const vox_int *incx,          \
     const T *y, const vox_int *incy, T *a, const vox_int *lda)
VOX_FORTRAN(void, ssyr2, SSYR2, VOX_SYR2(float));
VOX_FORTRAN(void, dsyr2, DSYR2, VOX_SYR2(double));
VOX_FORTRAN(void, cher2, CHER2, VOX_SYR2(vox_complex_float));
VOX_FORTRAN(void, zher2, ZHER2, VOX_SYR2(vox_complex_double));
#undef VOX_SYR2

/* ?spr2, ?hpr2: the same for a packed triangle. */
#define VOX_SPR2(T)                                                                                \
    (const char *uplo, const vox_int *n, const T *alpha, const T *x, const vox_int *incx,          \
     const T *y, const vox_int *incy, T *ap)
VOX_FORTRAN(void, sspr2, SSPR2, VOX_SPR2(float));
VOX_FORTRAN(void, dspr2, DSPR2, VOX_SPR2(double));
VOX_FORTRAN(void, chpr2, CHPR2, VOX_SPR2(vox_complex_float));
VOX_FORTRAN(void, zhpr2, ZHPR2, VOX_SPR2(vox_complex_double));
#undef VOX_SPR2

#ifdef __cplusplus
}
#endif

#endif
