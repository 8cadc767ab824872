// copy.cpp - ?copy: y := x, and ?swap. Bits are kept, those of NaN too.
#include "blas/blas.hpp"
#include "blas/kernels/elementwise.hpp"

namespace {

template <class T>
VOX_INLINE void copy(index_t n, const T *x, index_t incx, T *y, index_t incy) {
    elementwise<T>(n, in(x, incx), out(y, incy), [](auto &a, auto &b) { b = a; });
}

template <class T>
VOX_INLINE void swap(index_t n, T *x, index_t incx, T *y, index_t incy) {
    elementwise<T>(n, update(x, incx), update(y, incy), [](auto &a, auto &b) {
        const auto t = a;
        a = b;
        b = t;
    });
}

} // namespace

#define COPY(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##copy) VOX_COPY_PARAMETERS(T, index_t) {                    \
        copy(*n, x, *incx, y, *incy);                                                              \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##swap) VOX_SWAP_PARAMETERS(T, index_t) {                    \
        swap(*n, x, *incx, y, *incy);                                                              \
    }
VOX_PRECISIONS(COPY)
