// math.hpp - elementary functions of vectors of doubles, for distributions.
//
// Every step is an operation that IEEE 754 rounds in one way, so the bits are the same in all kernel sets.
// Coefficients are interpolations at Chebyshev nodes, computed with 50 digits; errors are given in ulp of the
// exact function.
#pragma once

#include <array>
#include <bit>

#include "serv/simd.hpp"

namespace {
namespace math {

using simd::vec;
using doubles = vec<double>;
using bits = vec<uint64_t>;

inline doubles larger(doubles a, doubles b) { return a > b ? a : b; }
inline doubles smaller(doubles a, doubles b) { return a < b ? a : b; }

inline doubles sqrt(doubles x) {
#if defined(__AVX512F__)
    return _mm512_maskz_sqrt_pd(0xFF, x); // gcc warns about the plain one
#elif defined(__AVX__)
    return _mm256_sqrt_pd(x);
#else
    return _mm_sqrt_pd(x);
#endif
}

// c[0] + c[1] x + ..., even and odd powers apart, which halves the time until the result is there.
template <int N>
inline doubles polynomial(doubles x, const double (&c)[N]) {
    const doubles square = x * x;
    doubles even = doubles{} + c[(N - 1) & ~1], odd = doubles{} + c[(N - 2) | 1];
#pragma GCC unroll 16
    for (int i = ((N - 1) & ~1) - 2; i >= 0; i -= 2)
        even = even * square + c[i];
#pragma GCC unroll 16
    for (int i = ((N - 2) | 1) - 2; i >= 1; i -= 2)
        odd = odd * square + c[i];
    return even + x * odd;
}

// floor of 0 <= x < 2^51.
inline doubles floor(doubles x) {
    const doubles nearest = (x + 0x1p52) - 0x1p52;
    return nearest > x ? nearest - 1 : nearest;
}

// The entries of a table of 16 at the indices, of which the low four bits count.
template <class T>
inline vec<T> entries(const T *table, bits index) {
#if defined(__AVX512F__)
    using V = vec<T>;
    return V(_mm512_permutex2var_pd(__m512d(simd::load(table)), __m512i(index),
                                    __m512d(simd::load(table + 8))));
#else
    uint64_t at[simd::lanes<T>]; // loads are cheaper than extractions, and than a gather
    simd::store(at, index & 15);
    simd::in_memory(at);
    vec<T> x{};
    simd::unroll<simd::lanes<T>>([&](auto i) { x[int(i)] = table[at[int(i)]]; });
    return x;
#endif
}

// a b + c where a b is exact.
inline doubles exact_fma(doubles a, double b, doubles c) {
#if defined(__AVX512F__)
    return _mm512_fmadd_pd(a, doubles{} + b, c);
#else
    return a * b + c;
#endif
}

// k of a normal 2^k d > 0, 1 <= d < 2.
inline doubles exponent_of(doubles x) {
#if defined(__AVX512F__)
    return _mm512_maskz_getexp_pd(0xFF, x); // gcc warns about the plain one
#else
    return doubles((bits(x) >> 52) | (bits{} + 0x4330000000000000u)) - (0x1p52 + 1023);
#endif
}

// -ln(c + f) for a c that nearest_short gave and the small f to where it came from: with c = 2^k d and d
// between 22/32 and 43/32, -k ln 2 - ln d - ln(1 + f / c). No division, and f / c is within 1/32.
inline doubles nearest_short(doubles x) { // five bits
    return doubles((bits(x) + (uint64_t(1) << 47)) & ~((uint64_t(1) << 48) - 1));
}
inline doubles minus_log(doubles c, doubles f) {
    constexpr uint64_t one = 0x3FF0000000000000, least_d = 0x3FE6000000000000;
    // 1 / c of c = 1 + i/16, such that it becomes that of any c when the bits of c are taken from it.
    alignas(64) static constexpr auto inverse = [] {
        std::array<uint64_t, 16> table{};
        for (uint64_t i = 0; i < 16; ++i)
            table[i] = std::bit_cast<uint64_t>(1 / (1 + double(i) / 16)) + one + (i << 48);
        return table;
    }();
    alignas(64) static constexpr double minus_log_d[16] = {0.0,
                                                           -0.06062462181643484,
                                                           -0.11778303565638346,
                                                           -0.17185025692665923,
                                                           -0.22314355131420976,
                                                           -0.27193371548364176,
                                                           0.3746934494414107,
                                                           0.33024168687057687,
                                                           0.2876820724517809,
                                                           0.24686007793152578,
                                                           0.2076393647782445,
                                                           0.16989903679539747,
                                                           0.13353139262452263,
                                                           0.09844007281325252,
                                                           0.06453852113757118,
                                                           0.0317486983145803};
    constexpr double series[] = {0.5,
                                 -0.3333333333333327,
                                 0.2500000000233204,
                                 -0.20000000002120089,
                                 0.1666665472825626,
                                 -0.14285703432369223,
                                 0.1251955312667663,
                                 -0.11128886987006753};
    constexpr double ln2_high = 0x1.62e42feep-1; // k ln2_high is exact
    constexpr double ln2_low = 0x1.a39ef35793c76p-33;
    const bits index = bits(c) >> 48;
    const doubles k = exponent_of(doubles(bits(c) + (one - least_d)));
    const doubles r = f * doubles(entries(inverse.data(), index) - bits(c));
    return exact_fma(k, -ln2_high, entries(minus_log_d, index)) -
           (r - (r * r * polynomial(r, series) - k * ln2_low));
}

// -ln x of a normal x > 0. The exponential distribution is this logarithm, within 3 ulp.
inline doubles minus_log(doubles x) {
    const doubles c = nearest_short(x);
    return minus_log(c, x - c);
}

// -ln(1 - u) for 0 <= u < 1, within 3 ulp, also where u has bits that 1 - u has no room for: both differences
// after the first are exact.
inline doubles minus_log_of_rest(doubles u) {
    const doubles c = nearest_short(1.0 - u);
    return minus_log(c, (1.0 - c) - u);
}

// sqrt(2) sin(2 pi x) for |x| <= 1/4. Its error is part of the 5 ulp of Box and Muller's numbers.
inline doubles root2_sin_of_turns(doubles x) {
    constexpr double series[] = {8.885765876316732,   -58.4659959999635,   115.4072502870605,
                                 -108.47846717593355, 59.47997536504015,   -21.34704697752808,
                                 5.402194118146066,   -1.0150288630197626, 0.1426898421864373};
    return x * polynomial(x * x, series);
}

// The inverse of the normal distribution function: rational functions in the middle and, in the root of
// -ln p, towards both ends, as in M. J. Wichura, Appl. Statist. 37 (1988) 477-484. p is the smaller of u and
// 1 - u.

// For |2 u - 1| <= 0.9; what it gives elsewhere is finite.
constexpr double middle = 0.9;
inline doubles normal_inverse_middle(doubles u) {
    constexpr double above[] = {1.827615141057192, 28.572134686261467, 173.18305501877364,
                                516.031865995518,  793.5258194560406,  607.597219161177,
                                205.869202798103,  23.58910961379924,  0.40411525946482574};
    constexpr double below[] = {1.0,
                                16.65370329720183,
                                109.06574521060658,
                                358.1284573236486,
                                624.4570759319716,
                                566.4812613271476,
                                244.93753823609984,
                                41.68181290593042,
                                1.74978439036129};
    const doubles y = 2.0 * (u - 0.5), s = middle * middle - y * y;
    return y * (polynomial(s, above) / polynomial(s, below));
}

// For |2 u - 1| > 0.9. p counts as at least 2^-64, but a zero as 2^-33: it stands for all that is below the
// smallest number of 32 bits.
inline doubles normal_inverse_ends(doubles u) {
    constexpr double above[] = {-3.5419327821918953, -35.56871419063055, -52.27375824778114,
                                26.018629284591206,  70.40742142369656,  41.37485471654347,
                                10.98104131473036,   1.1911065807442547, 0.03721151604312798};
    constexpr double below[] = {1.0,
                                16.59610508949982,
                                54.767287168722966,
                                61.695519055813236,
                                30.953003935193877,
                                7.838446802905004,
                                0.8424642069671449,
                                0.02631060015635599,
                                1.2612039435055478e-08};
    const doubles smallest = u == 0.0 ? doubles{} + 0x1p-33 : doubles{} + 0x1p-64;
    const doubles p = larger(smaller(u, 1.0 - u), smallest);
    const doubles r = sqrt(minus_log(p)), z = polynomial(r, above) / polynomial(r, below);
    return u < 0.5 ? -z : z;
}

// Where |2 u - 1| > 0.9: their places in the request, and what stands there.
template <int Most>
struct ends {
    int n = 0;
    int32_t place[Most + 16];
    double value[Most + 16];

