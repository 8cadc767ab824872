// outputs.hpp - what becomes of the numbers that a generator makes: words as they are, or uniforms.
//
// A generator's kernel is one function template, generate(state, n, out): it makes vectors of its natural
// values and gives each to out, then the rest, fewer than a vector.
//
//   out.put(v)          all lanes of v
//   out.put_first(v, k) its first k lanes, 0 <= k < lanes
//   out.at(i)           the same output from i numbers on
//
// The type of output is made of a kind of value: `vector`, the values as they come from the generator;
// word(v), the integer output; unit(v, T(), store), which calls store with vec<T> of u in [0, 1) for all
// lanes in order. VOX_BRNG_KERNELS makes the three routines from them.
//
// A kind may leave a power of two to uniforms: with scale(T()), u is what unit gives times that. It is then
// multiplied into b - a beforehand, which is exact unless |b - a| is next to nothing (2^-990). A kind that is bound
// by arithmetic says unit_apart: doubles in [0, 1) are then u as it is, which a + (b - a) u would be as well.
//
// Results must be the same in all kernel sets, so kernels are compiled without contraction of products and
// sums, and what is rounded is rounded once in each of them: u is exact or one rounding, then a + (b - a) u
// two more.
#pragma once

#include "rng/stream.hpp"
#include "serv/simd.hpp"

namespace {
namespace output {

using simd::lanes;
using simd::vec;
using vox::index_t;

// Vectors of 32-bit words: a path without 256-bit integers works on halves.
#if defined(__AVX__) && !defined(__AVX2__)
constexpr int integer_bytes = 16;
#else
constexpr int integer_bytes = simd::vector_bytes;
#endif
using words = typename simd::vec_of<uint32_t, integer_bytes>::type;
constexpr int word_lanes = integer_bytes / 4;
using longs = typename simd::vec_of<uint64_t, integer_bytes>::type;

// How many values a vector has: a structure that is one says so itself.
template <class V>
constexpr int lanes_of() {
    if constexpr (requires { V::lanes; })
        return V::lanes;
    else
        return sizeof(V) / sizeof(std::declval<V>()[0]);
}

// The first k elements of an array on the stack: what a vector is cut through.
template <class T, int N>
inline void copy_first(T *to, const T (&from)[N], int k) {
    for (int i = 0; i < k; ++i) {
        to[i] = from[i];
        simd::stay_scalar();
    }
}

template <class Kind>
struct integers {
    using word = typename Kind::word_type;
    word *r;

    template <class V>
    void put(V v) {
        Kind::word(v, [&](auto w) {
            __builtin_memcpy(r, &w, sizeof w);
            r += sizeof(w) / sizeof(word);
        });
    }
    template <class V>
    void put_first(V v, int k) {
        word all[lanes_of<V>()];
        integers{all}.put(v);
        copy_first(r, all, k);
        r += k;
    }
    integers at(index_t i) const { return {r + i}; }
};

template <class Kind>
constexpr bool unit_apart = requires {
    Kind::unit_apart;
};

template <class Kind, class T, bool IsUnit = false>
struct uniforms {
    T *r;
    T a, width;

    static uniforms between(T *r, T a, T b) {
        if constexpr (requires { Kind::scale(T()); })
            return {r, a, (b - a) * Kind::scale(T())};
        else
            return {r, a, b - a};
    }

    template <class V>
    void put(V v) {
        Kind::unit(v, T(), [&](auto u) {
            if constexpr (IsUnit)
                simd::store(r, u);
            else
                simd::store(r, a + width * u);
            r += sizeof(u) / sizeof(T);
        });
    }
    template <class V>
    void put_first(V v, int k) {
        T all[lanes_of<V>()];
        uniforms{all, a, width}.put(v);
        copy_first(r, all, k);
        r += k;
    }
    uniforms at(index_t i) const { return {r + i, a, width}; }
};

// The halves of a vector of words as doubles, exactly: the word becomes the mantissa of 2^52 + w.
template <class Store>
inline void to_doubles(words w, Store store) {
    const auto part = [&](auto half) {
#if defined(__AVX512F__)
        // Compilers would convert signed integers. Masked, since gcc warns of what the plain form leaves open.
        store(vec<double>(_mm512_maskz_cvtepu32_pd(0xFF, __m256i(half))));
#else
        using doubles = typename simd::vec_of<double, integer_bytes>::type;
        const longs bits =
            longs(__builtin_convertvector(half, longs)) | (longs{} + 0x4330000000000000u);
        store(doubles(bits) - 0x1p52);
#endif
    };
    part(simd::low_half(w));
    part(simd::high_half(w));
}

// The lanes of a vector of longs: as words, their lower halves; as floats, below 2^24; as doubles, below 2^52.
inline auto to_words(longs x) {
    return __builtin_convertvector(x, simd::vec_of<uint32_t, integer_bytes / 2>::type);
}
inline auto to_floats(longs x) {
    using ints = typename simd::vec_of<int32_t, integer_bytes / 2>::type;
    using floats = typename simd::vec_of<float, integer_bytes / 2>::type;
    return __builtin_convertvector(ints(to_words(x)), floats);
}
inline auto to_doubles(longs x) {
    using doubles = typename simd::vec_of<double, integer_bytes>::type;
#if defined(__AVX512DQ__)
    return __builtin_convertvector(x, doubles);
#else
    return doubles(x | 0x4330000000000000u) - 0x1p52;
#endif
}

// Words of 32 random bits: u = w / 2^32 in double precision, the upper 24 bits in single.
struct bits32 {
    using word_type = uint32_t;
    static constexpr double scale(double) { return 0x1p-32; }
    static constexpr float scale(float) { return 0x1p-24f; }
    template <class Store>
    static void word(words w, Store store) {
        store(w);
    }
    template <class Store>
    static void unit(words w, double, Store store) {
        to_doubles(w, store);
    }
    template <class Store>
    static void unit(words w, float, Store store) {
        using ints = typename simd::vec_of<int32_t, integer_bytes>::type;
        using floats = typename simd::vec_of<float, integer_bytes>::type;
        store(__builtin_convertvector(ints(w >> 8), floats));
    }
};

} // namespace output
} // namespace

// The routines of a generator whose state is State and whose values are of a kind. Flattened, so that an output
// is not passed through memory, which for a single number takes longer than making it.
#define VOX_BRNG_ROUTINE(name) extern "C" __attribute__((flatten)) int VOX_KERNEL_NAMED(rng, name)
#define VOX_BRNG_KERNELS(name, State, Kind)                                                        \
    VOX_BRNG_ROUTINE(name##_i)(vox::rng::stream * s, int n, uint32_t *r) {                         \
        using out = output::integers<Kind>;                                                        \
        return generate(s->state<State>(), n, out{reinterpret_cast<out::word *>(r)});              \
    }                                                                                              \
    VOX_BRNG_ROUTINE(name##_s)(vox::rng::stream * s, int n, float *r, float a, float b) {          \
        return generate(s->state<State>(), n, output::uniforms<Kind, float>::between(r, a, b));    \
    }                                                                                              \
    VOX_BRNG_ROUTINE(name##_d)(vox::rng::stream * s, int n, double *r, double a, double b) {       \
        if constexpr (output::unit_apart<Kind>)                                                    \
            if (a == 0 && b == 1)                                                                  \
                return generate(s->state<State>(), n,                                              \
                                output::uniforms<Kind, double, true>::between(r, a, b));           \
        return generate(s->state<State>(), n, output::uniforms<Kind, double>::between(r, a, b));   \
    }
