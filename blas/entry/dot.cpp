// dot.cpp - ?dot in all its forms: dispatching entry, driver, Fortran, C.
#include "blas/drivers/dot.hpp"
#include "blas/blas.hpp"
#include "serv/dispatch.hpp"
#include "serv/entry.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

#define DOT(p, P, T)                                                                               \
    VOX_DISPATCH(blas, p##dot, T, VOX_DOT_PARAMETERS(T), VOX_DOT_ARGUMENTS)                        \
    extern "C" T vox_blas_##p##dot VOX_DOT_PARAMETERS(T) {                                         \
        return vox::dot::driver(x##p##dot, *n, x, *incx, y, *incy);                                \
    }                                                                                              \
    extern "C" T p##dot_(const vox_int *n, const T *x, const vox_int *incx, const T *y,            \
                         const vox_int *incy) {                                                    \
        constexpr auto driver = [](auto... a) { return vox::dot::driver(x##p##dot, a...); };       \
        return vox::logged(#P "DOT", driver, n, x, incx, y, incy);                                 \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(p##dot, P##DOT);                                                           \
    extern "C" T cblas_##p##dot(vox_int n, const T *x, vox_int incx, const T *y, vox_int incy) {   \
        return p##dot(&n, x, &incx, y, &incy);                                                     \
    }
DOT(d, D, double)
