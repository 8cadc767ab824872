/* cblas.h - the BLAS as C calls it. Routines as in blas.h; scalars by value. */
#ifndef VOX_CBLAS_H
#define VOX_CBLAS_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum { CblasRowMajor = 101, CblasColMajor = 102 } CBLAS_LAYOUT;
typedef enum { CblasNoTrans = 111, CblasTrans = 112, CblasConjTrans = 113 } CBLAS_TRANSPOSE;
typedef enum { CblasUpper = 121, CblasLower = 122 } CBLAS_UPLO;
typedef enum { CblasNonUnit = 131, CblasUnit = 132 } CBLAS_DIAG;
typedef enum { CblasLeft = 141, CblasRight = 142 } CBLAS_SIDE;
typedef enum { CblasPacked = 151 } CBLAS_STORAGE;
typedef enum { CblasAMatrix = 161, CblasBMatrix = 162 } CBLAS_IDENTIFIER;
typedef enum { CblasRowOffset = 171, CblasColOffset = 172, CblasFixOffset = 173 } CBLAS_OFFSET;

/* Level 1. Complex scalars and arrays of complex numbers are void pointers. */

VOX_API float cblas_sdot(vox_int n, const float *x, vox_int incx, const float *y, vox_int incy);
VOX_API double cblas_ddot(vox_int n, const double *x, vox_int incx, const double *y, vox_int incy);
VOX_API double cblas_dsdot(vox_int n, const float *x, vox_int incx, const float *y, vox_int incy);
VOX_API float cblas_sdsdot(vox_int n, float b, const float *x, vox_int incx, const float *y,
                           vox_int incy);
VOX_API void cblas_cdotu_sub(vox_int n, const void *x, vox_int incx, const void *y, vox_int incy,
                             void *result);
VOX_API void cblas_zdotu_sub(vox_int n, const void *x, vox_int incx, const void *y, vox_int incy,
                             void *result);
VOX_API void cblas_cdotc_sub(vox_int n, const void *x, vox_int incx, const void *y, vox_int incy,
                             void *result);
VOX_API void cblas_zdotc_sub(vox_int n, const void *x, vox_int incx, const void *y, vox_int incy,
                             void *result);

VOX_API float cblas_sasum(vox_int n, const float *x, vox_int incx);
VOX_API double cblas_dasum(vox_int n, const double *x, vox_int incx);
VOX_API float cblas_scasum(vox_int n, const void *x, vox_int incx);
VOX_API double cblas_dzasum(vox_int n, const void *x, vox_int incx);

VOX_API float cblas_snrm2(vox_int n, const float *x, vox_int incx);
VOX_API double cblas_dnrm2(vox_int n, const double *x, vox_int incx);
VOX_API float cblas_scnrm2(vox_int n, const void *x, vox_int incx);
VOX_API double cblas_dznrm2(vox_int n, const void *x, vox_int incx);

/* Places are counted from 0; 0 too when n < 1 or incx < 1. */
#define CBLAS_INDEX size_t
VOX_API CBLAS_INDEX cblas_isamax(vox_int n, const float *x, vox_int incx);
VOX_API CBLAS_INDEX cblas_idamax(vox_int n, const double *x, vox_int incx);
VOX_API CBLAS_INDEX cblas_icamax(vox_int n, const void *x, vox_int incx);
VOX_API CBLAS_INDEX cblas_izamax(vox_int n, const void *x, vox_int incx);
VOX_API CBLAS_INDEX cblas_isamin(vox_int n, const float *x, vox_int incx);
VOX_API CBLAS_INDEX cblas_idamin(vox_int n, const double *x, vox_int incx);
VOX_API CBLAS_INDEX cblas_icamin(vox_int n, const void *x, vox_int incx);
VOX_API CBLAS_INDEX cblas_izamin(vox_int n, const void *x, vox_int incx);

VOX_API float cblas_scabs1(const void *z);
VOX_API double cblas_dcabs1(const void *z);

