// log_tables.hpp - what logarithms look up.
//
// For numbers m, 1 <= m < 2, the first B bits choose an interval, [1 + j/n, 1 + (j+1)/n) with n = 2^B, and c near
// 1/m, so that r = c m - 1 is small: -1/(2n) <= r < 1/n. Beside m = 1, c is 1, and beside 2 it is 1/2.
//
//   log_table<T, exact>   c is a multiple of 1/(2n), so that r is a number of the precision; -ln c is there as
//                         head and tail. The heads are multiples of a unit in which k ln 2 - ln c is exact, and
//                         that of 1/2 is ln 2 to the last bit.
//   log_table<T, rough>   -ln c is one number. The error of k ln 2 - ln c is small beside ln x even where the
//                         two cancel. The sets do this in two ways: see rough_entry.
//
// With AVX-512 tables are few and in registers, elsewhere rows in memory, in double precision only.
#pragma once

#include "vm/kernels/masks.hpp"

namespace {
namespace vm {
namespace logs {

// |k| is at most 1074 or 149, and the heads are multiples of 2^-head_bits.
template <class T>
struct format;
template <>
struct format<double> {
    using word = long long;
    static constexpr int mantissa = 52, bias = 1023, head_bits = 21;
};
template <>
struct format<float> {
    using word = int;
    static constexpr int mantissa = 23, bias = 127, head_bits = 17;
};
template <class T>
using word = typename format<T>::word;
template <class T>
using words = typename simd::vec_of<word<T>, simd::vector_bytes>::type;

template <class T>
inline vec<T> all(T x) {
    return vec<T>{} + x;
}

// The lanes' bits shifted to the right, zeros coming in.
template <class T, int Bits>
inline words<T> shifted(words<T> w) {
    typedef std::make_unsigned_t<word<T>> U __attribute__((vector_size(simd::vector_bytes)));
    return words<T>(U(w) >> Bits);
}

// -ln c to some 100 bits, for 1/2 <= c <= 1: 2 artanh((1 - c) / (1 + c)).
__extension__ typedef __float128 quad;
constexpr quad minus_ln(quad c) {
    const quad z = (1 - c) / (1 + c), square = z * z;
    quad sum = 0, power = z;
    for (int i = 1; i < 70; i += 2, power *= square)
        sum += power / i;
    return 2 * sum;
}

// Whether T has a table.
#if defined(__AVX512F__)
template <class T>
constexpr bool from_table = true;
#else
template <class T>
constexpr bool from_table = sizeof(T) == 8;
#endif

enum kind { exact, rough };

template <class T, kind>
struct log_entry {
    T c, head, tail; // head + tail = -ln c
};
template <class T>
struct log_entry<T, rough> {
    T c, value;
};

template <class T>
constexpr log_entry<T, exact> exact_entry(T c) {
    const quad value = minus_ln(c), unit = 1 / quad(1ll << format<T>::head_bits);
    const quad head = quad((long long)(value / unit)) * unit;
    return {c, T(head), T(value - head)};
}
template <class T>
constexpr log_entry<T, exact> ln2 = exact_entry(T(0.5));

// The multiples of 1/(2n) that keep r in its range: the largest, in the upper half of the intervals the smallest.
constexpr int numerator(int j, int n) {
    return j < n / 2 ? 2 * n * (n + 1) / (n + j + 1) : (n * (2 * n - 1) + n + j - 1) / (n + j);
}

#if defined(__AVX512F__)
// Next to x = 1, with k = -1, -ln c cancels against ln 2, and its rounding would remain. These c are chosen by
// search, for roundings below 0.12 ulp of ln x.
constexpr unsigned short rough_c_double[] = {2048, 1877, 1797, 1738, 1657, 1524, 1462, 1445,
                                             1362, 1275, 1275, 1198, 1145, 1110, 1110, 1024};
constexpr unsigned short rough_c_float[] = {1024, 964, 915, 839, 821, 786, 747, 707,
                                            662,  641, 641, 616, 579, 579, 539, 512};

template <class T, kind>
constexpr int log_bits = 4;
constexpr int rough_exponent_carry = 0;

template <class T>
constexpr log_entry<T, rough> rough_entry(int j, int n) {
    // Where k may be -1, what the rounded ln 2 lacks is taken off again.
    const quad ln_2 = minus_ln(0.5), lacking = ln_2 - T(ln_2);
    const T c = sizeof(T) == 8 ? T(rough_c_double[j]) / 2048 : T(rough_c_float[j]) / 1024;
    return {c, T(minus_ln(c) - (j < n / 2 ? 0 : lacking))};
}
#else
template <class T, kind K>
constexpr int log_bits = K == exact ? 7 : 8;

// In the upper half of the intervals k counts one more, and ln 2 is off the entries: nothing cancels.
constexpr int rough_exponent_carry = 1;

template <class T>
constexpr log_entry<T, rough> rough_entry(int j, int n) {
    const T c = T(numerator(j, n)) / (2 * n);
    return {c, T(j < n / 2 ? minus_ln(c) : minus_ln(c) - minus_ln(0.5))};
}
#endif

template <class T, kind K>
constexpr log_entry<T, K> entry_of_interval(int j) {
    constexpr int n = 1 << log_bits<T, K>;
    if constexpr (K == exact)
        return exact_entry(T(numerator(j, n)) / (2 * n));
    else
        return rough_entry<T>(j, n);
}

template <class T, kind>
struct log_entries {
    vec<T> c, head, tail;
};
template <class T>
struct log_entries<T, rough> {
    vec<T> c, value;
};

#if defined(__AVX512F__)
// Permutations of one register of 16 words each: those of two registers would take multiplications' turns. So
// doubles are put together from halves, where the lower one is zero of one alone: c and the heads have few bits.
struct log_column {
    alignas(64) unsigned words[16];
};
template <class T, kind K>
struct log_columns {
    log_column c, head, tail, tail_low; // of rough entries the value in place of the tail
    constexpr log_columns() : c(), head(), tail(), tail_low() {
        for (int j = 0; j < 16; ++j) {
            const auto e = entry_of_interval<T, K>(j);
            c.words[j] = high_word(e.c);
            if constexpr (K == exact) {
                head.words[j] = high_word(e.head);
                tail.words[j] = high_word(e.tail), tail_low.words[j] = low_word(e.tail);
            } else {
                tail.words[j] = high_word(e.value), tail_low.words[j] = low_word(e.value);
            }
        }
    }
    static constexpr unsigned high_word(double x) {
        return unsigned(__builtin_bit_cast(unsigned long long, x) >> 32);
    }
    static constexpr unsigned low_word(double x) {
        return unsigned(__builtin_bit_cast(unsigned long long, x));
    }
    static constexpr unsigned high_word(float x) { return __builtin_bit_cast(unsigned, x); }
    static constexpr unsigned low_word(float) { return 0; }
};
template <class T, kind K>
constexpr log_columns<T, K> log_table{};

// Looks up for the lanes' mantissas m.
template <class T>
class log_index;
template <>
class log_index<float> {
  public:
    explicit log_index(vec<float> m) : index_(_mm512_maskz_srli_epi32(0xFFFF, __m512i(m), 19)) {}
    vec<float> at(const log_column &high) const {
        return vec<float>(
            _mm512_maskz_permutexvar_epi32(0xFFFF, index_, _mm512_load_si512(high.words)));
    }
    vec<float> at(const log_column &high, const log_column &) const { return at(high); }

