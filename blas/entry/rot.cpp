// rot.cpp - ?rot and ?rotm in all their forms.
#include "blas/drivers/elementwise.hpp"
#include "blas/entry/level1.hpp"

// With a real s.
#define ROT(p, P, S, T)                                                                            \
    VOX_LEVEL1(void, p##rot, P##ROT, ROT, rot, T, S)                                               \
    extern "C" void cblas_##p##rot(vox_int n, vox::c_out<T> x, vox_int incx, vox::c_out<T> y,      \
                                   vox_int incy, S c, S s) {                                       \
        p##rot(&n, vox::out<T>(x), &incx, vox::out<T>(y), &incy, &c, &s);                          \
    }
ROT(s, S, float, float)
ROT(d, D, double, double)
ROT(cs, CS, float, vox_complex_float)
ROT(zd, ZD, double, vox_complex_double)

VOX_LEVEL1(void, crot, CROT, ROT, rot, vox_complex_float, vox_complex_float)
VOX_LEVEL1(void, zrot, ZROT, ROT, rot, vox_complex_double, vox_complex_double)

#define ROTM(p, P, T)                                                                              \
    VOX_LEVEL1(void, p##rotm, P##ROTM, ROTM, rotm, T)                                              \
    extern "C" void cblas_##p##rotm(vox_int n, T *x, vox_int incx, T *y, vox_int incy,             \
                                    const T *param) {                                              \
        p##rotm(&n, x, &incx, y, &incy, param);                                                    \
    }
VOX_REAL_PRECISIONS(ROTM)
