// dot.hpp - ?dot: quick return and threads.
//
// The vector is cut into parts of at least min_part elements; each part's sum comes from the
// kernel, and the partial sums are added in a fixed order. How many parts there are depends on n
// and the thread count alone, so the result does too, even when the runtime delivers a smaller
// team.
#pragma once

#include "serv/base.hpp"
#include "serv/parallel.hpp"
#include "serv/scratch.hpp"
#include "vox/service.h"

namespace vox::dot {

constexpr index_t min_threaded = 4096; // elements
constexpr index_t min_part = 2048;
constexpr index_t max_parts_on_stack = 512;

// Partial 0 plus the sum of the others, the latter in four two-wide accumulators over groups of
// eight.
template <class T>
T sum_of_partials(const T *partial, index_t parts) {
    T sum[8] = {};
    for (index_t i = 1; i < parts; ++i)
        sum[(i - 1) % 8] += partial[i];
    T pair[2];
    for (int i = 0; i < 2; ++i)
        pair[i] = (sum[i] + sum[2 + i]) + (sum[4 + i] + sum[6 + i]);
    return partial[0] + (pair[0] + pair[1]);
}

template <class T, class Kernel>
T in_parts(Kernel kernel, index_t parts, T *partial, index_t n, const T *x, index_t incx,
           const T *y, index_t incy) {
    parallel(int(parts), [&](int thread, int threads) {
        for (index_t part = thread; part < parts; part += threads) {
            index_t length = 0;
            const index_t start = vox_serv_divbythreads(&part, &parts, &n, &length);
            // With a negative increment a vector begins at its end, and so does its part.
            const T *const px = x + (incx < 0 ? start + length - n : start) * incx;
            const T *const py = y + (incy < 0 ? start + length - n : start) * incy;
            partial[part] = kernel(&length, px, &incx, py, &incy);
        }
    });
    return sum_of_partials(partial, parts);
}

template <class T, class Kernel>
__attribute__((noinline)) T threaded(Kernel kernel, index_t n, const T *x, index_t incx, const T *y,
                                     index_t incy) {
    const bool one_element = incx == 0 || incy == 0;
    const index_t threads = one_element ? 1 : vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS);
    const index_t most = (n + min_part - 1) / min_part;
    const index_t parts = most < threads ? most : threads;
    if (parts > 1 && parts <= max_parts_on_stack) {
        T partial[max_parts_on_stack];
        return in_parts(kernel, parts, partial, n, x, incx, y, incy);
    }
    if (parts > 1) {
        const scratch<T> partial(parts, 128);
        if (!partial.empty())
            return in_parts(kernel, parts, partial.data(), n, x, incx, y, incy);
    }
    return kernel(&n, x, &incx, y, &incy);
}

template <class T, class Kernel>
__attribute__((always_inline)) inline T driver(Kernel kernel, index_t n, const T *x, index_t incx,
                                               const T *y, index_t incy) {
    if (n < 1)
        return T(0);
    if (VOX_UNLIKELY(n >= min_threaded))
        return threaded(kernel, n, x, incx, y, incy);
    return kernel(&n, x, &incx, y, &incy);
}

} // namespace vox::dot
