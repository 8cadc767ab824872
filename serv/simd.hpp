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

#if defined(__AVX__)
#include <immintrin.h>
#else
#include <nmmintrin.h> // which compilers read in a tenth of the time
#endif
#include <utility>

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
template <class Body, int... I>
__attribute__((always_inline)) inline void unroll(const Body &body,
                                                  std::integer_sequence<int, I...>) {
    (body(constant<I>()), ...);
}
template <int N, class Body>
__attribute__((always_inline)) inline void unroll(const Body &body) {
    unroll(body, std::make_integer_sequence<int, N>());
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

// Stores to an address aligned to the vector, past the caches; streaming_done() before anyone else may
// look.
#if defined(__AVX__)
constexpr int stream_bytes = 32;
template <class T, class V>
inline void stream(T *p, V v) {
    _mm256_stream_ps(reinterpret_cast<float *>(p), (__m256)(v));
}
#else
constexpr int stream_bytes = 16;
template <class T, class V>
inline void stream(T *p, V v) {
    _mm_stream_ps(reinterpret_cast<float *>(p), (__m128)(v));
}
#endif
inline void streaming_done() { _mm_sfence(); }

// Written out, since the compilers make an insertion per lane of a loop.
template <int Bytes = vector_bytes, class T>
inline auto broadcast_pair(T even, T odd) {
    using V = typename vec_of<T, Bytes>::type;
    constexpr int n = Bytes / int(sizeof(T));
    const T a = even, b = odd;
    if constexpr (n == 16)
        return V{a, b, a, b, a, b, a, b, a, b, a, b, a, b, a, b};
    else if constexpr (n == 8)
        return V{a, b, a, b, a, b, a, b};
    else if constexpr (n == 4)
        return V{a, b, a, b};
    else
        return V{a, b};
}
template <int Bytes = vector_bytes, class T>
inline auto broadcast(T x) {
    return broadcast_pair<Bytes>(x, x);
}

// v, in a register from here on: gcc would otherwise load it again for its second use.
template <class V>
inline V in_register(V v) {
#if defined(__clang__) // does not need it, and refuses vectors of 8 bytes
#elif defined(__AVX512F__)
    __asm__("" : "+v"(v));
#else
    __asm__("" : "+x"(v));
#endif
    return v;
}

// An array that stays one: gcc would otherwise take it apart, at the price of a shuffle an element.
template <class A>
inline void in_memory(A &array) {
    __asm__("" : "+m"(array));
}

// In a loop of very few rounds: keeps the compiler from making vectors of it.
inline void stay_scalar() { __asm__ volatile(""); }

// a b + c, rounded once where the path has the instruction, twice elsewhere.
template <class V>
inline V fma(V a, V b, V c) {
    return a * b + c;
}

// |v|, for scalars too.
template <class V>
inline V abs(V v) {
    if constexpr (std::is_same_v<V, float>) {
        return __builtin_fabsf(v);
    } else if constexpr (std::is_same_v<V, double>) {
        return __builtin_fabs(v);
    } else {
        using bits = decltype(v < v);
        constexpr auto magnitude = sizeof(v[0]) == 8 ? ~0ull >> 1 : ~0u >> 1;
        return V(bits(v) & (bits{} + std::remove_reference_t<decltype(bits{}[0])>(magnitude)));
    }
}

// As many elements as Bytes bytes of A hold, converted to A.
template <class A, int Bytes = vector_bytes, class T>
inline auto load_as(const T *p) {
    if constexpr (std::is_same_v<A, T>)
        return load<Bytes>(p);
    else if constexpr (Bytes == 16) // gcc would convert one by one
        return typename vec_of<A, 16>::type(
            _mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(p)))));
    else
        return __builtin_convertvector(load<Bytes *int(sizeof(T)) / int(sizeof(A))>(p),
                                       typename vec_of<A, Bytes>::type);
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

// load_as for the first n elements (0 <= n < lanes<A>).
template <class A, class T>
inline vec<A> load_partial_as(const T *p, index_t n) {
    if constexpr (std::is_same_v<A, T>)
        return load_partial(p, n);
    else if constexpr (vector_bytes == 16)
        return vec<A>(_mm_cvtps_pd(load_partial(p, n)));
    else
        return __builtin_convertvector(low_half(load_partial(p, n)), vec<A>);
}

