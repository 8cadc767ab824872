// scal.cpp - ?scal in all its forms.
#include "blas/drivers/elementwise.hpp"
#include "blas/entry/level1.hpp"

#define SCAL(p, P, S, T)                                                                           \
    VOX_LEVEL1(void, p##scal, P##SCAL, SCAL, scal, T, S)                                           \
    extern "C" void cblas_##p##scal(vox_int n, vox::c_scalar<S> alpha, vox::c_out<T> x,            \
                                    vox_int incx) {                                                \
        p##scal(&n, vox::scalar<S>(alpha), vox::out<T>(x), &incx);                                 \
    }
SCAL(s, S, float, float)
SCAL(d, D, double, double)
SCAL(c, C, vox_complex_float, vox_complex_float)
SCAL(z, Z, vox_complex_double, vox_complex_double)
SCAL(cs, CS, float, vox_complex_float)
SCAL(zd, ZD, double, vox_complex_double)
