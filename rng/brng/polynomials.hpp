// polynomials.hpp - polynomials over GF(2) of degree below 64: bit i of a word is the coefficient of x^i.
#pragma once

#include <stdint.h>

namespace vox::rng::gf2 {

inline int degree(uint64_t p) { return 63 - __builtin_clzll(p); } // p not 0

inline uint64_t product(uint64_t a, uint64_t b) {
    uint64_t sum = 0;
    for (; b; b >>= 1, a <<= 1)
        if (b & 1)
            sum ^= a;
    return sum;
}

inline uint64_t remainder(uint64_t a, uint64_t p) {
    while (a && degree(a) >= degree(p))
        a ^= p << (degree(a) - degree(p));
    return a;
}

// By the divisors of at most half the degree.
bool is_irreducible(uint64_t p);

// Whether x has order 2^s - 1 modulo p, s its degree below 32; such polynomials are irreducible.
bool is_primitive(uint64_t p);

} // namespace vox::rng::gf2
