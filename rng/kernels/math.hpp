// math.hpp - elementary functions of vectors of doubles, for distributions.
//
// Every step is an operation that IEEE 754 rounds in one way, so the bits are the same in all kernel sets.
// Coefficients are interpolations at Chebyshev nodes, computed with 50 digits; errors are given in ulp of the
// exact function.
#pragma once

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

// -ln x of a normal x > 0, within 1 ulp: x = 2^k (1 + f) with 1 + f between the roots of 1/2 and 2, and
// ln(1 + f) = 2 artanh(s), s = f / (2 + f), taken as f less a small correction.
struct logarithm {
    doubles k, f;

    explicit logarithm(doubles x) {
        constexpr uint64_t one = 0x3FF0000000000000, root_of_half = 0x3FE6A09E667F3BCD;
        const bits shifted = bits(x) + (one - root_of_half);
        k = doubles((shifted >> 52) | (bits{} + 0x4330000000000000u)) - (0x1p52 + 1023);
        f = doubles((shifted & 0x000FFFFFFFFFFFFFu) + root_of_half) - 1.0;
    }
    doubles negative() const {
        constexpr double series[] = {0.666666666666667,   0.3999999999989889, 0.28571428626253836,
                                     0.22222211089379496, 0.1818289243253687, 0.15331611722055008,
                                     0.14617807153417325};
        constexpr double ln2_high = 0x1.62e42feep-1; // k ln2_high is exact
        constexpr double ln2_low = 0x1.a39ef35793c76p-33;
        const doubles s = f / (2.0 + f), z = s * s;
        const doubles half_square = 0.5 * f * f;
        const doubles correction = s * (half_square + z * polynomial(z, series)) + k * ln2_low;
        return ((half_square - correction) - f) - k * ln2_high;
    }
};
inline doubles minus_log(doubles x) { return logarithm(x).negative(); }

// -ln(1 - u) for 0 <= u < 1, within 3 ulp. Where u is small it is f itself, with bits that 1 - u has no room for.
inline doubles minus_log_of_rest(doubles u) {
    logarithm l(1.0 - u);
    l.f = u < 0.25 ? -u : l.f;
    return l.negative();
}

// sin(2 pi x) for |x| <= 1/4, within 2 ulp.
inline doubles sin_of_turns(doubles x) {
    constexpr double series[] = {6.283185307179586,  -41.341702240399755, 81.60524927607362,
                                 -76.70585975282492, 42.058693925428685,  -15.0946416761179,
                                 3.8199280942271643, -0.7177337921413454, 0.10089695501646812};
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

// Appends the places of lanes where |2 u - 1| > 0.9 to a list, first being that of lane 0, and returns their
// number. Writes up to 64 bytes.
inline int list_ends(doubles u, int first, int32_t *list) {
    const doubles y = simd::abs(2.0 * (u - 0.5));
#if defined(__AVX512F__)
    const __mmask8 ends = _mm512_cmp_pd_mask(y, doubles{} + middle, _CMP_GT_OQ);
    using places = vec<int32_t>;
    constexpr places lane = {0, 1, 2, 3, 4, 5, 6, 7};
    simd::store(list, places(_mm512_maskz_compress_epi32(ends, __m512i(lane))) + first);
    return __builtin_popcount(ends);
#else
    int n = 0;
    for (int i = 0; i < simd::lanes<double>; ++i) {
        list[n] = first + i;
        n += y[i] > middle;
    }
    return n;
#endif
}

// z[i] with the distribution function u[i], 0 <= u < 1, within 6 ulp. n is a multiple of the lanes, at most
// Most.
template <int Most>
inline void normal_inverse(int n, const double *u, double *z) {
    constexpr int lanes = simd::lanes<double>;
    int32_t list[Most + 16];
    int listed = 0;
    for (int i = 0; i < n; i += lanes) {
        const doubles x = simd::load(u + i);
        simd::store(z + i, normal_inverse_middle(x));
        listed += list_ends(x, i, list + listed);
    }
    for (int i = 0; i < listed; i += lanes) {
        doubles x = doubles{} + 0.5;
        const int here = listed - i < lanes ? listed - i : lanes;
        for (int k = 0; k < here; ++k)
            x[k] = u[list[i + k]];
        x = normal_inverse_ends(x);
        for (int k = 0; k < here; ++k)
            z[list[i + k]] = x[k];
    }
}

} // namespace math
} // namespace