VOX_API void cblas_scopy(vox_int n, const float *x, vox_int incx, float *y, vox_int incy);
VOX_API void cblas_dcopy(vox_int n, const double *x, vox_int incx, double *y, vox_int incy);
VOX_API void cblas_ccopy(vox_int n, const void *x, vox_int incx, void *y, vox_int incy);
VOX_API void cblas_zcopy(vox_int n, const void *x, vox_int incx, void *y, vox_int incy);
VOX_API void cblas_sswap(vox_int n, float *x, vox_int incx, float *y, vox_int incy);
VOX_API void cblas_dswap(vox_int n, double *x, vox_int incx, double *y, vox_int incy);
VOX_API void cblas_cswap(vox_int n, void *x, vox_int incx, void *y, vox_int incy);
VOX_API void cblas_zswap(vox_int n, void *x, vox_int incx, void *y, vox_int incy);

VOX_API void cblas_sscal(vox_int n, float alpha, float *x, vox_int incx);
VOX_API void cblas_dscal(vox_int n, double alpha, double *x, vox_int incx);
VOX_API void cblas_cscal(vox_int n, const void *alpha, void *x, vox_int incx);
VOX_API void cblas_zscal(vox_int n, const void *alpha, void *x, vox_int incx);
VOX_API void cblas_csscal(vox_int n, float alpha, void *x, vox_int incx);
VOX_API void cblas_zdscal(vox_int n, double alpha, void *x, vox_int incx);

VOX_API void cblas_saxpy(vox_int n, float alpha, const float *x, vox_int incx, float *y,
                         vox_int incy);
VOX_API void cblas_daxpy(vox_int n, double alpha, const double *x, vox_int incx, double *y,
                         vox_int incy);
VOX_API void cblas_caxpy(vox_int n, const void *alpha, const void *x, vox_int incx, void *y,
                         vox_int incy);
VOX_API void cblas_zaxpy(vox_int n, const void *alpha, const void *x, vox_int incx, void *y,
                         vox_int incy);

VOX_API void cblas_saxpby(vox_int n, float alpha, const float *x, vox_int incx, float beta,
                          float *y, vox_int incy);
VOX_API void cblas_daxpby(vox_int n, double alpha, const double *x, vox_int incx, double beta,
                          double *y, vox_int incy);
VOX_API void cblas_caxpby(vox_int n, const void *alpha, const void *x, vox_int incx,
                          const void *beta, void *y, vox_int incy);
VOX_API void cblas_zaxpby(vox_int n, const void *alpha, const void *x, vox_int incx,
                          const void *beta, void *y, vox_int incy);

VOX_API void cblas_srot(vox_int n, float *x, vox_int incx, float *y, vox_int incy, float c,
                        float s);
VOX_API void cblas_drot(vox_int n, double *x, vox_int incx, double *y, vox_int incy, double c,
                        double s);
VOX_API void cblas_csrot(vox_int n, void *x, vox_int incx, void *y, vox_int incy, float c, float s);
VOX_API void cblas_zdrot(vox_int n, void *x, vox_int incx, void *y, vox_int incy, double c,
                         double s);

VOX_API void cblas_srotg(float *a, float *b, float *c, float *s);
VOX_API void cblas_drotg(double *a, double *b, double *c, double *s);
VOX_API void cblas_crotg(void *a, const void *b, float *c, void *s);
VOX_API void cblas_zrotg(void *a, const void *b, double *c, void *s);

VOX_API void cblas_srotm(vox_int n, float *x, vox_int incx, float *y, vox_int incy,
                         const float *param);
VOX_API void cblas_drotm(vox_int n, double *x, vox_int incx, double *y, vox_int incy,
                         const double *param);
VOX_API void cblas_srotmg(float *d1, float *d2, float *x1, float y1, float *param);
VOX_API void cblas_drotmg(double *d1, double *d2, double *x1, double y1, double *param);

/* One vector compressed: places indx[i] of y are counted from 0. */
VOX_API void cblas_saxpyi(vox_int nz, float alpha, const float *x, const vox_int *indx, float *y);
VOX_API void cblas_daxpyi(vox_int nz, double alpha, const double *x, const vox_int *indx,
                          double *y);
VOX_API void cblas_caxpyi(vox_int nz, const void *alpha, const void *x, const vox_int *indx,
                          void *y);
VOX_API void cblas_zaxpyi(vox_int nz, const void *alpha, const void *x, const vox_int *indx,
                          void *y);
VOX_API float cblas_sdoti(vox_int nz, const float *x, const vox_int *indx, const float *y);
VOX_API double cblas_ddoti(vox_int nz, const double *x, const vox_int *indx, const double *y);
VOX_API void cblas_cdotui_sub(vox_int nz, const void *x, const vox_int *indx, const void *y,
                              void *result);
