// estimates.hpp - the processor's estimates of 1/x and 1/sqrt(x), from which Newton's iteration starts.
//
// With AVX-512 their relative error is at most 2^-14 in both precisions, and subnormal arguments have them too.
// Elsewhere it is at most 1.5 2^-12, in single precision only, and subnormal numbers are taken for zeros, as arguments
// and as results.
#pragma once

#include "vm/kernels/loops.hpp"

namespace {
namespace vm {

#if defined(__AVX512F__)
template <class T>
constexpr bool has_estimates = true;
constexpr bool good_estimates = true;

inline vec<double> inverse_estimate(vec<double> x) { return _mm512_maskz_rcp14_pd(0xFF, x); }
inline vec<float> inverse_estimate(vec<float> x) { return _mm512_maskz_rcp14_ps(0xFFFF, x); }
// 0 where `valid` is not set.
inline vec<double> inverse_root_estimate(vec<double> x, mask<double> valid = 0xFF) {
    return _mm512_maskz_rsqrt14_pd(valid, x);
}
inline vec<float> inverse_root_estimate(vec<float> x, mask<float> valid = 0xFFFF) {
    return _mm512_maskz_rsqrt14_ps(valid, x);
}
#else
template <class T>
constexpr bool has_estimates = sizeof(T) == 4;
constexpr bool good_estimates = false;

#if defined(__AVX__)
inline vec<float> inverse_estimate(vec<float> x) { return _mm256_rcp_ps(x); }
inline vec<float> inverse_root_estimate(vec<float> x) { return _mm256_rsqrt_ps(x); }
#else
inline vec<float> inverse_estimate(vec<float> x) { return _mm_rcp_ps(x); }
inline vec<float> inverse_root_estimate(vec<float> x) { return _mm_rsqrt_ps(x); }
#endif
inline vec<float> inverse_root_estimate(vec<float> x, mask<float> valid) {
    return vec<float>(mask<float>(inverse_root_estimate(x)) & valid);
}
#endif

#if defined(__AVX512F__)
inline vec<double> sqrt(vec<double> x) { return _mm512_maskz_sqrt_pd(0xFF, x); }
inline vec<float> sqrt(vec<float> x) { return _mm512_maskz_sqrt_ps(0xFFFF, x); }
#elif defined(__AVX__)
inline vec<double> sqrt(vec<double> x) { return _mm256_sqrt_pd(x); }
inline vec<float> sqrt(vec<float> x) { return _mm256_sqrt_ps(x); }
#else
inline vec<double> sqrt(vec<double> x) { return _mm_sqrt_pd(x); }
inline vec<float> sqrt(vec<float> x) { return _mm_sqrt_ps(x); }
#endif

// a - b c, rounded once where the path has the instruction.
template <class V>
inline V fnma(V b, V c, V a) {
    return fma(-b, c, a);
}

} // namespace vm
} // namespace
