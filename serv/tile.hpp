// tile.hpp - the smallest piece of a transposition, in registers, and stores past the caches: what kernels share
// that move elements about.
//
// Vectors are put together from 128-bit lanes of several rows as they are loaded, which costs no
// shuffle, so only 4 x 4 or 2 x 2 blocks within lanes are left to transpose: 2 or 1 shuffles a vector.
// Elements are moved as floats or doubles of their size, whatever they mean.
#pragma once

#include "serv/simd.hpp"

#define VOX_INLINE __attribute__((always_inline)) inline
// Compiled once for all callers. What it is given is its own: behind a reference, any store might change it.
#define VOX_APART __attribute__((noinline))

namespace {
namespace simd {

// Elements of a 128-bit lane and of a cache line.
template <class T>
constexpr int per_lane = 16 / int(sizeof(T));
template <class T>
constexpr int per_line = 64 / int(sizeof(T));

// Lanes of a tile's vectors. Elements of four bytes take most shuffles, and processors with 256-bit data
// paths get two of 256 bits done in less time than one of 512 (up to a fifth of the whole).
template <class T>
constexpr int tile_lanes = sizeof(T) == 4 && vector_bytes == 64 ? 2 : vector_bytes / 16;
template <class T>
constexpr int tile_rows = tile_lanes<T> *per_lane<T>;

// Two vectors as one of twice the size.
template <class V, int... I>
VOX_INLINE auto join(V low, V high, std::integer_sequence<int, I...>) {
    return __builtin_shufflevector(low, high, I...);
}
#if defined(__AVX__) // gcc would load first and shuffle then
template <class R>
VOX_INLINE auto join_lanes(const R *low, const R *high) {
    return typename vec_of<R, 32>::type(_mm256_insertf128_ps(
        _mm256_castps128_ps256(__m128(load<16>(low))), __m128(load<16>(high)), 1));
}
#endif

// Lanes from at(First), at(First + 1), ...
template <int Lanes, int First = 0, class At>
VOX_INLINE auto load_lanes(const At &at) {
    if constexpr (Lanes == 1)
        return load<16>(at(constant<First>()));
#if defined(__AVX__)
    else if constexpr (Lanes == 2)
        return join_lanes(at(constant<First>()), at(constant<First + 1>()));
    else
        return join(load_lanes<2, First>(at), load_lanes<2, First + 2>(at),
                    std::make_integer_sequence<int, 64 / int(sizeof(*at(constant<First>())))>());
#endif
}

// Of two vectors' lanes the first halves, or the second ones, in turn: a0 b0 a1 b1, or a2 b2 a3 b3.
template <int High, class V, int... I>
VOX_INLINE V unpack(V a, V b, std::integer_sequence<int, I...>) {
    constexpr int n = int(sizeof...(I)), lane = 16 / int(sizeof(a[0]));
    return __builtin_shufflevector(
        a, b, (I / lane * lane + I % lane / 2 + High * (lane / 2) + I % 2 * n)...);
}
template <int High, class V>
VOX_INLINE V unpack(V a, V b) {
    return unpack<High>(a, b, std::make_integer_sequence<int, int(sizeof(V) / sizeof(a[0]))>());
}
// The same with pairs of floats.
template <int High, class V>
VOX_INLINE V unpack_pairs(V a, V b) {
    using pairs = typename vec_of<double, int(sizeof(V))>::type;
    return V(unpack<High>(pairs(a), pairs(b)));
}

// Each lane's block of per_lane x per_lane elements.
template <class V>
VOX_INLINE void transpose_lanes(V (&v)[4]) {
    const V a = unpack<0>(v[0], v[1]), b = unpack<1>(v[0], v[1]);
    const V c = unpack<0>(v[2], v[3]), d = unpack<1>(v[2], v[3]);
    v[0] = unpack_pairs<0>(a, c);
    v[1] = unpack_pairs<1>(a, c);
    v[2] = unpack_pairs<0>(b, d);
    v[3] = unpack_pairs<1>(b, d);
}
template <class V>
VOX_INLINE void transpose_lanes(V (&v)[2]) {
    const V a = v[0];
    v[0] = unpack<0>(a, v[1]);
    v[1] = unpack<1>(a, v[1]);
}
template <class V>
VOX_INLINE void transpose_lanes(V (&)[1]) {}

// Results of so many bytes leave the last-level cache soon anyway, and a line that is written whole need
// not be read first. Measured with 32 MB of cache, transposes: from 16 MB on 1.5 to 2.5 times as fast as
// through the caches; at 8 MB from 0.9 to 1.6 times, by what else the cache holds; at 4 MB 0.7 times.
constexpr index_t streamed_bytes = 10 * 1024 * 1024;

// Elements between the start of p's line and p, or -1 if elements straddle lines.
template <class T>
VOX_INLINE int place_in_line(const T *p) {
    const int bytes = int(reinterpret_cast<uintptr_t>(p) % 64);
    return bytes % int(sizeof(T)) ? -1 : bytes / int(sizeof(T));
}

// A vector of the path's width to an aligned address.
template <class R>
VOX_INLINE void stream_vector(R *p, vec<R> v) {
#if defined(__AVX512F__)
    _mm512_stream_ps(reinterpret_cast<float *>(p), __m512(v));
#else
    stream(p, v);
#endif
}

// A line from one aligned address to another.
template <class R>
VOX_INLINE void stream_line(R *to, const R *from) {
    constexpr int n = 16 / int(sizeof(R)), w = stream_bytes / int(sizeof(R));
    unroll<4 * n / w>([&](auto l)
                          VOX_INLINED { stream(to + l * w, load<stream_bytes>(from + l * w)); });
}

} // namespace simd
} // namespace
