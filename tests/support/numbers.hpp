// numbers.hpp - random operands and choices, and error bounds.
#pragma once

#include <cstdint>
#include <initializer_list>
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

// Choices that are the same for the same seed.
class lottery {
  public:
    explicit lottery(unsigned seed) : bits_(seed) {}
    unsigned number() { return unsigned(bits_()); }
    template <class V>
    V pick(std::initializer_list<V> values) {
        return values.begin()[number() % values.size()];
    }

  private:
    std::mt19937 bits_;
};

} // namespace test
