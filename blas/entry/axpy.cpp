// axpy.cpp - ?axpy and ?axpby in all their forms.
#include "blas/drivers/elementwise.hpp"
#include "blas/entry/level1.hpp"

#define AXPY(p, P, T)                                                                              \
    VOX_LEVEL1(void, p##axpy, P##AXPY, AXPY, axpy, T)                                              \
    VOX_LEVEL1(void, p##axpby, P##AXPBY, AXPBY, axpby, T)                                          \
    extern "C" void cblas_##p##axpy(vox_int n, vox::c_scalar<T> alpha, vox::c_in<T> x,             \
                                    vox_int incx, vox::c_out<T> y, vox_int incy) {                 \
        p##axpy(&n, vox::scalar<T>(alpha), vox::in<T>(x), &incx, vox::out<T>(y), &incy);           \
    }                                                                                              \
    extern "C" void cblas_##p##axpby(vox_int n, vox::c_scalar<T> alpha, vox::c_in<T> x,            \
                                     vox_int incx, vox::c_scalar<T> beta, vox::c_out<T> y,         \
                                     vox_int incy) {                                               \
        p##axpby(&n, vox::scalar<T>(alpha), vox::in<T>(x), &incx, vox::scalar<T>(beta),            \
                 vox::out<T>(y), &incy);                                                           \
    }
VOX_PRECISIONS(AXPY)
