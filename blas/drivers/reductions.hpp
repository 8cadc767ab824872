// reductions.hpp - dot, asum, nrm2, iamax: quick returns, threads, and how partial results join.
#pragma once

#include "blas/drivers/parts.hpp"
#include "serv/scalar.hpp"

namespace vox::level1 {

// Where two threads begin to gain on one; the rule of ddot is part of its description.
template <class T>
constexpr parts::rule cut_one = parts::from_bytes<T>(192 * 1024);
template <class T>
constexpr parts::rule cut_dot = std::is_same_v<T, double> ? parts::rule{4096, 2048}
                                                          : parts::from_bytes<T>(128 * 1024);

template <class Kernel, class T>
inline auto dot(Kernel kernel, index_t n, const T *x, index_t incx, const T *y, index_t incy) {
    using R = decltype(kernel(&n, x, &incx, y, &incy));
    if (n < 1)
        return R{};
    return parts::reduce<R>(
        n, cut_dot<T>, {incx, incy},
        [=](const auto &p) {
            return parts::call(kernel, p.length, p.of(x, incx), incx, p.of(y, incy), incy);
        },
        parts::sum<R>);
}

// The sum of magnitudes; 0 without a positive increment.
template <class Kernel, class T>
inline real_of<T> asum(Kernel kernel, index_t n, const T *x, index_t incx) {
    using R = real_of<T>;
    if (n < 1 || incx < 1)
        return 0;
    return parts::reduce<R>(
        n, cut_one<T>, {incx},
        [=](const auto &p) { return parts::call(kernel, p.length, p.of(x, incx), incx); },
        parts::sum<R>);
}

// The norm of a vector is the norm of the norms of its parts: `of_parts` is the real kernel.
template <class Kernel, class RealKernel, class T>
inline real_of<T> nrm2(Kernel kernel, RealKernel of_parts, index_t n, const T *x, index_t incx) {
    using R = real_of<T>;
    if (n < 1)
        return 0;
    return parts::reduce<R>(
        n, cut_one<T>, {incx},
        [=](const auto &p) { return parts::call(kernel, p.length, p.of(x, incx), incx); },
        [=](const R *norm, index_t parts) {
            const index_t one = 1;
            return of_parts(&parts, norm, &one);
        });
}

template <class T>
inline real_of<T> magnitude(T a) {
    const auto abs = [](real_of<T> part) { return part < 0 ? -part : part; };
    return abs(real(a)) + abs(imag(a));
}

// The place, from 1, of the first largest or smallest magnitude; 0 without a positive increment. A NaN
// counts in the very first place alone, so other parts begin behind theirs.
template <class Kernel, class Better, class T>
inline index_t iamax(Kernel kernel, Better better, index_t n, const T *x, index_t incx) {
    if (n < 1 || incx < 1)
        return 0;
    const auto key = [=](index_t place) { return magnitude(x[(place - 1) * incx]); };
    return parts::reduce<index_t>(
        n, cut_one<T>, {incx},
        [=](const auto &p) {
            index_t start = p.start;
            const index_t end = start + p.length;
            if (start > 0)
                while (start < end && key(start + 1) != key(start + 1))
                    ++start;
            const index_t length = end - start;
            return length > 0 ? start + parts::call(kernel, length, x + start * incx, incx) : 0;
        },
        [=](const index_t *place, index_t parts) {
            index_t best = place[0];
            for (index_t i = 1; i < parts; ++i)
                if (place[i] > 0 && better(key(place[i]), key(best)))
                    best = place[i];
            return best;
        });
}

} // namespace vox::level1
