// ranges.hpp - whether results are within the range of normal numbers.
//
// Products and quotients that are not may have overflowed or lost bits. They are marked by the result alone, which
// marks exact zeros too, and those are taken back where something is marked: a struct's
//
//   mask<T> confirm(x, y, rare) const;
//
// gives the lanes of `rare` that are (loops.hpp).
#pragma once

#include "vm/kernels/loops.hpp"

namespace {
namespace vm {

template <class T>
constexpr T infinity = T(__builtin_inf());
template <class T>
constexpr T smallest_normal = sizeof(T) == 4 ? T(__FLT_MIN__) : T(__DBL_MIN__);

template <class V>
inline auto not_finite(V v) {
    using T = std::remove_cvref_t<decltype(v[0])>;
    return not_less(simd::abs(v), V{} + infinity<T>);
}

// Not finite, or of a magnitude that rounding may have carried up to the smallest normal number.
template <class V>
inline auto not_surely_normal(V v) {
    using T = std::remove_cvref_t<decltype(v[0])>;
    const V magnitude = simd::abs(v);
    return mask<T>(less_equal(magnitude, V{} + smallest_normal<T>) |
                   not_less(magnitude, V{} + infinity<T>));
}

} // namespace vm
} // namespace
