// dot.cpp - ?dot, ?dotu, ?dotc, dsdot and sdsdot in all their forms.
#include "blas/drivers/reductions.hpp"
#include "blas/entry/level1.hpp"

#define DOT(lower, upper, result, T)                                                               \
    VOX_LEVEL1(result, lower, upper, DOT, dot, T)                                                  \
    extern "C" result cblas_##lower(vox_int n, const T *x, vox_int incx, const T *y,               \
                                    vox_int incy) {                                                \
        return lower(&n, x, &incx, y, &incy);                                                      \
    }
DOT(sdot, SDOT, float, float)
DOT(ddot, DDOT, double, double)
DOT(dsdot, DSDOT, double, float)

#define COMPLEX_DOT(lower, upper, T)                                                               \
    VOX_LEVEL1(T, lower, upper, DOT, dot, T)                                                       \
    extern "C" void cblas_##lower##_sub(vox_int n, const void *x, vox_int incx, const void *y,     \
                                        vox_int incy, void *result) {                              \
        *vox::out<T>(result) = lower(&n, vox::in<T>(x), &incx, vox::in<T>(y), &incy);              \
    }
COMPLEX_DOT(cdotu, CDOTU, vox_complex_float)
COMPLEX_DOT(zdotu, ZDOTU, vox_complex_double)
COMPLEX_DOT(cdotc, CDOTC, vox_complex_float)
COMPLEX_DOT(zdotc, ZDOTC, vox_complex_double)

// b plus the product in double precision, which is rounded once.
static constexpr auto sdsdot_driver = [](vox::index_t n, const float *b, auto... a) {
    return float(double(*b) + dsdot_driver(n, a...));
};
VOX_LEVEL1_ROUTINE(float, sdsdot, SDSDOT, SDSDOT, sdsdot_driver, float)
extern "C" float cblas_sdsdot(vox_int n, float b, const float *x, vox_int incx, const float *y,
                              vox_int incy) {
    return sdsdot(&n, &b, x, &incx, y, &incy);
}
