// ranges.hpp - whether results are within the range of normal numbers.
//
// Products and quotients that are not may have overflowed or lost bits. Where the range ends, rounding and the error of
// a low accuracy may have carried a result over the border, so a factor of 2 at both ends counts as beyond. The tests
// of a group of results are for loops that do little else: they combine the results before they look.
#pragma once

#include "vm/kernels/loops.hpp"

namespace {
namespace vm {

template <class T>
constexpr T smallest_normal = sizeof(T) == 4 ? T(__FLT_MIN__) : T(__DBL_MIN__);

template <class V>
inline auto not_finite(V v) {
    return not_less(simd::abs(v), V{} + element<V>(__builtin_inf()));
}

// Of magnitudes. A NaN is too large.
template <class V>
inline auto too_small(V magnitude) {
    return less(magnitude,
                V{} + (sizeof(element<V>) == 4 ? element<V>(0x1p-125) : element<V>(0x1p-1021)));
}
template <class V>
inline auto too_large(V magnitude) {
    return not_less(magnitude,
                    V{} + (sizeof(element<V>) == 4 ? element<V>(0x1p127) : element<V>(0x1p1023)));
}

template <class V>
inline auto not_surely_normal(V v) {
    const V magnitude = simd::abs(v);
    return either(too_small(magnitude), too_large(magnitude));
}

// The sum is finite unless one of them is not, or it overflows, which is near enough.
template <class V, int N>
VOX_INLINED inline auto not_finite_among(const V (&v)[N]) {
    V sum = v[0];
    simd::unroll<N - 1>([&](auto k) VOX_INLINED { sum = sum + v[k + 1]; });
    return not_finite(sum);
}

template <bool with_signs = true, class V, int N>
VOX_INLINED inline auto not_surely_normal_among(const V (&v)[N]) {
    V least = with_signs ? simd::abs(v[0]) : v[0], sum = least;
    simd::unroll<N - 1>([&](auto k) VOX_INLINED {
        const V magnitude = with_signs ? simd::abs(v[k + 1]) : v[k + 1];
        least = min(least, magnitude);
        sum = sum + magnitude;
    });
    return either(too_small(least), too_large(sum));
}

} // namespace vm
} // namespace
