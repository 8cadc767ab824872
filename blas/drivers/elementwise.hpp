// elementwise.hpp - scal, copy, swap, axpy, axpby, rot, rotm: quick returns and threads.
#pragma once

#include "blas/drivers/parts.hpp"
#include "serv/scalar.hpp"

namespace vox::level1 {

// From where two threads are never slower than one: a second one costs more than a microsecond, and
// what it touched before lies in its own cache.
template <class T>
constexpr parts::rule cut_one = parts::from_bytes<T>(512 * 1024);
template <class T>
constexpr parts::rule cut_two = parts::from_bytes<T>(320 * 1024);

template <class Kernel, class S, class T>
inline void scal(Kernel kernel, index_t n, const S *alpha, T *x, index_t incx) {
    if (n < 1 || incx < 1 || *alpha == one<S>)
        return;
    parts::update(n, cut_one<T>, {incx}, [=](const auto &p) {
        parts::call(kernel, p.length, alpha, p.of(x, incx), incx);
    });
}

// copy, swap.
template <class Kernel, class X, class Y>
inline void move(Kernel kernel, index_t n, X *x, index_t incx, Y *y, index_t incy) {
    if (n < 1)
        return;
    parts::update(n, cut_two<Y>, {incx, incy}, [=](const auto &p) {
        parts::call(kernel, p.length, p.of(x, incx), incx, p.of(y, incy), incy);
    });
}

template <class Kernel, class T>
inline void axpy(Kernel kernel, index_t n, const T *alpha, const T *x, index_t incx, T *y,
                 index_t incy) {
    if (n < 1 || is_zero(*alpha))
        return;
    parts::update(n, cut_two<T>, {incx, incy}, [=](const auto &p) {
        parts::call(kernel, p.length, alpha, p.of(x, incx), incx, p.of(y, incy), incy);
    });
}

template <class Kernel, class T>
inline void axpby(Kernel kernel, index_t n, const T *alpha, const T *x, index_t incx, const T *beta,
                  T *y, index_t incy) {
    if (n < 1)
        return;
    parts::update(n, cut_two<T>, {incx, incy}, [=](const auto &p) {
        parts::call(kernel, p.length, alpha, p.of(x, incx), incx, beta, p.of(y, incy), incy);
    });
}

template <class Kernel, class T, class S>
inline void rot(Kernel kernel, index_t n, T *x, index_t incx, T *y, index_t incy,
                const real_of<T> *c, const S *s) {
    if (n < 1)
        return;
    parts::update(n, cut_two<T>, {incx, incy}, [=](const auto &p) {
        parts::call(kernel, p.length, p.of(x, incx), incx, p.of(y, incy), incy, c, s);
    });
}

// Flag -2 stands for the identity.
template <class Kernel, class T>
inline void rotm(Kernel kernel, index_t n, T *x, index_t incx, T *y, index_t incy, const T *param) {
    if (n < 1 || *param == -2)
        return;
    parts::update(n, cut_two<T>, {incx, incy}, [=](const auto &p) {
        parts::call(kernel, p.length, p.of(x, incx), incx, p.of(y, incy), incy, param);
    });
}

} // namespace vox::level1
