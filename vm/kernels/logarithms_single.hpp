// logarithms_single.hpp - logarithms in single precision without AVX-512, where a polynomial over the whole range
// of a mantissa costs less than a table.
//
//   x = 2^k m,  0.6875 <= m < 1.375,  m = 1 + r,  ln x = k ln 2 + ln(1 + r)
//
// Beside x = 1, k is 0, so the result is as accurate relative to itself as ln(1 + r) is; elsewhere |k ln 2| is at
// least 1.8 |ln(1 + r)|.
#pragma once

#include "vm/kernels/log_tables.hpp"
#include "vm/kernels/polynomials.hpp"
#include "vox/tqm.h"

namespace {
namespace vm {
namespace logs {

// 2^23 k as bits and as a number.
struct octaves {
    words<float> bits;
    vec<float> count() const { return __builtin_convertvector(bits, vec<float>); }
};
inline octaves octaves_of(vec<float> x) {
    constexpr int first = __builtin_bit_cast(int, 0.6875f);
    return {(words<float>(x) - first) & -(1 << 23)};
}

// The polynomials are minimax for the relative error of ln(1 + r), given as a power of two, with coefficients
// rounded by lattice reduction (Sollya's fpminimax).
//
// ln(1 + r) is r + the rest, for HA and LA.
template <int accuracy>
inline vec<float> ln1p_long_rest(vec<float> r) {
    const vec<float> square = r * r;
    if constexpr (accuracy == TQM_HA) // -27.7
        return square * polynomial(r, square,
                                   {-0x1.fffffcp-2, 0x1.555516p-2, -0x1.00026ap-2, 0x1.99c512p-3,
                                    -0x1.54abcp-3, 0x1.1fcfc2p-3, -0x1.07171cp-3, 0x1.1849c4p-3,
                                    -0x1.91c3d4p-4});
    else // -25.0
        return square * polynomial(r, square,
                                   {-0x1.ffffe4p-2, 0x1.55565cp-2, -0x1.000f1ap-2, 0x1.9927d8p-3,
                                    -0x1.5133ecp-3, 0x1.2a823p-3, -0x1.3471e4p-3, 0x1.c0b818p-4});
}
// -11.4
inline vec<float> ln1p_long_ratio(vec<float> r) {
    return polynomial(r, r * r, {0x1.ffd3dcp-1, -0x1.006cfp-1, 0x1.6d59e8p-2, -0x1.fd24dep-3});
}

// k ln 2 + ln(1 + r), in HA with r to be increased by `more`, at most a rounding of it.
template <int accuracy, class... More>
inline vec<float> ln_of_parts(octaves k, vec<float> r, More... more) {
    const vec<float> count = k.count();
    if constexpr (accuracy == TQM_HA) {
        const vec<float> a = count * (ln2<float>.head * 0x1p-23f);
        const vec<float> head = a + r, rounding = r - (head - a);
        const vec<float> tail =
            fma(count, all(ln2<float>.tail * 0x1p-23f), (rounding + ... + more));
        return head + (ln1p_long_rest<TQM_HA>(r) + tail);
    } else {
        const vec<float> ln_2 = all(0x1.62e42fefa39efp-24f);
        if constexpr (accuracy == TQM_EP)
            return fma(r, ln1p_long_ratio(r), count * ln_2);
        else
            return fma(count, ln_2, r + ln1p_long_rest<TQM_LA>(r));
    }
}

template <int accuracy>
inline vec<float> ln(vec<float> x) {
    const octaves k = octaves_of(x);
    return ln_of_parts<accuracy>(k, vec<float>(words<float>(x) - k.bits) - 1);
}

// ln(1 + x), with k from the rounded sum. r is the sum of two exact numbers, times 4 since 2^-k may be below the range.
template <int accuracy>
inline vec<float> ln1p(vec<float> x) {
    const octaves k = octaves_of(x + 1);
    const vec<float> scale = vec<float>(__builtin_bit_cast(int, 4.0f) - k.bits);
    const vec<float> scaled = x * scale, one_less = scale - 4, r = fma(x, scale, one_less);
    if constexpr (accuracy == TQM_HA) {
        const vec<float> lost = (scaled - (r - one_less)) * 0.25f, sum = r * 0.25f;
        return ln_of_parts<TQM_HA>(k, sum, lost - lost * sum);
    } else {
        return ln_of_parts<accuracy>(k, r * 0.25f);
    }
}

} // namespace logs
} // namespace vm
} // namespace
