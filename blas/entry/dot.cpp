// dot.cpp - ?dot in all its forms: dispatching entry, driver, Fortran, C.
#include "blas/drivers/dot.hpp"
#include "blas/blas.hpp"
#include "blas/entry/forms.hpp"
#include "serv/dispatch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

#define DOT(p, P, T)                                                                               \
    VOX_DISPATCH(blas, p##dot, T, VOX_DOT_PARAMETERS(T, vox::index_t), VOX_DOT_ARGUMENTS)          \
    static constexpr auto p##dot_driver = [](auto... a) {                                          \
        return vox::dot::driver(x##p##dot, a...);                                                  \
    };                                                                                             \
    VOX_BLAS_ROUTINE(T, p##dot, P##DOT, VOX_DOT_PARAMETERS(T, vox_int),                            \
                     VOX_DOT_PARAMETERS(T, vox::index_t), VOX_DOT_ARGUMENTS, p##dot_driver)        \
    extern "C" T cblas_##p##dot(vox_int n, const T *x, vox_int incx, const T *y, vox_int incy) {   \
        return p##dot(&n, x, &incx, y, &incy);                                                     \
    }
DOT(d, D, double)
