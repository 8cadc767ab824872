// simd.hpp - vectors for kernels: as wide as the code path allows, with one set of names for all
// paths.
//
// A thin layer over the compilers' vector extensions: + - * / and comparisons work on vec<T> as
// they do on T; the functions below add what the operators lack. Intrinsics stand only where the
// extensions fall short (partial loads and stores). Everything has internal linkage, see
// kernel.hpp.
//
// Partial loads and stores never touch a byte beyond the elements asked for, whatever the
// alignment.
#pragma once

#include <immintrin.h>
#include <type_traits>

#include "serv/kernel.hpp"

namespace {
namespace simd {

using vox::index_t;

#if defined(__AVX512F__)
constexpr int vector_bytes = 64;
#elif defined(__AVX__)
constexpr int vector_bytes = 32;
#else
constexpr int vector_bytes = 16;
#endif

template <class T, int Bytes>
struct vec_of {
    typedef T type __attribute__((vector_size(Bytes)));
    typedef T unaligned __attribute__((vector_size(Bytes), aligned(alignof(T)), may_alias));
};

template <class T>
using vec = typename vec_of<T, vector_bytes>::type;

template <class T>
constexpr int lanes = vector_bytes / int(sizeof(T));

// body(constant<0>), ..., body(constant<N-1>), unrolled before the optimiser sees a loop: an array
// that is indexed only by these constants lives in registers.
template <int I>
struct constant {
    constexpr operator int() const { return I; }
};
template <int N, class Body>
__attribute__((always_inline)) inline void unroll(const Body &body) {
    if constexpr (N > 0) {
        unroll<N - 1>(body);
        body(constant<N - 1>());
    }
}

template <int Bytes = vector_bytes, class T>
inline auto load(const T *p) {
    return typename vec_of<T, Bytes>::type(
        *reinterpret_cast<const typename vec_of<T, Bytes>::unaligned *>(p));
}

template <class T, class V>
inline void store(T *p, V v) {
    *reinterpret_cast<typename vec_of<T, int(sizeof(V))>::unaligned *>(p) = v;
}

template <int Bytes = vector_bytes, class T>
inline auto broadcast(T x) {
    typename vec_of<T, Bytes>::type v;
    for (int i = 0; i < Bytes / int(sizeof(T)); ++i)
        v[i] = x;
    return v;
}

// a b + c, rounded once where the path has the instruction, twice elsewhere.
template <class V>
inline V fma(V a, V b, V c) {
    return a * b + c;
}

// The first n elements (0 <= n < lanes), zeros after them.
#if defined(__AVX512F__)
inline unsigned first_lanes(index_t n) { return _bzhi_u32(~0u, unsigned(n)); }
inline vec<double> load_partial(const double *p, index_t n) {
    return _mm512_maskz_loadu_pd(__mmask8(first_lanes(n)), p);
}
inline vec<float> load_partial(const float *p, index_t n) {
    return _mm512_maskz_loadu_ps(__mmask16(first_lanes(n)), p);
}
inline void store_partial(double *p, vec<double> v, index_t n) {
    _mm512_mask_storeu_pd(p, __mmask8(first_lanes(n)), v);
}
inline void store_partial(float *p, vec<float> v, index_t n) {
    _mm512_mask_storeu_ps(p, __mmask16(first_lanes(n)), v);
}
#elif defined(__AVX__)
// A window of 2 lanes words that starts n words before the edge between ones and zeros.
constexpr long long edge64[8] = {-1, -1, -1, -1, 0, 0, 0, 0};
constexpr int edge32[16] = {-1, -1, -1, -1, -1, -1, -1, -1, 0, 0, 0, 0, 0, 0, 0, 0};
inline __m256i edge_mask(const double *, index_t n) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(edge64 + 4 - n));
}
inline __m256i edge_mask(const float *, index_t n) {
    return _mm256_loadu_si256(reinterpret_cast<const __m256i *>(edge32 + 8 - n));
}
inline vec<double> load_partial(const double *p, index_t n) {
    return _mm256_maskload_pd(p, edge_mask(p, n));
}
inline vec<float> load_partial(const float *p, index_t n) {
    return _mm256_maskload_ps(p, edge_mask(p, n));
}
inline void store_partial(double *p, vec<double> v, index_t n) {
    _mm256_maskstore_pd(p, edge_mask(p, n), v);
}
inline void store_partial(float *p, vec<float> v, index_t n) {
    _mm256_maskstore_ps(p, edge_mask(p, n), v);
}
#else
template <class T>
inline vec<T> load_partial(const T *p, index_t n) {
    vec<T> v{};
    for (int i = 0; i < lanes<T>; ++i)
        if (i < n)
            v[i] = p[i];
    return v;
}
template <class T>
inline void store_partial(T *p, vec<T> v, index_t n) {
    for (int i = 0; i < lanes<T>; ++i)
        if (i < n)
            p[i] = v[i];
}
#endif

