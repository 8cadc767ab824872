// sparse.cpp - level 1 with one vector compressed: ?axpyi, ?doti, ?gthr, ?gthrz, ?roti, ?sctr.
//
// x has nz elements; the i-th belongs to place indx[i] of y, counted from 1. Places differ from each
// other; dot products and gathers do not mind if they do not.
#include "blas/blas.hpp"
#include "blas/kernels/elements.hpp"

namespace {

template <class T>
VOX_INLINE void axpyi(index_t nz, T alpha, const T *x, const vox_int *indx, T *y) {
    for (index_t i = 0; i < nz; ++i) {
        T &to = y[index_t(indx[i]) - 1];
        to = to + alpha * x[i];
    }
}

template <class T>
VOX_INLINE T doti(index_t nz, const T *x, const vox_int *indx, const T *y, bool conjugate) {
    T sum[4] = {};
    const auto term = [&](index_t i) {
        return vox::conj_if(conjugate, x[i]) * y[index_t(indx[i]) - 1];
    };
    index_t i = 0;
    for (; i + 4 <= nz; i += 4)
        unroll<4>([&](auto k) { sum[k] = sum[k] + term(i + k); });
    for (; i < nz; ++i)
        sum[0] = sum[0] + term(i);
    return (sum[0] + sum[1]) + (sum[2] + sum[3]);
}

template <class T>
VOX_INLINE void gthr(index_t nz, const T *y, T *x, const vox_int *indx) {
    for (index_t i = 0; i < nz; ++i)
        x[i] = y[index_t(indx[i]) - 1];
}

template <class T>
VOX_INLINE void gthrz(index_t nz, T *y, T *x, const vox_int *indx) {
    for (index_t i = 0; i < nz; ++i) {
        T &from = y[index_t(indx[i]) - 1];
        x[i] = from;
        from = T{};
    }
}

template <class T>
VOX_INLINE void roti(index_t nz, T *x, const vox_int *indx, T *y, T c, T s) {
    for (index_t i = 0; i < nz; ++i) {
        T &other = y[index_t(indx[i]) - 1];
        const T t = c * x[i] + s * other;
        other = c * other - s * x[i];
        x[i] = t;
    }
}

template <class T>
VOX_INLINE void sctr(index_t nz, const T *x, const vox_int *indx, T *y) {
    for (index_t i = 0; i < nz; ++i)
        y[index_t(indx[i]) - 1] = x[i];
}

} // namespace

#define SPARSE(p, P, T)                                                                            \
    extern "C" void VOX_KERNEL(blas, p##axpyi) VOX_AXPYI_PARAMETERS(T, index_t) {                  \
        axpyi(*nz, *alpha, x, indx, y);                                                            \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gthr) VOX_GTHR_PARAMETERS(T, index_t) {                    \
        gthr(*nz, y, x, indx);                                                                     \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##gthrz) VOX_GTHRZ_PARAMETERS(T, index_t) {                  \
        gthrz(*nz, y, x, indx);                                                                    \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##sctr) VOX_SCTR_PARAMETERS(T, index_t) {                    \
        sctr(*nz, x, indx, y);                                                                     \
    }
VOX_PRECISIONS(SPARSE)

#define DOTI(name, T, conjugate)                                                                   \
    extern "C" T VOX_KERNEL(blas, name) VOX_DOTI_PARAMETERS(T, index_t) {                          \
        return doti(*nz, x, indx, y, conjugate);                                                   \
    }
DOTI(sdoti, float, false)
DOTI(ddoti, double, false)
DOTI(cdotui, vox_complex_float, false)
DOTI(zdotui, vox_complex_double, false)
DOTI(cdotci, vox_complex_float, true)
DOTI(zdotci, vox_complex_double, true)

#define ROTI(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##roti) VOX_ROTI_PARAMETERS(T, index_t) {                    \
        roti(*nz, x, indx, y, *c, *s);                                                             \
    }
VOX_REAL_PRECISIONS(ROTI)
