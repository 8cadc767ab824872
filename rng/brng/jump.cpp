// jump.cpp - powers of t modulo a polynomial, see jump.hpp.
//
// Squaring spreads the coefficients; the upper half is taken off byte by byte from above, each adding a
// multiple of the modulus that two tables of sixteen hold.
#include "rng/brng/jump.hpp"

namespace {

// t^shift p, 0 < shift < 64; what goes beyond the last word is lost.
template <int N>
void shift_up(uint64_t (&to)[N], const uint64_t (&p)[N], int shift) {
    for (int i = N - 1; i > 0; --i)
        to[i] = p[i] << shift | p[i - 1] >> (64 - shift);
    to[0] = p[0] << shift;
}

// Bit i of x at 2 i.
uint64_t spread(uint32_t x) {
    uint64_t v = x;
    v = (v | v << 16) & 0x0000FFFF0000FFFF;
    v = (v | v << 8) & 0x00FF00FF00FF00FF;
    v = (v | v << 4) & 0x0F0F0F0F0F0F0F0F;
    v = (v | v << 2) & 0x3333333333333333;
    return (v | v << 1) & 0x5555555555555555;
}

} // namespace

void vox::rng::powers::set_modulus(const bits19968 &tail) {
    low_[0] = {};
    low_[1] = tail;
    for (int c = 1; c < 8; ++c) {
        shift_up(low_[2 * c].word, low_[c].word, 1);
        low_[2 * c + 1] = tail;
        add(&low_[2 * c + 1], &low_[2 * c]);
    }
    for (int c = 0; c < 16; ++c)
        shift_up(high_[c].word, low_[c].word, 4);
}

void vox::rng::powers::reduce() {
    constexpr int bytes = sizeof(bits19968);
    auto *p = reinterpret_cast<unsigned char *>(power_);
    for (int i = bytes - 1; i >= 0; --i)
        if (const int c = p[bytes + i])
            add(p + i, &low_[c & 15], &high_[c >> 4]);
}

void vox::rng::powers::power(step_count exponent, bits19968 &result) {
    memset(power_, 0, sizeof power_);
    power_[0] = 1;
    for (int bit = 64; bit >= 0; --bit) {
        for (int i = bits19968::words - 1; i >= 0; --i) {
            const uint64_t w = power_[i];
            power_[2 * i + 1] = spread(uint32_t(w >> 32));
            power_[2 * i] = spread(uint32_t(w));
        }
        if (exponent >> bit & 1)
            shift_up(power_, power_, 1);
        reduce();
    }
    memcpy(&result, power_, sizeof result);
}
