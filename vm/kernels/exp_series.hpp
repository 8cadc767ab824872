// exp_series.hpp - e^r for the small r of exponents.hpp.
//
// The polynomials make the largest error least, by Remez' algorithm with 60 digits; of their coefficients that are near
// 1, those that are written 1 were held there.
#pragma once

#include "vm/kernels/exponents.hpp"

namespace {
namespace vm {

// (e^r - 1 - r) / r^2, so that e^r - 1 has a relative error below 2^-60.
inline vec<double> growth_series(vec<double> r, vec<double> square) {
    if constexpr (steps<double> == 16)
        return polynomial(r, square,
                          {0x1.0000000000003p-1, 0x1.5555555555559p-3, 0x1.55555554acf93p-5,
                           0x1.111111108f2bfp-7, 0x1.6c181f94d4383p-10, 0x1.a01b894407d37p-13});
    else
        return polynomial(r, square,
                          {0x1.fffffffffffe6p-2, 0x1.5555555555546p-3, 0x1.5555570b14ce5p-5,
                           0x1.1111125d19090p-7});
}
// The same below 2^-56 of e^r.
inline vec<double> exp_series(vec<double> r, vec<double> square) {
    if constexpr (steps<double> == 16)
        return polynomial(r, square,
                          {0x1.0000000000005p-1, 0x1.555555548f217p-3, 0x1.555555545e2ebp-5,
                           0x1.11123afbfcf9ap-7, 0x1.6c185e5a3a16ep-10});
    else // 2^-57.4
        return polynomial(r, square,
                          {0x1.fffffffffffd4p-2, 0x1.5555571de03b5p-3, 0x1.55555769f93edp-5});
}

// (e^r - 1) / r within 2^-31.5, and 1 where r is 0.
inline vec<double> rough_growth_series(vec<double> r) {
    if constexpr (steps<double> == 16)
        return polynomial(r, r * r,
                          {1.0, 0x1.fffffffdd2c5bp-2, 0x1.5557082b3e47bp-3, 0x1.55574434e532fp-5});
    else
        return polynomial(r, {1.0, 0x1.000001ec79dc8p-1, 0x1.555557e721aabp-3});
}
// The same, r times of it within 2^-29.
inline vec<double> rough_exp_series(vec<double> r) {
    if constexpr (steps<double> == 16)
        return polynomial(r, {0x1.fffffff97068fp-1, 0x1.00022086d8e02p-1, 0x1.55583d487478ep-3});
    else
        return polynomial(r, {1.0, 0.5});
}

} // namespace vm
} // namespace
