// numbers.hpp - random operands and choices, and error bounds.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <limits>
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

// Random bits, the same for the same seed. Tests draw operands by the gigabyte, which the engines of the
// standard library take longer over than all else: splitmix64, from Steele, Lea and Flood, Fast splittable
// pseudorandom number generators, OOPSLA 2014.
class random_bits {
  public:
    explicit random_bits(unsigned seed) : state_(seed) {}
    uint64_t operator()() {
        uint64_t z = state_ += 0x9E3779B97F4A7C15;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z ^ (z >> 31);
    }

  private:
    uint64_t state_;
};

// Uniform in (-1, 1); the same numbers for the same seed on every machine.
template <class T>
std::vector<T> random_vector(size_t n, unsigned seed) {
    random_bits bits(seed);
    std::vector<T> v(n);
    for (T &x : v)
        x = T(double(int64_t(bits()) >> 11) * 0x1p-52);
    return v;
}

// Choices that are the same for the same seed.
class lottery {
  public:
    explicit lottery(unsigned seed) : bits_(seed) {}
    unsigned number() { return unsigned(bits_() >> 32); }
    template <class V>
    V pick(std::initializer_list<V> values) {
        return values.begin()[number() % values.size()];
    }

  private:
    random_bits bits_;
};

} // namespace test
