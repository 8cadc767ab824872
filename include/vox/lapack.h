/*
 * lapack.h - LAPACK as Fortran calls it: everything by address, integers of 32 bits, matrices by columns.
 *
 * Each routine in three spellings: dgetrf, dgetrf_ and DGETRF. s, d, c, z: float, double and complex numbers of
 * both. Interface, results and info are those of LAPACK 3.11; docs/lapack.md says more.
 *
 * a(lda, n) stands for a matrix with leading dimension lda, at least max(1, its rows). Option letters in
 * either case. A bad argument: the report of xerbla with the routine's name and the parameter's number k,
 * info = -k, and nothing else is touched. info > 0 is what each routine says; 0 is success. Without memory
 * for its pivots a routine reports it, and info is -1010. A workspace named lwork may be asked for its best
 * size with -1.
 *
 * Bounds: u = eps / 2, gamma(n) = n u / (1 - n u), four times as much for complex types (Higham, Accuracy and
 * Stability of Numerical Algorithms, 2nd edition, lemma 3.5).
 */
#ifndef VOX_LAPACK_H
#define VOX_LAPACK_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * LU factorisation: A = P L U, L unit lower triangular, U upper triangular
 */

/* A (m x n) := its factors: U in the upper triangle and above, L below the diagonal without its ones. Rows
 * are exchanged: row i with row ipiv[i - 1], i = 1 .. min(m, n), the element of largest |real| + |imag| at
 * or below the diagonal. info = i > 0: U(i, i) is exactly 0; the factorisation is complete, but U is
 * singular. Error: P L U = A + E, |E| <= gamma(min(m, n)) |L| |U| (Higham, Accuracy and Stability, theorem
 * 9.3). */
VOX_FORTRAN(void, sgetrf, SGETRF,
            (const vox_int *m, const vox_int *n, float *a, const vox_int *lda, vox_int *ipiv,
             vox_int *info));
VOX_FORTRAN(void, dgetrf, DGETRF,
            (const vox_int *m, const vox_int *n, double *a, const vox_int *lda, vox_int *ipiv,
             vox_int *info));
VOX_FORTRAN(void, cgetrf, CGETRF,
            (const vox_int *m, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *ipiv, vox_int *info));
VOX_FORTRAN(void, zgetrf, ZGETRF,
            (const vox_int *m, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *ipiv, vox_int *info));

/* The same, column by column. */
VOX_FORTRAN(void, sgetf2, SGETF2,
            (const vox_int *m, const vox_int *n, float *a, const vox_int *lda, vox_int *ipiv,
             vox_int *info));
VOX_FORTRAN(void, dgetf2, DGETF2,
            (const vox_int *m, const vox_int *n, double *a, const vox_int *lda, vox_int *ipiv,
             vox_int *info));
VOX_FORTRAN(void, cgetf2, CGETF2,
            (const vox_int *m, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *ipiv, vox_int *info));
VOX_FORTRAN(void, zgetf2, ZGETF2,
            (const vox_int *m, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *ipiv, vox_int *info));

/* The same, by recursion over the columns. */
VOX_FORTRAN(void, sgetrf2, SGETRF2,
            (const vox_int *m, const vox_int *n, float *a, const vox_int *lda, vox_int *ipiv,
             vox_int *info));
VOX_FORTRAN(void, dgetrf2, DGETRF2,
            (const vox_int *m, const vox_int *n, double *a, const vox_int *lda, vox_int *ipiv,
             vox_int *info));
VOX_FORTRAN(void, cgetrf2, CGETRF2,
            (const vox_int *m, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *ipiv, vox_int *info));
VOX_FORTRAN(void, zgetrf2, ZGETRF2,
            (const vox_int *m, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *ipiv, vox_int *info));

/* B (n x nrhs) := the solution X of op(A) X = B, from the factors that ?getrf made. trans: 'N' A, 'T' A^T,
 * 'C' A^H. Backward error: (A + E) X = B, |E| <= 3 gamma(n) |L| |U| for each column (theorem 9.4 there). */