  private:
    __m512i index_;
};
template <>
class log_index<double> {
  public:
#if defined(__AVX512BW__)
    // The byte with the first four bits of the mantissa, for both halves.
    explicit log_index(vec<double> m)
        : high_(_mm512_maskz_shuffle_epi8(
              ~0ull, __m512i(m),
              _mm512_maskz_broadcast_i32x4(
                  0xFFFF, _mm_set_epi64x(0x0000000E0000000E, 0x0000000600000006)))),
          low_(high_) {}
#else
    explicit log_index(vec<double> m)
        : high_(_mm512_maskz_srli_epi32(0xFFFF, __m512i(m), 16)),
          low_(_mm512_maskz_srli_epi64(0xFF, __m512i(m), 48)) {}
#endif
    vec<double> at(const log_column &high) const { return vec<double>(halves(high)); }
    vec<double> at(const log_column &high, const log_column &low) const {
        const __m512i lower =
            _mm512_maskz_permutexvar_epi32(0xFFFF, low_, _mm512_load_si512(low.words));
        return vec<double>(
            _mm512_mask_permutexvar_epi32(lower, 0xAAAA, high_, _mm512_load_si512(high.words)));
    }

  private:
    __m512i halves(const log_column &high) const {
        return _mm512_maskz_permutexvar_epi32(0xAAAA, high_, _mm512_load_si512(high.words));
    }
    __m512i high_, low_;
};

// The entries for the mantissas of m.
template <class T, kind K>
inline log_entries<T, K> lookup(vec<T> m) {
    const log_index<T> index(m);
    const auto &t = log_table<T, K>;
    if constexpr (K == exact)
        return {index.at(t.c), index.at(t.head), index.at(t.tail, t.tail_low)};
    else
        return {index.at(t.c), index.at(t.tail, t.tail_low)};
}
#else
// Rows of four numbers, or two.
template <class T, kind K>
struct log_rows {
    static constexpr int width = K == exact ? 4 : 2;
    alignas(64) T row[1 << log_bits<T, K>][width];
    constexpr log_rows() : row() {
        for (int j = 0; j < 1 << log_bits<T, K>; ++j) {
            const auto e = entry_of_interval<T, K>(j);
            row[j][0] = e.c;
            if constexpr (K == exact)
                row[j][1] = e.head, row[j][2] = e.tail;
            else
                row[j][1] = e.value;
        }
    }
};
template <class T, kind K>
constexpr log_rows<T, K> log_table{};

// Lane i of words that fit in 16 bits.
template <int I, class W>
inline int lane_of(W w) {
    if constexpr (sizeof(W) == 16)
        return _mm_extract_epi16(__m128i(w), I * int(sizeof(w[0])) / 2);
    else
        return int(w[I]);
}

// The entries of rows that begin so many bytes from the table, offset(lane).
template <class T, kind K, class Offset>
VOX_INLINED inline log_entries<T, K> entries_of_rows(const Offset &offset) {
    // 8 bytes of the rows of each two lanes, from a column on.
    const auto two = [&](auto lane, auto other, int column) VOX_INLINED {
        const char *rows = reinterpret_cast<const char *>(log_table<T, K>.row[0] + column);
        const __m128i low = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(rows + offset(lane)));
        return _mm_loadh_pi(_mm_castsi128_ps(low),
                            reinterpret_cast<const __m64 *>(rows + offset(other)));
    };
    using simd::constant;
    // The same of lanes First, First + 1 and, in the upper half of a vector of 256 bits, of those there.
    const auto rows = [&](auto first, int column) VOX_INLINED {
        const __m128 low = two(first, constant<first + 1>(), column);
#if defined(__AVX__)
        constexpr int half = lanes<T> / 2;
        return _mm256_set_m128(two(constant<first + half>(), constant<first + half + 1>(), column),
                               low);
#else
        return low;
#endif
    };
    const auto column = [&](int i) VOX_INLINED { return vec<T>(rows(constant<0>(), i)); };
    if constexpr (K == exact)
        return {column(0), column(1), column(2)};
    else
        return {column(0), column(1)};
}

// Where j is in the bits of a number, times the size of a row.
template <class T, kind K>
struct row_field {
    static constexpr int row_bits = __builtin_ctz(sizeof log_table<T, K>.row[0]);
    static constexpr int shift = format<T>::mantissa - log_bits<T, K> - row_bits;
    static constexpr int mask = ((1 << log_bits<T, K>)-1) << row_bits;
};

// The entries for the mantissas of m.
template <class T, kind K>
inline log_entries<T, K> lookup(vec<T> m) {
    using field = row_field<T, K>;
    const words<T> offsets = shifted<T, field::shift>(words<T>(m)) & (words<T>{} + field::mask);
    return entries_of_rows<T, K>([&](auto lane) VOX_INLINED { return lane_of<lane>(offsets); });
}
#endif

// The same, of numbers that are in memory too.
template <class T, kind K>
inline log_entries<T, K> lookup([[maybe_unused]] vec<T> m, [[maybe_unused]] const T *place) {
#if defined(__AVX512F__)
    return lookup<T, K>(m);
#else
    using field = row_field<T, K>;
    return entries_of_rows<T, K>([&](auto lane) VOX_INLINED {
        unsigned high; // the last four bytes
        __builtin_memcpy(&high, reinterpret_cast<const char *>(place + lane + 1) - 4, 4);
        return int(high >> (field::shift % 32)) & field::mask;
    });
#endif
}

} // namespace logs
} // namespace vm
} // namespace
