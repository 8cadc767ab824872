// modular.hpp - powers in residue rings, for leapfrogging and skipping ahead.
#pragma once

#include <stdint.h>

namespace vox::rng {

// base^exponent by repeated squaring; multiply(a, b) is the ring's product, one its unit.
template <class Element, class Multiply>
constexpr Element power(Element base, uint64_t exponent, Element one, Multiply multiply) {
    Element result = one;
    for (; exponent; exponent >>= 1) {
        if (exponent & 1)
            result = multiply(result, base);
        base = multiply(base, base);
    }
    return result;
}

// The ring of integers modulo m, m < 2^32.
struct modulo {
    uint32_t m;
    uint32_t multiply(uint32_t a, uint32_t b) const { return uint32_t(uint64_t(a) * b % m); }
    uint32_t power(uint32_t a, uint64_t n) const {
        return rng::power(a, n, 1 % m, [this](uint32_t x, uint32_t y) { return multiply(x, y); });
    }
};

// The count of skip-ahead, as it comes in two words.
inline uint64_t count_of(const uint32_t *params) { return params[0] | uint64_t(params[1]) << 32; }

} // namespace vox::rng