VOX_API void cblas_zdotui_sub(vox_int nz, const void *x, const vox_int *indx, const void *y,
                              void *result);
VOX_API void cblas_cdotci_sub(vox_int nz, const void *x, const vox_int *indx, const void *y,
                              void *result);
VOX_API void cblas_zdotci_sub(vox_int nz, const void *x, const vox_int *indx, const void *y,
                              void *result);
VOX_API void cblas_sgthr(vox_int nz, const float *y, float *x, const vox_int *indx);
VOX_API void cblas_dgthr(vox_int nz, const double *y, double *x, const vox_int *indx);
VOX_API void cblas_cgthr(vox_int nz, const void *y, void *x, const vox_int *indx);
VOX_API void cblas_zgthr(vox_int nz, const void *y, void *x, const vox_int *indx);
VOX_API void cblas_sgthrz(vox_int nz, float *y, float *x, const vox_int *indx);
VOX_API void cblas_dgthrz(vox_int nz, double *y, double *x, const vox_int *indx);
VOX_API void cblas_cgthrz(vox_int nz, void *y, void *x, const vox_int *indx);
VOX_API void cblas_zgthrz(vox_int nz, void *y, void *x, const vox_int *indx);
VOX_API void cblas_sroti(vox_int nz, float *x, const vox_int *indx, float *y, float c, float s);
VOX_API void cblas_droti(vox_int nz, double *x, const vox_int *indx, double *y, double c, double s);
VOX_API void cblas_ssctr(vox_int nz, const float *x, const vox_int *indx, float *y);
VOX_API void cblas_dsctr(vox_int nz, const double *x, const vox_int *indx, double *y);
VOX_API void cblas_csctr(vox_int nz, const void *x, const vox_int *indx, void *y);
VOX_API void cblas_zsctr(vox_int nz, const void *x, const vox_int *indx, void *y);

/*
 * Level 2: as in blas.h, with the layout first.
 *
 * CblasColMajor: storage as in blas.h. CblasRowMajor: the same formulas with i and j exchanged, upper
 * and lower, m and n, kl and ku as well:
 *   full            A(i,j) at a[j + i*lda], lda >= max(1, columns)
 *   band            A(i,j) at a[kl + j - i + i*lda]
 *   band triangle   upper: A(i,j) at a[j - i + i*lda], lower: A(i,j) at a[k + j - i + i*lda]
 *   packed triangle upper: A(i,j) at ap[j + i*(2*n - i - 1)/2], lower: A(i,j) at ap[j + i*(i + 1)/2]
 * A zero in a vector leaves a row of A out: in updates and where op(A) is A^T or A^H.
 *
 * Errors: reported through cblas_xerbla with the parameter's number, the layout being number 1, and
 * the operands are left alone. After a bad layout nothing else is looked at. After a bad trans, uplo
 * or diag the other parameters are checked too; of the sizes, leading dimension and increments the
 * first bad one is reported.
 *
 * In the complex types scalars come by address, except the real alpha of ?her and ?hpr.
 */

#define VOX_GEMV(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, vox_int m, vox_int n, S alpha,   \
                      const T *a, vox_int lda, const T *x, vox_int incx, S beta, T *y,             \
                      vox_int incy)
VOX_GEMV(cblas_sgemv, float, float);
VOX_GEMV(cblas_dgemv, double, double);
VOX_GEMV(cblas_cgemv, const void *, void);
VOX_GEMV(cblas_zgemv, const void *, void);
#undef VOX_GEMV

#define VOX_GBMV(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, vox_int m, vox_int n,            \
                      vox_int kl, vox_int ku, S alpha, const T *a, vox_int lda, const T *x,        \
                      vox_int incx, S beta, T *y, vox_int incy)
VOX_GBMV(cblas_sgbmv, float, float);
VOX_GBMV(cblas_dgbmv, double, double);
VOX_GBMV(cblas_cgbmv, const void *, void);
VOX_GBMV(cblas_zgbmv, const void *, void);
#undef VOX_GBMV

#define VOX_SYMV(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, vox_int n, S alpha, const T *a,        \
                      vox_int lda, const T *x, vox_int incx, S beta, T *y, vox_int incy)