// The sum of all lanes by halving, so its order is the same for every call.
template <class V>
inline auto reduce_add(V v) {
    if constexpr (sizeof(V) == 2 * sizeof(v[0]))
        return v[0] + v[1];
    else
        return reduce_add(low_half(v) + high_half(v));
}

// Bit i is set where lane i of both is equal.
#if defined(__AVX512F__)
inline unsigned equal_lanes(vec<double> a, vec<double> b) {
    return _mm512_cmp_pd_mask(a, b, _CMP_EQ_OQ);
}
inline unsigned equal_lanes(vec<float> a, vec<float> b) {
    return _mm512_cmp_ps_mask(a, b, _CMP_EQ_OQ);
}
#elif defined(__AVX__)
inline unsigned equal_lanes(vec<double> a, vec<double> b) {
    return unsigned(_mm256_movemask_pd(_mm256_cmp_pd(a, b, _CMP_EQ_OQ)));
}
inline unsigned equal_lanes(vec<float> a, vec<float> b) {
    return unsigned(_mm256_movemask_ps(_mm256_cmp_ps(a, b, _CMP_EQ_OQ)));
}
#else
inline unsigned equal_lanes(vec<double> a, vec<double> b) {
    return unsigned(_mm_movemask_pd(_mm_cmpeq_pd(a, b)));
}
inline unsigned equal_lanes(vec<float> a, vec<float> b) {
    return unsigned(_mm_movemask_ps(_mm_cmpeq_ps(a, b)));
}
#endif

// v in the first n lanes, other in the rest.
template <class V>
inline V select_first(index_t n, V v, V other) {
    using counts = decltype(v < v);
    counts lane;
    for (int i = 0; i < int(sizeof(V) / sizeof(v[0])); ++i)
        lane[i] = i;
    return lane < std::remove_reference_t<decltype(lane[0])>(n) ? v : other;
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

// The even lanes, each twice, and the odd ones: real and imaginary parts.
template <class V, int... I>
inline V twice(V v, int odd, std::integer_sequence<int, I...>) {
    return odd ? __builtin_shufflevector(v, v, (I | 1)...)
               : __builtin_shufflevector(v, v, (I & ~1)...);
}
template <class V>
inline V even_twice(V v) {
    return twice(v, 0, std::make_integer_sequence<int, int(sizeof(V) / sizeof(v[0]))>());
}
template <class V>
inline V odd_twice(V v) {
    return twice(v, 1, std::make_integer_sequence<int, int(sizeof(V) / sizeof(v[0]))>());
}

// Sums of neighbouring blocks of G lanes, of a and of b in turn: a0 + a1, b0 + b1, a2 + a3, ...
template <int G, class V, int... I>
inline V mix(V a, V b, std::integer_sequence<int, I...>) {
    constexpr int n = int(sizeof...(I));
    return __builtin_shufflevector(a, b, ((I / G % 2) * n + I / (2 * G) * 2 * G + I % G)...) +
           __builtin_shufflevector(a, b, ((I / G % 2) * n + I / (2 * G) * 2 * G + G + I % G)...);
}

// out[k] = the sum of all lanes of v[k]; for G = 2, the sums of the even and of the odd ones, and so
// on. Together, since K sums cost few shuffles more than one.
template <int K, int G = 1, class V, class R>
inline void reduce_add_all(const V (&v)[K], R *out) {
    constexpr int n = int(sizeof(V) / sizeof(R));
    if constexpr (K == 1) {
        if constexpr (n == G) {
            store(out, v[0]);
        } else if constexpr (n == 2) {
            *out = v[0][0] + v[0][1];
        } else {
            using half = decltype(low_half(v[0]));
            const half folded[1] = {low_half(v[0]) + high_half(v[0])};
            reduce_add_all<1, G>(folded, out);
        }
    } else if constexpr (G == n) {
        unroll<K>([&](auto k) { store(out + k * G, v[k]); });
    } else {
        static_assert(K % 2 == 0);
        V mixed[K / 2];
        unroll<K / 2>([&](auto k) {
            mixed[k] = mix<G>(v[2 * k], v[2 * k + 1], std::make_integer_sequence<int, n>());
        });
        reduce_add_all<K / 2, 2 * G>(mixed, out);
    }
}

} // namespace simd
} // namespace
