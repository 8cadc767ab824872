// scaling.hpp - numbers in twice the precision and of any size, rounded once.
#pragma once

#include <bit>
#include <type_traits>

#include "serv/base.hpp"

namespace vox::vm {

template <class T>
inline constexpr T smallest_normal = sizeof(T) == 4 ? T(0x1p-126f) : T(0x1p-1022);

// (head + tail) 2^exponent, where 1/2 < head < 4 and the tail is small against it.
struct scaled_pair {
    double head, tail;
    int exponent;
};

// The T nearest to it, but for a tie that the pair misses by less than 2^-60; too large: infinity.
template <class T>
inline T rounded(scaled_pair x) {
    using bits = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
    constexpr int mantissa = sizeof(T) == 4 ? 23 : 52, bias = sizeof(T) == 4 ? 127 : 1023;
    // In units of 2^(exponent - 60), and then with 61 bits or, of a subnormal number, fewer than are kept.
    uint64_t whole = uint64_t(int64_t(x.head * 0x1p60) + int64_t(x.tail * 0x1p60));
    int top = 63 - __builtin_clzll(whole), exponent = x.exponent + top - 60;
    if (exponent > bias)
        return T(__builtin_inf());
    const int least =
        exponent < 1 - bias ? 1 - bias : exponent; // the last bit weighs 2^(least - mantissa)
    const int drop = top - mantissa + (least - exponent);
    if (drop > 63)
        return 0;
    const uint64_t half = uint64_t(1) << (drop - 1), rest = whole & (2 * half - 1);
    uint64_t kept = whole >> drop;
    kept += rest > half || (rest == half && (kept & 1));
    // A subnormal number has no leading one, which counts as one of the exponent here; neither minds a carry.
    return std::bit_cast<T>(bits((uint64_t(least + bias - 1) << mantissa) + kept));
}

} // namespace vox::vm