VOX_SYMV(cblas_ssymv, float, float);
VOX_SYMV(cblas_dsymv, double, double);
VOX_SYMV(cblas_chemv, const void *, void);
VOX_SYMV(cblas_zhemv, const void *, void);
#undef VOX_SYMV

#define VOX_SBMV(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, vox_int n, vox_int k, S alpha,         \
                      const T *a, vox_int lda, const T *x, vox_int incx, S beta, T *y,             \
                      vox_int incy)
VOX_SBMV(cblas_ssbmv, float, float);
VOX_SBMV(cblas_dsbmv, double, double);
VOX_SBMV(cblas_chbmv, const void *, void);
VOX_SBMV(cblas_zhbmv, const void *, void);
#undef VOX_SBMV

#define VOX_SPMV(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, vox_int n, S alpha, const T *ap,       \
                      const T *x, vox_int incx, S beta, T *y, vox_int incy)
VOX_SPMV(cblas_sspmv, float, float);
VOX_SPMV(cblas_dspmv, double, double);
VOX_SPMV(cblas_chpmv, const void *, void);
VOX_SPMV(cblas_zhpmv, const void *, void);
#undef VOX_SPMV

#define VOX_TRMV(name, T)                                                                          \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans,                 \
                      CBLAS_DIAG diag, vox_int n, const T *a, vox_int lda, T *x, vox_int incx)
VOX_TRMV(cblas_strmv, float);
VOX_TRMV(cblas_dtrmv, double);
VOX_TRMV(cblas_ctrmv, void);
VOX_TRMV(cblas_ztrmv, void);
VOX_TRMV(cblas_strsv, float);
VOX_TRMV(cblas_dtrsv, double);
VOX_TRMV(cblas_ctrsv, void);
VOX_TRMV(cblas_ztrsv, void);
#undef VOX_TRMV

#define VOX_TBMV(name, T)                                                                          \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans,                 \
                      CBLAS_DIAG diag, vox_int n, vox_int k, const T *a, vox_int lda, T *x,        \
                      vox_int incx)
VOX_TBMV(cblas_stbmv, float);
VOX_TBMV(cblas_dtbmv, double);
VOX_TBMV(cblas_ctbmv, void);
VOX_TBMV(cblas_ztbmv, void);
VOX_TBMV(cblas_stbsv, float);
VOX_TBMV(cblas_dtbsv, double);
VOX_TBMV(cblas_ctbsv, void);
VOX_TBMV(cblas_ztbsv, void);
#undef VOX_TBMV

#define VOX_TPMV(name, T)                                                                          \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans,                 \
                      CBLAS_DIAG diag, vox_int n, const T *ap, T *x, vox_int incx)
VOX_TPMV(cblas_stpmv, float);
VOX_TPMV(cblas_dtpmv, double);
VOX_TPMV(cblas_ctpmv, void);
VOX_TPMV(cblas_ztpmv, void);
VOX_TPMV(cblas_stpsv, float);
VOX_TPMV(cblas_dtpsv, double);
VOX_TPMV(cblas_ctpsv, void);
VOX_TPMV(cblas_ztpsv, void);
#undef VOX_TPMV

#define VOX_GER(name, S, T)                                                                        \
    VOX_API void name(CBLAS_LAYOUT layout, vox_int m, vox_int n, S alpha, const T *x,              \
                      vox_int incx, const T *y, vox_int incy, T *a, vox_int lda)
VOX_GER(cblas_sger, float, float);
VOX_GER(cblas_dger, double, double);
VOX_GER(cblas_cgeru, const void *, void);
VOX_GER(cblas_zgeru, const void *, void);
VOX_GER(cblas_cgerc, const void *, void);
VOX_GER(cblas_zgerc, const void *, void);
#undef VOX_GER

#define VOX_SYR(name, S, T)                                                                        \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, vox_int n, S alpha, const T *x,        \
                      vox_int incx, T *a, vox_int lda)
VOX_SYR(cblas_ssyr, float, float);
VOX_SYR(cblas_dsyr, double, double);
VOX_SYR(cblas_cher, float, void);
VOX_SYR(cblas_zher, double, void);
#undef VOX_SYR

#define VOX_SPR(name, S, T)                                                                        \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, vox_int n, S alpha, const T *x,        \
                      vox_int incx, T *ap)
