// inverse_roots.hpp - from an estimate of 1/sqrt(x) to a root.
//
// With y the estimate and e = 1 - x y^2, 1/sqrt(x) = y (1 - e)^(-1/2) = y (1 + e/2 + 3/8 e^2 + 5/16 e^3 + ...), and
// sqrt(x) is the same of x y. The terms that are left out, relative to the result:
//
//   |e| <= 2^-13 (AVX-512)       EP, double: 3/8 e^2 < 2^-27; LA, single: the same
//                                LA, double: 35/128 e^4 < 2^-53
//   |e| <= 3 2^-12 (single)      LA: 5/16 e^3 < 2^-32
//
// In single precision the estimate serves as it is for EP. Rounding costs LA about 1.3 ulp.
#pragma once

#include "vm/kernels/estimates.hpp"

namespace {
namespace vm {

template <class T, int accuracy>
constexpr bool estimated_root = accuracy != TQM_HA &&has_estimates<T> &&
                                (good_estimates || accuracy == TQM_EP);

// y: the estimate; s: y itself or x y, the estimate of what is wanted.
template <class T, int accuracy>
inline vec<T> corrected(vec<T> x, vec<T> y, vec<T> s) {
    using V = vec<T>;
    if constexpr (sizeof(T) == 4 && accuracy == TQM_EP)
        return s;
    const V e = fnma(x * y, y, V{} + T(1));
    if constexpr (good_estimates && (sizeof(T) == 4 || accuracy == TQM_EP)) {
        return fma(s * e, V{} + T(0.5), s);
    } else {
        V series = V{} + T(0.375);
        if constexpr (sizeof(T) == 8)
            series = fma(V{} + T(0.3125), e, series);
        series = fma(series, e, V{} + T(0.5));
        return fma(s * e, series, s);
    }
}

} // namespace vm
} // namespace
