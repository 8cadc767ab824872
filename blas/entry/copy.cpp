// copy.cpp - ?copy and ?swap in all their forms.
#include "blas/drivers/elementwise.hpp"
#include "blas/entry/level1.hpp"

#define COPY(p, P, T)                                                                              \
    VOX_LEVEL1(void, p##copy, P##COPY, COPY, move, T)                                              \
    VOX_LEVEL1(void, p##swap, P##SWAP, SWAP, move, T)                                              \
    extern "C" void cblas_##p##copy(vox_int n, vox::c_in<T> x, vox_int incx, vox::c_out<T> y,      \
                                    vox_int incy) {                                                \
        p##copy(&n, vox::in<T>(x), &incx, vox::out<T>(y), &incy);                                  \
    }                                                                                              \
    extern "C" void cblas_##p##swap(vox_int n, vox::c_out<T> x, vox_int incx, vox::c_out<T> y,     \
                                    vox_int incy) {                                                \
        p##swap(&n, vox::out<T>(x), &incx, vox::out<T>(y), &incy);                                 \
    }
VOX_PRECISIONS(COPY)
