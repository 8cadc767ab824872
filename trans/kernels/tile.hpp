// tile.hpp - the smallest piece of a transposition, in registers.
//
// Vectors are put together from 128-bit lanes of several rows as they are loaded, which costs no
// shuffle, so only 4 x 4 or 2 x 2 blocks within lanes are left to transpose: 2 or 1 shuffles a vector.
#pragma once

#include "trans/kernels/operations.hpp"

namespace {
namespace trans {

// Elements of a 128-bit lane and of a cache line.
template <class T>
constexpr int per_lane = 16 / int(sizeof(T));
template <class T>
constexpr int per_line = 64 / int(sizeof(T));

// Lanes of a tile's vectors. Elements of four bytes take most shuffles, and processors with 256-bit data
// paths get two of 256 bits done in less time than one of 512 (up to a fifth of the whole).
template <class T>
constexpr int lanes = sizeof(T) == 4 && vector_bytes == 64 ? 2 : vector_bytes / 16;
template <class T>
constexpr int tile_rows = lanes<T> *per_lane<T>;

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

// Lanes from p, p + step, p + 2 step, ...
template <int Lanes, class R>
VOX_INLINE auto load_lanes(const R *p, [[maybe_unused]] index_t step) {
    if constexpr (Lanes == 1)
        return load<16>(p);
#if defined(__AVX__)
    else if constexpr (Lanes == 2)
        return join_lanes(p, p + step);
    else
        return join(load_lanes<2>(p, step), load_lanes<2>(p + 2 * step, step),
                    std::make_integer_sequence<int, 64 / int(sizeof(R))>());
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

// op(per_lane columns of A), Lanes per_lane rows of them; put(c, v) takes the c-th column.
template <int Lanes, class T, class Op, class Put>
VOX_INLINE void tile(const Op &op, const T *a, index_t lda, const Put &put) {
    using R = mover<T>;
    constexpr int k = per_lane<T>;
    typename vec_of<R, 16 * Lanes>::type v[k];
    unroll<k>([&](auto r) VOX_INLINED {
        v[r] = op(load_lanes<Lanes>(flat(a + r * lda), k * lda * parts<T>));
    });
    transpose_lanes(v);
    unroll<k>([&](auto c) VOX_INLINED { put(c, v[c]); });
}

} // namespace trans
} // namespace
