// polynomials.cpp - see polynomials.hpp.
#include "rng/brng/polynomials.hpp"

#include "rng/brng/modular.hpp"

namespace {

using namespace vox::rng;

uint64_t power_of_x(uint64_t exponent, uint64_t p) {
    return power(gf2::remainder(2, p), exponent, uint64_t(1),
                 [p](uint64_t a, uint64_t b) { return gf2::remainder(gf2::product(a, b), p); });
}

} // namespace

bool vox::rng::gf2::is_irreducible(uint64_t p) {
    if (p < 2)
        return false;
    for (uint64_t divisor = 2; 2 * degree(divisor) <= degree(p); ++divisor)
        if (remainder(p, divisor) == 0)
            return false;
    return true;
}

bool vox::rng::gf2::is_primitive(uint64_t p) {
    if (p < 2 || !(p & 1)) // x would have no inverse
        return false;
    const uint64_t order = (uint64_t(1) << degree(p)) - 1;
    if (power_of_x(order, p) != 1)
        return false;
    // No proper divisor of the order will do; those by one prime are enough.
    uint64_t rest = order;
    for (uint64_t prime = 2; rest > 1; ++prime) {
        if (prime * prime > rest)
            prime = rest;
        if (rest % prime)
            continue;
        while (rest % prime == 0)
            rest /= prime;
        if (power_of_x(order / prime, p) == 1)
            return false;
    }
    return true;
}
