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

// One vector, two vectors.
#define VOX_VECTOR_PARAMETERS(T, I) (const I *n, const T *x, const I *incx)
#define VOX_VECTOR_ARGUMENTS (n, x, incx)
#define VOX_DOT_PARAMETERS(T, I) (const I *n, const T *x, const I *incx, const T *y, const I *incy)
#define VOX_DOT_ARGUMENTS (n, x, incx, y, incy)
#define VOX_SDSDOT_PARAMETERS(T, I)                                                                \
    (const I *n, const T *b, const T *x, const I *incx, const T *y, const I *incy)
#define VOX_SDSDOT_ARGUMENTS (n, b, x, incx, y, incy)
#define VOX_COPY_PARAMETERS(T, I) (const I *n, const T *x, const I *incx, T *y, const I *incy)
#define VOX_COPY_ARGUMENTS (n, x, incx, y, incy)
#define VOX_SWAP_PARAMETERS(T, I) (const I *n, T *x, const I *incx, T *y, const I *incy)
#define VOX_SWAP_ARGUMENTS (n, x, incx, y, incy)
#define VOX_SCAL_PARAMETERS(T, I, S) (const I *n, const S *alpha, T *x, const I *incx)
#define VOX_SCAL_ARGUMENTS (n, alpha, x, incx)
#define VOX_AXPY_PARAMETERS(T, I)                                                                  \
    (const I *n, const T *alpha, const T *x, const I *incx, T *y, const I *incy)
#define VOX_AXPY_ARGUMENTS (n, alpha, x, incx, y, incy)
#define VOX_AXPBY_PARAMETERS(T, I)                                                                 \
    (const I *n, const T *alpha, const T *x, const I *incx, const T *beta, T *y, const I *incy)
#define VOX_AXPBY_ARGUMENTS (n, alpha, x, incx, beta, y, incy)
#define VOX_ROT_PARAMETERS(T, I, S)                                                                \
    (const I *n, T *x, const I *incx, T *y, const I *incy, const vox::real_of<T> *c, const S *s)
#define VOX_ROT_ARGUMENTS (n, x, incx, y, incy, c, s)
#define VOX_ROTM_PARAMETERS(T, I)                                                                  \
    (const I *n, T *x, const I *incx, T *y, const I *incy, const T *param)
#define VOX_ROTM_ARGUMENTS (n, x, incx, y, incy, param)
#define VOX_ROTG_PARAMETERS(T, B) (T * a, B * b, vox::real_of<T> * c, T * s)
#define VOX_ROTG_ARGUMENTS (a, b, c, s)
#define VOX_ROTMG_PARAMETERS(T) (T * d1, T * d2, T * x1, const T *y1, T *param)
#define VOX_ROTMG_ARGUMENTS (d1, d2, x1, y1, param)

// Sparse vectors: nz elements in x, element i at place indx[i] of y, counted from 1.
#define VOX_AXPYI_PARAMETERS(T, I)                                                                 \
    (const I *nz, const T *alpha, const T *x, const vox_int *indx, T *y)
#define VOX_DOTI_PARAMETERS(T, I) (const I *nz, const T *x, const vox_int *indx, const T *y)
#define VOX_GTHR_PARAMETERS(T, I) (const I *nz, const T *y, T *x, const vox_int *indx)
#define VOX_GTHRZ_PARAMETERS(T, I) (const I *nz, T *y, T *x, const vox_int *indx)
#define VOX_ROTI_PARAMETERS(T, I)                                                                  \
    (const I *nz, T *x, const vox_int *indx, T *y, const T *c, const T *s)
#define VOX_SCTR_PARAMETERS(T, I) (const I *nz, const T *x, const vox_int *indx, T *y)

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

#define VOX_GEMM_PARAMETERS(T, I)                                                                  \
    (const char *transa, const char *transb, const I *m, const I *n, const I *k, const T *alpha,   \
     const T *a, const I *lda, const T *b, const I *ldb, const T *beta, T *c, const I *ldc)
#define VOX_GEMM_ARGUMENTS (transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc)
#define VOX_GEMMT_PARAMETERS(T, I)                                                                 \
    (const char *uplo, const char *transa, const char *transb, const I *n, const I *k,             \
     const T *alpha, const T *a, const I *lda, const T *b, const I *ldb, const T *beta, T *c,      \
     const I *ldc)
#define VOX_GEMMT_ARGUMENTS (uplo, transa, transb, n, k, alpha, a, lda, b, ldb, beta, c, ldc)
// A factor that is kept packed, and products with such factors.
#define VOX_GEMM_ALLOC_PARAMETERS(I) (const char *identifier, const I *m, const I *n, const I *k)
#define VOX_GEMM_ALLOC_ARGUMENTS (identifier, m, n, k)
#define VOX_GEMM_PACK_PARAMETERS(T, I)                                                             \
    (const char *identifier, const char *trans, const I *m, const I *n, const I *k,                \
     const T *alpha, const T *src, const I *ld, T *dest)
