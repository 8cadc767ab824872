// logarithms.hpp - the parts of a logarithm.
//
//   x = 2^k m,  1 <= m < 2,  c m = 1 + r,  ln x = (k ln 2 - ln c) + ln(1 + r)
//
// The first B bits of m choose c, a multiple of 2^-(B+1) near 1/m, so that -2^-(B+1) <= r < 2^-B and r is a
// number of the precision: nothing is rounded. -ln c is tabulated as head and tail, as is ln 2. The heads are
// multiples of a unit in which k ln 2 - ln c is exact. Where m is next to 1, c is 1; where it is next to 2, c is
// 1/2 and -ln c is ln 2 to the last bit. So beside x = 1 the first term is zero, and the result is as accurate
// relative to itself as ln(1 + r) is.
//
// Method: Tang, "Table-driven implementation of the logarithm function in IEEE floating-point arithmetic",
// ACM TOMS 16(4), 1990.
#pragma once

#include "vm/kernels/masks.hpp"
#include "vm/kernels/polynomials.hpp"

namespace {
namespace vm {

// The layout of a precision, and how it is cut: the heads are multiples of 2^-head_bits, since |k| is at most
// 1074 or 149.
template <class T>
struct format;
template <>
struct format<double> {
    using word = long long;
    static constexpr int mantissa = 52, bias = 1023, head_bits = 43;
    static constexpr double smallest_normal = 0x1p-1022;
};
template <>
struct format<float> {
    using word = int;
    static constexpr int mantissa = 23, bias = 127, head_bits = 17;
    static constexpr float smallest_normal = 0x1p-126f;
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
    const quad z = (1 - c) / (1 + c);
    quad sum = 0, power = z;
    for (int i = 1; i < 70; i += 2, power *= z * z)
        sum += power / i;
    return 2 * sum;
}

template <class T>
struct log_entry {
    T c, head, tail; // head + tail = -ln c
};

template <class T>
constexpr log_entry<T> log_entry_of(T c) {
    const quad value = minus_ln(c), unit = 1 / quad(1ll << format<T>::head_bits);
    const quad head = quad((long long)(value / unit)) * unit;
    return {c, T(head), T(value - head)};
}
template <class T>
constexpr log_entry<T> ln2 = log_entry_of(T(0.5));

// For m in [1 + j/n, 1 + (j+1)/n): the largest multiple of 1/(2n) that keeps r in its range, in the upper half
// of the intervals the smallest.
template <class T, int B>
constexpr log_entry<T> log_entry_of_interval(int j) {
    constexpr int n = 1 << B;
    const int largest = 2 * n * (n + 1) / (n + j + 1);
    const int smallest = (n * (2 * n - 1) + n + j - 1) / (n + j);
    return log_entry_of(T(j < n / 2 ? largest : smallest) / (2 * n));
}

#if defined(__AVX512F__)
// Tables in registers.
template <class T>
constexpr int log_bits = sizeof(T) == 8 ? 4 : 5;
constexpr bool tables_in_registers = true;
#else
template <class T>
constexpr int log_bits = sizeof(T) == 8 ? 7 : 5;
constexpr bool tables_in_registers = false;
#endif

template <class T>
struct log_columns {
    alignas(64) T c[1 << log_bits<T>], head[1 << log_bits<T>], tail[1 << log_bits<T>];
};
template <class T>
struct log_rows {
    alignas(64) T row[1 << log_bits<T>][4];
};
template <class T>
constexpr auto make_log_table() {
    if constexpr (tables_in_registers) {
        log_columns<T> t{};
        for (int j = 0; j < 1 << log_bits<T>; ++j) {
            const log_entry<T> e = log_entry_of_interval<T, log_bits<T>>(j);
            t.c[j] = e.c, t.head[j] = e.head, t.tail[j] = e.tail;
        }
        return t;
    } else {
        log_rows<T> t{};
        for (int j = 0; j < 1 << log_bits<T>; ++j) {
            const log_entry<T> e = log_entry_of_interval<T, log_bits<T>>(j);
            t.row[j][0] = e.c, t.row[j][1] = e.head, t.row[j][2] = e.tail;
        }
        return t;
    }
}
template <class T>
constexpr auto log_table = make_log_table<T>();

template <class T>
struct log_entries {
    vec<T> c, head, tail;
};

// The entries of the lanes' mantissas.
#if defined(__AVX512F__)
inline vec<double> at(__m512i index, const double (&column)[16]) {
    return _mm512_permutex2var_pd(_mm512_load_pd(column), index, _mm512_load_pd(column + 8));
}
inline vec<float> at(__m512i index, const float (&column)[32]) {
    return _mm512_permutex2var_ps(_mm512_load_ps(column), index, _mm512_load_ps(column + 16));
}
template <class T>
inline log_entries<T> lookup(words<T> m) {
    const auto index = __m512i(shifted<T, format<T>::mantissa - log_bits<T>>(m));
    const auto &t = log_table<T>;
    return {at(index, t.c), at(index, t.head), at(index, t.tail)};
}
#else
// Lane i of words that fit in 16 bits.
template <int I, class W>
inline int lane_of(W w) {
    if constexpr (sizeof(W) == 16)
        return _mm_extract_epi16(__m128i(w), I * int(sizeof(w[0])) / 2);
    else
        return int(w[I]);
}
// Of each 128 bits, lanes First and First + 1 of a and b in turn.
template <int First, class V>
inline V interleaved(V a, V b) {
    constexpr int F = First, G = First + 1;
    if constexpr (sizeof(V) == 16)
        return __builtin_shufflevector(a, b, F, F + 4, G, G + 4);
    else
        return __builtin_shufflevector(a, b, F, F + 8, G, G + 8, F + 4, F + 12, G + 4, G + 12);
}
// Lanes 0, 2, 4, ... of a and b in turn, or 1, 3, 5, ..., within halves of 128 bits.
template <int Odd, class V>
inline V paired(V a, V b) {
    if constexpr (sizeof(V) == 16)
        return __builtin_shufflevector(a, b, Odd, Odd + 2);
    else
        return __builtin_shufflevector(a, b, Odd, Odd + 4, Odd + 2, Odd + 6);
}
template <class T>
inline log_entries<T> lookup(words<T> m) {
    constexpr int row_bits = sizeof(T) == 8 ? 5 : 4, half = lanes<T> / 2;
    const words<T> offsets = shifted<T, format<T>::mantissa - log_bits<T> - row_bits>(m) &
                             (words<T>{} + (((1 << log_bits<T>)-1) << row_bits));
    const auto row_of = [&](auto lane, int column) VOX_INLINED {
        const T *row = log_table<T>.row[0] + column;
        return simd::load<16>(reinterpret_cast<const T *>(reinterpret_cast<const char *>(row) +
                                                          lane_of<lane>(offsets)));
    };
    // The rows of two lanes, one for each half of a vector of 256 bits.
    const auto rows_of = [&](auto lane, int column) VOX_INLINED {
        if constexpr (simd::vector_bytes == 16)
            return row_of(lane, column);
        else if constexpr (sizeof(T) == 8)
            return __builtin_shufflevector(
                row_of(lane, column), row_of(simd::constant<lane + half>(), column), 0, 1, 2, 3);
        else
            return __builtin_shufflevector(row_of(lane, column),
                                           row_of(simd::constant<lane + half>(), column), 0, 1, 2,
                                           3, 4, 5, 6, 7);
    };
    using simd::constant;
    if constexpr (sizeof(T) == 8) {
        const vec<T> r0 = rows_of(constant<0>(), 0), r1 = rows_of(constant<1>(), 0);
        const vec<T> s0 = rows_of(constant<0>(), 2), s1 = rows_of(constant<1>(), 2);
        return {paired<0>(r0, r1), paired<1>(r0, r1), paired<0>(s0, s1)};
    } else {
        using pairs = vec<double>; // of floats
        const vec<T> r0 = rows_of(constant<0>(), 0), r1 = rows_of(constant<1>(), 0),
                     r2 = rows_of(constant<2>(), 0), r3 = rows_of(constant<3>(), 0);
        const auto low = [](vec<T> a, vec<T> b) VOX_INLINED { return pairs(interleaved<0>(a, b)); };
        const auto high = [](vec<T> a, vec<T> b)
                              VOX_INLINED { return pairs(interleaved<2>(a, b)); };
        const pairs a = low(r0, r1), b = low(r2, r3), c = high(r0, r1), d = high(r2, r3);
        return {vec<T>(paired<0>(a, b)), vec<T>(paired<1>(a, b)), vec<T>(paired<0>(c, d))};
    }
}
#endif

// k and m of positive normal numbers, with AVX-512 of subnormal ones too. There k is infinite or NaN for what
// has no logarithm, or m is NaN.
template <class T>
struct log_parts {
    vec<T> k, m;
};
template <class T>
inline log_parts<T> split(vec<T> x) {
#if defined(__AVX512F__)
    if constexpr (sizeof(T) == 8)
        return {_mm512_maskz_getexp_pd(0xFF, x),
                _mm512_maskz_getmant_pd(0xFF, x, _MM_MANT_NORM_1_2, _MM_MANT_SIGN_nan)};
    else
        return {_mm512_maskz_getexp_ps(0xFFFF, x),
                _mm512_maskz_getmant_ps(0xFFFF, x, _MM_MANT_NORM_1_2, _MM_MANT_SIGN_nan)};
#else
    using f = format<T>;
    // The biased exponent becomes the last bits of the mantissa of 2^52 or 2^23.
    constexpr word<T> one = word<T>(f::bias) << f::mantissa;
    constexpr word<T> carrier = word<T>(f::bias + f::mantissa) << f::mantissa;
    const words<T> exponent = shifted<T, f::mantissa>(words<T>(x)) | (words<T>{} + carrier);
    const words<T> m =
        (words<T>(x) & (words<T>{} + ((word<T>(1) << f::mantissa) - 1))) | (words<T>{} + one);
    return {vec<T>(exponent) - (T(word<T>(1) << f::mantissa) + T(f::bias)), vec<T>(m)};
#endif
}

// c m - 1, exact.
template <class T>
inline vec<T> reduced(vec<T> m, vec<T> c) {
    if constexpr (fused) {
        return fma(m, c, all<T>(-1));
    } else {
        // c times the first bits of m is exact, and so is what one of it leaves.
        constexpr int cut = log_bits<T> + 2;
        const vec<T> first = vec<T>(words<T>(m) & (words<T>{} - (word<T>(1) << cut)));
        return (first * c - 1) + (m - first) * c;
    }
}

// (ln(1 + r) - r) / r^2. The polynomials are minimax for the relative error of ln(1 + r) over the range of r,
// rounded by lattice reduction (Sollya's fpminimax).
template <class T>
inline vec<T> ln1p_rest(vec<T> r, vec<T> square);
template <>
inline vec<double> ln1p_rest<double>(vec<double> r, vec<double> square) {
    if constexpr (log_bits<double> == 4) { // error 2^-61.5 of ln(1 + r)
        constexpr double c[] = {-0x1.fffffffffffffp-2, 0x1.555555555556cp-2,  -0x1.0000000002156p-2,
                                0x1.99999999776fdp-3,  -0x1.5555552908f76p-3, 0x1.2492486557421p-3,
                                -0x1.0000bada70c17p-3, 0x1.c73206c400b88p-4,  -0x1.97c84c6264a41p-4,
                                0x1.419828d2104p-4};
        return polynomial<double>(r, square, c);
    } else { // error 2^-60.7
        constexpr double c[] = {-0x1.ffffffffffffap-2, 0x1.55555555546b6p-2,  -0x1.000000017ba9ep-2,
                                0x1.99999e9fa9cc1p-3,  -0x1.55540b16df623p-3, 0x1.212689094bb4fp-3};
        return polynomial<double>(r, square, c);
    }
}
template <>
inline vec<float> ln1p_rest<float>(vec<float> r, vec<float> square) { // error 2^-33.2
    constexpr float c[] = {-0x1p-1f, 0x1.5555b6p-2f, -0x1.0004bap-2f, 0x1.8d9148p-3f};
    return polynomial<float>(r, square, c);
}

} // namespace vm
} // namespace
