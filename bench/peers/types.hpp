// types.hpp - the four element types, by their place in type_letters.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace peers {

template <class T>
struct real_part {
    using type = T;
};
template <class T>
struct real_part<std::complex<T>> {
    using type = T;
};
template <class T>
using real_of = typename real_part<T>::type;
template <class T>
constexpr bool is_complex = !std::is_same_v<T, real_of<T>>;

template <class T>
T make(double re, double im) {
    if constexpr (is_complex<T>)
        return {real_of<T>(re), real_of<T>(im)};
    else
        return T(re);
}

// Reproducible and without structure (the finaliser of SplitMix64: Steele, Lea, Flood, Fast Splittable
// Pseudorandom Number Generators, OOPSLA 2014), from 0 to 1.
inline double fraction(uint64_t i) {
    i = (i + 1) * 0x9e3779b97f4a7c15;
    i = (i ^ i >> 30) * 0xbf58476d1ce4e5b9;
    i = (i ^ i >> 27) * 0x94d049bb133111eb;
    return double((i ^ i >> 31) >> 40) * 0x1p-24;
}

// body(T()) in the type of this place.
template <class Body>
auto with_type(size_t type, const Body &body) {
    switch (type) {
    case 0:
        return body(float());
    case 1:
        return body(double());
    case 2:
        return body(std::complex<float>());
    default:
        return body(std::complex<double>());
    }
}

} // namespace peers
