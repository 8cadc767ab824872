// blas.hpp - the BLAS as the drivers of LAPACK call it: one name for all element types, everything by
// value, 64-bit integers, nothing checked.
//
// Real and complex routines whose names differ share the complex one: dotc, gerc and herk are dot,
// ger and syrk for real types. Places (iamax) are counted from 1.
#pragma once

#include "blas/blas.hpp"
#include "blas/drivers/level3.hpp"

namespace vox::blas {

#define VOX_INLINE [[gnu::always_inline]] inline

#define VOX_ALL(p, P, T)                                                                           \
    VOX_INLINE void copy(index_t n, const T *x, index_t incx, T *y, index_t incy) {                \
        vox_blas_##p##copy(&n, x, &incx, y, &incy);                                                \
    }                                                                                              \
    VOX_INLINE void swap(index_t n, T *x, index_t incx, T *y, index_t incy) {                      \
        vox_blas_##p##swap(&n, x, &incx, y, &incy);                                                \
    }                                                                                              \
    VOX_INLINE void scal(index_t n, T alpha, T *x, index_t incx) {                                 \
        vox_blas_##p##scal(&n, &alpha, x, &incx);                                                  \
    }                                                                                              \
    VOX_INLINE void axpy(index_t n, T alpha, const T *x, index_t incx, T *y, index_t incy) {       \
        vox_blas_##p##axpy(&n, &alpha, x, &incx, y, &incy);                                        \
    }                                                                                              \
    VOX_INLINE index_t iamax(index_t n, const T *x, index_t incx) {                                \
        return vox_blas_i##p##amax(&n, x, &incx);                                                  \
    }                                                                                              \
    VOX_INLINE void gemv(char trans, index_t m, index_t n, T alpha, const T *a, index_t lda,       \
                         const T *x, index_t incx, T beta, T *y, index_t incy) {                   \
        vox_blas_##p##gemv(&trans, &m, &n, &alpha, a, &lda, x, &incx, &beta, y, &incy);            \
    }                                                                                              \
    VOX_INLINE void trsv(char uplo, char trans, char diag, index_t n, const T *a, index_t lda,     \
                         T *x, index_t incx) {                                                     \
        vox_blas_##p##trsv(&uplo, &trans, &diag, &n, a, &lda, x, &incx);                           \
    }
VOX_PRECISIONS(VOX_ALL)
#undef VOX_ALL

#define VOX_REAL(p, P, T)                                                                          \
    VOX_INLINE T dotu(index_t n, const T *x, index_t incx, const T *y, index_t incy) {             \
        return vox_blas_##p##dot(&n, x, &incx, y, &incy);                                          \
    }                                                                                              \
    VOX_INLINE T dotc(index_t n, const T *x, index_t incx, const T *y, index_t incy) {             \
        return vox_blas_##p##dot(&n, x, &incx, y, &incy);                                          \
    }                                                                                              \
    VOX_INLINE void gerc(index_t m, index_t n, T alpha, const T *x, index_t incx, const T *y,      \
                         index_t incy, T *a, index_t lda) {                                        \
        vox_blas_##p##ger(&m, &n, &alpha, x, &incx, y, &incy, a, &lda);                            \
    }                                                                                              \
    VOX_INLINE void herk(char uplo, char trans, index_t n, index_t k, real_of<T> alpha,            \
                         const T *a, index_t lda, real_of<T> beta, T *c, index_t ldc) {            \
        vox_blas_##p##syrk(&uplo, &trans, &n, &k, &alpha, a, &lda, &beta, c, &ldc);                \
    }
VOX_REAL_PRECISIONS(VOX_REAL)
#undef VOX_REAL

#define VOX_COMPLEX(p, P, T)                                                                       \
    VOX_INLINE T dotu(index_t n, const T *x, index_t incx, const T *y, index_t incy) {             \
        return vox_blas_##p##dotu(&n, x, &incx, y, &incy);                                         \
    }                                                                                              \
    VOX_INLINE T dotc(index_t n, const T *x, index_t incx, const T *y, index_t incy) {             \
        return vox_blas_##p##dotc(&n, x, &incx, y, &incy);                                         \
    }                                                                                              \
    VOX_INLINE void gerc(index_t m, index_t n, T alpha, const T *x, index_t incx, const T *y,      \
                         index_t incy, T *a, index_t lda) {                                        \
        vox_blas_##p##gerc(&m, &n, &alpha, x, &incx, y, &incy, a, &lda);                           \
    }                                                                                              \
    VOX_INLINE void herk(char uplo, char trans, index_t n, index_t k, real_of<T> alpha,            \
                         const T *a, index_t lda, real_of<T> beta, T *c, index_t ldc) {            \
        vox_blas_##p##herk(&uplo, &trans, &n, &k, &alpha, a, &lda, &beta, c, &ldc);                \
    }
VOX_COMPLEX_PRECISIONS(VOX_COMPLEX)
#undef VOX_COMPLEX

VOX_INLINE real_of<float> nrm2(index_t n, const float *x, index_t incx) {
    return vox_blas_snrm2(&n, x, &incx);
}
VOX_INLINE real_of<float> asum(index_t n, const float *x, index_t incx) {
    return vox_blas_sasum(&n, x, &incx);
}
VOX_INLINE real_of<double> nrm2(index_t n, const double *x, index_t incx) {
    return vox_blas_dnrm2(&n, x, &incx);
}
VOX_INLINE real_of<double> asum(index_t n, const double *x, index_t incx) {
    return vox_blas_dasum(&n, x, &incx);
}
VOX_INLINE real_of<vox_complex_float> nrm2(index_t n, const vox_complex_float *x, index_t incx) {
    return vox_blas_scnrm2(&n, x, &incx);
}
VOX_INLINE real_of<vox_complex_float> asum(index_t n, const vox_complex_float *x, index_t incx) {
    return vox_blas_scasum(&n, x, &incx);
}
VOX_INLINE real_of<vox_complex_double> nrm2(index_t n, const vox_complex_double *x, index_t incx) {
    return vox_blas_dznrm2(&n, x, &incx);
}
VOX_INLINE real_of<vox_complex_double> asum(index_t n, const vox_complex_double *x, index_t incx) {
    return vox_blas_dzasum(&n, x, &incx);
}

// By a real number.
VOX_INLINE void rscal(index_t n, float alpha, float *x, index_t incx) { scal(n, alpha, x, incx); }
VOX_INLINE void rscal(index_t n, double alpha, double *x, index_t incx) { scal(n, alpha, x, incx); }
VOX_INLINE void rscal(index_t n, float alpha, vox_complex_float *x, index_t incx) {
    vox_blas_csscal(&n, &alpha, x, &incx);
}
VOX_INLINE void rscal(index_t n, double alpha, vox_complex_double *x, index_t incx) {
    vox_blas_zdscal(&n, &alpha, x, &incx);
}

using vox::gemm; // by value already

// Options as letters in upper case.
template <class T>
VOX_INLINE factor<T> triangle(char uplo, char trans, char diag, const T *a, index_t lda) {
    return {a, lda, trans != 'N', trans == 'C', structure::triangular, uplo == 'U', diag == 'U'};
}
template <class T>
VOX_INLINE void trsm(char side, char uplo, char trans, char diag, index_t m, index_t n,
                     std::type_identity_t<T> alpha, const T *a, index_t lda, T *b, index_t ldb) {
    triangle_solve<T>({side == 'L', m, n, alpha, triangle(uplo, trans, diag, a, lda), b, ldb});
}
template <class T>
VOX_INLINE void trmm(char side, char uplo, char trans, char diag, index_t m, index_t n,
                     std::type_identity_t<T> alpha, const T *a, index_t lda, T *b, index_t ldb) {
    triangle_multiply<T>({side == 'L', m, n, alpha, triangle(uplo, trans, diag, a, lda), b, ldb});
}

#undef VOX_INLINE

} // namespace vox::blas
