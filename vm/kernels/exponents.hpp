// exponents.hpp - powers of two, from which exponentials are put together.
//
// With N steps to an octave, e^x = 2^n e^r for the multiple n of 1/N next to x / ln 2 and |r| <= ln 2 / (2 N):
//
//   const V t = nearest_step(x);            // n is in its low bits
//   const reduced<V> r = from_step(x, t);   // x - n ln 2
//   const scaled<V> power = two_to(t);      // 2^n
//
// N is what the set looks up fast: 16 from registers with AVX-512, else 256 from memory in double precision, and
// none in single.
#pragma once

#include <array>
#include <bit>

#include "vm/kernels/polynomials.hpp"
#include "vm/roots_of_two.hpp"

namespace {
namespace vm {

template <class T>
using word = std::conditional_t<sizeof(T) == 4, uint32_t, uint64_t>;
template <class V>
using bits = vec<word<element<V>>>;

// N. One step needs no table.
#if defined(__AVX512F__)
template <class T>
constexpr int steps = 16;
#else
template <class T>
constexpr int steps = sizeof(T) == 4 ? 1 : vox::vm::root_count;
#endif

template <class T>
constexpr int mantissa_bits = sizeof(T) == 4 ? 23 : 52;
template <class T>
constexpr int step_to_exponent = mantissa_bits<T> - (std::bit_width(unsigned(steps<T>)) - 1);

// A number whose last bit weighs 1/N: what is added to it is rounded to a multiple of that, and lands in its low
// bits.
template <class T>
constexpr T step_shift = T(sizeof(T) == 4 ? 0x1.8p23 : 0x1.8p52) / steps<T>;

template <class V>
inline V nearest_step(V x) {
    using T = element<V>;
    return fma(x, V{} + T(0x1.71547652b82fep+0), V{} + step_shift<T>);
}

// x - n ln 2 = head - tail; head is exact.
template <class V>
struct reduced {
    V head, tail;
};
template <class V>
inline reduced<V> from_step(V x, V t) {
    using T = element<V>;
    // The head of ln 2 has so few bits that its multiples are exact up to n = 2^12, in single precision 2^8.
    constexpr T head = T(sizeof(T) == 4 ? 0x1.62e4p-1 : 0x1.62e42fefcp-1);
    constexpr T tail = T(sizeof(T) == 4 ? 0x1.7f7d1cf79abcap-20 : -0x1.c610ca86c3899p-37);
    const V n = t - step_shift<T>;
    return {fma(n, V{} - head, x), n * tail};
}

// The same within 2^-42 or, in single precision, 2^-16.
template <class V>
inline V roughly_from_step(V x, V t) {
    using T = element<V>;
    return fma(t - step_shift<T>, V{} - T(0x1.62e42fefa39efp-1), x);
}

// 2^n of the step in t, where it is normal: the head to the nearest, head (1 + tail) in twice the precision. In the
// table the heads lack what the bits of t, moved to the exponent, give too much.
template <class V>
struct scaled {
    V head, tail;
};
template <class T>
struct power_entry {
    word<T> head;
    T tail;
};
template <class T>
constexpr power_entry<T> entry_of_step(int j) {
    const auto root = vox::vm::roots_of_two.roots[j * (vox::vm::root_count / steps<T>)];
    const T head = T(root.head);
    return {word<T>(std::bit_cast<word<T>>(head) - (word<T>(j) << step_to_exponent<T>)),
            T((root.head - double(head)) / root.head + root.tail)};
}

#if defined(__AVX512F__)
template <class T>
struct step_table {
    alignas(64) word<T> heads[16];
    alignas(64) T tails[16];
    constexpr step_table() {
        for (int j = 0; j < 16; ++j) {
            heads[j] = entry_of_step<T>(j).head;
            tails[j] = entry_of_step<T>(j).tail;
        }
    }
};
template <class T>
constexpr step_table<T> table_of_steps{};

// The entries of a table of 16 for the low four bits of each lane.
template <class E>
inline vec<double> entry_of_16(const E (&table)[16], vec<uint64_t> index) {
    return _mm512_permutex2var_pd(__m512d(simd::load(table)), __m512i(index),
                                  __m512d(simd::load(table + 8)));
}
template <class E>
inline vec<float> entry_of_16(const E (&table)[16], vec<uint32_t> index) {
    return _mm512_maskz_permutexvar_ps(0xFFFF, __m512i(index), __m512(simd::load(table)));
}
template <class V>
inline scaled<V> entries_of_step(bits<V> n) {
    const auto &table = table_of_steps<element<V>>;
    return {entry_of_16(table.heads, n), entry_of_16(table.tails, n)};
}
#else
struct step_table {
    power_entry<double> rows[steps<double>];
    constexpr step_table() : rows() {
        for (int j = 0; j < steps<double>; ++j)
            rows[j] = entry_of_step<double>(j);
    }
};
alignas(64) constexpr step_table table_of_steps{};

inline __m128d row_of_step(uint64_t n) {
    return _mm_load_pd(reinterpret_cast<const double *>(&table_of_steps.rows[n % steps<double>]));
}
template <class V>
inline scaled<V> entries_of_step(bits<V> n) {
#if defined(__AVX__)
    uint64_t at[4];
    simd::store(at, n);
    simd::in_memory(at);
    const __m256d even = _mm256_set_m128d(row_of_step(at[2]), row_of_step(at[0]));
    const __m256d odd = _mm256_set_m128d(row_of_step(at[3]), row_of_step(at[1]));
    return {_mm256_unpacklo_pd(even, odd), _mm256_unpackhi_pd(even, odd)};
#else
    const __m128d even = row_of_step(unsigned(_mm_cvtsi128_si32(__m128i(n))));
    const __m128d odd = row_of_step(unsigned(_mm_extract_epi16(__m128i(n), 4)));
    return {_mm_unpacklo_pd(even, odd), _mm_unpackhi_pd(even, odd)};
#endif
}
#endif

template <class V>
inline scaled<V> two_to(V t) {
    using T = element<V>;
    const auto n = bits<V>(t);
    const scaled<V> found = entries_of_step<V>(n);
    return {V(bits<V>(found.head) + (n << step_to_exponent<T>)), found.tail};
}

// x 2^n for the whole n in t, where x and the result are normal.
template <class V>
inline V times_two_to(V x, V t) {
    return V(bits<V>(x) + (bits<V>(t) << mantissa_bits<element<V>>));
}

} // namespace vm
} // namespace