VOX_SPR(cblas_sspr, float, float);
VOX_SPR(cblas_dspr, double, double);
VOX_SPR(cblas_chpr, float, void);
VOX_SPR(cblas_zhpr, double, void);
#undef VOX_SPR

#define VOX_SYR2(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, vox_int n, S alpha, const T *x,        \
                      vox_int incx, const T *y, vox_int incy, T *a, vox_int lda)
VOX_SYR2(cblas_ssyr2, float, float);
VOX_SYR2(cblas_dsyr2, double, double);
VOX_SYR2(cblas_cher2, const void *, void);
VOX_SYR2(cblas_zher2, const void *, void);
#undef VOX_SYR2

#define VOX_SPR2(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, vox_int n, S alpha, const T *x,        \
                      vox_int incx, const T *y, vox_int incy, T *ap)
VOX_SPR2(cblas_sspr2, float, float);
VOX_SPR2(cblas_dspr2, double, double);
VOX_SPR2(cblas_chpr2, const void *, void);
VOX_SPR2(cblas_zhpr2, const void *, void);
#undef VOX_SPR2

/*
 * Level 3: as in blas.h, with the layout first.
 *
 * CblasRowMajor: A(i,j) at a[j + i*lda], lda >= max(1, columns) of the matrix as it is stored. Errors as in
 * level 2: after a bad layout nothing else is looked at; every bad option is reported, and the first of
 * the other parameters.
 *
 * In the complex types scalars come by address, except alpha and beta of ?herk and beta of ?her2k, which
 * are real.
 */

#define VOX_GEMM(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb,         \
                      vox_int m, vox_int n, vox_int k, S alpha, const T *a, vox_int lda,           \
                      const T *b, vox_int ldb, S beta, T *c, vox_int ldc)
VOX_GEMM(cblas_sgemm, float, float);
VOX_GEMM(cblas_dgemm, double, double);
VOX_GEMM(cblas_cgemm, const void *, void);
VOX_GEMM(cblas_zgemm, const void *, void);
VOX_GEMM(cblas_cgemm3m, const void *, void);
VOX_GEMM(cblas_zgemm3m, const void *, void);
#undef VOX_GEMM

#define VOX_GEMMT(name, S, T)                                                                      \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa,                \
                      CBLAS_TRANSPOSE transb, vox_int n, vox_int k, S alpha, const T *a,           \
                      vox_int lda, const T *b, vox_int ldb, S beta, T *c, vox_int ldc)
VOX_GEMMT(cblas_sgemmt, float, float);
VOX_GEMMT(cblas_dgemmt, double, double);
VOX_GEMMT(cblas_cgemmt, const void *, void);
VOX_GEMMT(cblas_zgemmt, const void *, void);
#undef VOX_GEMMT

/* All errors are reported as in blas.h, the first bad argument only, with numbers larger by one. */
#define VOX_GEMM_BATCH(name, T)                                                                    \
    VOX_API void name(CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE *transa,                          \
                      const CBLAS_TRANSPOSE *transb, const vox_int *m, const vox_int *n,           \
                      const vox_int *k, const T *alpha, const T *const *a, const vox_int *lda,     \
                      const T *const *b, const vox_int *ldb, const T *beta, T *const *c,           \
                      const vox_int *ldc, vox_int group_count, const vox_int *group_size)
VOX_GEMM_BATCH(cblas_sgemm_batch, float);
VOX_GEMM_BATCH(cblas_dgemm_batch, double);
VOX_GEMM_BATCH(cblas_cgemm_batch, void);
VOX_GEMM_BATCH(cblas_zgemm_batch, void);
VOX_GEMM_BATCH(cblas_cgemm3m_batch, void);
VOX_GEMM_BATCH(cblas_zgemm3m_batch, void);
#undef VOX_GEMM_BATCH

/* ?gemm_alloc has no layout, and so the numbers of blas.h. A buffer that is packed with one layout serves
 * products with that layout. identifier: CblasAMatrix, CblasBMatrix; transa, transb: CBLAS_TRANSPOSE or
 * CblasPacked. */