#define VOX_GEMM_PACK_ARGUMENTS (identifier, trans, m, n, k, alpha, src, ld, dest)
#define VOX_GEMM_COMPUTE_PARAMETERS(T, I)                                                          \
    (const char *transa, const char *transb, const I *m, const I *n, const I *k, const T *a,       \
     const I *lda, const T *b, const I *ldb, const T *beta, T *c, const I *ldc)
#define VOX_GEMM_COMPUTE_ARGUMENTS (transa, transb, m, n, k, a, lda, b, ldb, beta, c, ldc)
// Integers: A and B of types A and B, the results of 32 bits.
#define VOX_GEMM_INTEGER_PARAMETERS(A, B, I)                                                       \
    (const char *transa, const char *transb, const char *offsetc, const I *m, const I *n,          \
     const I *k, const float *alpha, const A *a, const I *lda, const A *ao, const B *b,            \
     const I *ldb, const B *bo, const float *beta, int32_t *c, const I *ldc, const int32_t *co)
#define VOX_GEMM_INTEGER_ARGUMENTS                                                                 \
    (transa, transb, offsetc, m, n, k, alpha, a, lda, ao, b, ldb, bo, beta, c, ldc, co)
// Arrays with an entry for each group; a, b and c with one for each product.
#define VOX_GEMM_BATCH_PARAMETERS(T, I)                                                            \
    (const char *transa, const char *transb, const vox_int *m, const vox_int *n, const vox_int *k, \
     const T *alpha, const T *const *a, const vox_int *lda, const T *const *b, const vox_int *ldb, \
     const T *beta, T *const *c, const vox_int *ldc, const I *group_count,                         \
     const vox_int *group_size)
#define VOX_SYMM_PARAMETERS(T, I)                                                                  \
    (const char *side, const char *uplo, const I *m, const I *n, const T *alpha, const T *a,       \
     const I *lda, const T *b, const I *ldb, const T *beta, T *c, const I *ldc)
#define VOX_SYMM_ARGUMENTS (side, uplo, m, n, alpha, a, lda, b, ldb, beta, c, ldc)
// S: the type of alpha and beta, real in herk; of beta, real in her2k.
#define VOX_SYRK_PARAMETERS(T, S, I)                                                               \
    (const char *uplo, const char *trans, const I *n, const I *k, const S *alpha, const T *a,      \
     const I *lda, const S *beta, T *c, const I *ldc)
#define VOX_SYRK_ARGUMENTS (uplo, trans, n, k, alpha, a, lda, beta, c, ldc)
#define VOX_SYR2K_PARAMETERS(T, S, I)                                                              \
    (const char *uplo, const char *trans, const I *n, const I *k, const T *alpha, const T *a,      \
     const I *lda, const T *b, const I *ldb, const S *beta, T *c, const I *ldc)
#define VOX_SYR2K_ARGUMENTS (uplo, trans, n, k, alpha, a, lda, b, ldb, beta, c, ldc)
#define VOX_TRMM_PARAMETERS(T, I)                                                                  \
    (const char *side, const char *uplo, const char *trans, const char *diag, const I *m,          \
     const I *n, const T *alpha, const T *a, const I *lda, T *b, const I *ldb)
#define VOX_TRMM_ARGUMENTS (side, uplo, trans, diag, m, n, alpha, a, lda, b, ldb)

// Drivers and dispatching entries for other families.
#define VOX_LEVEL1_DECLARE(p, P, T)                                                                \
    void vox_blas_##p##copy VOX_COPY_PARAMETERS(T, vox::index_t);                                  \
    void vox_blas_##p##swap VOX_SWAP_PARAMETERS(T, vox::index_t);                                  \
    void vox_blas_##p##scal VOX_SCAL_PARAMETERS(T, vox::index_t, T);                               \
    void vox_blas_##p##axpy VOX_AXPY_PARAMETERS(T, vox::index_t);                                  \
    void vox_blas_##p##axpby VOX_AXPBY_PARAMETERS(T, vox::index_t);                                \
    void vox_blas_x##p##copy VOX_COPY_PARAMETERS(T, vox::index_t);                                 \
    void vox_blas_x##p##scal VOX_SCAL_PARAMETERS(T, vox::index_t, T);                              \
    void vox_blas_x##p##axpy VOX_AXPY_PARAMETERS(T, vox::index_t);                                 \
    void vox_blas_x##p##axpby VOX_AXPBY_PARAMETERS(T, vox::index_t);                               \
    vox::index_t vox_blas_i##p##amax VOX_VECTOR_PARAMETERS(T, vox::index_t);