VOX_FORTRAN(void, sgetrs, SGETRS,
            (const char *trans, const vox_int *n, const vox_int *nrhs, const float *a,
             const vox_int *lda, const vox_int *ipiv, float *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, dgetrs, DGETRS,
            (const char *trans, const vox_int *n, const vox_int *nrhs, const double *a,
             const vox_int *lda, const vox_int *ipiv, double *b, const vox_int *ldb,
             vox_int *info));
VOX_FORTRAN(void, cgetrs, CGETRS,
            (const char *trans, const vox_int *n, const vox_int *nrhs, const vox_complex_float *a,
             const vox_int *lda, const vox_int *ipiv, vox_complex_float *b, const vox_int *ldb,
             vox_int *info));
VOX_FORTRAN(void, zgetrs, ZGETRS,
            (const char *trans, const vox_int *n, const vox_int *nrhs, const vox_complex_double *a,
             const vox_int *lda, const vox_int *ipiv, vox_complex_double *b, const vox_int *ldb,
             vox_int *info));

/* Solves A X = B: A (n x n) := its factors, B (n x nrhs) := X. info = i > 0: U(i, i) is 0, B is unchanged. */
VOX_FORTRAN(void, sgesv, SGESV,
            (const vox_int *n, const vox_int *nrhs, float *a, const vox_int *lda, vox_int *ipiv,
             float *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, dgesv, DGESV,
            (const vox_int *n, const vox_int *nrhs, double *a, const vox_int *lda, vox_int *ipiv,
             double *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, cgesv, CGESV,
            (const vox_int *n, const vox_int *nrhs, vox_complex_float *a, const vox_int *lda,
             vox_int *ipiv, vox_complex_float *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, zgesv, ZGESV,
            (const vox_int *n, const vox_int *nrhs, vox_complex_double *a, const vox_int *lda,
             vox_int *ipiv, vox_complex_double *b, const vox_int *ldb, vox_int *info));

/* A (n x n) := its inverse, from the factors that ?getrf made. lwork: at least n; -1 puts the best size
 * into work[0]. info = i > 0: U(i, i) is 0, and there is no inverse. */
VOX_FORTRAN(void, sgetri, SGETRI,
            (const vox_int *n, float *a, const vox_int *lda, const vox_int *ipiv, float *work,
             const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, dgetri, DGETRI,
            (const vox_int *n, double *a, const vox_int *lda, const vox_int *ipiv, double *work,
             const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, cgetri, CGETRI,
            (const vox_int *n, vox_complex_float *a, const vox_int *lda, const vox_int *ipiv,
             vox_complex_float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, zgetri, ZGETRI,
            (const vox_int *n, vox_complex_double *a, const vox_int *lda, const vox_int *ipiv,
             vox_complex_double *work, const vox_int *lwork, vox_int *info));

/* Exchanges rows k1 .. k2 of A (n columns) with rows ipiv[k1 - 1 + (i - k1) * |incx|], forwards, or
 * backwards for incx < 0. Nothing is checked. */
VOX_FORTRAN(void, slaswp, SLASWP,
            (const vox_int *n, float *a, const vox_int *lda, const vox_int *k1, const vox_int *k2,
             const vox_int *ipiv, const vox_int *incx));
VOX_FORTRAN(void, dlaswp, DLASWP,
            (const vox_int *n, double *a, const vox_int *lda, const vox_int *k1, const vox_int *k2,
             const vox_int *ipiv, const vox_int *incx));
VOX_FORTRAN(void, claswp, CLASWP,
            (const vox_int *n, vox_complex_float *a, const vox_int *lda, const vox_int *k1,
             const vox_int *k2, const vox_int *ipiv, const vox_int *incx));
VOX_FORTRAN(void, zlaswp, ZLASWP,
            (const vox_int *n, vox_complex_double *a, const vox_int *lda, const vox_int *k1,
             const vox_int *k2, const vox_int *ipiv, const vox_int *incx));

/*
 * Cholesky factorisation: A = U^H U or L L^H, A symmetric or Hermitian positive definite
 */

/* A (n x n, the triangle of uplo) := its factor U ('U') or L ('L'). The other triangle, and imaginary
 * parts on the diagonal, are not read. info = i > 0: the leading minor of order i is not positive. Error:
 * R^H R = A + E, |E| <= gamma(n + 1) |R^H| |R| (Higham, theorem 10.3). */
VOX_FORTRAN(void, spotrf, SPOTRF,
            (const char *uplo, const vox_int *n, float *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, dpotrf, DPOTRF,
            (const char *uplo, const vox_int *n, double *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, cpotrf, CPOTRF,
            (const char *uplo, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, zpotrf, ZPOTRF,
            (const char *uplo, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *info));

/* The same, column by column. */
VOX_FORTRAN(void, spotf2, SPOTF2,
            (const char *uplo, const vox_int *n, float *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, dpotf2, DPOTF2,
            (const char *uplo, const vox_int *n, double *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, cpotf2, CPOTF2,
            (const char *uplo, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, zpotf2, ZPOTF2,
            (const char *uplo, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *info));

/* The same, by recursion. */
VOX_FORTRAN(void, spotrf2, SPOTRF2,
            (const char *uplo, const vox_int *n, float *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, dpotrf2, DPOTRF2,
            (const char *uplo, const vox_int *n, double *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, cpotrf2, CPOTRF2,
            (const char *uplo, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, zpotrf2, ZPOTRF2,
            (const char *uplo, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *info));

/* B (n x nrhs) := the solution of A X = B, from the factor that ?potrf made.
 * Backward error: (A + E) X = B, |E| <= gamma(3 n + 1) |R^H| |R| for each column (theorem 10.4 there). */
VOX_FORTRAN(void, spotrs, SPOTRS,
            (const char *uplo, const vox_int *n, const vox_int *nrhs, const float *a,
             const vox_int *lda, float *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, dpotrs, DPOTRS,
            (const char *uplo, const vox_int *n, const vox_int *nrhs, const double *a,
             const vox_int *lda, double *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, cpotrs, CPOTRS,
            (const char *uplo, const vox_int *n, const vox_int *nrhs, const vox_complex_float *a,
             const vox_int *lda, vox_complex_float *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, zpotrs, ZPOTRS,
            (const char *uplo, const vox_int *n, const vox_int *nrhs, const vox_complex_double *a,
             const vox_int *lda, vox_complex_double *b, const vox_int *ldb, vox_int *info));

/* Solves A X = B: A := its factor, B := X. info = i > 0: the leading minor of order i is not positive, B
 * is unchanged. */
VOX_FORTRAN(void, sposv, SPOSV,
            (const char *uplo, const vox_int *n, const vox_int *nrhs, float *a, const vox_int *lda,
             float *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, dposv, DPOSV,
            (const char *uplo, const vox_int *n, const vox_int *nrhs, double *a, const vox_int *lda,
             double *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, cposv, CPOSV,
            (const char *uplo, const vox_int *n, const vox_int *nrhs, vox_complex_float *a,
             const vox_int *lda, vox_complex_float *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, zposv, ZPOSV,
            (const char *uplo, const vox_int *n, const vox_int *nrhs, vox_complex_double *a,
             const vox_int *lda, vox_complex_double *b, const vox_int *ldb, vox_int *info));

/* A := the triangle of its inverse, from the factor that ?potrf made. info = i > 0: the factor's element
 * (i, i) is 0. */
VOX_FORTRAN(void, spotri, SPOTRI,
            (const char *uplo, const vox_int *n, float *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, dpotri, DPOTRI,
            (const char *uplo, const vox_int *n, double *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, cpotri, CPOTRI,
            (const char *uplo, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, zpotri, ZPOTRI,
            (const char *uplo, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *info));

/* A (a triangle of order n) := the same triangle of U U^H or L^H L. */
VOX_FORTRAN(void, slauum, SLAUUM,
            (const char *uplo, const vox_int *n, float *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, dlauum, DLAUUM,
            (const char *uplo, const vox_int *n, double *a, const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, clauum, CLAUUM,
            (const char *uplo, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, zlauum, ZLAUUM,
            (const char *uplo, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *info));

/*
 * Triangular matrices
 */

/* A (a triangle of order n) := its inverse. diag = 'U': ones on the diagonal, not read. info = i > 0: A(i,
 * i) is 0 and nothing is changed. Residual: |X A - I| <= c(n) eps |X| |A| (Higham, section 14.2). */
VOX_FORTRAN(void, strtri, STRTRI,
            (const char *uplo, const char *diag, const vox_int *n, float *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, dtrtri, DTRTRI,
            (const char *uplo, const char *diag, const vox_int *n, double *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, ctrtri, CTRTRI,
            (const char *uplo, const char *diag, const vox_int *n, vox_complex_float *a,
             const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, ztrtri, ZTRTRI,
            (const char *uplo, const char *diag, const vox_int *n, vox_complex_double *a,
             const vox_int *lda, vox_int *info));

/* The same, column by column. */
VOX_FORTRAN(void, strti2, STRTI2,
            (const char *uplo, const char *diag, const vox_int *n, float *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, dtrti2, DTRTI2,
            (const char *uplo, const char *diag, const vox_int *n, double *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, ctrti2, CTRTI2,
            (const char *uplo, const char *diag, const vox_int *n, vox_complex_float *a,
             const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, ztrti2, ZTRTI2,
            (const char *uplo, const char *diag, const vox_int *n, vox_complex_double *a,
             const vox_int *lda, vox_int *info));

/* B (n x nrhs) := the solution of op(A) X = B with a triangle A. info = i > 0: A(i, i) is 0, B is unchanged.
 * Backward error: |E| <= gamma(n) |A| for each column (Higham, theorem 8.5). */
VOX_FORTRAN(void, strtrs, STRTRS,
            (const char *uplo, const char *trans, const char *diag, const vox_int *n,
             const vox_int *nrhs, const float *a, const vox_int *lda, float *b, const vox_int *ldb,
             vox_int *info));
VOX_FORTRAN(void, dtrtrs, DTRTRS,
            (const char *uplo, const char *trans, const char *diag, const vox_int *n,
             const vox_int *nrhs, const double *a, const vox_int *lda, double *b,
             const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, ctrtrs, CTRTRS,
            (const char *uplo, const char *trans, const char *diag, const vox_int *n,
             const vox_int *nrhs, const vox_complex_float *a, const vox_int *lda,
             vox_complex_float *b, const vox_int *ldb, vox_int *info));
VOX_FORTRAN(void, ztrtrs, ZTRTRS,
            (const char *uplo, const char *trans, const char *diag, const vox_int *n,
             const vox_int *nrhs, const vox_complex_double *a, const vox_int *lda,
             vox_complex_double *b, const vox_int *ldb, vox_int *info));

/*
 * Condition estimates
 */

/* rcond := an estimate of 1 / (|A| |A^-1|) from the factors that ?getrf made; norm: '1' or 'O', the
 * 1-norm, or 'I', the infinity norm; anorm: |A| in it. The estimate of |A^-1| is a lower bound, almost
 * always within a factor of 3 (Higham, ACM TOMS 14, 1988, algorithm 674). work: 4 n real or 2 n complex
 * elements, iwork: n, rwork: 2 n. */
VOX_FORTRAN(void, sgecon, SGECON,
            (const char *norm, const vox_int *n, const float *a, const vox_int *lda,
             const float *anorm, float *rcond, float *work, vox_int *iwork, vox_int *info));
VOX_FORTRAN(void, dgecon, DGECON,
            (const char *norm, const vox_int *n, const double *a, const vox_int *lda,
             const double *anorm, double *rcond, double *work, vox_int *iwork, vox_int *info));
VOX_FORTRAN(void, cgecon, CGECON,
            (const char *norm, const vox_int *n, const vox_complex_float *a, const vox_int *lda,
             const float *anorm, float *rcond, vox_complex_float *work, float *rwork,
             vox_int *info));
VOX_FORTRAN(void, zgecon, ZGECON,
            (const char *norm, const vox_int *n, const vox_complex_double *a, const vox_int *lda,
             const double *anorm, double *rcond, vox_complex_double *work, double *rwork,
             vox_int *info));

/* The same from the factor that ?potrf made; anorm: the 1-norm of A. work: 3 n real or 2 n complex
 * elements, iwork, rwork: n. */
VOX_FORTRAN(void, spocon, SPOCON,
            (const char *uplo, const vox_int *n, const float *a, const vox_int *lda,
             const float *anorm, float *rcond, float *work, vox_int *iwork, vox_int *info));
VOX_FORTRAN(void, dpocon, DPOCON,
            (const char *uplo, const vox_int *n, const double *a, const vox_int *lda,
             const double *anorm, double *rcond, double *work, vox_int *iwork, vox_int *info));
VOX_FORTRAN(void, cpocon, CPOCON,
            (const char *uplo, const vox_int *n, const vox_complex_float *a, const vox_int *lda,
             const float *anorm, float *rcond, vox_complex_float *work, float *rwork,
             vox_int *info));
VOX_FORTRAN(void, zpocon, ZPOCON,
            (const char *uplo, const vox_int *n, const vox_complex_double *a, const vox_int *lda,
             const double *anorm, double *rcond, vox_complex_double *work, double *rwork,
             vox_int *info));

/* The same for a triangle A. work: 3 n real or 2 n complex elements, iwork, rwork: n. */
VOX_FORTRAN(void, strcon, STRCON,
            (const char *norm, const char *uplo, const char *diag, const vox_int *n, const float *a,
             const vox_int *lda, float *rcond, float *work, vox_int *iwork, vox_int *info));
VOX_FORTRAN(void, dtrcon, DTRCON,
            (const char *norm, const char *uplo, const char *diag, const vox_int *n,
             const double *a, const vox_int *lda, double *rcond, double *work, vox_int *iwork,
             vox_int *info));
VOX_FORTRAN(void, ctrcon, CTRCON,
            (const char *norm, const char *uplo, const char *diag, const vox_int *n,
             const vox_complex_float *a, const vox_int *lda, float *rcond, vox_complex_float *work,
             float *rwork, vox_int *info));
VOX_FORTRAN(void, ztrcon, ZTRCON,
            (const char *norm, const char *uplo, const char *diag, const vox_int *n,
             const vox_complex_double *a, const vox_int *lda, double *rcond,
             vox_complex_double *work, double *rwork, vox_int *info));

/* An estimate of the 1-norm of a linear operator, by reverse communication (Higham, ACM TOMS 14, 1988,
 * algorithm 674): kase = 0 at the first call; then, kase = 1: x := A x, kase = 2: x := A^H x, and call
 * again; 0: est is the estimate, v = A w with |v| = est |w|. isgn: n integers, isave: 3, kept between
 * calls. */
VOX_FORTRAN(void, slacn2, SLACN2,
            (const vox_int *n, float *v, float *x, vox_int *isgn, float *est, vox_int *kase,
             vox_int *isave));
VOX_FORTRAN(void, dlacn2, DLACN2,
            (const vox_int *n, double *v, double *x, vox_int *isgn, double *est, vox_int *kase,
             vox_int *isave));
VOX_FORTRAN(void, clacn2, CLACN2,
            (const vox_int *n, vox_complex_float *v, vox_complex_float *x, float *est,
             vox_int *kase, vox_int *isave));
VOX_FORTRAN(void, zlacn2, ZLACN2,
            (const vox_int *n, vox_complex_double *v, vox_complex_double *x, double *est,
             vox_int *kase, vox_int *isave));

/*
 * QR and LQ factorisation: A = Q R, A = L Q, Q orthogonal or unitary
 */

/* A (m x n) := R in the upper triangle (trapezoid), and below the diagonal the vectors v of the reflectors
 * H(i) = I - tau v v^H, v(i) = 1, whose product H(1) H(2) ... is Q. tau: min(m, n) elements. lwork: at
 * least n; -1 puts the best size into work[0]. Error: Q R = A + E, |E_j| <= gamma(c m n) |A_j| for each
 * column, Q exactly orthogonal (Higham, theorem 19.4). */
VOX_FORTRAN(void, sgeqrf, SGEQRF,
            (const vox_int *m, const vox_int *n, float *a, const vox_int *lda, float *tau,
             float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, dgeqrf, DGEQRF,
            (const vox_int *m, const vox_int *n, double *a, const vox_int *lda, double *tau,
             double *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, cgeqrf, CGEQRF,
            (const vox_int *m, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_complex_float *tau, vox_complex_float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, zgeqrf, ZGEQRF,
            (const vox_int *m, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_complex_double *tau, vox_complex_double *work, const vox_int *lwork,
             vox_int *info));

/* The same for A = L Q: L in the lower triangle, the reflectors' conjugated vectors to the right of the
 * diagonal; Q = ... H(2)^H H(1)^H. lwork: at least m. */
VOX_FORTRAN(void, sgelqf, SGELQF,
            (const vox_int *m, const vox_int *n, float *a, const vox_int *lda, float *tau,
             float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, dgelqf, DGELQF,
            (const vox_int *m, const vox_int *n, double *a, const vox_int *lda, double *tau,
             double *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, cgelqf, CGELQF,
            (const vox_int *m, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_complex_float *tau, vox_complex_float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, zgelqf, ZGELQF,
            (const vox_int *m, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_complex_double *tau, vox_complex_double *work, const vox_int *lwork,
             vox_int *info));

/* ?geqrf, column by column; work: n elements. */
VOX_FORTRAN(void, sgeqr2, SGEQR2,
            (const vox_int *m, const vox_int *n, float *a, const vox_int *lda, float *tau,
             float *work, vox_int *info));
VOX_FORTRAN(void, dgeqr2, DGEQR2,
            (const vox_int *m, const vox_int *n, double *a, const vox_int *lda, double *tau,
             double *work, vox_int *info));
VOX_FORTRAN(void, cgeqr2, CGEQR2,
            (const vox_int *m, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_complex_float *tau, vox_complex_float *work, vox_int *info));
VOX_FORTRAN(void, zgeqr2, ZGEQR2,
            (const vox_int *m, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_complex_double *tau, vox_complex_double *work, vox_int *info));

/* ?gelqf, row by row; work: m elements. */
VOX_FORTRAN(void, sgelq2, SGELQ2,
            (const vox_int *m, const vox_int *n, float *a, const vox_int *lda, float *tau,
             float *work, vox_int *info));
VOX_FORTRAN(void, dgelq2, DGELQ2,
            (const vox_int *m, const vox_int *n, double *a, const vox_int *lda, double *tau,
             double *work, vox_int *info));
VOX_FORTRAN(void, cgelq2, CGELQ2,
            (const vox_int *m, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_complex_float *tau, vox_complex_float *work, vox_int *info));
VOX_FORTRAN(void, zgelq2, ZGELQ2,
            (const vox_int *m, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_complex_double *tau, vox_complex_double *work, vox_int *info));

/* A P = Q R with columns chosen so that |R(i, i)| does not grow. jpvt in: not 0 for columns that are to
 * come first; out: column i of A P was column jpvt[i - 1] of A. lwork: at least 3 n + 1 for real types, n
 * + 1 for complex ones. */
VOX_FORTRAN(void, sgeqp3, SGEQP3,
            (const vox_int *m, const vox_int *n, float *a, const vox_int *lda, vox_int *jpvt,
             float *tau, float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, dgeqp3, DGEQP3,
            (const vox_int *m, const vox_int *n, double *a, const vox_int *lda, vox_int *jpvt,
             double *tau, double *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, cgeqp3, CGEQP3,
            (const vox_int *m, const vox_int *n, vox_complex_float *a, const vox_int *lda,
             vox_int *jpvt, vox_complex_float *tau, vox_complex_float *work, const vox_int *lwork,
             float *rwork, vox_int *info));
VOX_FORTRAN(void, zgeqp3, ZGEQP3,
            (const vox_int *m, const vox_int *n, vox_complex_double *a, const vox_int *lda,
             vox_int *jpvt, vox_complex_double *tau, vox_complex_double *work, const vox_int *lwork,
             double *rwork, vox_int *info));

/* A (m x n, its columns the reflectors that ?geqrf made) := the first n columns of Q = H(1) ... H(k), n <=
 * m, k <= n. lwork: at least n. */
VOX_FORTRAN(void, sorgqr, SORGQR,
            (const vox_int *m, const vox_int *n, const vox_int *k, float *a, const vox_int *lda,
             const float *tau, float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, dorgqr, DORGQR,
            (const vox_int *m, const vox_int *n, const vox_int *k, double *a, const vox_int *lda,
             const double *tau, double *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, cungqr, CUNGQR,
            (const vox_int *m, const vox_int *n, const vox_int *k, vox_complex_float *a,
             const vox_int *lda, const vox_complex_float *tau, vox_complex_float *work,
             const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, zungqr, ZUNGQR,
            (const vox_int *m, const vox_int *n, const vox_int *k, vox_complex_double *a,
             const vox_int *lda, const vox_complex_double *tau, vox_complex_double *work,
             const vox_int *lwork, vox_int *info));

/* A (m x n, its rows the reflectors that ?gelqf made) := the first m rows of Q, n >= m, k <= m. lwork: at
 * least m. */
VOX_FORTRAN(void, sorglq, SORGLQ,
            (const vox_int *m, const vox_int *n, const vox_int *k, float *a, const vox_int *lda,
             const float *tau, float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, dorglq, DORGLQ,
            (const vox_int *m, const vox_int *n, const vox_int *k, double *a, const vox_int *lda,
             const double *tau, double *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, cunglq, CUNGLQ,
            (const vox_int *m, const vox_int *n, const vox_int *k, vox_complex_float *a,
             const vox_int *lda, const vox_complex_float *tau, vox_complex_float *work,
             const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, zunglq, ZUNGLQ,
            (const vox_int *m, const vox_int *n, const vox_int *k, vox_complex_double *a,
             const vox_int *lda, const vox_complex_double *tau, vox_complex_double *work,
             const vox_int *lwork, vox_int *info));

/* ?orgqr, reflector by reflector; work: n elements. */
VOX_FORTRAN(void, sorg2r, SORG2R,
            (const vox_int *m, const vox_int *n, const vox_int *k, float *a, const vox_int *lda,
             const float *tau, float *work, vox_int *info));
VOX_FORTRAN(void, dorg2r, DORG2R,
            (const vox_int *m, const vox_int *n, const vox_int *k, double *a, const vox_int *lda,
             const double *tau, double *work, vox_int *info));
VOX_FORTRAN(void, cung2r, CUNG2R,
            (const vox_int *m, const vox_int *n, const vox_int *k, vox_complex_float *a,
             const vox_int *lda, const vox_complex_float *tau, vox_complex_float *work,
             vox_int *info));
VOX_FORTRAN(void, zung2r, ZUNG2R,
            (const vox_int *m, const vox_int *n, const vox_int *k, vox_complex_double *a,
             const vox_int *lda, const vox_complex_double *tau, vox_complex_double *work,
             vox_int *info));

/* ?orglq, reflector by reflector; work: m elements. */
VOX_FORTRAN(void, sorgl2, SORGL2,
            (const vox_int *m, const vox_int *n, const vox_int *k, float *a, const vox_int *lda,
             const float *tau, float *work, vox_int *info));
VOX_FORTRAN(void, dorgl2, DORGL2,
            (const vox_int *m, const vox_int *n, const vox_int *k, double *a, const vox_int *lda,
             const double *tau, double *work, vox_int *info));
VOX_FORTRAN(void, cungl2, CUNGL2,
            (const vox_int *m, const vox_int *n, const vox_int *k, vox_complex_float *a,
             const vox_int *lda, const vox_complex_float *tau, vox_complex_float *work,
             vox_int *info));
VOX_FORTRAN(void, zungl2, ZUNGL2,
            (const vox_int *m, const vox_int *n, const vox_int *k, vox_complex_double *a,
             const vox_int *lda, const vox_complex_double *tau, vox_complex_double *work,
             vox_int *info));

/* C (m x n) := Q C, Q^H C (side = 'L'), C Q or C Q^H ('R') with the Q of k reflectors that ?geqrf made.
 * trans: 'N', or 'T' for real types and 'C' for complex ones. lwork: at least n ('L') or m. */
VOX_FORTRAN(void, sormqr, SORMQR,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const float *a, const vox_int *lda, const float *tau, float *c,
             const vox_int *ldc, float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, dormqr, DORMQR,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const double *a, const vox_int *lda, const double *tau, double *c,
             const vox_int *ldc, double *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, cunmqr, CUNMQR,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const vox_complex_float *a, const vox_int *lda,
             const vox_complex_float *tau, vox_complex_float *c, const vox_int *ldc,
             vox_complex_float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, zunmqr, ZUNMQR,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const vox_complex_double *a, const vox_int *lda,
             const vox_complex_double *tau, vox_complex_double *c, const vox_int *ldc,
             vox_complex_double *work, const vox_int *lwork, vox_int *info));

/* The same with the Q that ?gelqf made. */
VOX_FORTRAN(void, sormlq, SORMLQ,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const float *a, const vox_int *lda, const float *tau, float *c,
             const vox_int *ldc, float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, dormlq, DORMLQ,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const double *a, const vox_int *lda, const double *tau, double *c,
             const vox_int *ldc, double *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, cunmlq, CUNMLQ,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const vox_complex_float *a, const vox_int *lda,
             const vox_complex_float *tau, vox_complex_float *c, const vox_int *ldc,
             vox_complex_float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, zunmlq, ZUNMLQ,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const vox_complex_double *a, const vox_int *lda,
             const vox_complex_double *tau, vox_complex_double *c, const vox_int *ldc,
             vox_complex_double *work, const vox_int *lwork, vox_int *info));

/* ?ormqr, reflector by reflector; work: n ('L') or m elements. */
VOX_FORTRAN(void, sorm2r, SORM2R,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const float *a, const vox_int *lda, const float *tau, float *c,
             const vox_int *ldc, float *work, vox_int *info));
VOX_FORTRAN(void, dorm2r, DORM2R,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const double *a, const vox_int *lda, const double *tau, double *c,
             const vox_int *ldc, double *work, vox_int *info));
VOX_FORTRAN(void, cunm2r, CUNM2R,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const vox_complex_float *a, const vox_int *lda,
             const vox_complex_float *tau, vox_complex_float *c, const vox_int *ldc,
             vox_complex_float *work, vox_int *info));
VOX_FORTRAN(void, zunm2r, ZUNM2R,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const vox_complex_double *a, const vox_int *lda,
             const vox_complex_double *tau, vox_complex_double *c, const vox_int *ldc,
             vox_complex_double *work, vox_int *info));

/* ?ormlq, reflector by reflector; work: n ('L') or m elements. */
VOX_FORTRAN(void, sorml2, SORML2,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const float *a, const vox_int *lda, const float *tau, float *c,
             const vox_int *ldc, float *work, vox_int *info));
VOX_FORTRAN(void, dorml2, DORML2,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const double *a, const vox_int *lda, const double *tau, double *c,
             const vox_int *ldc, double *work, vox_int *info));
VOX_FORTRAN(void, cunml2, CUNML2,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const vox_complex_float *a, const vox_int *lda,
             const vox_complex_float *tau, vox_complex_float *c, const vox_int *ldc,
             vox_complex_float *work, vox_int *info));
VOX_FORTRAN(void, zunml2, ZUNML2,
            (const char *side, const char *trans, const vox_int *m, const vox_int *n,
             const vox_int *k, const vox_complex_double *a, const vox_int *lda,
             const vox_complex_double *tau, vox_complex_double *c, const vox_int *ldc,
             vox_complex_double *work, vox_int *info));

/*
 * Least squares
 */

/* Least squares and minimum norm, A (m x n) of full rank. trans = 'N': m >= n, min |B - A X|; m < n, A X =
 * B with the smallest |X|; 'T' (real types) or 'C' (complex): the same with A^H. B: max(m, n) x nrhs,
 * overwritten by X; below a least squares solution, the residual's coordinates: their sum of squares is
 * its square. A := its QR or LQ factorisation. lwork: at least min(m, n) + max(min(m, n), nrhs). info = i
 * > 0: the triangular factor's element (i, i) is 0. */
VOX_FORTRAN(void, sgels, SGELS,
            (const char *trans, const vox_int *m, const vox_int *n, const vox_int *nrhs, float *a,
             const vox_int *lda, float *b, const vox_int *ldb, float *work, const vox_int *lwork,
             vox_int *info));
VOX_FORTRAN(void, dgels, DGELS,
            (const char *trans, const vox_int *m, const vox_int *n, const vox_int *nrhs, double *a,
             const vox_int *lda, double *b, const vox_int *ldb, double *work, const vox_int *lwork,
             vox_int *info));
VOX_FORTRAN(void, cgels, CGELS,
            (const char *trans, const vox_int *m, const vox_int *n, const vox_int *nrhs,
             vox_complex_float *a, const vox_int *lda, vox_complex_float *b, const vox_int *ldb,
             vox_complex_float *work, const vox_int *lwork, vox_int *info));
VOX_FORTRAN(void, zgels, ZGELS,
            (const char *trans, const vox_int *m, const vox_int *n, const vox_int *nrhs,
             vox_complex_double *a, const vox_int *lda, vox_complex_double *b, const vox_int *ldb,
             vox_complex_double *work, const vox_int *lwork, vox_int *info));

/*
 * Reflectors H = I - tau v v^H and blocks of them
 */

/* The reflector H of order n with H^H (alpha, x) = (beta, 0): alpha := beta, real; x := v(2 .. n), v(1) =
 * 1; tau. x = 0 (and alpha real): tau = 0, H = I. Safe where beta would underflow. */
VOX_FORTRAN(void, slarfg, SLARFG,
            (const vox_int *n, float *alpha, float *x, const vox_int *incx, float *tau));
VOX_FORTRAN(void, dlarfg, DLARFG,
            (const vox_int *n, double *alpha, double *x, const vox_int *incx, double *tau));
VOX_FORTRAN(void, clarfg, CLARFG,
            (const vox_int *n, vox_complex_float *alpha, vox_complex_float *x, const vox_int *incx,
             vox_complex_float *tau));
VOX_FORTRAN(void, zlarfg, ZLARFG,
            (const vox_int *n, vox_complex_double *alpha, vox_complex_double *x,
             const vox_int *incx, vox_complex_double *tau));

/* C (m x n) := H C (side = 'L') or C H, H = I - tau v v^H. tau = 0: nothing. work: n or m elements. */
VOX_FORTRAN(void, slarf, SLARF,
            (const char *side, const vox_int *m, const vox_int *n, const float *v,
             const vox_int *incv, const float *tau, float *c, const vox_int *ldc, float *work));
VOX_FORTRAN(void, dlarf, DLARF,
            (const char *side, const vox_int *m, const vox_int *n, const double *v,
             const vox_int *incv, const double *tau, double *c, const vox_int *ldc, double *work));
VOX_FORTRAN(void, clarf, CLARF,
            (const char *side, const vox_int *m, const vox_int *n, const vox_complex_float *v,
             const vox_int *incv, const vox_complex_float *tau, vox_complex_float *c,
             const vox_int *ldc, vox_complex_float *work));
VOX_FORTRAN(void, zlarf, ZLARF,
            (const char *side, const vox_int *m, const vox_int *n, const vox_complex_double *v,
             const vox_int *incv, const vox_complex_double *tau, vox_complex_double *c,
             const vox_int *ldc, vox_complex_double *work));

/* T (k x k) := the triangular factor of a product of k reflectors of order n, I - V T V^H. direct: 'F'
 * H(1) H(2) ..., 'B' ... H(2) H(1); storev: 'C' the vectors are V's columns, 'R' its rows. Known zeros and
 * ones of V are not read. */
VOX_FORTRAN(void, slarft, SLARFT,
            (const char *direct, const char *storev, const vox_int *n, const vox_int *k,
             const float *v, const vox_int *ldv, const float *tau, float *t, const vox_int *ldt));
VOX_FORTRAN(void, dlarft, DLARFT,
            (const char *direct, const char *storev, const vox_int *n, const vox_int *k,
             const double *v, const vox_int *ldv, const double *tau, double *t,
             const vox_int *ldt));
VOX_FORTRAN(void, clarft, CLARFT,
            (const char *direct, const char *storev, const vox_int *n, const vox_int *k,
             const vox_complex_float *v, const vox_int *ldv, const vox_complex_float *tau,
             vox_complex_float *t, const vox_int *ldt));
VOX_FORTRAN(void, zlarft, ZLARFT,
            (const char *direct, const char *storev, const vox_int *n, const vox_int *k,
             const vox_complex_double *v, const vox_int *ldv, const vox_complex_double *tau,
             vox_complex_double *t, const vox_int *ldt));

/* C (m x n) := H C, H^H C (side = 'L'), C H or C H^H with the block reflector H = I - V T V^H that ?larft
 * describes. work: ldwork x k, ldwork at least n or m. */
VOX_FORTRAN(void, slarfb, SLARFB,
            (const char *side, const char *trans, const char *direct, const char *storev,
             const vox_int *m, const vox_int *n, const vox_int *k, const float *v,
             const vox_int *ldv, const float *t, const vox_int *ldt, float *c, const vox_int *ldc,
             float *work, const vox_int *ldwork));
VOX_FORTRAN(void, dlarfb, DLARFB,
            (const char *side, const char *trans, const char *direct, const char *storev,
             const vox_int *m, const vox_int *n, const vox_int *k, const double *v,
             const vox_int *ldv, const double *t, const vox_int *ldt, double *c, const vox_int *ldc,
             double *work, const vox_int *ldwork));
VOX_FORTRAN(void, clarfb, CLARFB,
            (const char *side, const char *trans, const char *direct, const char *storev,
             const vox_int *m, const vox_int *n, const vox_int *k, const vox_complex_float *v,
             const vox_int *ldv, const vox_complex_float *t, const vox_int *ldt,
             vox_complex_float *c, const vox_int *ldc, vox_complex_float *work,
             const vox_int *ldwork));
VOX_FORTRAN(void, zlarfb, ZLARFB,
            (const char *side, const char *trans, const char *direct, const char *storev,
             const vox_int *m, const vox_int *n, const vox_int *k, const vox_complex_double *v,
             const vox_int *ldv, const vox_complex_double *t, const vox_int *ldt,
             vox_complex_double *c, const vox_int *ldc, vox_complex_double *work,
             const vox_int *ldwork));

/*
 * Norms, copies, scaling
 */

/* A norm of A (m x n): 'M' the largest |A(i, j)|, '1' or 'O' the largest column sum, 'I' the largest row
 * sum, 'F' or 'E' Frobenius's. NaN if an element is. work: m elements for 'I'. */
VOX_FORTRAN(float, slange, SLANGE,
            (const char *norm, const vox_int *m, const vox_int *n, const float *a,
             const vox_int *lda, float *work));
VOX_FORTRAN(double, dlange, DLANGE,
            (const char *norm, const vox_int *m, const vox_int *n, const double *a,
             const vox_int *lda, double *work));
VOX_FORTRAN(float, clange, CLANGE,
            (const char *norm, const vox_int *m, const vox_int *n, const vox_complex_float *a,
             const vox_int *lda, float *work));
VOX_FORTRAN(double, zlange, ZLANGE,
            (const char *norm, const vox_int *m, const vox_int *n, const vox_complex_double *a,
             const vox_int *lda, double *work));

/* The same of a symmetric matrix, given by one triangle. work: n elements for '1', 'O' and 'I'. */
VOX_FORTRAN(float, slansy, SLANSY,
            (const char *norm, const char *uplo, const vox_int *n, const float *a,
             const vox_int *lda, float *work));
VOX_FORTRAN(double, dlansy, DLANSY,
            (const char *norm, const char *uplo, const vox_int *n, const double *a,
             const vox_int *lda, double *work));
VOX_FORTRAN(float, clansy, CLANSY,
            (const char *norm, const char *uplo, const vox_int *n, const vox_complex_float *a,
             const vox_int *lda, float *work));
VOX_FORTRAN(double, zlansy, ZLANSY,
            (const char *norm, const char *uplo, const vox_int *n, const vox_complex_double *a,
             const vox_int *lda, double *work));

/* The same of a Hermitian matrix. */
VOX_FORTRAN(float, clanhe, CLANHE,
            (const char *norm, const char *uplo, const vox_int *n, const vox_complex_float *a,
             const vox_int *lda, float *work));
VOX_FORTRAN(double, zlanhe, ZLANHE,
            (const char *norm, const char *uplo, const vox_int *n, const vox_complex_double *a,
             const vox_int *lda, double *work));

/* The same of a triangular or trapezoidal matrix. */
VOX_FORTRAN(float, slantr, SLANTR,
            (const char *norm, const char *uplo, const char *diag, const vox_int *m,
             const vox_int *n, const float *a, const vox_int *lda, float *work));
VOX_FORTRAN(double, dlantr, DLANTR,
            (const char *norm, const char *uplo, const char *diag, const vox_int *m,
             const vox_int *n, const double *a, const vox_int *lda, double *work));
VOX_FORTRAN(float, clantr, CLANTR,
            (const char *norm, const char *uplo, const char *diag, const vox_int *m,
             const vox_int *n, const vox_complex_float *a, const vox_int *lda, float *work));
VOX_FORTRAN(double, zlantr, ZLANTR,
            (const char *norm, const char *uplo, const char *diag, const vox_int *m,
             const vox_int *n, const vox_complex_double *a, const vox_int *lda, double *work));

/* B := A (m x n): the upper triangle (trapezoid) alone for uplo = 'U', the lower one for 'L', otherwise
 * all. */
VOX_FORTRAN(void, slacpy, SLACPY,
            (const char *uplo, const vox_int *m, const vox_int *n, const float *a,
             const vox_int *lda, float *b, const vox_int *ldb));
VOX_FORTRAN(void, dlacpy, DLACPY,
            (const char *uplo, const vox_int *m, const vox_int *n, const double *a,
             const vox_int *lda, double *b, const vox_int *ldb));
VOX_FORTRAN(void, clacpy, CLACPY,
            (const char *uplo, const vox_int *m, const vox_int *n, const vox_complex_float *a,
             const vox_int *lda, vox_complex_float *b, const vox_int *ldb));
VOX_FORTRAN(void, zlacpy, ZLACPY,
            (const char *uplo, const vox_int *m, const vox_int *n, const vox_complex_double *a,
             const vox_int *lda, vox_complex_double *b, const vox_int *ldb));

/* A (m x n) := beta on the diagonal, alpha off it, in the part that uplo names as in ?lacpy. */
VOX_FORTRAN(void, slaset, SLASET,
            (const char *uplo, const vox_int *m, const vox_int *n, const float *alpha,
             const float *beta, float *a, const vox_int *lda));
VOX_FORTRAN(void, dlaset, DLASET,
            (const char *uplo, const vox_int *m, const vox_int *n, const double *alpha,
             const double *beta, double *a, const vox_int *lda));
VOX_FORTRAN(void, claset, CLASET,
            (const char *uplo, const vox_int *m, const vox_int *n, const vox_complex_float *alpha,
             const vox_complex_float *beta, vox_complex_float *a, const vox_int *lda));
VOX_FORTRAN(void, zlaset, ZLASET,
            (const char *uplo, const vox_int *m, const vox_int *n, const vox_complex_double *alpha,
             const vox_complex_double *beta, vox_complex_double *a, const vox_int *lda));

/* A := A cto / cfrom, without overflow or underflow on the way. type: 'G' all, 'L', 'U' a triangle, 'H' an
 * upper Hessenberg matrix, 'B', 'Q' the lower and the upper half of a symmetric band, 'Z' a band as ?gbtrf
 * has it. */
VOX_FORTRAN(void, slascl, SLASCL,
            (const char *type, const vox_int *kl, const vox_int *ku, const float *cfrom,
             const float *cto, const vox_int *m, const vox_int *n, float *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, dlascl, DLASCL,
            (const char *type, const vox_int *kl, const vox_int *ku, const double *cfrom,
             const double *cto, const vox_int *m, const vox_int *n, double *a, const vox_int *lda,
             vox_int *info));
VOX_FORTRAN(void, clascl, CLASCL,
            (const char *type, const vox_int *kl, const vox_int *ku, const float *cfrom,
             const float *cto, const vox_int *m, const vox_int *n, vox_complex_float *a,
             const vox_int *lda, vox_int *info));
VOX_FORTRAN(void, zlascl, ZLASCL,
            (const char *type, const vox_int *kl, const vox_int *ku, const double *cfrom,
             const double *cto, const vox_int *m, const vox_int *n, vox_complex_double *a,
             const vox_int *lda, vox_int *info));

/*
 * Single numbers
 */

/* A property of the arithmetic: 'E' eps = 2^-p, 'S' the smallest safe number, 'B' 2, 'P' eps * 2, 'N' p,
 * 'R' 1 (rounds), 'M' the smallest exponent, 'U' the smallest normal number, 'L' the largest exponent, 'O'
 * the largest number. */
VOX_FORTRAN(float, slamch, SLAMCH, (const char *cmach));
VOX_FORTRAN(double, dlamch, DLAMCH, (const char *cmach));

/* sqrt(x^2 + y^2), without overflow or harmful underflow; NaN if one is. Error: 3 ulp. */
VOX_FORTRAN(float, slapy2, SLAPY2, (const float *x, const float *y));
VOX_FORTRAN(double, dlapy2, DLAPY2, (const double *x, const double *y));

/* sqrt(x^2 + y^2 + z^2) likewise. */
VOX_FORTRAN(float, slapy3, SLAPY3, (const float *x, const float *y, const float *z));
VOX_FORTRAN(double, dlapy3, DLAPY3, (const double *x, const double *y, const double *z));

/* scale, sumsq := such that scale^2 sumsq is the old value plus the sum of |x_i|^2, safely (Blue's
 * accumulators). */
VOX_FORTRAN(void, slassq, SLASSQ,
            (const vox_int *n, const float *x, const vox_int *incx, float *scale, float *sumsq));
VOX_FORTRAN(void, dlassq, DLASSQ,
            (const vox_int *n, const double *x, const vox_int *incx, double *scale, double *sumsq));
VOX_FORTRAN(void, classq, CLASSQ,
            (const vox_int *n, const vox_complex_float *x, const vox_int *incx, float *scale,
             float *sumsq));
VOX_FORTRAN(void, zlassq, ZLASSQ,
            (const vox_int *n, const vox_complex_double *x, const vox_int *incx, double *scale,
             double *sumsq));

/* (p, q) := (a + i b) / (c + i d), or x / y as a complex function, robustly (Baudin and Smith, arXiv
 * 1210.4539). */
VOX_FORTRAN(void, sladiv, SLADIV,
            (const float *a, const float *b, const float *c, const float *d, float *p, float *q));
VOX_FORTRAN(void, dladiv, DLADIV,
            (const double *a, const double *b, const double *c, const double *d, double *p,
             double *q));
VOX_FORTRAN(vox_complex_float, cladiv, CLADIV,
            (const vox_complex_float *x, const vox_complex_float *y));
VOX_FORTRAN(vox_complex_double, zladiv, ZLADIV,
            (const vox_complex_double *x, const vox_complex_double *y));

/* Leaves small and large as they are: binary exponents are no wider than formats say here. */
VOX_FORTRAN(void, slabad, SLABAD, (float *small, float *large));
VOX_FORTRAN(void, dlabad, DLABAD, (double *small, double *large));

/* The rotation with c f + s g = r, -conj(s) f + c g = 0, c real and not negative (real: r has f's sign),
 * safely scaled (Anderson, ACM TOMS 44, 2017). */
VOX_FORTRAN(void, slartg, SLARTG, (const float *f, const float *g, float *c, float *s, float *r));
VOX_FORTRAN(void, dlartg, DLARTG,
            (const double *f, const double *g, double *c, double *s, double *r));
VOX_FORTRAN(void, clartg, CLARTG,
            (const vox_complex_float *f, const vox_complex_float *g, float *c, vox_complex_float *s,
             vox_complex_float *r));
VOX_FORTRAN(void, zlartg, ZLARTG,
            (const vox_complex_double *f, const vox_complex_double *g, double *c,
             vox_complex_double *s, vox_complex_double *r));

/*
 * The library
 */

/* What a blocked routine would choose: ispec 1 the block size, 2 the smallest useful one, 3 the crossover to
 * unblocked code, for the routine `name` (any precision) with options `opts` and sizes n1 .. n4; others as
 * LAPACK has them. The lengths of the two texts come last, as Fortran passes them. */
VOX_FORTRAN(vox_int, ilaenv, ILAENV,
            (const vox_int *ispec, const char *name, const char *opts, const vox_int *n1,
             const vox_int *n2, const vox_int *n3, const vox_int *n4, size_t name_length,
             size_t opts_length));

/* The version of LAPACK whose interface this is. */
VOX_FORTRAN(void, ilaver, ILAVER, (vox_int * major, vox_int *minor, vox_int *patch));

#ifdef __cplusplus
}
#endif

#endif