#define VOX_GEMM_PACKED(p, T)                                                                      \
    VOX_API T *cblas_##p##gemm_alloc(CBLAS_IDENTIFIER identifier, vox_int m, vox_int n,            \
                                     vox_int k);                                                   \
    VOX_API void cblas_##p##gemm_pack(CBLAS_LAYOUT layout, CBLAS_IDENTIFIER identifier,            \
                                      CBLAS_TRANSPOSE trans, vox_int m, vox_int n, vox_int k,      \
                                      T alpha, const T *src, vox_int ld, T *dest);                 \
    VOX_API void cblas_##p##gemm_compute(CBLAS_LAYOUT layout, vox_int transa, vox_int transb,      \
                                         vox_int m, vox_int n, vox_int k, const T *a, vox_int lda, \
                                         const T *b, vox_int ldb, T beta, T *c, vox_int ldc);      \
    VOX_API void cblas_##p##gemm_free(T *dest)
VOX_GEMM_PACKED(s, float);
VOX_GEMM_PACKED(d, double);
#undef VOX_GEMM_PACKED

/* In both layouts A is what comes as a, with the type of a, and CblasColOffset is a column of m values
 * in co, CblasRowOffset a row of n. */
#define VOX_GEMM_INTEGER(name, A, B)                                                               \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa, CBLAS_TRANSPOSE transb,         \
                      CBLAS_OFFSET offsetc, vox_int m, vox_int n, vox_int k, float alpha,          \
                      const A *a, vox_int lda, A ao, const B *b, vox_int ldb, B bo, float beta,    \
                      int32_t *c, vox_int ldc, const int32_t *co)
VOX_GEMM_INTEGER(cblas_gemm_s8u8s32, int8_t, uint8_t);
VOX_GEMM_INTEGER(cblas_gemm_s16s16s32, int16_t, int16_t);
#undef VOX_GEMM_INTEGER

#define VOX_SYMM(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, vox_int m, vox_int n, \
                      S alpha, const T *a, vox_int lda, const T *b, vox_int ldb, S beta, T *c,     \
                      vox_int ldc)
VOX_SYMM(cblas_ssymm, float, float);
VOX_SYMM(cblas_dsymm, double, double);
VOX_SYMM(cblas_csymm, const void *, void);
VOX_SYMM(cblas_zsymm, const void *, void);
VOX_SYMM(cblas_chemm, const void *, void);
VOX_SYMM(cblas_zhemm, const void *, void);
#undef VOX_SYMM

#define VOX_SYRK(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, vox_int n,      \
                      vox_int k, S alpha, const T *a, vox_int lda, S beta, T *c, vox_int ldc)
VOX_SYRK(cblas_ssyrk, float, float);
VOX_SYRK(cblas_dsyrk, double, double);
VOX_SYRK(cblas_csyrk, const void *, void);
VOX_SYRK(cblas_zsyrk, const void *, void);
VOX_SYRK(cblas_cherk, float, void);
VOX_SYRK(cblas_zherk, double, void);
#undef VOX_SYRK

#define VOX_SYR2K(name, A, B, T)                                                                   \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, vox_int n,      \
                      vox_int k, A alpha, const T *a, vox_int lda, const T *b, vox_int ldb,        \
                      B beta, T *c, vox_int ldc)
VOX_SYR2K(cblas_ssyr2k, float, float, float);
VOX_SYR2K(cblas_dsyr2k, double, double, double);
VOX_SYR2K(cblas_csyr2k, const void *, const void *, void);
VOX_SYR2K(cblas_zsyr2k, const void *, const void *, void);
VOX_SYR2K(cblas_cher2k, const void *, float, void);
VOX_SYR2K(cblas_zher2k, const void *, double, void);
#undef VOX_SYR2K

#define VOX_TRMM(name, S, T)                                                                       \
    VOX_API void name(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo,                       \
                      CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, vox_int m, vox_int n, S alpha,       \
                      const T *a, vox_int lda, T *b, vox_int ldb)
VOX_TRMM(cblas_strmm, float, float);
VOX_TRMM(cblas_dtrmm, double, double);
VOX_TRMM(cblas_ctrmm, const void *, void);
VOX_TRMM(cblas_ztrmm, const void *, void);
VOX_TRMM(cblas_strsm, float, float);
VOX_TRMM(cblas_dtrsm, double, double);
VOX_TRMM(cblas_ctrsm, const void *, void);
VOX_TRMM(cblas_ztrsm, const void *, void);
#undef VOX_TRMM

#ifdef __cplusplus
}
#endif

#endif
