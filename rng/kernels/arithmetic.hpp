// arithmetic.hpp - what kernels of linear generators compute with: whole numbers in vectors of doubles or of 64
// bits.
#pragma once

#include "rng/kernels/outputs.hpp"

namespace {
namespace arithmetic {

using output::longs;
using simd::vec;

// a b + c where it does not matter whether the product is rounded before: it is exact, or what follows does not
// depend on the last bit.
template <class T>
inline T multiply_add(T a, T b, T c) {
#if defined(__AVX512F__)
    if constexpr (sizeof(T) == 64)
        return _mm512_fmadd_pd(a, b, c);
#elif defined(__FMA__)
    if constexpr (sizeof(T) == 32)
        return _mm256_fmadd_pd(a, b, c);
#endif
    return a * b + c;
}

// The nearest whole number, |x| < 2^51.
template <class T>
inline T nearest(T x) {
    constexpr double shift = 0x1.8p52;
    return (x + shift) - shift;
}

// The same for x of any size where there is an instruction.
template <class T>
inline T floor(T x) {
#if defined(__AVX512F__)
    if constexpr (sizeof(T) == 64)
        return _mm512_maskz_roundscale_pd(0xFF, x, _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC);
#elif defined(__AVX__)
    if constexpr (sizeof(T) == 32)
        return _mm256_floor_pd(x);
#elif defined(__SSE4_1__)
    if constexpr (sizeof(T) == 16)
        return _mm_floor_pd(x);
#endif
    const T whole = nearest(x);
    return whole > x ? whole - 1.0 : whole;
}

// The products of the lower halves of all lanes.
inline uint64_t multiply_halves(uint64_t a, uint64_t b) { return a * b; }
inline longs multiply_halves(longs a, longs b) {
#if defined(__AVX512F__)
    return longs(_mm512_maskz_mul_epu32(0xFF, __m512i(a), __m512i(b)));
#elif defined(__AVX2__)
    return longs(_mm256_mul_epu32(__m256i(a), __m256i(b)));
#else
    return longs(_mm_mul_epu32(__m128i(a), __m128i(b)));
#endif
}

} // namespace arithmetic
} // namespace
