// axpy.cpp - ?axpy: y + alpha x, and ?axpby: alpha x + beta y.
//
// A zero factor of axpby reads nothing: not x when alpha is zero, not y when beta is.
#include "blas/blas.hpp"
#include "blas/kernels/elementwise.hpp"

namespace {

template <class T>
VOX_INLINE void axpy(index_t n, T alpha, const T *x, index_t incx, T *y, index_t incy) {
    elementwise<T>(n, in(x, incx), update(y, incy),
                   [=](auto &a, auto &b) { b = plus_times(b, alpha, a); });
}

template <class T>
void axpby(index_t n, T alpha, const T *x, index_t incx, T beta, T *y, index_t incy) {
    if (vox::is_zero(alpha) && vox::is_zero(beta))
        return elementwise<T>(n, absent(), out(y, incy), [](auto &, auto &) {});
    if (vox::is_zero(alpha))
        return elementwise<T>(n, absent(), update(y, incy),
                              [=](auto &, auto &b) { b = times(beta, b); });
    if (vox::is_zero(beta))
        return elementwise<T>(n, in(x, incx), out(y, incy),
                              [=](auto &a, auto &b) { b = times(alpha, a); });
    elementwise<T>(n, in(x, incx), update(y, incy),
                   [=](auto &a, auto &b) { b = plus_times(times(beta, b), alpha, a); });
}

} // namespace

#define AXPY(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##axpy) VOX_AXPY_PARAMETERS(T, index_t) {                    \
        axpy(*n, *alpha, x, *incx, y, *incy);                                                      \
    }                                                                                              \
    extern "C" void VOX_KERNEL(blas, p##axpby) VOX_AXPBY_PARAMETERS(T, index_t) {                  \
        axpby(*n, *alpha, x, *incx, *beta, y, *incy);                                              \
    }
VOX_PRECISIONS(AXPY)
