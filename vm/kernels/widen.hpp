// widen.hpp - floats, and integers of 32 bits, as two vectors of doubles, and back.
#pragma once

#include "vm/kernels/masks.hpp"

namespace {
namespace vm {

#if defined(__AVX512F__)
inline vec<double> widen_low(vec<float> x) {
    return _mm512_maskz_cvtps_pd(0xFF, __m256(simd::low_half(x))); // gcc warns about the plain one
}
inline vec<double> widen_high(vec<float> x) {
    return _mm512_maskz_cvtps_pd(0xFF, __m256(simd::high_half(x)));
}
inline vec<float> narrow(vec<double> low, vec<double> high) {
    const __m256d l = __m256d(_mm512_maskz_cvtpd_ps(0xFF, low)),
                  h = __m256d(_mm512_maskz_cvtpd_ps(0xFF, high));
    return vec<float>(__builtin_shufflevector(l, h, 0, 1, 2, 3, 4, 5, 6, 7));
}
inline mask<float> narrow_masks(mask<double> low, mask<double> high) {
    return mask<float>(low | high << 8);
}
#elif defined(__AVX__)
inline vec<double> widen_low(vec<int32_t> i) {
    return _mm256_cvtepi32_pd(_mm256_castsi256_si128(__m256i(i)));
}
inline vec<double> widen_high(vec<int32_t> i) {
    return _mm256_cvtepi32_pd(_mm256_extractf128_si256(__m256i(i), 1));
}
inline vec<double> widen_low(vec<float> x) { return _mm256_cvtps_pd(_mm256_castps256_ps128(x)); }
inline vec<double> widen_high(vec<float> x) { return _mm256_cvtps_pd(_mm256_extractf128_ps(x, 1)); }
inline vec<float> narrow(vec<double> low, vec<double> high) {
    return _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(low)), _mm256_cvtpd_ps(high),
                                1);
}
inline mask<float> narrow_masks(mask<double> low, mask<double> high) {
    const auto half = [](mask<double> m) {
        const __m256 words = __m256(m);
        return _mm_shuffle_ps(_mm256_castps256_ps128(words), _mm256_extractf128_ps(words, 1), 0x88);
    };
    return mask<float>(_mm256_insertf128_ps(_mm256_castps128_ps256(half(low)), half(high), 1));
}
#else
// By an instruction whose result depends on nothing else; gcc would take movhlps.
template <class V>
inline __m128i high_pair(V v) {
    return _mm_shuffle_epi32(__m128i(v), 0xEE);
}
inline vec<double> widen_low(vec<int32_t> i) { return _mm_cvtepi32_pd(__m128i(i)); }
inline vec<double> widen_high(vec<int32_t> i) { return _mm_cvtepi32_pd(high_pair(i)); }
inline vec<double> widen_low(vec<float> x) { return _mm_cvtps_pd(x); }
inline vec<double> widen_high(vec<float> x) { return _mm_cvtps_pd(vec<float>(high_pair(x))); }
inline vec<float> narrow(vec<double> low, vec<double> high) {
    return _mm_movelh_ps(_mm_cvtpd_ps(low), _mm_cvtpd_ps(high));
}
inline mask<float> narrow_masks(mask<double> low, mask<double> high) {
    return mask<float>(_mm_shuffle_ps(__m128(low), __m128(high), 0x88));
}
#endif

} // namespace vm
} // namespace