    // From a vector at u, whose lane 0 is the place first. Writes up to 64 bytes.
    void append(const double *u, int first) {
        const doubles x = simd::load(u), y = simd::abs(2.0 * (x - 0.5));
#if defined(__AVX512F__)
        const __mmask8 far = _mm512_cmp_pd_mask(y, doubles{} + middle, _CMP_GT_OQ);
        using places = vec<int32_t>;
        constexpr places lane = {0, 1, 2, 3, 4, 5, 6, 7};
        simd::store(place + n, places(_mm512_maskz_compress_epi32(far, __m512i(lane))) + first);
        simd::store(value + n, doubles(_mm512_maskz_compress_pd(far, x)));
        n += __builtin_popcount(far);
#else
        for (int i = 0; i < simd::lanes<double>; ++i) {
            place[n] = first + i;
            value[n] = u[i];
            n += y[i] > middle;
        }
#endif
    }
};

// z[i] with the distribution function u[i], 0 <= u < 1, within 6 ulp. n is a multiple of the lanes, at most
// Most.
template <int Most>
inline void normal_inverse(int n, const double *u, double *z) {
    constexpr int lanes = simd::lanes<double>;
    ends<Most> far;
    for (int i = 0; i < n; i += lanes) {
        const doubles x = simd::load(u + i);
        far.append(u + i, i);
        simd::store(z + i, normal_inverse_middle(x));
    }
    simd::store(far.value + far.n, doubles{} + 0.5);
    for (int i = 0; i < far.n; i += lanes)
        simd::store(far.value + i, normal_inverse_ends(simd::load(far.value + i)));
    for (int i = 0; i < far.n; ++i)
        z[far.place[i]] = far.value[i];
}

} // namespace math
} // namespace
