// logarithms.hpp - the parts of a logarithm.
//
//   x = 2^k m,  1 <= m < 2,  c m = 1 + r,  ln x = (k ln 2 - ln c) + ln(1 + r)
//
// with c looked up (log_tables.hpp). Beside x = 1 the first term is zero, so the result is as accurate relative to
// itself as ln(1 + r) is.
//
// Method: Tang, "Table-driven implementation of the logarithm function in IEEE floating-point arithmetic",
// ACM TOMS 16(4), 1990.
#pragma once

#include "vm/kernels/log_tables.hpp"
#include "vm/kernels/polynomials.hpp"
#include "vm/kernels/ranges.hpp"
#include "vox/tqm.h"

namespace {
namespace vm {
namespace logs {

// HA takes the exact entries, the others the rough ones.
constexpr kind kind_of(int accuracy) { return accuracy == TQM_HA ? exact : rough; }

// k and m of positive normal numbers, with AVX-512 of subnormal ones too; there k is infinite or NaN for what has
// no logarithm, or m is NaN. Without AVX-512, k goes with the entries of a kind.
template <class T>
struct log_parts {
    vec<T> k, m;
};
template <class T, kind K>
inline log_parts<T> split(vec<T> x) {
#if defined(__AVX512F__)
    if constexpr (sizeof(T) == 8)
        return {_mm512_maskz_getexp_pd(0xFF, x),
                _mm512_maskz_getmant_pd(0xFF, x, _MM_MANT_NORM_1_2, _MM_MANT_SIGN_nan)};
    else
        return {_mm512_maskz_getexp_ps(0xFFFF, x),
                _mm512_maskz_getmant_ps(0xFFFF, x, _MM_MANT_NORM_1_2, _MM_MANT_SIGN_nan)};
#else
    using f = format<T>;
    constexpr word<T> one = word<T>(1) << f::mantissa; // the exponent's last bit
    const words<T> bits = words<T>(x);
    // The biased exponent becomes the last bits of the mantissa of 2^52 or 2^23.
    using unsigned_word = std::make_unsigned_t<word<T>>; // of a NaN the sum may wrap
    const words<T> counted = K == rough && rough_exponent_carry
                                 ? words<T>(vec<unsigned_word>(bits) + unsigned_word(one / 2))
                                 : bits;
    const words<T> exponent = shifted<T, f::mantissa>(counted) | (f::bias + f::mantissa) * one;
    return {vec<T>(exponent) - (T(one) + T(f::bias)), vec<T>((bits & (one - 1)) | f::bias * one)};
#endif
}

// c m - 1, exact with exact entries, and for others but for one rounding.
template <class T, kind K>
inline vec<T> reduced(vec<T> m, vec<T> c) {
    if constexpr (fused) {
        return fma(m, c, all<T>(-1));
    } else {
        // The product of c and the first bits of m is exact, and so is that of c and what these leave of m.
        constexpr int bits_of_c = log_bits<T, K> + 2;
        const vec<T> first = vec<T>(words<T>(m) & -(word<T>(1) << bits_of_c));
        return (first * c - 1) + (m - first) * c;
    }
}

// (ln(1 + r) - r) / r^2, of HA or LA. The polynomials are minimax for the relative error of ln(1 + r) over the range of r,
// given as a power of two, with coefficients rounded by lattice reduction (Sollya's fpminimax).
template <int accuracy>
inline vec<double> ln1p_rest(vec<double> r, vec<double> square) {
#if defined(__AVX512F__)
    if constexpr (accuracy == TQM_HA) { // -61.5
        return polynomial(r, square,
                          {-0x1.fffffffffffffp-2, 0x1.555555555556cp-2, -0x1.0000000002156p-2,
                           0x1.99999999776fdp-3, -0x1.5555552908f76p-3, 0x1.2492486557421p-3,
                           -0x1.0000bada70c17p-3, 0x1.c73206c400b88p-4, -0x1.97c84c6264a41p-4,
                           0x1.419828d2104p-4});
    } else { // -56.6
        return polynomial(r, square,
                          {-0x1.0000000000003p-1, 0x1.5555555555f5cp-2, -0x1.ffffffffef5c5p-3,
                           0x1.9999998093059p-3, -0x1.555554c298ff4p-3, 0x1.2492d90829665p-3,
                           -0x1.0009a35e8f1b9p-3, 0x1.c57122bad90ccp-4, -0x1.65e46c41d5503p-4});
    }
#else
    if constexpr (accuracy == TQM_HA) { // -60.7
        return polynomial(r, square,
                          {-0x1.ffffffffffffap-2, 0x1.55555555546b6p-2, -0x1.000000017ba9ep-2,
                           0x1.99999e9fa9cc1p-3, -0x1.55540b16df623p-3, 0x1.212689094bb4fp-3});
    } else { // -58.1
        return polynomial(r, square,
                          {-0x1.fffffffffffa9p-2, 0x1.555555555dce1p-2, -0x1.0000004956a15p-2,
                           0x1.999988e2bef7dp-3, -0x1.53abf8460ac95p-3});
    }
#endif
}
#if defined(__AVX512F__)
template <int accuracy>
inline vec<float> ln1p_rest(vec<float> r, vec<float> square) {
    if constexpr (accuracy == TQM_HA) // -33.1
        return polynomial(r, square,
                          {-0x1p-1, 0x1.555562p-2, -0x1.00031cp-2, 0x1.995758p-3, -0x1.3b5702p-3});
    else // -28.3
        return polynomial(r, square, {-0x1p-1, 0x1.55584p-2, -0x1.0013bep-2, 0x1.825c4ep-3});
}
#endif

// ln(1 + r) / r, of the lowest accuracy.
inline vec<double> ln1p_ratio(vec<double> r) {
#if defined(__AVX512F__) // -28.7
    constexpr double c[] = {0x1.ffffffed3aa54p-1, -0x1.000000e75e143p-1, 0x1.55590a4f70fb4p-2,
                            -0x1.0010aaa7776e2p-2, 0x1.80d3477d27b98p-3};
#else // -29.2
    constexpr double c[] = {0x1.00000005bb62fp0, -0x1.00001dfc9f49dp-1, 0x1.54960d96107fap-2};
#endif
    return polynomial<double>(r, c);
}
#if defined(__AVX512F__)
inline vec<float> ln1p_ratio(vec<float> r) { // -11.4
    constexpr float c[] = {0x1.001258p0f, -0x1.f5dfeap-2f};
    return polynomial<float>(r, c);
}
#endif

// k ln 2 - ln c + ln(1 + r), with r to be increased by `more`, at most a rounding of 1/n.
template <class T, class... More>
inline vec<T> accurate_ln(vec<T> k, const log_entries<T, exact> &e, vec<T> r, More... more) {
    const vec<T> square = r * r;
    const vec<T> a = fma(k, all(ln2<T>.head), e.head), b = fma(k, all(ln2<T>.tail), e.tail);
    const vec<T> head = a + r, rounding = r - (head - a);
    return head + fma(square, ln1p_rest<TQM_HA>(r, square), b + (rounding + ... + more));
}
template <class T, int accuracy>
inline vec<T> rough_ln(vec<T> k, const log_entries<T, rough> &e, vec<T> r) {
    const vec<T> a = fma(k, all(T(0x1.62e42fefa39efp-1)), e.value);
    if constexpr (accuracy == TQM_EP)
        return fma(r, ln1p_ratio(r), a);
    const vec<T> square = r * r;
    return a + fma(square, ln1p_rest<TQM_LA>(r, square), r);
}

// r + lost = c (1 + x) / 2^k - 1, where k and c are those of u = 1 + x as rounded. c / 2^k has few bits, so that it less
// 1 is exact but for so large a k that ln x is far larger than r. Next to x = 0, r is x. Where 2^-k may be below the
// range, all is computed times 4.
template <class T, bool exactly>
struct reduced_sum {
    vec<T> r, lost;
#if defined(__AVX512F__)
    static constexpr T factor = 1;
    static vec<T> scaled(vec<T> c, vec<T> k, vec<T>) {
        if constexpr (sizeof(T) == 8)
            return _mm512_maskz_scalef_pd(0xFF, c, -k);
        else
            return _mm512_maskz_scalef_ps(0xFFFF, c, -k);
    }
#else
    static constexpr T factor = 4;
    static vec<T> scaled(vec<T> c, vec<T>, vec<T> u) {
        using unsigned_word = std::make_unsigned_t<word<T>>;
        constexpr auto one = unsigned_word(1) << format<T>::mantissa;
        const auto exponent = vec<unsigned_word>(u) & (2 * format<T>::bias + 1) * one;
        return c * vec<T>((2 * format<T>::bias + 2) * one - exponent);
    }
#endif
    reduced_sum(vec<T> x, vec<T> u, vec<T> k, vec<T> c) {
        const vec<T> s = scaled(c, k, u), less_one = s - factor;
        if constexpr (fused && !exactly) {
            r = fma(s, x, less_one);
        } else { // the first bits' product is exact, and so is its sum
            constexpr int bits_of_c = sizeof(T) == 8 ? 12 : 6;
            const vec<T> first = vec<T>(words<T>(x) & -(word<T>(1) << bits_of_c));
            const vec<T> sum = fma(s, first, less_one), rest = x - first;
            r = fma(s, rest, sum);
            if constexpr (exactly)
                lost = fma(s, rest, sum - r) * (1 / factor);
        }
        r = r * (1 / factor);
    }
};

// For tests of groups of arguments: in each lane the least and the sum. NaNs appear in the sum.
template <class V>
struct extents {
    V least, sum;
};
template <class V, int N>
VOX_INLINED inline extents<V> extent(const V (&x)[N][1]) {
    extents<V> e = {x[0][0], x[0][0]};
    simd::unroll<N - 1>([&](auto v) VOX_INLINED {
        e.least = min(e.least, x[v + 1][0]);
        e.sum = e.sum + x[v + 1][0];
    });
    return e;
}

} // namespace logs
} // namespace vm
} // namespace
