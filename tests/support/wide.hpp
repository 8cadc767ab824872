// wide.hpp - numbers in extended precision for references, and when a result agrees with one.
#pragma once

#include <cmath>
#include <complex>
#include <type_traits>

#include "serv/scalar.hpp"

namespace test {

template <class T>
using wide = std::conditional_t<vox::is_complex<T>, std::complex<long double>, long double>;
template <class T>
wide<T> widen(T a) {
    if constexpr (vox::is_complex<T>)
        return {a.real, a.imag};
    else
        return a;
}
template <class W>
W conjugate(W a) {
    if constexpr (std::is_same_v<W, long double>)
        return a;
    else
        return std::conj(a);
}
template <class W>
W real_part(W a) {
    return std::real(a);
}
template <class W>
long double size(W a) {
    return std::fabs(std::real(a)) + std::fabs(std::imag(a));
}

// Within the bound; where the reference is not finite: the same infinity, or NaN. A complex number
// is not finite when one of its parts is not; which one depends on the order of multiplications.
template <class T>
bool agrees(T got, wide<T> expected, long double bound) {
    if (std::isfinite(size(expected)))
        return std::isfinite(size(widen(got))) && size(widen(got) - expected) <= bound;
    if constexpr (vox::is_complex<T>)
        return !std::isfinite(size(widen(got)));
    else
        return std::isnan(expected) ? std::isnan(got) : got == expected;
}

} // namespace test
