/*
 * lapacke.h - LAPACK as C calls it: scalars by value, matrices by rows or by columns.
 *
 * Routines, operands and results as in lapack.h. matrix_layout: 101 rows lie one after another, 102 columns
 * do; a leading dimension counts elements from one to the next. LAPACKE_dgetrf finds its workspace itself
 * and tests its input for NaN; LAPACKE_dgetrf_work does neither.
 *
 * Results: the info of the routine; -k for parameter number k, the layout being the first; -1010 without
 * memory for a work array (or for pivots), -1011 without memory for the copy of a row-major matrix. A NaN is
 * no report, just the number of its argument. Forms of functions return their value, or such a number.
 */
#ifndef VOX_LAPACKE_H
#define VOX_LAPACKE_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

#ifndef LAPACK_ROW_MAJOR
#define LAPACK_ROW_MAJOR 101
#define LAPACK_COL_MAJOR 102
#endif
#define LAPACK_WORK_MEMORY_ERROR (-1010)
#define LAPACK_TRANSPOSE_MEMORY_ERROR (-1011)

/* The NaN check of this process: flag 0 turns it off, any other on. The state at first: environment variable
 * LAPACKE_NANCHECK, off if it reads as 0, on if it is missing or anything else. */
VOX_API void LAPACKE_set_nancheck(int flag);
VOX_API int LAPACKE_get_nancheck(void);

/* Prints what is wrong with a call: one line for a negative info. */
VOX_API void LAPACKE_xerbla(const char *name, vox_int info);

/* Whether two letters are the same but for case. */
VOX_API vox_int LAPACKE_lsame(char ca, char cb);

/* The version of LAPACK whose interface this is. */
VOX_API void LAPACKE_ilaver(vox_int *major, vox_int *minor, vox_int *patch);

/*
 * LU factorisation: A = P L U, L unit lower triangular, U upper triangular
 */

