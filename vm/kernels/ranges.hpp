// ranges.hpp - whether results are within the range of normal numbers.
//
// Products and quotients that are not may have overflowed or lost bits. The tests of a group of results are for
// loops that do little else: they combine the results before they look.
#pragma once

#include "vm/kernels/loops.hpp"

namespace {
namespace vm {

template <class V>
using element_of = std::remove_cvref_t<decltype(V{}[0])>;

template <class T>
constexpr T infinity = T(__builtin_inf());
template <class T>
constexpr T smallest_normal = sizeof(T) == 4 ? T(__FLT_MIN__) : T(__DBL_MIN__);

template <class V>
inline auto not_finite(V v) {
    return not_less(simd::abs(v), V{} + infinity<element_of<V>>);
}

// Not finite, or of a magnitude that rounding may have carried up to the smallest normal number.
template <class V>
inline auto not_surely_normal(V v) {
    using T = element_of<V>;
    const V magnitude = simd::abs(v);
    return either(less_equal(magnitude, V{} + smallest_normal<T>),
                  not_less(magnitude, V{} + infinity<T>));
}

// Of groups. The sum is finite unless one of them is not, or it overflows, which is near enough.

template <class V, int N>
VOX_INLINED inline V sum_of(const V (&v)[N]) {
    V sum = v[0];
    simd::unroll<N - 1>([&](auto k) VOX_INLINED { sum = sum + v[k + 1]; });
    return sum;
}

template <class V, int N>
VOX_INLINED inline V least_magnitude_of(const V (&v)[N]) {
    V least = simd::abs(v[0]);
    simd::unroll<N - 1>([&](auto k) VOX_INLINED { least = min(least, simd::abs(v[k + 1])); });
    return least;
}

template <class V, int N>
VOX_INLINED inline auto not_finite_among(const V (&v)[N]) {
    return not_finite(sum_of(v));
}

template <class V, int N>
VOX_INLINED inline auto not_surely_normal_among(const V (&v)[N]) {
    return either(less_equal(least_magnitude_of(v), V{} + smallest_normal<element_of<V>>),
                  not_finite_among(v));
}

} // namespace vm
} // namespace
