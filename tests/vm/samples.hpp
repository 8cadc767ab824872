// samples.hpp - arguments by the million, drawn from strata: the same for the same seed.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

#include "tests/support/numbers.hpp"

namespace test {

template <class T>
using bits_of = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;

// The number that is `steps` representable ones above x; no further than the largest.
template <class T>
T step(T x, int steps) {
    for (; steps > 0; --steps)
        x = std::nextafter(x, std::numeric_limits<T>::max());
    for (; steps < 0; ++steps)
        x = std::nextafter(x, std::numeric_limits<T>::lowest());
    return x;
}

template <class T>
class samples {
  public:
    using limits = std::numeric_limits<T>;
    static constexpr int fraction_bits = limits::digits - 1;
    static constexpr int exponents = 1 << (8 * sizeof(T) - 1 - fraction_bits); // of the encoding

    explicit samples(size_t wanted) : wanted_(wanted), bits_(1) {
        a.reserve(wanted + wanted / 8);
        b.reserve(wanted + wanted / 8);
    }

    std::vector<T> a, b; // b: for functions of two arguments

    // A share of all that is wanted: draw() is an argument, or a pair.
    template <class Draw>
    void take(double share, const Draw &draw) {
        for (auto n = size_t(share * double(wanted_)); n > 0; --n)
            add(draw());
    }
    // The second argument stays the same for a while, as functions with a fixed one have it.
    template <class Fixed, class Draw>
    void take_runs(double share, const Fixed &fixed, const Draw &draw) {
        constexpr size_t run = 512;
        for (auto n = size_t(share * double(wanted_) / run) + 1; n > 0; --n) {
            const T second = fixed();
            for (size_t i = 0; i < run; ++i)
                add(std::pair(T(draw(second)), second));
        }
    }
    void add(T x) { add(std::pair(x, T())); }
    void add(std::pair<T, T> pair) {
        a.push_back(pair.first);
        b.push_back(pair.second);
    }

    // Exponents of both signs in turn, subnormal ones by their leading bit, every fourth fraction with few bits.
    T any() {
        const auto exponent = turn_++ % (exponents - 1 + fraction_bits);
        auto fraction = bits_() & mask;
        if (const auto few = bits_() % 16; few < 4)
            fraction &= ~uint64_t() << (fraction_bits - 2 * few - 1);
        uint64_t encoded;
        if (exponent < uint64_t(exponents - 1) && exponent > 0)
            encoded = (exponent << fraction_bits) | fraction;
        else
            encoded = (mask + 1 + fraction) >> (1 + bits_() % fraction_bits);
        const auto sign = uint64_t(bits_() & 1) << (8 * sizeof(T) - 1);
        return std::bit_cast<T>(bits_of<T>(encoded | sign));
    }
    T any_positive() { return std::fabs(any()); }
    // With an exponent of base 2 in a range.
    T any(int low, int high) {
        return T(std::ldexp(1 + unit(), integer(low, high)) * (bits_() & 1 ? 1 : -1));
    }
    T any_positive(int low, int high) { return std::fabs(any(low, high)); }
    T between(long double low, long double high) { return T(low + (high - low) * unit()); }
    int integer(int low, int high) { return low + int(bits_() % uint64_t(high - low + 1)); }
    // x and what lies beside it, at all distances; within `farthest` of it, relatively.
    T near(long double x, long double farthest = 0.5L) {
        if (bits_() & 1)
            return step(T(x), integer(-6, 6));
        return T(x + x * (2 * unit() - 1) * std::ldexp(farthest, -integer(0, fraction_bits)));
    }
    template <class... V>
    auto one_of(V... values) {
        using common = std::common_type_t<V...>;
        const common all[] = {common(values)...};
        return all[bits_() % sizeof...(values)];
    }

  private:
    static constexpr uint64_t mask = (uint64_t(1) << fraction_bits) - 1;
    long double unit() { return (long double)(bits_() >> 1) * 0x1p-63L; }

    size_t wanted_;
    random_bits bits_;
    uint64_t turn_ = 0;
};

} // namespace test
