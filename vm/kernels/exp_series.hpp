// exp_series.hpp - e^r for small r.
//
// The polynomials make the largest error least, by Remez' algorithm with 60 digits; of their coefficients that are near
// 1, those that are written 1 were held there.
#pragma once

#include "vm/kernels/exponents.hpp"
#include "vox/tqm.h"

namespace {
namespace vm {

// (e^r - 1 - r) / r^2.
template <int accuracy>
inline vec<double> exp_series(vec<double> r, vec<double> square) {
    if constexpr (steps<double> == 16) // r^2 of it within 2^-56.2
        return polynomial(r, square,
                              {0x1.0000000000005p-1, 0x1.555555548f217p-3, 0x1.555555545e2ebp-5,
                               0x1.11123afbfcf9ap-7, 0x1.6c185e5a3a16ep-10});
    else // within 2^-57.4
        return polynomial(r, square,
                              {0x1.fffffffffffd4p-2, 0x1.5555571de03b5p-3, 0x1.55555769f93edp-5});
}
template <int accuracy>
inline vec<float> exp_series(vec<float> r, vec<float> square) {
    if constexpr (steps<float> == 16) // within 2^-29.2
        return polynomial(r, square, {0x1.00022p-1, 0x1.555764p-3});
    else if constexpr (accuracy == TQM_HA) // within 2^-28.2
        return polynomial(
            r, square, {0x1p-1, 0x1.55548ep-3, 0x1.55545cp-5, 0x1.123bdep-7, 0x1.6db4f4p-10});
    else // within 2^-23.3
        return polynomial(r, square,
                              {0x1.fffdc2p-2, 0x1.55543cp-3, 0x1.573c06p-5, 0x1.126c5p-7});
}

// (e^r - 1) / r, within 2^-29.
inline vec<double> rough_series(vec<double> r) {
    if constexpr (steps<double> == 16)
        return polynomial(r, {0x1.fffffff97068fp-1, 0x1.00022086d8e02p-1, 0x1.55583d487478ep-3});
    else
        return polynomial(r, {1.0, 0.5});
}

} // namespace vm
} // namespace
