// numbers.hpp - random operands and error bounds.
#pragma once

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace test {

// Unit roundoff u and gamma(n) = n u / (1 - n u): Higham, Accuracy and Stability of Numerical
// Algorithms, section 3.1.
template <class T>
constexpr long double unit_roundoff = std::numeric_limits<T>::epsilon() / 2.0L;

template <class T>
constexpr long double gamma(int64_t n) {
    const long double nu = n * unit_roundoff<T>;
    return nu / (1 - nu);
}

// Uniform in (-1, 1); the same numbers for the same seed on every machine.
template <class T>
std::vector<T> random_vector(size_t n, unsigned seed) {
    std::mt19937_64 bits(seed);
    std::vector<T> v(n);
    for (T &x : v)
        x = T(double(int64_t(bits()) >> 11) * 0x1p-52);
    return v;
}

} // namespace test