VOX_API vox_int LAPACKE_sgetrf(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                               vox_int *ipiv);
VOX_API vox_int LAPACKE_dgetrf(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                               vox_int *ipiv);
VOX_API vox_int LAPACKE_cgetrf(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                               vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_zgetrf(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                               vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_sgetrf_work(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                    vox_int *ipiv);
VOX_API vox_int LAPACKE_dgetrf_work(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                                    vox_int *ipiv);
VOX_API vox_int LAPACKE_cgetrf_work(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                    vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_zgetrf_work(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                    vox_int lda, vox_int *ipiv);

VOX_API vox_int LAPACKE_sgetf2(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                               vox_int *ipiv);
VOX_API vox_int LAPACKE_dgetf2(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                               vox_int *ipiv);
VOX_API vox_int LAPACKE_cgetf2(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                               vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_zgetf2(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                               vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_sgetf2_work(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                    vox_int *ipiv);
VOX_API vox_int LAPACKE_dgetf2_work(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                                    vox_int *ipiv);
VOX_API vox_int LAPACKE_cgetf2_work(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                    vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_zgetf2_work(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                    vox_int lda, vox_int *ipiv);

VOX_API vox_int LAPACKE_sgetrf2(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                vox_int *ipiv);
VOX_API vox_int LAPACKE_dgetrf2(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                                vox_int *ipiv);
VOX_API vox_int LAPACKE_cgetrf2(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_zgetrf2(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_sgetrf2_work(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                     vox_int *ipiv);
VOX_API vox_int LAPACKE_dgetrf2_work(int matrix_layout, vox_int m, vox_int n, double *a,
                                     vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_cgetrf2_work(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                     vox_int lda, vox_int *ipiv);
VOX_API vox_int LAPACKE_zgetrf2_work(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                     vox_int lda, vox_int *ipiv);

VOX_API vox_int LAPACKE_sgetrs(int matrix_layout, char trans, vox_int n, vox_int nrhs,
                               const float *a, vox_int lda, const vox_int *ipiv, float *b,
                               vox_int ldb);
VOX_API vox_int LAPACKE_dgetrs(int matrix_layout, char trans, vox_int n, vox_int nrhs,
                               const double *a, vox_int lda, const vox_int *ipiv, double *b,
                               vox_int ldb);
VOX_API vox_int LAPACKE_cgetrs(int matrix_layout, char trans, vox_int n, vox_int nrhs,
                               const vox_complex_float *a, vox_int lda, const vox_int *ipiv,
                               vox_complex_float *b, vox_int ldb);
VOX_API vox_int LAPACKE_zgetrs(int matrix_layout, char trans, vox_int n, vox_int nrhs,
                               const vox_complex_double *a, vox_int lda, const vox_int *ipiv,
                               vox_complex_double *b, vox_int ldb);
VOX_API vox_int LAPACKE_sgetrs_work(int matrix_layout, char trans, vox_int n, vox_int nrhs,
                                    const float *a, vox_int lda, const vox_int *ipiv, float *b,
                                    vox_int ldb);
VOX_API vox_int LAPACKE_dgetrs_work(int matrix_layout, char trans, vox_int n, vox_int nrhs,
                                    const double *a, vox_int lda, const vox_int *ipiv, double *b,
                                    vox_int ldb);
VOX_API vox_int LAPACKE_cgetrs_work(int matrix_layout, char trans, vox_int n, vox_int nrhs,
                                    const vox_complex_float *a, vox_int lda, const vox_int *ipiv,
                                    vox_complex_float *b, vox_int ldb);
VOX_API vox_int LAPACKE_zgetrs_work(int matrix_layout, char trans, vox_int n, vox_int nrhs,
                                    const vox_complex_double *a, vox_int lda, const vox_int *ipiv,
                                    vox_complex_double *b, vox_int ldb);

VOX_API vox_int LAPACKE_sgesv(int matrix_layout, vox_int n, vox_int nrhs, float *a, vox_int lda,
                              vox_int *ipiv, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dgesv(int matrix_layout, vox_int n, vox_int nrhs, double *a, vox_int lda,
                              vox_int *ipiv, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_cgesv(int matrix_layout, vox_int n, vox_int nrhs, vox_complex_float *a,
                              vox_int lda, vox_int *ipiv, vox_complex_float *b, vox_int ldb);
VOX_API vox_int LAPACKE_zgesv(int matrix_layout, vox_int n, vox_int nrhs, vox_complex_double *a,
                              vox_int lda, vox_int *ipiv, vox_complex_double *b, vox_int ldb);
VOX_API vox_int LAPACKE_sgesv_work(int matrix_layout, vox_int n, vox_int nrhs, float *a,
                                   vox_int lda, vox_int *ipiv, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dgesv_work(int matrix_layout, vox_int n, vox_int nrhs, double *a,
                                   vox_int lda, vox_int *ipiv, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_cgesv_work(int matrix_layout, vox_int n, vox_int nrhs, vox_complex_float *a,
                                   vox_int lda, vox_int *ipiv, vox_complex_float *b, vox_int ldb);
VOX_API vox_int LAPACKE_zgesv_work(int matrix_layout, vox_int n, vox_int nrhs,
                                   vox_complex_double *a, vox_int lda, vox_int *ipiv,
                                   vox_complex_double *b, vox_int ldb);

VOX_API vox_int LAPACKE_sgetri(int matrix_layout, vox_int n, float *a, vox_int lda,
                               const vox_int *ipiv);
VOX_API vox_int LAPACKE_dgetri(int matrix_layout, vox_int n, double *a, vox_int lda,
                               const vox_int *ipiv);
VOX_API vox_int LAPACKE_cgetri(int matrix_layout, vox_int n, vox_complex_float *a, vox_int lda,
                               const vox_int *ipiv);
VOX_API vox_int LAPACKE_zgetri(int matrix_layout, vox_int n, vox_complex_double *a, vox_int lda,
                               const vox_int *ipiv);
VOX_API vox_int LAPACKE_sgetri_work(int matrix_layout, vox_int n, float *a, vox_int lda,
                                    const vox_int *ipiv, float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dgetri_work(int matrix_layout, vox_int n, double *a, vox_int lda,
                                    const vox_int *ipiv, double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cgetri_work(int matrix_layout, vox_int n, vox_complex_float *a, vox_int lda,
                                    const vox_int *ipiv, vox_complex_float *work, vox_int lwork);
VOX_API vox_int LAPACKE_zgetri_work(int matrix_layout, vox_int n, vox_complex_double *a,
                                    vox_int lda, const vox_int *ipiv, vox_complex_double *work,
                                    vox_int lwork);

VOX_API vox_int LAPACKE_slaswp(int matrix_layout, vox_int n, float *a, vox_int lda, vox_int k1,
                               vox_int k2, const vox_int *ipiv, vox_int incx);
VOX_API vox_int LAPACKE_dlaswp(int matrix_layout, vox_int n, double *a, vox_int lda, vox_int k1,
                               vox_int k2, const vox_int *ipiv, vox_int incx);
VOX_API vox_int LAPACKE_claswp(int matrix_layout, vox_int n, vox_complex_float *a, vox_int lda,
                               vox_int k1, vox_int k2, const vox_int *ipiv, vox_int incx);
VOX_API vox_int LAPACKE_zlaswp(int matrix_layout, vox_int n, vox_complex_double *a, vox_int lda,
                               vox_int k1, vox_int k2, const vox_int *ipiv, vox_int incx);
VOX_API vox_int LAPACKE_slaswp_work(int matrix_layout, vox_int n, float *a, vox_int lda, vox_int k1,
                                    vox_int k2, const vox_int *ipiv, vox_int incx);
VOX_API vox_int LAPACKE_dlaswp_work(int matrix_layout, vox_int n, double *a, vox_int lda,
                                    vox_int k1, vox_int k2, const vox_int *ipiv, vox_int incx);
VOX_API vox_int LAPACKE_claswp_work(int matrix_layout, vox_int n, vox_complex_float *a, vox_int lda,
                                    vox_int k1, vox_int k2, const vox_int *ipiv, vox_int incx);
VOX_API vox_int LAPACKE_zlaswp_work(int matrix_layout, vox_int n, vox_complex_double *a,
                                    vox_int lda, vox_int k1, vox_int k2, const vox_int *ipiv,
                                    vox_int incx);

/*
 * Cholesky factorisation: A = U^H U or L L^H, A symmetric or Hermitian positive definite
 */

VOX_API vox_int LAPACKE_spotrf(int matrix_layout, char uplo, vox_int n, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dpotrf(int matrix_layout, char uplo, vox_int n, double *a, vox_int lda);
VOX_API vox_int LAPACKE_cpotrf(int matrix_layout, char uplo, vox_int n, vox_complex_float *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_zpotrf(int matrix_layout, char uplo, vox_int n, vox_complex_double *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_spotrf_work(int matrix_layout, char uplo, vox_int n, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dpotrf_work(int matrix_layout, char uplo, vox_int n, double *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_cpotrf_work(int matrix_layout, char uplo, vox_int n, vox_complex_float *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_zpotrf_work(int matrix_layout, char uplo, vox_int n, vox_complex_double *a,
                                    vox_int lda);

VOX_API vox_int LAPACKE_spotrf2(int matrix_layout, char uplo, vox_int n, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dpotrf2(int matrix_layout, char uplo, vox_int n, double *a, vox_int lda);
VOX_API vox_int LAPACKE_cpotrf2(int matrix_layout, char uplo, vox_int n, vox_complex_float *a,
                                vox_int lda);
VOX_API vox_int LAPACKE_zpotrf2(int matrix_layout, char uplo, vox_int n, vox_complex_double *a,
                                vox_int lda);
VOX_API vox_int LAPACKE_spotrf2_work(int matrix_layout, char uplo, vox_int n, float *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_dpotrf2_work(int matrix_layout, char uplo, vox_int n, double *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_cpotrf2_work(int matrix_layout, char uplo, vox_int n, vox_complex_float *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_zpotrf2_work(int matrix_layout, char uplo, vox_int n, vox_complex_double *a,
                                     vox_int lda);

VOX_API vox_int LAPACKE_spotrs(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                               const float *a, vox_int lda, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dpotrs(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                               const double *a, vox_int lda, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_cpotrs(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                               const vox_complex_float *a, vox_int lda, vox_complex_float *b,
                               vox_int ldb);
VOX_API vox_int LAPACKE_zpotrs(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                               const vox_complex_double *a, vox_int lda, vox_complex_double *b,
                               vox_int ldb);
VOX_API vox_int LAPACKE_spotrs_work(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                                    const float *a, vox_int lda, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dpotrs_work(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                                    const double *a, vox_int lda, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_cpotrs_work(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                                    const vox_complex_float *a, vox_int lda, vox_complex_float *b,
                                    vox_int ldb);
VOX_API vox_int LAPACKE_zpotrs_work(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                                    const vox_complex_double *a, vox_int lda, vox_complex_double *b,
                                    vox_int ldb);

VOX_API vox_int LAPACKE_sposv(int matrix_layout, char uplo, vox_int n, vox_int nrhs, float *a,
                              vox_int lda, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dposv(int matrix_layout, char uplo, vox_int n, vox_int nrhs, double *a,
                              vox_int lda, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_cposv(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                              vox_complex_float *a, vox_int lda, vox_complex_float *b, vox_int ldb);
VOX_API vox_int LAPACKE_zposv(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                              vox_complex_double *a, vox_int lda, vox_complex_double *b,
                              vox_int ldb);
VOX_API vox_int LAPACKE_sposv_work(int matrix_layout, char uplo, vox_int n, vox_int nrhs, float *a,
                                   vox_int lda, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dposv_work(int matrix_layout, char uplo, vox_int n, vox_int nrhs, double *a,
                                   vox_int lda, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_cposv_work(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                                   vox_complex_float *a, vox_int lda, vox_complex_float *b,
                                   vox_int ldb);
VOX_API vox_int LAPACKE_zposv_work(int matrix_layout, char uplo, vox_int n, vox_int nrhs,
                                   vox_complex_double *a, vox_int lda, vox_complex_double *b,
                                   vox_int ldb);

VOX_API vox_int LAPACKE_spotri(int matrix_layout, char uplo, vox_int n, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dpotri(int matrix_layout, char uplo, vox_int n, double *a, vox_int lda);
VOX_API vox_int LAPACKE_cpotri(int matrix_layout, char uplo, vox_int n, vox_complex_float *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_zpotri(int matrix_layout, char uplo, vox_int n, vox_complex_double *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_spotri_work(int matrix_layout, char uplo, vox_int n, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dpotri_work(int matrix_layout, char uplo, vox_int n, double *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_cpotri_work(int matrix_layout, char uplo, vox_int n, vox_complex_float *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_zpotri_work(int matrix_layout, char uplo, vox_int n, vox_complex_double *a,
                                    vox_int lda);

VOX_API vox_int LAPACKE_slauum(int matrix_layout, char uplo, vox_int n, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dlauum(int matrix_layout, char uplo, vox_int n, double *a, vox_int lda);
VOX_API vox_int LAPACKE_clauum(int matrix_layout, char uplo, vox_int n, vox_complex_float *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_zlauum(int matrix_layout, char uplo, vox_int n, vox_complex_double *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_slauum_work(int matrix_layout, char uplo, vox_int n, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dlauum_work(int matrix_layout, char uplo, vox_int n, double *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_clauum_work(int matrix_layout, char uplo, vox_int n, vox_complex_float *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_zlauum_work(int matrix_layout, char uplo, vox_int n, vox_complex_double *a,
                                    vox_int lda);

/*
 * Triangular matrices
 */

VOX_API vox_int LAPACKE_strtri(int matrix_layout, char uplo, char diag, vox_int n, float *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_dtrtri(int matrix_layout, char uplo, char diag, vox_int n, double *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_ctrtri(int matrix_layout, char uplo, char diag, vox_int n,
                               vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_ztrtri(int matrix_layout, char uplo, char diag, vox_int n,
                               vox_complex_double *a, vox_int lda);
VOX_API vox_int LAPACKE_strtri_work(int matrix_layout, char uplo, char diag, vox_int n, float *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_dtrtri_work(int matrix_layout, char uplo, char diag, vox_int n, double *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_ctrtri_work(int matrix_layout, char uplo, char diag, vox_int n,
                                    vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_ztrtri_work(int matrix_layout, char uplo, char diag, vox_int n,
                                    vox_complex_double *a, vox_int lda);

VOX_API vox_int LAPACKE_strtrs(int matrix_layout, char uplo, char trans, char diag, vox_int n,
                               vox_int nrhs, const float *a, vox_int lda, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dtrtrs(int matrix_layout, char uplo, char trans, char diag, vox_int n,
                               vox_int nrhs, const double *a, vox_int lda, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_ctrtrs(int matrix_layout, char uplo, char trans, char diag, vox_int n,
                               vox_int nrhs, const vox_complex_float *a, vox_int lda,
                               vox_complex_float *b, vox_int ldb);
VOX_API vox_int LAPACKE_ztrtrs(int matrix_layout, char uplo, char trans, char diag, vox_int n,
                               vox_int nrhs, const vox_complex_double *a, vox_int lda,
                               vox_complex_double *b, vox_int ldb);
VOX_API vox_int LAPACKE_strtrs_work(int matrix_layout, char uplo, char trans, char diag, vox_int n,
                                    vox_int nrhs, const float *a, vox_int lda, float *b,
                                    vox_int ldb);
VOX_API vox_int LAPACKE_dtrtrs_work(int matrix_layout, char uplo, char trans, char diag, vox_int n,
                                    vox_int nrhs, const double *a, vox_int lda, double *b,
                                    vox_int ldb);
VOX_API vox_int LAPACKE_ctrtrs_work(int matrix_layout, char uplo, char trans, char diag, vox_int n,
                                    vox_int nrhs, const vox_complex_float *a, vox_int lda,
                                    vox_complex_float *b, vox_int ldb);
VOX_API vox_int LAPACKE_ztrtrs_work(int matrix_layout, char uplo, char trans, char diag, vox_int n,
                                    vox_int nrhs, const vox_complex_double *a, vox_int lda,
                                    vox_complex_double *b, vox_int ldb);

/*
 * Condition estimates
 */

VOX_API vox_int LAPACKE_sgecon(int matrix_layout, char norm, vox_int n, const float *a, vox_int lda,
                               float anorm, float *rcond);
VOX_API vox_int LAPACKE_dgecon(int matrix_layout, char norm, vox_int n, const double *a,
                               vox_int lda, double anorm, double *rcond);
VOX_API vox_int LAPACKE_cgecon(int matrix_layout, char norm, vox_int n, const vox_complex_float *a,
                               vox_int lda, float anorm, float *rcond);
VOX_API vox_int LAPACKE_zgecon(int matrix_layout, char norm, vox_int n, const vox_complex_double *a,
                               vox_int lda, double anorm, double *rcond);
VOX_API vox_int LAPACKE_sgecon_work(int matrix_layout, char norm, vox_int n, const float *a,
                                    vox_int lda, float anorm, float *rcond, float *work,
                                    vox_int *iwork);
VOX_API vox_int LAPACKE_dgecon_work(int matrix_layout, char norm, vox_int n, const double *a,
                                    vox_int lda, double anorm, double *rcond, double *work,
                                    vox_int *iwork);
VOX_API vox_int LAPACKE_cgecon_work(int matrix_layout, char norm, vox_int n,
                                    const vox_complex_float *a, vox_int lda, float anorm,
                                    float *rcond, vox_complex_float *work, float *rwork);
VOX_API vox_int LAPACKE_zgecon_work(int matrix_layout, char norm, vox_int n,
                                    const vox_complex_double *a, vox_int lda, double anorm,
                                    double *rcond, vox_complex_double *work, double *rwork);

VOX_API vox_int LAPACKE_spocon(int matrix_layout, char uplo, vox_int n, const float *a, vox_int lda,
                               float anorm, float *rcond);
VOX_API vox_int LAPACKE_dpocon(int matrix_layout, char uplo, vox_int n, const double *a,
                               vox_int lda, double anorm, double *rcond);
VOX_API vox_int LAPACKE_cpocon(int matrix_layout, char uplo, vox_int n, const vox_complex_float *a,
                               vox_int lda, float anorm, float *rcond);
VOX_API vox_int LAPACKE_zpocon(int matrix_layout, char uplo, vox_int n, const vox_complex_double *a,
                               vox_int lda, double anorm, double *rcond);
VOX_API vox_int LAPACKE_spocon_work(int matrix_layout, char uplo, vox_int n, const float *a,
                                    vox_int lda, float anorm, float *rcond, float *work,
                                    vox_int *iwork);
VOX_API vox_int LAPACKE_dpocon_work(int matrix_layout, char uplo, vox_int n, const double *a,
                                    vox_int lda, double anorm, double *rcond, double *work,
                                    vox_int *iwork);
VOX_API vox_int LAPACKE_cpocon_work(int matrix_layout, char uplo, vox_int n,
                                    const vox_complex_float *a, vox_int lda, float anorm,
                                    float *rcond, vox_complex_float *work, float *rwork);
VOX_API vox_int LAPACKE_zpocon_work(int matrix_layout, char uplo, vox_int n,
                                    const vox_complex_double *a, vox_int lda, double anorm,
                                    double *rcond, vox_complex_double *work, double *rwork);

VOX_API vox_int LAPACKE_strcon(int matrix_layout, char norm, char uplo, char diag, vox_int n,
                               const float *a, vox_int lda, float *rcond);
VOX_API vox_int LAPACKE_dtrcon(int matrix_layout, char norm, char uplo, char diag, vox_int n,
                               const double *a, vox_int lda, double *rcond);
VOX_API vox_int LAPACKE_ctrcon(int matrix_layout, char norm, char uplo, char diag, vox_int n,
                               const vox_complex_float *a, vox_int lda, float *rcond);
VOX_API vox_int LAPACKE_ztrcon(int matrix_layout, char norm, char uplo, char diag, vox_int n,
                               const vox_complex_double *a, vox_int lda, double *rcond);
VOX_API vox_int LAPACKE_strcon_work(int matrix_layout, char norm, char uplo, char diag, vox_int n,
                                    const float *a, vox_int lda, float *rcond, float *work,
                                    vox_int *iwork);
VOX_API vox_int LAPACKE_dtrcon_work(int matrix_layout, char norm, char uplo, char diag, vox_int n,
                                    const double *a, vox_int lda, double *rcond, double *work,
                                    vox_int *iwork);
VOX_API vox_int LAPACKE_ctrcon_work(int matrix_layout, char norm, char uplo, char diag, vox_int n,
                                    const vox_complex_float *a, vox_int lda, float *rcond,
                                    vox_complex_float *work, float *rwork);
VOX_API vox_int LAPACKE_ztrcon_work(int matrix_layout, char norm, char uplo, char diag, vox_int n,
                                    const vox_complex_double *a, vox_int lda, double *rcond,
                                    vox_complex_double *work, double *rwork);

VOX_API vox_int LAPACKE_slacn2(vox_int n, float *v, float *x, vox_int *isgn, float *est,
                               vox_int *kase, vox_int *isave);
VOX_API vox_int LAPACKE_dlacn2(vox_int n, double *v, double *x, vox_int *isgn, double *est,
                               vox_int *kase, vox_int *isave);
VOX_API vox_int LAPACKE_clacn2(vox_int n, vox_complex_float *v, vox_complex_float *x, float *est,
                               vox_int *kase, vox_int *isave);
VOX_API vox_int LAPACKE_zlacn2(vox_int n, vox_complex_double *v, vox_complex_double *x, double *est,
                               vox_int *kase, vox_int *isave);
VOX_API vox_int LAPACKE_slacn2_work(vox_int n, float *v, float *x, vox_int *isgn, float *est,
                                    vox_int *kase, vox_int *isave);
VOX_API vox_int LAPACKE_dlacn2_work(vox_int n, double *v, double *x, vox_int *isgn, double *est,
                                    vox_int *kase, vox_int *isave);
VOX_API vox_int LAPACKE_clacn2_work(vox_int n, vox_complex_float *v, vox_complex_float *x,
                                    float *est, vox_int *kase, vox_int *isave);
VOX_API vox_int LAPACKE_zlacn2_work(vox_int n, vox_complex_double *v, vox_complex_double *x,
                                    double *est, vox_int *kase, vox_int *isave);

/*
 * QR and LQ factorisation: A = Q R, A = L Q, Q orthogonal or unitary
 */

VOX_API vox_int LAPACKE_sgeqrf(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                               float *tau);
VOX_API vox_int LAPACKE_dgeqrf(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                               double *tau);
VOX_API vox_int LAPACKE_cgeqrf(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                               vox_int lda, vox_complex_float *tau);
VOX_API vox_int LAPACKE_zgeqrf(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                               vox_int lda, vox_complex_double *tau);
VOX_API vox_int LAPACKE_sgeqrf_work(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                    float *tau, float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dgeqrf_work(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                                    double *tau, double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cgeqrf_work(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                    vox_int lda, vox_complex_float *tau, vox_complex_float *work,
                                    vox_int lwork);
VOX_API vox_int LAPACKE_zgeqrf_work(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                    vox_int lda, vox_complex_double *tau, vox_complex_double *work,
                                    vox_int lwork);

VOX_API vox_int LAPACKE_sgelqf(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                               float *tau);
VOX_API vox_int LAPACKE_dgelqf(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                               double *tau);
VOX_API vox_int LAPACKE_cgelqf(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                               vox_int lda, vox_complex_float *tau);
VOX_API vox_int LAPACKE_zgelqf(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                               vox_int lda, vox_complex_double *tau);
VOX_API vox_int LAPACKE_sgelqf_work(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                    float *tau, float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dgelqf_work(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                                    double *tau, double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cgelqf_work(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                    vox_int lda, vox_complex_float *tau, vox_complex_float *work,
                                    vox_int lwork);
VOX_API vox_int LAPACKE_zgelqf_work(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                    vox_int lda, vox_complex_double *tau, vox_complex_double *work,
                                    vox_int lwork);

VOX_API vox_int LAPACKE_sgeqr2(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                               float *tau);
VOX_API vox_int LAPACKE_dgeqr2(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                               double *tau);
VOX_API vox_int LAPACKE_cgeqr2(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                               vox_int lda, vox_complex_float *tau);
VOX_API vox_int LAPACKE_zgeqr2(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                               vox_int lda, vox_complex_double *tau);
VOX_API vox_int LAPACKE_sgeqr2_work(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                    float *tau, float *work);
VOX_API vox_int LAPACKE_dgeqr2_work(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                                    double *tau, double *work);
VOX_API vox_int LAPACKE_cgeqr2_work(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                    vox_int lda, vox_complex_float *tau, vox_complex_float *work);
VOX_API vox_int LAPACKE_zgeqr2_work(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                    vox_int lda, vox_complex_double *tau, vox_complex_double *work);

VOX_API vox_int LAPACKE_sgelq2(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                               float *tau);
VOX_API vox_int LAPACKE_dgelq2(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                               double *tau);
VOX_API vox_int LAPACKE_cgelq2(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                               vox_int lda, vox_complex_float *tau);
VOX_API vox_int LAPACKE_zgelq2(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                               vox_int lda, vox_complex_double *tau);
VOX_API vox_int LAPACKE_sgelq2_work(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                    float *tau, float *work);
VOX_API vox_int LAPACKE_dgelq2_work(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                                    double *tau, double *work);
VOX_API vox_int LAPACKE_cgelq2_work(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                    vox_int lda, vox_complex_float *tau, vox_complex_float *work);
VOX_API vox_int LAPACKE_zgelq2_work(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                    vox_int lda, vox_complex_double *tau, vox_complex_double *work);

VOX_API vox_int LAPACKE_sgeqp3(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                               vox_int *jpvt, float *tau);
VOX_API vox_int LAPACKE_dgeqp3(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                               vox_int *jpvt, double *tau);
VOX_API vox_int LAPACKE_cgeqp3(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                               vox_int lda, vox_int *jpvt, vox_complex_float *tau);
VOX_API vox_int LAPACKE_zgeqp3(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                               vox_int lda, vox_int *jpvt, vox_complex_double *tau);
VOX_API vox_int LAPACKE_sgeqp3_work(int matrix_layout, vox_int m, vox_int n, float *a, vox_int lda,
                                    vox_int *jpvt, float *tau, float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dgeqp3_work(int matrix_layout, vox_int m, vox_int n, double *a, vox_int lda,
                                    vox_int *jpvt, double *tau, double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cgeqp3_work(int matrix_layout, vox_int m, vox_int n, vox_complex_float *a,
                                    vox_int lda, vox_int *jpvt, vox_complex_float *tau,
                                    vox_complex_float *work, vox_int lwork, float *rwork);
VOX_API vox_int LAPACKE_zgeqp3_work(int matrix_layout, vox_int m, vox_int n, vox_complex_double *a,
                                    vox_int lda, vox_int *jpvt, vox_complex_double *tau,
                                    vox_complex_double *work, vox_int lwork, double *rwork);

VOX_API vox_int LAPACKE_sorgqr(int matrix_layout, vox_int m, vox_int n, vox_int k, float *a,
                               vox_int lda, const float *tau);
VOX_API vox_int LAPACKE_dorgqr(int matrix_layout, vox_int m, vox_int n, vox_int k, double *a,
                               vox_int lda, const double *tau);
VOX_API vox_int LAPACKE_cungqr(int matrix_layout, vox_int m, vox_int n, vox_int k,
                               vox_complex_float *a, vox_int lda, const vox_complex_float *tau);
VOX_API vox_int LAPACKE_zungqr(int matrix_layout, vox_int m, vox_int n, vox_int k,
                               vox_complex_double *a, vox_int lda, const vox_complex_double *tau);
VOX_API vox_int LAPACKE_sorgqr_work(int matrix_layout, vox_int m, vox_int n, vox_int k, float *a,
                                    vox_int lda, const float *tau, float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dorgqr_work(int matrix_layout, vox_int m, vox_int n, vox_int k, double *a,
                                    vox_int lda, const double *tau, double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cungqr_work(int matrix_layout, vox_int m, vox_int n, vox_int k,
                                    vox_complex_float *a, vox_int lda, const vox_complex_float *tau,
                                    vox_complex_float *work, vox_int lwork);
VOX_API vox_int LAPACKE_zungqr_work(int matrix_layout, vox_int m, vox_int n, vox_int k,
                                    vox_complex_double *a, vox_int lda,
                                    const vox_complex_double *tau, vox_complex_double *work,
                                    vox_int lwork);

VOX_API vox_int LAPACKE_sorglq(int matrix_layout, vox_int m, vox_int n, vox_int k, float *a,
                               vox_int lda, const float *tau);
VOX_API vox_int LAPACKE_dorglq(int matrix_layout, vox_int m, vox_int n, vox_int k, double *a,
                               vox_int lda, const double *tau);
VOX_API vox_int LAPACKE_cunglq(int matrix_layout, vox_int m, vox_int n, vox_int k,
                               vox_complex_float *a, vox_int lda, const vox_complex_float *tau);
VOX_API vox_int LAPACKE_zunglq(int matrix_layout, vox_int m, vox_int n, vox_int k,
                               vox_complex_double *a, vox_int lda, const vox_complex_double *tau);
VOX_API vox_int LAPACKE_sorglq_work(int matrix_layout, vox_int m, vox_int n, vox_int k, float *a,
                                    vox_int lda, const float *tau, float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dorglq_work(int matrix_layout, vox_int m, vox_int n, vox_int k, double *a,
                                    vox_int lda, const double *tau, double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cunglq_work(int matrix_layout, vox_int m, vox_int n, vox_int k,
                                    vox_complex_float *a, vox_int lda, const vox_complex_float *tau,
                                    vox_complex_float *work, vox_int lwork);
VOX_API vox_int LAPACKE_zunglq_work(int matrix_layout, vox_int m, vox_int n, vox_int k,
                                    vox_complex_double *a, vox_int lda,
                                    const vox_complex_double *tau, vox_complex_double *work,
                                    vox_int lwork);

VOX_API vox_int LAPACKE_sormqr(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                               vox_int k, const float *a, vox_int lda, const float *tau, float *c,
                               vox_int ldc);
VOX_API vox_int LAPACKE_dormqr(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                               vox_int k, const double *a, vox_int lda, const double *tau,
                               double *c, vox_int ldc);
VOX_API vox_int LAPACKE_cunmqr(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                               vox_int k, const vox_complex_float *a, vox_int lda,
                               const vox_complex_float *tau, vox_complex_float *c, vox_int ldc);
VOX_API vox_int LAPACKE_zunmqr(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                               vox_int k, const vox_complex_double *a, vox_int lda,
                               const vox_complex_double *tau, vox_complex_double *c, vox_int ldc);
VOX_API vox_int LAPACKE_sormqr_work(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                                    vox_int k, const float *a, vox_int lda, const float *tau,
                                    float *c, vox_int ldc, float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dormqr_work(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                                    vox_int k, const double *a, vox_int lda, const double *tau,
                                    double *c, vox_int ldc, double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cunmqr_work(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                                    vox_int k, const vox_complex_float *a, vox_int lda,
                                    const vox_complex_float *tau, vox_complex_float *c, vox_int ldc,
                                    vox_complex_float *work, vox_int lwork);
VOX_API vox_int LAPACKE_zunmqr_work(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                                    vox_int k, const vox_complex_double *a, vox_int lda,
                                    const vox_complex_double *tau, vox_complex_double *c,
                                    vox_int ldc, vox_complex_double *work, vox_int lwork);

VOX_API vox_int LAPACKE_sormlq(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                               vox_int k, const float *a, vox_int lda, const float *tau, float *c,
                               vox_int ldc);
VOX_API vox_int LAPACKE_dormlq(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                               vox_int k, const double *a, vox_int lda, const double *tau,
                               double *c, vox_int ldc);
VOX_API vox_int LAPACKE_cunmlq(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                               vox_int k, const vox_complex_float *a, vox_int lda,
                               const vox_complex_float *tau, vox_complex_float *c, vox_int ldc);
VOX_API vox_int LAPACKE_zunmlq(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                               vox_int k, const vox_complex_double *a, vox_int lda,
                               const vox_complex_double *tau, vox_complex_double *c, vox_int ldc);
VOX_API vox_int LAPACKE_sormlq_work(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                                    vox_int k, const float *a, vox_int lda, const float *tau,
                                    float *c, vox_int ldc, float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dormlq_work(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                                    vox_int k, const double *a, vox_int lda, const double *tau,
                                    double *c, vox_int ldc, double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cunmlq_work(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                                    vox_int k, const vox_complex_float *a, vox_int lda,
                                    const vox_complex_float *tau, vox_complex_float *c, vox_int ldc,
                                    vox_complex_float *work, vox_int lwork);
VOX_API vox_int LAPACKE_zunmlq_work(int matrix_layout, char side, char trans, vox_int m, vox_int n,
                                    vox_int k, const vox_complex_double *a, vox_int lda,
                                    const vox_complex_double *tau, vox_complex_double *c,
                                    vox_int ldc, vox_complex_double *work, vox_int lwork);

/*
 * Least squares
 */

VOX_API vox_int LAPACKE_sgels(int matrix_layout, char trans, vox_int m, vox_int n, vox_int nrhs,
                              float *a, vox_int lda, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dgels(int matrix_layout, char trans, vox_int m, vox_int n, vox_int nrhs,
                              double *a, vox_int lda, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_cgels(int matrix_layout, char trans, vox_int m, vox_int n, vox_int nrhs,
                              vox_complex_float *a, vox_int lda, vox_complex_float *b, vox_int ldb);
VOX_API vox_int LAPACKE_zgels(int matrix_layout, char trans, vox_int m, vox_int n, vox_int nrhs,
                              vox_complex_double *a, vox_int lda, vox_complex_double *b,
                              vox_int ldb);
VOX_API vox_int LAPACKE_sgels_work(int matrix_layout, char trans, vox_int m, vox_int n,
                                   vox_int nrhs, float *a, vox_int lda, float *b, vox_int ldb,
                                   float *work, vox_int lwork);
VOX_API vox_int LAPACKE_dgels_work(int matrix_layout, char trans, vox_int m, vox_int n,
                                   vox_int nrhs, double *a, vox_int lda, double *b, vox_int ldb,
                                   double *work, vox_int lwork);
VOX_API vox_int LAPACKE_cgels_work(int matrix_layout, char trans, vox_int m, vox_int n,
                                   vox_int nrhs, vox_complex_float *a, vox_int lda,
                                   vox_complex_float *b, vox_int ldb, vox_complex_float *work,
                                   vox_int lwork);
VOX_API vox_int LAPACKE_zgels_work(int matrix_layout, char trans, vox_int m, vox_int n,
                                   vox_int nrhs, vox_complex_double *a, vox_int lda,
                                   vox_complex_double *b, vox_int ldb, vox_complex_double *work,
                                   vox_int lwork);

/*
 * Reflectors H = I - tau v v^H and blocks of them
 */

VOX_API vox_int LAPACKE_slarfg(vox_int n, float *alpha, float *x, vox_int incx, float *tau);
VOX_API vox_int LAPACKE_dlarfg(vox_int n, double *alpha, double *x, vox_int incx, double *tau);
VOX_API vox_int LAPACKE_clarfg(vox_int n, vox_complex_float *alpha, vox_complex_float *x,
                               vox_int incx, vox_complex_float *tau);
VOX_API vox_int LAPACKE_zlarfg(vox_int n, vox_complex_double *alpha, vox_complex_double *x,
                               vox_int incx, vox_complex_double *tau);
VOX_API vox_int LAPACKE_slarfg_work(vox_int n, float *alpha, float *x, vox_int incx, float *tau);
VOX_API vox_int LAPACKE_dlarfg_work(vox_int n, double *alpha, double *x, vox_int incx, double *tau);
VOX_API vox_int LAPACKE_clarfg_work(vox_int n, vox_complex_float *alpha, vox_complex_float *x,
                                    vox_int incx, vox_complex_float *tau);
VOX_API vox_int LAPACKE_zlarfg_work(vox_int n, vox_complex_double *alpha, vox_complex_double *x,
                                    vox_int incx, vox_complex_double *tau);

VOX_API vox_int LAPACKE_slarft(int matrix_layout, char direct, char storev, vox_int n, vox_int k,
                               const float *v, vox_int ldv, const float *tau, float *t,
                               vox_int ldt);
VOX_API vox_int LAPACKE_dlarft(int matrix_layout, char direct, char storev, vox_int n, vox_int k,
                               const double *v, vox_int ldv, const double *tau, double *t,
                               vox_int ldt);
VOX_API vox_int LAPACKE_clarft(int matrix_layout, char direct, char storev, vox_int n, vox_int k,
                               const vox_complex_float *v, vox_int ldv,
                               const vox_complex_float *tau, vox_complex_float *t, vox_int ldt);
VOX_API vox_int LAPACKE_zlarft(int matrix_layout, char direct, char storev, vox_int n, vox_int k,
                               const vox_complex_double *v, vox_int ldv,
                               const vox_complex_double *tau, vox_complex_double *t, vox_int ldt);
VOX_API vox_int LAPACKE_slarft_work(int matrix_layout, char direct, char storev, vox_int n,
                                    vox_int k, const float *v, vox_int ldv, const float *tau,
                                    float *t, vox_int ldt);
VOX_API vox_int LAPACKE_dlarft_work(int matrix_layout, char direct, char storev, vox_int n,
                                    vox_int k, const double *v, vox_int ldv, const double *tau,
                                    double *t, vox_int ldt);
VOX_API vox_int LAPACKE_clarft_work(int matrix_layout, char direct, char storev, vox_int n,
                                    vox_int k, const vox_complex_float *v, vox_int ldv,
                                    const vox_complex_float *tau, vox_complex_float *t,
                                    vox_int ldt);
VOX_API vox_int LAPACKE_zlarft_work(int matrix_layout, char direct, char storev, vox_int n,
                                    vox_int k, const vox_complex_double *v, vox_int ldv,
                                    const vox_complex_double *tau, vox_complex_double *t,
                                    vox_int ldt);

VOX_API vox_int LAPACKE_slarfb(int matrix_layout, char side, char trans, char direct, char storev,
                               vox_int m, vox_int n, vox_int k, const float *v, vox_int ldv,
                               const float *t, vox_int ldt, float *c, vox_int ldc);
VOX_API vox_int LAPACKE_dlarfb(int matrix_layout, char side, char trans, char direct, char storev,
                               vox_int m, vox_int n, vox_int k, const double *v, vox_int ldv,
                               const double *t, vox_int ldt, double *c, vox_int ldc);
VOX_API vox_int LAPACKE_clarfb(int matrix_layout, char side, char trans, char direct, char storev,
                               vox_int m, vox_int n, vox_int k, const vox_complex_float *v,
                               vox_int ldv, const vox_complex_float *t, vox_int ldt,
                               vox_complex_float *c, vox_int ldc);
VOX_API vox_int LAPACKE_zlarfb(int matrix_layout, char side, char trans, char direct, char storev,
                               vox_int m, vox_int n, vox_int k, const vox_complex_double *v,
                               vox_int ldv, const vox_complex_double *t, vox_int ldt,
                               vox_complex_double *c, vox_int ldc);
VOX_API vox_int LAPACKE_slarfb_work(int matrix_layout, char side, char trans, char direct,
                                    char storev, vox_int m, vox_int n, vox_int k, const float *v,
                                    vox_int ldv, const float *t, vox_int ldt, float *c, vox_int ldc,
                                    float *work, vox_int ldwork);
VOX_API vox_int LAPACKE_dlarfb_work(int matrix_layout, char side, char trans, char direct,
                                    char storev, vox_int m, vox_int n, vox_int k, const double *v,
                                    vox_int ldv, const double *t, vox_int ldt, double *c,
                                    vox_int ldc, double *work, vox_int ldwork);
VOX_API vox_int LAPACKE_clarfb_work(int matrix_layout, char side, char trans, char direct,
                                    char storev, vox_int m, vox_int n, vox_int k,
                                    const vox_complex_float *v, vox_int ldv,
                                    const vox_complex_float *t, vox_int ldt, vox_complex_float *c,
                                    vox_int ldc, vox_complex_float *work, vox_int ldwork);
VOX_API vox_int LAPACKE_zlarfb_work(int matrix_layout, char side, char trans, char direct,
                                    char storev, vox_int m, vox_int n, vox_int k,
                                    const vox_complex_double *v, vox_int ldv,
                                    const vox_complex_double *t, vox_int ldt, vox_complex_double *c,
                                    vox_int ldc, vox_complex_double *work, vox_int ldwork);

/*
 * Norms, copies, scaling
 */

VOX_API float LAPACKE_slange(int matrix_layout, char norm, vox_int m, vox_int n, const float *a,
                             vox_int lda);
VOX_API double LAPACKE_dlange(int matrix_layout, char norm, vox_int m, vox_int n, const double *a,
                              vox_int lda);
VOX_API float LAPACKE_clange(int matrix_layout, char norm, vox_int m, vox_int n,
                             const vox_complex_float *a, vox_int lda);
VOX_API double LAPACKE_zlange(int matrix_layout, char norm, vox_int m, vox_int n,
                              const vox_complex_double *a, vox_int lda);
VOX_API float LAPACKE_slange_work(int matrix_layout, char norm, vox_int m, vox_int n,
                                  const float *a, vox_int lda, float *work);
VOX_API double LAPACKE_dlange_work(int matrix_layout, char norm, vox_int m, vox_int n,
                                   const double *a, vox_int lda, double *work);
VOX_API float LAPACKE_clange_work(int matrix_layout, char norm, vox_int m, vox_int n,
                                  const vox_complex_float *a, vox_int lda, float *work);
VOX_API double LAPACKE_zlange_work(int matrix_layout, char norm, vox_int m, vox_int n,
                                   const vox_complex_double *a, vox_int lda, double *work);

VOX_API float LAPACKE_slansy(int matrix_layout, char norm, char uplo, vox_int n, const float *a,
                             vox_int lda);
VOX_API double LAPACKE_dlansy(int matrix_layout, char norm, char uplo, vox_int n, const double *a,
                              vox_int lda);
VOX_API float LAPACKE_clansy(int matrix_layout, char norm, char uplo, vox_int n,
                             const vox_complex_float *a, vox_int lda);
VOX_API double LAPACKE_zlansy(int matrix_layout, char norm, char uplo, vox_int n,
                              const vox_complex_double *a, vox_int lda);
VOX_API float LAPACKE_slansy_work(int matrix_layout, char norm, char uplo, vox_int n,
                                  const float *a, vox_int lda, float *work);
VOX_API double LAPACKE_dlansy_work(int matrix_layout, char norm, char uplo, vox_int n,
                                   const double *a, vox_int lda, double *work);
VOX_API float LAPACKE_clansy_work(int matrix_layout, char norm, char uplo, vox_int n,
                                  const vox_complex_float *a, vox_int lda, float *work);
VOX_API double LAPACKE_zlansy_work(int matrix_layout, char norm, char uplo, vox_int n,
                                   const vox_complex_double *a, vox_int lda, double *work);

VOX_API float LAPACKE_clanhe(int matrix_layout, char norm, char uplo, vox_int n,
                             const vox_complex_float *a, vox_int lda);
VOX_API double LAPACKE_zlanhe(int matrix_layout, char norm, char uplo, vox_int n,
                              const vox_complex_double *a, vox_int lda);
VOX_API float LAPACKE_clanhe_work(int matrix_layout, char norm, char uplo, vox_int n,
                                  const vox_complex_float *a, vox_int lda, float *work);
VOX_API double LAPACKE_zlanhe_work(int matrix_layout, char norm, char uplo, vox_int n,
                                   const vox_complex_double *a, vox_int lda, double *work);

VOX_API float LAPACKE_slantr(int matrix_layout, char norm, char uplo, char diag, vox_int m,
                             vox_int n, const float *a, vox_int lda);
VOX_API double LAPACKE_dlantr(int matrix_layout, char norm, char uplo, char diag, vox_int m,
                              vox_int n, const double *a, vox_int lda);
VOX_API float LAPACKE_clantr(int matrix_layout, char norm, char uplo, char diag, vox_int m,
                             vox_int n, const vox_complex_float *a, vox_int lda);
VOX_API double LAPACKE_zlantr(int matrix_layout, char norm, char uplo, char diag, vox_int m,
                              vox_int n, const vox_complex_double *a, vox_int lda);
VOX_API float LAPACKE_slantr_work(int matrix_layout, char norm, char uplo, char diag, vox_int m,
                                  vox_int n, const float *a, vox_int lda, float *work);
VOX_API double LAPACKE_dlantr_work(int matrix_layout, char norm, char uplo, char diag, vox_int m,
                                   vox_int n, const double *a, vox_int lda, double *work);
VOX_API float LAPACKE_clantr_work(int matrix_layout, char norm, char uplo, char diag, vox_int m,
                                  vox_int n, const vox_complex_float *a, vox_int lda, float *work);
VOX_API double LAPACKE_zlantr_work(int matrix_layout, char norm, char uplo, char diag, vox_int m,
                                   vox_int n, const vox_complex_double *a, vox_int lda,
                                   double *work);

VOX_API vox_int LAPACKE_slacpy(int matrix_layout, char uplo, vox_int m, vox_int n, const float *a,
                               vox_int lda, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dlacpy(int matrix_layout, char uplo, vox_int m, vox_int n, const double *a,
                               vox_int lda, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_clacpy(int matrix_layout, char uplo, vox_int m, vox_int n,
                               const vox_complex_float *a, vox_int lda, vox_complex_float *b,
                               vox_int ldb);
VOX_API vox_int LAPACKE_zlacpy(int matrix_layout, char uplo, vox_int m, vox_int n,
                               const vox_complex_double *a, vox_int lda, vox_complex_double *b,
                               vox_int ldb);
VOX_API vox_int LAPACKE_slacpy_work(int matrix_layout, char uplo, vox_int m, vox_int n,
                                    const float *a, vox_int lda, float *b, vox_int ldb);
VOX_API vox_int LAPACKE_dlacpy_work(int matrix_layout, char uplo, vox_int m, vox_int n,
                                    const double *a, vox_int lda, double *b, vox_int ldb);
VOX_API vox_int LAPACKE_clacpy_work(int matrix_layout, char uplo, vox_int m, vox_int n,
                                    const vox_complex_float *a, vox_int lda, vox_complex_float *b,
                                    vox_int ldb);
VOX_API vox_int LAPACKE_zlacpy_work(int matrix_layout, char uplo, vox_int m, vox_int n,
                                    const vox_complex_double *a, vox_int lda, vox_complex_double *b,
                                    vox_int ldb);

VOX_API vox_int LAPACKE_slaset(int matrix_layout, char uplo, vox_int m, vox_int n, float alpha,
                               float beta, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dlaset(int matrix_layout, char uplo, vox_int m, vox_int n, double alpha,
                               double beta, double *a, vox_int lda);
VOX_API vox_int LAPACKE_claset(int matrix_layout, char uplo, vox_int m, vox_int n,
                               vox_complex_float alpha, vox_complex_float beta,
                               vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_zlaset(int matrix_layout, char uplo, vox_int m, vox_int n,
                               vox_complex_double alpha, vox_complex_double beta,
                               vox_complex_double *a, vox_int lda);
VOX_API vox_int LAPACKE_slaset_work(int matrix_layout, char uplo, vox_int m, vox_int n, float alpha,
                                    float beta, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dlaset_work(int matrix_layout, char uplo, vox_int m, vox_int n,
                                    double alpha, double beta, double *a, vox_int lda);
VOX_API vox_int LAPACKE_claset_work(int matrix_layout, char uplo, vox_int m, vox_int n,
                                    vox_complex_float alpha, vox_complex_float beta,
                                    vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_zlaset_work(int matrix_layout, char uplo, vox_int m, vox_int n,
                                    vox_complex_double alpha, vox_complex_double beta,
                                    vox_complex_double *a, vox_int lda);

VOX_API vox_int LAPACKE_slascl(int matrix_layout, char type, vox_int kl, vox_int ku, float cfrom,
                               float cto, vox_int m, vox_int n, float *a, vox_int lda);
VOX_API vox_int LAPACKE_dlascl(int matrix_layout, char type, vox_int kl, vox_int ku, double cfrom,
                               double cto, vox_int m, vox_int n, double *a, vox_int lda);
VOX_API vox_int LAPACKE_clascl(int matrix_layout, char type, vox_int kl, vox_int ku, float cfrom,
                               float cto, vox_int m, vox_int n, vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_zlascl(int matrix_layout, char type, vox_int kl, vox_int ku, double cfrom,
                               double cto, vox_int m, vox_int n, vox_complex_double *a,
                               vox_int lda);
VOX_API vox_int LAPACKE_slascl_work(int matrix_layout, char type, vox_int kl, vox_int ku,
                                    float cfrom, float cto, vox_int m, vox_int n, float *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_dlascl_work(int matrix_layout, char type, vox_int kl, vox_int ku,
                                    double cfrom, double cto, vox_int m, vox_int n, double *a,
                                    vox_int lda);
VOX_API vox_int LAPACKE_clascl_work(int matrix_layout, char type, vox_int kl, vox_int ku,
                                    float cfrom, float cto, vox_int m, vox_int n,
                                    vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_zlascl_work(int matrix_layout, char type, vox_int kl, vox_int ku,
                                    double cfrom, double cto, vox_int m, vox_int n,
                                    vox_complex_double *a, vox_int lda);

/*
 * Single numbers
 */

VOX_API float LAPACKE_slamch(char cmach);
VOX_API double LAPACKE_dlamch(char cmach);
VOX_API float LAPACKE_slamch_work(char cmach);
VOX_API double LAPACKE_dlamch_work(char cmach);

VOX_API float LAPACKE_slapy2(float x, float y);
VOX_API double LAPACKE_dlapy2(double x, double y);
VOX_API float LAPACKE_slapy2_work(float x, float y);
VOX_API double LAPACKE_dlapy2_work(double x, double y);

VOX_API float LAPACKE_slapy3(float x, float y, float z);
VOX_API double LAPACKE_dlapy3(double x, double y, double z);
VOX_API float LAPACKE_slapy3_work(float x, float y, float z);
VOX_API double LAPACKE_dlapy3_work(double x, double y, double z);

VOX_API vox_int LAPACKE_slassq(vox_int n, const float *x, vox_int incx, float *scale, float *sumsq);
VOX_API vox_int LAPACKE_dlassq(vox_int n, const double *x, vox_int incx, double *scale,
                               double *sumsq);
VOX_API vox_int LAPACKE_classq(vox_int n, const vox_complex_float *x, vox_int incx, float *scale,
                               float *sumsq);
VOX_API vox_int LAPACKE_zlassq(vox_int n, const vox_complex_double *x, vox_int incx, double *scale,
                               double *sumsq);
VOX_API vox_int LAPACKE_slassq_work(vox_int n, const float *x, vox_int incx, float *scale,
                                    float *sumsq);
VOX_API vox_int LAPACKE_dlassq_work(vox_int n, const double *x, vox_int incx, double *scale,
                                    double *sumsq);
VOX_API vox_int LAPACKE_classq_work(vox_int n, const vox_complex_float *x, vox_int incx,
                                    float *scale, float *sumsq);
VOX_API vox_int LAPACKE_zlassq_work(vox_int n, const vox_complex_double *x, vox_int incx,
                                    double *scale, double *sumsq);

/*
 * Helpers
 */

/* 1 if an element is NaN, else 0; 0 for a null pointer or an unknown layout. Not read: the triangle that
 * uplo does not name, and a unit diagonal. */
VOX_API vox_int LAPACKE_s_nancheck(vox_int n, const float *x, vox_int incx);
VOX_API vox_int LAPACKE_sge_nancheck(int matrix_layout, vox_int m, vox_int n, const float *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_str_nancheck(int matrix_layout, char uplo, char diag, vox_int n,
                                     const float *a, vox_int lda);
VOX_API vox_int LAPACKE_spo_nancheck(int matrix_layout, char uplo, vox_int n, const float *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_ssy_nancheck(int matrix_layout, char uplo, vox_int n, const float *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_d_nancheck(vox_int n, const double *x, vox_int incx);
VOX_API vox_int LAPACKE_dge_nancheck(int matrix_layout, vox_int m, vox_int n, const double *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_dtr_nancheck(int matrix_layout, char uplo, char diag, vox_int n,
                                     const double *a, vox_int lda);
VOX_API vox_int LAPACKE_dpo_nancheck(int matrix_layout, char uplo, vox_int n, const double *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_dsy_nancheck(int matrix_layout, char uplo, vox_int n, const double *a,
                                     vox_int lda);
VOX_API vox_int LAPACKE_c_nancheck(vox_int n, const vox_complex_float *x, vox_int incx);
VOX_API vox_int LAPACKE_cge_nancheck(int matrix_layout, vox_int m, vox_int n,
                                     const vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_ctr_nancheck(int matrix_layout, char uplo, char diag, vox_int n,
                                     const vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_cpo_nancheck(int matrix_layout, char uplo, vox_int n,
                                     const vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_csy_nancheck(int matrix_layout, char uplo, vox_int n,
                                     const vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_che_nancheck(int matrix_layout, char uplo, vox_int n,
                                     const vox_complex_float *a, vox_int lda);
VOX_API vox_int LAPACKE_z_nancheck(vox_int n, const vox_complex_double *x, vox_int incx);
VOX_API vox_int LAPACKE_zge_nancheck(int matrix_layout, vox_int m, vox_int n,
                                     const vox_complex_double *a, vox_int lda);
VOX_API vox_int LAPACKE_ztr_nancheck(int matrix_layout, char uplo, char diag, vox_int n,
                                     const vox_complex_double *a, vox_int lda);
VOX_API vox_int LAPACKE_zpo_nancheck(int matrix_layout, char uplo, vox_int n,
                                     const vox_complex_double *a, vox_int lda);
VOX_API vox_int LAPACKE_zsy_nancheck(int matrix_layout, char uplo, vox_int n,
                                     const vox_complex_double *a, vox_int lda);
VOX_API vox_int LAPACKE_zhe_nancheck(int matrix_layout, char uplo, vox_int n,
                                     const vox_complex_double *a, vox_int lda);

/* out := in, which lies as matrix_layout says, in the other layout; ge_transc conjugates. Nothing for a
 * null pointer or an unknown layout. */
VOX_API void LAPACKE_sge_trans(int matrix_layout, vox_int m, vox_int n, const float *in,
                               vox_int ldin, float *out, vox_int ldout);
VOX_API void LAPACKE_str_trans(int matrix_layout, char uplo, char diag, vox_int n, const float *in,
                               vox_int ldin, float *out, vox_int ldout);
VOX_API void LAPACKE_spo_trans(int matrix_layout, char uplo, vox_int n, const float *in,
                               vox_int ldin, float *out, vox_int ldout);
VOX_API void LAPACKE_ssy_trans(int matrix_layout, char uplo, vox_int n, const float *in,
                               vox_int ldin, float *out, vox_int ldout);
VOX_API void LAPACKE_dge_trans(int matrix_layout, vox_int m, vox_int n, const double *in,
                               vox_int ldin, double *out, vox_int ldout);
VOX_API void LAPACKE_dtr_trans(int matrix_layout, char uplo, char diag, vox_int n, const double *in,
                               vox_int ldin, double *out, vox_int ldout);
VOX_API void LAPACKE_dpo_trans(int matrix_layout, char uplo, vox_int n, const double *in,
                               vox_int ldin, double *out, vox_int ldout);
VOX_API void LAPACKE_dsy_trans(int matrix_layout, char uplo, vox_int n, const double *in,
                               vox_int ldin, double *out, vox_int ldout);
VOX_API void LAPACKE_cge_trans(int matrix_layout, vox_int m, vox_int n, const vox_complex_float *in,
                               vox_int ldin, vox_complex_float *out, vox_int ldout);
VOX_API void LAPACKE_cge_transc(int matrix_layout, vox_int m, vox_int n,
                                const vox_complex_float *in, vox_int ldin, vox_complex_float *out,
                                vox_int ldout);
VOX_API void LAPACKE_ctr_trans(int matrix_layout, char uplo, char diag, vox_int n,
                               const vox_complex_float *in, vox_int ldin, vox_complex_float *out,
                               vox_int ldout);
VOX_API void LAPACKE_cpo_trans(int matrix_layout, char uplo, vox_int n, const vox_complex_float *in,
                               vox_int ldin, vox_complex_float *out, vox_int ldout);
VOX_API void LAPACKE_csy_trans(int matrix_layout, char uplo, vox_int n, const vox_complex_float *in,
                               vox_int ldin, vox_complex_float *out, vox_int ldout);
VOX_API void LAPACKE_che_trans(int matrix_layout, char uplo, vox_int n, const vox_complex_float *in,
                               vox_int ldin, vox_complex_float *out, vox_int ldout);
VOX_API void LAPACKE_zge_trans(int matrix_layout, vox_int m, vox_int n,
                               const vox_complex_double *in, vox_int ldin, vox_complex_double *out,
                               vox_int ldout);
VOX_API void LAPACKE_zge_transc(int matrix_layout, vox_int m, vox_int n,
                                const vox_complex_double *in, vox_int ldin, vox_complex_double *out,
                                vox_int ldout);
VOX_API void LAPACKE_ztr_trans(int matrix_layout, char uplo, char diag, vox_int n,
                               const vox_complex_double *in, vox_int ldin, vox_complex_double *out,
                               vox_int ldout);
VOX_API void LAPACKE_zpo_trans(int matrix_layout, char uplo, vox_int n,
                               const vox_complex_double *in, vox_int ldin, vox_complex_double *out,
                               vox_int ldout);
VOX_API void LAPACKE_zsy_trans(int matrix_layout, char uplo, vox_int n,
                               const vox_complex_double *in, vox_int ldin, vox_complex_double *out,
                               vox_int ldout);
VOX_API void LAPACKE_zhe_trans(int matrix_layout, char uplo, vox_int n,
                               const vox_complex_double *in, vox_int ldin, vox_complex_double *out,
                               vox_int ldout);

#ifdef __cplusplus
}
#endif

#endif
