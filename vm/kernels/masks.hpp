// masks.hpp - comparisons and choices of vectors, and fused multiplication.
//
// A mask has one truth value a lane: a mask register with AVX-512, else a vector of ones and zeros. & | work on
// both; mask_not, select and the functions below do what else is needed. Comparisons are those of C: with a NaN
// all but not_equal are false.
#pragma once

#include "serv/simd.hpp"

namespace {
namespace vm {

using simd::index_t;
using simd::lanes;
using simd::vec;

template <class V>
using element = std::remove_cvref_t<decltype(V{}[0])>;

#if defined(__AVX512F__)
template <class T>
struct mask_type;
template <>
struct mask_type<double> {
    using type = __mmask8;
};
template <>
struct mask_type<float> {
    using type = __mmask16;
};
template <class T>
using mask = typename mask_type<T>::type;

#define VM_COMPARISON(name, predicate)                                                             \
    inline __mmask8 name(vec<double> a, vec<double> b) {                                           \
        return _mm512_cmp_pd_mask(a, b, predicate);                                                \
    }                                                                                              \
    inline __mmask16 name(vec<float> a, vec<float> b) {                                            \
        return _mm512_cmp_ps_mask(a, b, predicate);                                                \
    }
VM_COMPARISON(equal, _CMP_EQ_OQ)
VM_COMPARISON(not_equal, _CMP_NEQ_UQ)
VM_COMPARISON(less, _CMP_LT_OQ)
VM_COMPARISON(not_less, _CMP_NLT_UQ) // true with a NaN
VM_COMPARISON(less_equal, _CMP_LE_OQ)
VM_COMPARISON(not_less_equal, _CMP_NLE_UQ) // true with a NaN
#undef VM_COMPARISON

template <class T>
constexpr mask<T> no_lane = 0;
template <class M>
inline M mask_not(M m) {
    return M(~m);
}
// Bit i: lane i.
inline unsigned lane_bits(__mmask8 m) { return m; }
inline unsigned lane_bits(__mmask16 m) { return m; }
#if defined(__AVX512DQ__) // in mask registers, which gcc would leave
inline __mmask8 either(__mmask8 a, __mmask8 b) { return _kor_mask8(a, b); }
inline bool any_lane(__mmask8 m) { return !_kortestz_mask8_u8(m, m); }
#else
inline __mmask8 either(__mmask8 a, __mmask8 b) { return a | b; }
inline bool any_lane(__mmask8 m) { return m != 0; }
#endif
inline __mmask16 either(__mmask16 a, __mmask16 b) { return _mm512_kor(a, b); }
inline bool any_lane(__mmask16 m) { return !_mm512_kortestz(m, m); }

inline vec<double> select(__mmask8 m, vec<double> yes, vec<double> no) {
    return _mm512_mask_blend_pd(m, no, yes);
}
inline vec<float> select(__mmask16 m, vec<float> yes, vec<float> no) {
    return _mm512_mask_blend_ps(m, no, yes);
}
#else
template <class T>
using mask = decltype(vec<T>{} < vec<T>{});

// Instructions, since gcc takes ~(a < b) of 64-bit lanes apart.
#if defined(__AVX__)
#define VM_COMPARISON(name, sse, avx)                                                              \
    inline mask<double> name(vec<double> a, vec<double> b) {                                       \
        return mask<double>(_mm256_cmp_pd(a, b, avx));                                             \
    }                                                                                              \
    inline mask<float> name(vec<float> a, vec<float> b) {                                          \
        return mask<float>(_mm256_cmp_ps(a, b, avx));                                              \
    }
#else
#define VM_COMPARISON(name, sse, avx)                                                              \
    inline mask<double> name(vec<double> a, vec<double> b) {                                       \
        return mask<double>(_mm_cmp##sse##_pd(a, b));                                              \
    }                                                                                              \
    inline mask<float> name(vec<float> a, vec<float> b) {                                          \
        return mask<float>(_mm_cmp##sse##_ps(a, b));                                               \
    }
#endif
VM_COMPARISON(equal, eq, _CMP_EQ_OQ)
VM_COMPARISON(not_equal, neq, _CMP_NEQ_UQ)
VM_COMPARISON(less, lt, _CMP_LT_OQ)
VM_COMPARISON(not_less, nlt, _CMP_NLT_UQ)
VM_COMPARISON(less_equal, le, _CMP_LE_OQ)
VM_COMPARISON(not_less_equal, nle, _CMP_NLE_UQ)
#undef VM_COMPARISON

template <class T>
constexpr mask<T> no_lane = {};
template <class M>
inline M mask_not(M m) {
    return ~m;
}
inline unsigned lane_bits(mask<double> m) {
#if defined(__AVX__)
    return unsigned(_mm256_movemask_pd(__m256d(m)));
#else
    return unsigned(_mm_movemask_pd(__m128d(m)));
#endif
}
inline unsigned lane_bits(mask<float> m) {
#if defined(__AVX__)
    return unsigned(_mm256_movemask_ps(__m256(m)));
#else
    return unsigned(_mm_movemask_ps(__m128(m)));
#endif
}
template <class M>
inline M either(M a, M b) {
    return a | b;
}
template <class M>
inline bool any_lane(M m) {
    using T = std::conditional_t<sizeof(m[0]) == 8, double, float>;
    return lane_bits(mask<T>(m)) != 0;
}
template <class M, class V>
inline V select(M m, V yes, V no) {
    return m ? yes : no;
}
#endif

// The lesser and the greater, or b where one is no number.
#if defined(__AVX512F__)
#define VM_CHOICE(name)                                                                            \
    inline vec<double> name(vec<double> a, vec<double> b) {                                        \
        return _mm512_maskz_##name##_pd(0xFF, a, b);                                               \
    }                                                                                              \
    inline vec<float> name(vec<float> a, vec<float> b) {                                           \
        return _mm512_maskz_##name##_ps(0xFFFF, a, b);                                             \
    }
#elif defined(__AVX__)
#define VM_CHOICE(name)                                                                            \
    inline vec<double> name(vec<double> a, vec<double> b) { return _mm256_##name##_pd(a, b); }     \
    inline vec<float> name(vec<float> a, vec<float> b) { return _mm256_##name##_ps(a, b); }
#else
#define VM_CHOICE(name)                                                                            \
    inline vec<double> name(vec<double> a, vec<double> b) { return _mm_##name##_pd(a, b); }        \
    inline vec<float> name(vec<float> a, vec<float> b) { return _mm_##name##_ps(a, b); }
#endif
VM_CHOICE(min)
VM_CHOICE(max)
#undef VM_CHOICE

// a b + c and its relatives. fused: rounded once; else twice. Kernels are compiled without contraction, so
// nothing else is fused.
#if defined(__FMA__)
constexpr bool fused = true;
#if defined(__AVX512F__)
inline vec<double> fma(vec<double> a, vec<double> b, vec<double> c) {
    return _mm512_fmadd_pd(a, b, c);
}
inline vec<float> fma(vec<float> a, vec<float> b, vec<float> c) { return _mm512_fmadd_ps(a, b, c); }
#else
inline vec<double> fma(vec<double> a, vec<double> b, vec<double> c) {
    return _mm256_fmadd_pd(a, b, c);
}
inline vec<float> fma(vec<float> a, vec<float> b, vec<float> c) { return _mm256_fmadd_ps(a, b, c); }
#endif
#else
constexpr bool fused = false;
template <class V>
inline V fma(V a, V b, V c) {
    return a * b + c;
}
#endif

// Numbers below the normal range, but for zeros.
#if defined(__AVX512DQ__)
inline __mmask8 subnormal(vec<double> v) { return _mm512_fpclass_pd_mask(v, 0x20); }
inline __mmask16 subnormal(vec<float> v) { return _mm512_fpclass_ps_mask(v, 0x20); }
#else
template <class V>
inline auto subnormal(V v) {
    constexpr double least = sizeof(v[0]) == 4 ? __FLT_MIN__ : __DBL_MIN__;
    const V magnitude = simd::abs(v);
    using T = std::remove_cvref_t<decltype(v[0])>;
    return mask<T>(less(V{}, magnitude) & less(magnitude, V{} + T(least)));
}
#endif

// A number that is not negative, with the sign of another.
template <class V>
inline V with_sign(V magnitude, V sign) {
    using B = decltype(V{} < V{});
    return V(B(magnitude) | (B(sign) & B(-V{})));
}

} // namespace vm
} // namespace
