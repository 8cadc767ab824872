// dot.cpp - ?dot: the sum of x_i y_i.
//
// Unit increments: independent accumulators, so that as many additions are in flight as the units
// can take, then single vectors, then the rest as a partial vector. Nothing depends on the
// operands' alignment, so neither does the result. Forward error: |error| <= gamma(n) sum |x_i y_i|
// for any order of the sum (Higham, Accuracy and Stability of Numerical Algorithms, section 3.1).
#include "serv/simd.hpp"

namespace {

using namespace simd;

template <class T>
T dot_contiguous(index_t n, const T *x, const T *y) {
    constexpr int w = lanes<T>, accumulators = 8;
    vec<T> sum[accumulators] = {};
    if (n >= accumulators * w) {
        for (; n >= accumulators * w; n -= accumulators * w) {
            for (int a = 0; a < accumulators; ++a)
                sum[a] = fma(load(x + a * w), load(y + a * w), sum[a]);
            x += accumulators * w;
            y += accumulators * w;
        }
        for (int step = accumulators / 2; step > 0; step /= 2)
            for (int a = 0; a < step; ++a)
                sum[a] += sum[a + step];
    }
    for (; n >= w; n -= w, x += w, y += w)
        sum[0] = fma(load(x), load(y), sum[0]);
    if (n > 0)
        sum[0] = fma(load_partial(x, n), load_partial(y, n), sum[0]);
    return reduce_add(sum[0]);
}

// Any increments; a vector with a negative one is walked from its end.
template <class T>
__attribute__((noinline)) T dot_strided(index_t n, const T *x, index_t incx, const T *y,
                                        index_t incy) {
    if (incx < 0)
        x -= (n - 1) * incx;
    if (incy < 0)
        y -= (n - 1) * incy;
    T sum[4] = {};
    for (; n >= 4; n -= 4) {
        for (int a = 0; a < 4; ++a)
            sum[a] += x[a * incx] * y[a * incy];
        x += 4 * incx;
        y += 4 * incy;
    }
    for (; n > 0; --n, x += incx, y += incy)
        sum[0] += *x * *y;
    return (sum[0] + sum[1]) + (sum[2] + sum[3]);
}

} // namespace

#define DOT(p, T)                                                                                  \
    extern "C" T VOX_KERNEL(blas, p##dot)(const index_t *n, const T *x, const index_t *incx,       \
                                          const T *y, const index_t *incy) {                       \
        return *incx == 1 && *incy == 1 ? dot_contiguous(*n, x, y)                                 \
                                        : dot_strided(*n, x, *incx, y, *incy);                     \
    }
DOT(d, double)
