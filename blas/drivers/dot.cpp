// dot.cpp - ?dot: quick return and threads.
//
// The vector is cut into parts of at least min_part elements; each part's sum comes from the
// kernel, and the partial sums are added in a fixed order. How many parts there are depends on n
// and the thread count alone, so the result does too, even when the runtime delivers a smaller
// team.
#include "blas/blas.hpp"
#include "serv/parallel.hpp"
#include "serv/scratch.hpp"
#include "vox/service.h"

namespace {

using namespace vox;

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

template <class T>
using dot_kernel = T VOX_DOT_PARAMETERS(T);

template <class T>
T dot_in_parts(dot_kernel<T> *kernel, index_t parts, T *partial, index_t n, const T *x,
               index_t incx, const T *y, index_t incy) {
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

template <class T>
__attribute__((noinline)) T dot_threaded(dot_kernel<T> *kernel, index_t n, const T *x, index_t incx,
                                         const T *y, index_t incy) {
    const index_t threads = vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS);
    const index_t most = (n + min_part - 1) / min_part;
    const index_t parts = most < threads ? most : threads;
    if (parts > 1 && parts <= max_parts_on_stack) {
        T partial[max_parts_on_stack];
        return dot_in_parts(kernel, parts, partial, n, x, incx, y, incy);
    }
    if (parts > 1) {
        const scratch<T> partial(parts, 128);
        if (partial)
            return dot_in_parts(kernel, parts, partial.data(), n, x, incx, y, incy);
    }
    return kernel(&n, x, &incx, y, &incy);
}

template <class T>
inline T dot(dot_kernel<T> *kernel, const index_t *n, const T *x, const index_t *incx, const T *y,
             const index_t *incy) {
    if (*n < 1)
        return T(0);
    if (VOX_UNLIKELY(*n >= min_threaded) && *incx != 0 && *incy != 0)
        return dot_threaded(kernel, *n, x, *incx, y, *incy);
    return kernel(n, x, incx, y, incy);
}

} // namespace

#define DOT(p, T)                                                                                  \
    extern "C" T vox_blas_##p##dot VOX_DOT_PARAMETERS(T) {                                         \
        return dot<T>(vox_blas_x##p##dot, n, x, incx, y, incy);                                    \
    }
DOT(d, double)
