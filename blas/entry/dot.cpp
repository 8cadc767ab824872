// dot.cpp - ?dot as Fortran and C call it.
#include "blas/blas.hpp"
#include "serv/entry.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

#define DOT(p, P, T)                                                                               \
    extern "C" T p##dot_(const vox_int *n, const T *x, const vox_int *incx, const T *y,            \
                         const vox_int *incy) {                                                    \
        return vox::logged(#P "DOT", vox_blas_##p##dot, n, x, incx, y, incy);                      \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(p##dot, P##DOT);                                                           \
    extern "C" T cblas_##p##dot(vox_int n, const T *x, vox_int incx, const T *y, vox_int incy) {   \
        return p##dot(&n, x, &incx, y, &incy);                                                     \
    }
DOT(d, D, double)
