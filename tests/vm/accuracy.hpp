// accuracy.hpp - how far a result is from the exact value, which is given in extended precision.
//
// An ulp is that of the exact value: 2^(e - p + 1) for 2^e <= |y| < 2^(e + 1) and p bits, but no less than the
// smallest subnormal number (Muller et al., Handbook of Floating-Point Arithmetic, section 2.3). Beyond the range
// the numbers go on, so infinity as a result counts as the power of two that comes after the largest number.
#pragma once

#include <cmath>
#include <limits>

namespace test {

template <class T>
using limits = std::numeric_limits<T>;

// The power of two after the largest number.
template <class T>
long double beyond() {
    return std::ldexp(1.0L, limits<T>::max_exponent);
}

template <class T>
long double ulp_of(long double y) {
    const int least = limits<T>::min_exponent - limits<T>::digits;
    const int most = limits<T>::max_exponent - limits<T>::digits;
    if (y == 0)
        return std::ldexp(1.0L, least);
    const int e = std::ilogb(y) + 1 - limits<T>::digits;
    return std::ldexp(1.0L, e < least ? least : e > most ? most : e);
}

// Whether the sign of r is the wrong one, or it is infinite or NaN where y is not, or the other way round.
template <class T, class Y>
bool of_another_kind(T r, Y y) {
    if (std::isnan(y) || std::isnan(r))
        return std::isnan(y) != std::isnan(r);
    if (std::signbit(r) != std::signbit(y))
        return true;
    return std::isinf(y) || y == 0 ? r != y : false;
}

// |r - y|, of values of the same kind.
template <class T>
long double distance(T r, long double y) {
    if (r == y || std::isnan(y))
        return 0;
    const long double value = std::isinf(r) ? std::copysign(beyond<T>(), y) : (long double)r;
    return std::isinf(r) && std::fabs(y) >= beyond<T>() ? 0 : std::fabs(value - y);
}

// Correct bits that TQM_EP promises, of normal numbers; of subnormal ones it is their last.
template <class T>
constexpr int ep_bits = limits<T>::digits == 53 ? 26 : 11;

} // namespace test