#define VOX_LEVEL1_DECLARE_REAL(p, P, T)                                                           \
    T vox_blas_##p##dot VOX_DOT_PARAMETERS(T, vox::index_t);                                       \
    T vox_blas_x##p##dot VOX_DOT_PARAMETERS(T, vox::index_t);                                      \
    T vox_blas_##p##asum VOX_VECTOR_PARAMETERS(T, vox::index_t);                                   \
    T vox_blas_##p##nrm2 VOX_VECTOR_PARAMETERS(T, vox::index_t);                                   \
    void vox_blas_##p##rot VOX_ROT_PARAMETERS(T, vox::index_t, T);                                 \
    void vox_blas_##p##rotg VOX_ROTG_PARAMETERS(T, T);
#define VOX_LEVEL1_DECLARE_COMPLEX(p, P, T)                                                        \
    T vox_blas_##p##dotu VOX_DOT_PARAMETERS(T, vox::index_t);                                      \
    T vox_blas_##p##dotc VOX_DOT_PARAMETERS(T, vox::index_t);                                      \
    T vox_blas_x##p##dotu VOX_DOT_PARAMETERS(T, vox::index_t);                                     \
    T vox_blas_x##p##dotc VOX_DOT_PARAMETERS(T, vox::index_t);                                     \
    void vox_blas_##p##rot VOX_ROT_PARAMETERS(T, vox::index_t, T);                                 \
    void vox_blas_##p##rotg VOX_ROTG_PARAMETERS(T, const T);

extern "C" {
VOX_PRECISIONS(VOX_LEVEL1_DECLARE)
VOX_REAL_PRECISIONS(VOX_LEVEL1_DECLARE_REAL)
VOX_COMPLEX_PRECISIONS(VOX_LEVEL1_DECLARE_COMPLEX)
float vox_blas_scasum VOX_VECTOR_PARAMETERS(vox_complex_float, vox::index_t);
double vox_blas_dzasum VOX_VECTOR_PARAMETERS(vox_complex_double, vox::index_t);
float vox_blas_scnrm2 VOX_VECTOR_PARAMETERS(vox_complex_float, vox::index_t);
double vox_blas_dznrm2 VOX_VECTOR_PARAMETERS(vox_complex_double, vox::index_t);
void vox_blas_csscal VOX_SCAL_PARAMETERS(vox_complex_float, vox::index_t, float);
void vox_blas_zdscal VOX_SCAL_PARAMETERS(vox_complex_double, vox::index_t, double);
}

#undef VOX_LEVEL1_DECLARE
#undef VOX_LEVEL1_DECLARE_REAL
#undef VOX_LEVEL1_DECLARE_COMPLEX

#define VOX_LEVEL2_DECLARE(p, P, T)                                                                \
    void vox_blas_##p##gemv VOX_GEMV_PARAMETERS(T, vox::index_t);                                  \
    void vox_blas_##p##trsv VOX_TRMV_PARAMETERS(T, vox::index_t);
#define VOX_LEVEL2_DECLARE_REAL(p, P, T)                                                           \
    void vox_blas_##p##ger VOX_GER_PARAMETERS(T, vox::index_t);                                    \
    void vox_blas_##p##syrk VOX_SYRK_PARAMETERS(T, T, vox::index_t);
#define VOX_LEVEL2_DECLARE_COMPLEX(p, P, T)                                                        \
    void vox_blas_##p##gerc VOX_GER_PARAMETERS(T, vox::index_t);                                   \
    void vox_blas_##p##herk VOX_SYRK_PARAMETERS(T, vox::real_of<T>, vox::index_t);

extern "C" {
VOX_PRECISIONS(VOX_LEVEL2_DECLARE)
VOX_REAL_PRECISIONS(VOX_LEVEL2_DECLARE_REAL)
VOX_COMPLEX_PRECISIONS(VOX_LEVEL2_DECLARE_COMPLEX)
}

#undef VOX_LEVEL2_DECLARE
#undef VOX_LEVEL2_DECLARE_REAL
#undef VOX_LEVEL2_DECLARE_COMPLEX

// The dispatching entries that more than one file calls.
#define VOX_LEVEL2_KERNELS(p, P, T)                                                                \
    extern "C" void vox_blas_x##p##gemv(const vox::product_job<T> *job);                           \
    extern "C" void vox_blas_x##p##ger(const vox::update_job<T> *job);
VOX_PRECISIONS(VOX_LEVEL2_KERNELS)
#undef VOX_LEVEL2_KERNELS
