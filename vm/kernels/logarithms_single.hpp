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
    vec<uint32_t> bits;
    vec<float> count() const { return __builtin_convertvector(words<float>(bits), vec<float>); }
};
inline octaves octaves_of(vec<float> x) {
    constexpr uint32_t first = __builtin_bit_cast(uint32_t, 0.6875f);
    return {(vec<uint32_t>(x) - first) & -(1u << 23)};
}

// k ln 2 + ln(1 + r), in HA with r to be increased by `more`, at most a rounding of it. With s = r / (2 + r),
//
//   ln(1 + r) = 2 artanh s = 2 s + s^3 P(s^2) = r + s (s^2 P(s^2) - r)
//
// The polynomials are minimax for the relative error of ln(1 + r), given as a power of two, with coefficients
// rounded by lattice reduction (Sollya's fpminimax).
template <int accuracy, class... More>
inline vec<float> ln_of_parts(octaves k, vec<float> r, More... more) {
    const vec<float> count = k.count(), s = r / (r + 2), square = s * s;
    if constexpr (accuracy == TQM_EP) { // -11.4
        const vec<float> ratio =
            polynomial(r, r * r, {0x1.ffd3dcp-1, -0x1.006cfp-1, 0x1.6d59e8p-2, -0x1.fd24dep-3});
        return fma(r, ratio, count * 0x1.62e42fefa39efp-24f);
    } else { // -27.6
        const vec<float> p =
            polynomial<float>(square, {0x1.55556p-1f, 0x1.9970ap-2f, 0x1.30bc14p-2f});
        if constexpr (accuracy == TQM_HA) {
            const vec<float> rest = s * fma(square, p, -r);
            const vec<float> a = count * (ln2<float>.head * 0x1p-23f);
            const vec<float> head = a + r, rounding = r - (head - a);
            const vec<float> tail =
                fma(count, all(ln2<float>.tail * 0x1p-23f), (rounding + ... + more));
            return head + (rest + tail);
        } else {
            return fma(s, fma(square, p, -r), fma(count, all(0x1.62e42fefa39efp-24f), r));
        }
    }
}

template <int accuracy>
inline vec<float> ln(vec<float> x) {
    const octaves k = octaves_of(x);
    return ln_of_parts<accuracy>(k, vec<float>(vec<uint32_t>(x) - k.bits) - 1);
}

// ln(1 + x), with k from the rounded sum. r is the sum of two exact numbers, times 4 since 2^-k may be below the range.
template <int accuracy>
inline vec<float> ln1p(vec<float> x) {
    const octaves k = octaves_of(x + 1);
    const vec<float> scale = vec<float>(__builtin_bit_cast(uint32_t, 4.0f) - k.bits);
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
