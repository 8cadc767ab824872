// dot.cpp - ?dot: the sum of x_i y_i.
//
// Unit increments: independent accumulators, so that as many additions are in flight as the units
// can take, then single vectors, then the rest as a partial vector. Nothing depends on the
// operands' alignment, so neither does the result. Forward error: |error| <= gamma(n) sum |x_i y_i|
// for any order of the sum (Higham, Accuracy and Stability of Numerical Algorithms, section 3.1).
#include "serv/simd.hpp"

namespace {

using namespace simd;

// Whole blocks of so many vectors, each with its accumulator; what is left stays in n, x, y.
template <int Bytes, int Vectors, class T>
__attribute__((always_inline)) inline auto dot_blocks(index_t &n, const T *&x, const T *&y) {
    constexpr int w = Bytes / int(sizeof(T));
    typename vec_of<T, Bytes>::type sum[Vectors] = {};
    for (; n >= Vectors * w; n -= Vectors * w) {
        unroll<Vectors>(
            [&](auto i) { sum[i] = fma(load<Bytes>(x + i * w), load<Bytes>(y + i * w), sum[i]); });
        x += Vectors * w;
        y += Vectors * w;
    }
    unroll<Vectors / 2>([&](auto i) { sum[i] += sum[i + Vectors / 2]; });
    unroll<Vectors / 4>([&](auto i) { sum[i] += sum[i + Vectors / 4]; });
    return Vectors > 4 ? sum[0] + sum[1] : sum[0];
}

// What no block took, at most seven vectors and a part, added to a first sum.
template <class T>
__attribute__((always_inline)) inline T dot_rest(index_t n, const T *x, const T *y, vec<T> sum) {
    constexpr int w = lanes<T>;
    for (; n >= w; n -= w, x += w, y += w)
        sum = fma(load(x), load(y), sum);
    if (n > 0)
        sum = fma(load_partial(x, n), load_partial(y, n), sum);
    return reduce_add(sum);
}

// Operands that do not fit the second-level cache: loads of half a cache line stream faster from
// beyond it than whole lines do (by up to a quarter on processors with 256-bit data paths), and
// there no processor gains by the wider ones.
constexpr index_t far_bytes = 512 * 1024;

template <class T>
__attribute__((noinline)) T dot_long(index_t n, const T *x, const T *y) {
    if constexpr (vector_bytes == 64)
        if (2 * n * index_t(sizeof(T)) >= far_bytes) {
            const T sum = reduce_add(dot_blocks<32, 8>(n, x, y));
            return sum + dot_rest(n, x, y, vec<T>{});
        }
    const vec<T> sum = dot_blocks<vector_bytes, 8>(n, x, y);
    return dot_rest(n, x, y, sum);
}

template <class T>
inline T dot_contiguous(index_t n, const T *x, const T *y) {
    if (n <= 2) // not worth a vector's reduction
        return n == 1 ? x[0] * y[0] : x[0] * y[0] + x[1] * y[1];
    if (n < 4 * lanes<T>)
        return dot_rest(n, x, y, vec<T>{});
    if (VOX_UNLIKELY(n >= 128 * lanes<T>))
        return dot_long(n, x, y);
    const vec<T> sum = dot_blocks<vector_bytes, 4>(n, x, y);
    return dot_rest(n, x, y, sum);
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
        if (VOX_LIKELY(*incx == 1 && *incy == 1))                                                  \
            return dot_contiguous(*n, x, y);                                                       \
        return dot_strided(*n, x, *incx, y, *incy);                                                \
    }
DOT(d, double)