// The halves of a vector of 4, 8 or 16 lanes.
template <class V>
inline auto low_half(V v) {
    constexpr int n = int(sizeof(V) / sizeof(v[0]));
    if constexpr (n == 16)
        return __builtin_shufflevector(v, v, 0, 1, 2, 3, 4, 5, 6, 7);
    else if constexpr (n == 8)
        return __builtin_shufflevector(v, v, 0, 1, 2, 3);
    else
        return __builtin_shufflevector(v, v, 0, 1);
}
template <class V>
inline auto high_half(V v) {
    constexpr int n = int(sizeof(V) / sizeof(v[0]));
    if constexpr (n == 16)
        return __builtin_shufflevector(v, v, 8, 9, 10, 11, 12, 13, 14, 15);
    else if constexpr (n == 8)
        return __builtin_shufflevector(v, v, 4, 5, 6, 7);
    else
        return __builtin_shufflevector(v, v, 2, 3);
}

// The sum of all lanes by halving, so its order is the same for every call.
template <class V>
inline auto reduce_add(V v) {
    if constexpr (sizeof(V) == 2 * sizeof(v[0]))
        return v[0] + v[1];
    else
        return reduce_add(low_half(v) + high_half(v));
}

// Complex numbers lie in vectors as pairs of lanes, real part first.

// Each pair exchanged: (re, im) becomes (im, re).
template <class V>
inline V swap_pairs(V v) {
    constexpr int n = int(sizeof(V) / sizeof(v[0]));
    if constexpr (n == 16)
        return __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6, 9, 8, 11, 10, 13, 12, 15, 14);
    else if constexpr (n == 8)
        return __builtin_shufflevector(v, v, 1, 0, 3, 2, 5, 4, 7, 6);
    else if constexpr (n == 4)
        return __builtin_shufflevector(v, v, 1, 0, 3, 2);
    else
        return __builtin_shufflevector(v, v, 1, 0);
}

// (even, odd, even, odd, ...).
template <int Bytes = vector_bytes, class T>
inline auto broadcast_pair(T even, T odd) {
    typename vec_of<T, Bytes>::type v;
    for (int i = 0; i < Bytes / int(sizeof(T)); i += 2) {
        v[i] = even;
        v[i + 1] = odd;
    }
    return v;
}

// The sums of the even and of the odd lanes, by halving.
template <class T>
struct pair_sum {
    T even, odd;
};
template <class V>
inline auto reduce_add_pairs(V v) {
    if constexpr (sizeof(V) == 2 * sizeof(v[0])) {
        return pair_sum<std::remove_reference_t<decltype(v[0])>>{v[0], v[1]};
    } else if constexpr (sizeof(V) == 4 * sizeof(v[0])) {
        return pair_sum<std::remove_reference_t<decltype(v[0])>>{v[0] + v[2], v[1] + v[3]};
    } else {
        return reduce_add_pairs(low_half(v) + high_half(v));
    }
}

} // namespace simd
} // namespace
