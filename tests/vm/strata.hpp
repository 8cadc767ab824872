// strata.hpp - what arguments each vector function is tried on, beside special values: all exponents, and the
// places where the methods of computing it change or its results are hardest to round.
//
// Hard cases of exp, ln and powers in double precision: Lefevre and Muller, Worst cases for correct rounding of the
// elementary functions in double precision, ARITH 2001; Muller et al., Handbook of Floating-Point Arithmetic,
// chapter 10.
#pragma once

#include "tests/vm/samples.hpp"

namespace test {

// Where a function of exponential growth leaves the range of T.
template <class T>
struct ends {
    using limits = std::numeric_limits<T>;
    static constexpr int top = limits::max_exponent;        // 2^top is too large
    static constexpr int normal = limits::min_exponent - 1; // 2^normal is the least normal number
    static constexpr int zero = normal - limits::digits;    // 2^zero is half the least of all
};

constexpr long double ln_2 = 0.693147180559945309417232121458176568L;

inline constexpr auto anything = []<class T>(samples<T> &s) {
    s.take(0.8, [&] { return s.any(); });
    s.take(0.1, [&] { return s.near(s.integer(-70, 70) * 0.5L); });
    s.take(0.1, [&] { return s.near(std::ldexp(s.one_of(1.0L, 1.5L), s.integer(0, 66))); });
};

// a + sign b: exponents near each other, cancellation, overflow.
template <int sign>
inline constexpr auto sums = []<class T>(samples<T> &s) {
    s.take(0.4, [&] { return std::pair(s.any(), s.any()); });
    s.take(0.3, [&] {
        const T a = s.any();
        return std::pair(a, T(sign * -std::ldexp(s.near(a, 1), s.integer(-60, 1))));
    });
    s.take(0.2, [&] {
        const T a = s.any();
        return std::pair(a, s.near(T(sign * -a)));
    });
    s.take(0.1, [&] {
        return std::pair(s.any(ends<T>::top - 2, ends<T>::top - 1),
                         s.any(ends<T>::top - 60, ends<T>::top - 1));
    });
};

// a b^sign: quotients and products of all sizes, many of them near an end of the range.
template <int sign>
inline constexpr auto products = []<class T>(samples<T> &s) {
    const auto with_result = [&](long double result) {
        const T a = s.any();
        return std::pair(a, T(sign > 0 ? result / a : a / result));
    };
    s.take(0.3, [&] { return std::pair(s.any(), s.any()); });
    s.take(0.4, [&] { return std::pair(s.any(-40, 40), s.any(-40, 40)); });
    s.take(0.1, [&] { return with_result(s.near(std::ldexp(1.0L, s.integer(-2, 2)))); });
    s.take(0.1, [&] { return with_result(std::ldexp(2 - s.near(0.5), ends<T>::top - 2)); });
    s.take(0.1, [&] { return with_result(s.any(ends<T>::zero - 2, ends<T>::normal + 2)); });
};

// a^power for powers that multiplications or a division compute.
template <int power>
inline constexpr auto powers = []<class T>(samples<T> &s) {
    s.take(0.8, [&] { return s.any(); });
    s.take(0.2, [&] {
        const int end = s.one_of(ends<T>::top, ends<T>::normal, ends<T>::zero);
        const auto near_end = s.near(std::exp2((long double)end / power), 0x1p-3L);
        return s.one_of(1, -1) * near_end;
    });
};

inline constexpr auto roots = []<class T>(samples<T> &s) {
    s.take(0.75, [&] { return s.any_positive(); });
    s.take(0.2, [&] {
        const long double root = s.any_positive(-8, 8);
        return s.near(s.one_of(root * root, 1 / (root * root)), 0x1p-20L);
    });
    s.take(0.05, [&] { return s.any(); });
};

inline constexpr auto exponentials = []<class T>(samples<T> &s) {
    for (const T x : {0x1.9e9cbbfd6080bp-31, 0x1.83d4bcdebb3f4p+2, 0x1.d77fd13d27fffp-11,
                      -0x1.290ea09e36479p-3})
        s.add(x);
    s.take(0.15, [&] { return s.any(); });
    s.take(0.45, [&] { return s.between((ends<T>::zero - 2) * ln_2, (ends<T>::top + 1) * ln_2); });
    s.take(0.15, [&] { return s.any(-60, 2); });
    s.take(0.2, [&] { // between the pieces of ranges and tables
        const int parts = 1 << s.integer(0, 8);
        return s.near(s.integer(ends<T>::zero * parts, ends<T>::top * parts) * ln_2 / parts,
                      0x1p-6L);
    });
    s.take(0.05, [&] {
        const int end = s.one_of(ends<T>::top, ends<T>::normal, ends<T>::zero, ends<T>::zero + 1);
        return s.near(end * ln_2, 0x1p-6L);
    });
};

inline constexpr auto logarithms = []<class T>(samples<T> &s) {
    s.add(T(0x1.62a88613629b6p+678));
    s.take(0.4, [&] { return s.any_positive(); });
    s.take(0.15, [&] { return s.between(0.5, 2); });
    s.take(0.2, [&] { return s.near(1); });
    s.take(0.15, [&] {
        const int parts = 1 << s.integer(1, 9);
        const int exponent = s.one_of(0, -1, 1, s.integer(ends<T>::zero, ends<T>::top - 1));
        return s.near(std::ldexp(1 + s.integer(0, parts - 1) / (long double)parts, exponent),
                      0x1p-6L);
    });
    s.take(0.05, [&] { return s.near(std::ldexp(std::sqrt(0.5L), s.integer(-4, 4))); });
    s.take(0.05, [&] { return s.any(); });
};

inline constexpr auto logarithms_of_1p = []<class T>(samples<T> &s) {
    s.take(0.25, [&] { return s.any(-80, 1); });
    s.take(0.2, [&] { return s.any_positive(); });
    s.take(0.05, [&] { return s.any(); });
    s.take(0.25, [&] { return s.between(-1, 1); });
    s.take(0.1, [&] { return s.near(-1); });
    s.take(0.1, [&] { return s.near(std::ldexp(1.0L, s.integer(-60, 60)) - 1, 0x1p-4L); });
    s.take(0.05, [&] {
        const int parts = 1 << s.integer(1, 9);
        return s.near(s.integer(1 - parts, parts) / (long double)parts, 0x1p-6L);
    });
};

inline constexpr auto hyperbolic_tangents = []<class T>(samples<T> &s) {
    s.take(0.15, [&] { return s.any(); });
    s.take(0.3, [&] { return s.any(-40, 6); });
    s.take(0.35, [&] { return s.between(-22, 22); });
    s.take(0.15, [&] {
        const int parts = 1 << s.integer(1, 7);
        return s.near(s.integer(-20 * parts, 20 * parts) * s.one_of(1, ln_2) / parts, 0x1p-6L);
    });
    s.take(0.05, [&] { // the results become 1
        return T(s.one_of(1, -1) *
                 s.near((std::numeric_limits<T>::digits + 1) * ln_2 / 2, 0x1p-4L));
    });
};

// The logarithm to base 2 of a power: anywhere in the range, near its ends, and near 0.
template <class T>
long double size_of_power(samples<T> &s) {
    switch (s.integer(0, 9)) {
    case 0:
        return s.near(s.one_of(ends<T>::top, ends<T>::normal, ends<T>::zero), 0x1p-8L);
    case 1:
    case 2:
        return s.any(-60, 0);
    default:
        return s.between(ends<T>::zero - 1, ends<T>::top);
    }
}

inline constexpr auto general_powers = []<class T>(samples<T> &s) {
    const auto of_size = [&](T a) {
        return std::pair(a, T(size_of_power(s) / std::log2((long double)a)));
    };
    s.add({T(0x1.0f38cfaacb71ap+0), 458});
    s.take(0.3, [&] { return of_size(s.any_positive()); });
    s.take(0.1, [&] { return of_size(s.between(0.5, 2)); });
    s.take(0.2, [&] { return of_size(s.near(1)); });
    s.take(0.1, [&] { // breakpoints of tables
        const int parts = 1 << s.integer(1, 9);
        return of_size(s.near(1 + s.integer(-parts / 2, parts) / (long double)parts, 0x1p-6L));
    });
    s.take(0.1, [&] { return std::pair(s.any(), s.any()); });
    s.take(0.05, [&] { return std::pair(s.any(-10, 10), T(s.integer(-80, 80))); });
    s.take(0.05, [&] { // odd and even up to where all are even
        const auto b = T(std::round(s.any(0, std::numeric_limits<T>::digits + 1)));
        return std::pair(T(-std::exp2(size_of_power(s) / b)), b);
    });
    s.take(0.1, [&] { // exact ones, and half way between two numbers
        return std::pair(T(s.integer(-100, 100) * s.one_of(1.0, 0.25)),
                         T(s.integer(-8, 40) * 0.25));
    });
};

inline constexpr auto fixed_powers = []<class T>(samples<T> &s) {
    const auto of_size = [&](T b) {
        return s.one_of(1, 1, 1, -1) * T(std::exp2(size_of_power(s) / b));
    };
    s.take_runs(
        0.4, [&] { return T(s.integer(-12, 12) / s.one_of(1.0L, 2.0L, 3.0L)); }, of_size);
    s.take_runs(
        0.3, [&] { return s.any(-10, 10); }, of_size);
    s.take_runs(
        0.2, [&] { return T(s.integer(-1000, 1000) / s.one_of(1.0L, 100.0L)); },
        [&](T) { return s.any_positive(); });
    s.take_runs(
        0.1, [&] { return s.any(); }, [&](T) { return s.near(1); });
};

} // namespace test
