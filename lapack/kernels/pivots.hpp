// pivots.hpp - how the kernels of panels choose a pivot and divide by it.
//
// A pivot is the first element of largest |re| + |im|, its key; a NaN is never one, unless it stands on the
// diagonal already, as in the reference BLAS's search.
#pragma once

#include <limits>

#include "blas/kernels/elements.hpp"

namespace {

// An integer of the size of R.
template <class R>
using place = std::conditional_t<sizeof(R) == 4, int32_t, int64_t>;

// In both lanes of a complex number.
template <class T>
VOX_INLINE vec<real_of<T>> pivot_key(vec<real_of<T>> x) {
    if constexpr (is_complex<T>)
        return abs(x) + swap_pairs(abs(x));
    else
        return abs(x);
}
template <class T>
VOX_INLINE bool is_nan(T x) {
    const auto key = abs(vox::real(x)) + abs(vox::imag(x));
    return key != key;
}

template <class V>
VOX_INLINE auto largest_lane(V v) {
    if constexpr (sizeof(V) == 2 * sizeof(v[0])) {
        return v[0] > v[1] ? v[0] : v[1];
    } else {
        const auto low = low_half(v), high = high_half(v);
        return largest_lane(low > high ? low : high);
    }
}

// What numbers are multiplied by to be divided by d: beyond the range where 1 / d is exact enough
// divide_all() does the division, and 1 remains to multiply by. Nothing is divided by zero.
template <class T, class Divide>
VOX_INLINE T multiplier(T d, const Divide &divide_all) {
    using R = real_of<T>;
    constexpr R smallest = std::numeric_limits<R>::min(), most = 1 / smallest;
    const R re = abs(vox::real(d)), im = abs(vox::imag(d)), size = re > im ? re : im;
    if (VOX_LIKELY(size >= smallest && size <= most))
        return vox::divide(vox::one<T>, d);
    if (!vox::is_zero(d))
        divide_all();
    return vox::one<T>;
}

} // namespace
