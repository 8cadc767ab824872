// magnitudes.hpp - largest, sum and sums by place of the magnitudes of contiguous numbers.
//
// Complex magnitudes are roots of sums of squares, in pieces; a piece that holds a number whose square
// leaves the range is done again by hypot. NaN in a number is NaN in what becomes of it.
#pragma once

#include <math.h>

#include "blas/drivers/rotg.hpp"
#include "lapack/drivers/columns.hpp"
#include "lapack/packs.hpp"

namespace vox::lapack {

inline float hypotenuse(float x, float y) { return hypotf(x, y); }
inline double hypotenuse(double x, double y) { return hypot(x, y); }

template <class T>
real_of<T> magnitude(T x) {
    if constexpr (is_complex<T>)
        return hypotenuse(x.real, x.imag);
    else
        return level1::absolute(x);
}

// out[i] := |x[i]|.
template <class T>
void magnitudes_of(index_t n, const T *x, real_of<T> *out) {
    using R = real_of<T>;
    using range = level1::safe<R>;
    const auto low = repeated(range::root_min * range::root_min);
    const auto high = repeated(range::root_max * range::root_max);
    __m128 unsafe = _mm_setzero_ps();
    index_t i = 0;
    for (; i <= n - lanes<R>; i += lanes<R>) {
        const R *const parts = &x[i].real;
        const auto a = load(parts), b = load(parts + lanes<R>);
        const auto re = even(a, b), im = odd(a, b), square = re * re + im * im;
        // zeros are exact, and usual
        const auto none = absolute(re) + absolute(im) == repeated(R(0));
        unsafe = either(unsafe, _mm_andnot_ps((__m128)none, outside(square, low, high)));
        store(out + i, root(square));
    }
    for (index_t j = any(unsafe) ? 0 : i; j < n; ++j)
        out[j] = magnitude(x[j]);
}

// body(begin, length, reals) for each piece: reals[i] is of the magnitude of x[begin + i].
template <class T, class Body>
void for_pieces(index_t n, const T *x, const Body &body) {
    if constexpr (is_complex<T>) {
        constexpr index_t most = 256;
        real_of<T> piece[most];
        for (index_t i = 0; i < n; i += most) {
            const index_t length = least(most, n - i);
            magnitudes_of(length, x + i, piece);
            body(i, length, piece);
        }
    } else {
        body(index_t(0), n, x);
    }
}

// The larger one, or the NaN.
template <class R>
R larger(R a, R b) {
    return b > a || b != b ? b : a;
}

template <class T>
real_of<T> largest_magnitude(index_t n, const T *x) {
    using R = real_of<T>;
    R result = 0;
    for_pieces(n, x, [&](index_t, index_t length, const R *p) {
        constexpr index_t k = lanes<R>;
        pack<R> most[4] = {};
        __m128 nan = _mm_setzero_ps();
        index_t i = 0;
        for (; i <= length - 4 * k; i += 4 * k) {
            for (int j = 0; j < 4; ++j)
                most[j] = largest(absolute(load(p + i + j * k)), most[j]);
            nan = either(nan, either(unordered(load(p + i), load(p + i + k)),
                                     unordered(load(p + i + 2 * k), load(p + i + 3 * k))));
        }
        const auto all = largest(largest(most[0], most[1]), largest(most[2], most[3]));
        for (int j = 0; j < k; ++j)
            result = larger(result, all[j]);
        for (; i < length; ++i)
            result = larger(result, level1::absolute(p[i]));
        if (any(nan))
            result = __builtin_nan("");
    });
    return result;
}

template <class T>
real_of<T> sum_of_magnitudes(index_t n, const T *x) {
    using R = real_of<T>;
    R result = 0;
    for_pieces(n, x, [&](index_t, index_t length, const R *p) {
        constexpr index_t k = lanes<R>;
        pack<R> sum[4] = {};
        index_t i = 0;
        for (; i <= length - 4 * k; i += 4 * k)
            for (int j = 0; j < 4; ++j)
                sum[j] += absolute(load(p + i + j * k));
        const auto all = (sum[0] + sum[1]) + (sum[2] + sum[3]);
        for (int j = 0; j < k; ++j)
            result += all[j];
        for (; i < length; ++i)
            result += level1::absolute(p[i]);
    });
    return result;
}

// sums[i] += |x[i]|; the sum of all is the result.
template <class T>
real_of<T> add_magnitudes(index_t n, const T *x, real_of<T> *sums) {
    using R = real_of<T>;
    R result = 0;
    for_pieces(n, x, [&](index_t begin, index_t length, const R *p) {
        constexpr index_t k = lanes<R>;
        R *const to = sums + begin;
        pack<R> sum[2] = {};
        index_t i = 0;
        for (; i <= length - 2 * k; i += 2 * k)
            for (int j = 0; j < 2; ++j) {
                const auto a = absolute(load(p + i + j * k));
                sum[j] += a;
                store(to + i + j * k, load(to + i + j * k) + a);
            }
        const auto all = sum[0] + sum[1];
        for (int j = 0; j < k; ++j)
            result += all[j];
        for (; i < length; ++i) {
            result += level1::absolute(p[i]);
            to[i] += level1::absolute(p[i]);
        }
    });
    return result;
}

} // namespace vox::lapack
