// exact.hpp - the exact values of arguments, in a wider type, and how far a result is from them.
//
// They are the C library's, `reference_error` or less off: of a sample MPFR says so. MPFR also says which of the
// tiny results are exact.
//
// An ulp is that of the exact value: 2^(e - p + 1) for 2^e <= |y| < 2^(e + 1) and p bits, but no less than the
// smallest subnormal number (Muller et al., Handbook of Floating-Point Arithmetic, section 2.3). Beyond the range
// the numbers go on, so infinity as a result counts as the power of two that comes after the largest number.
#pragma once

#include <algorithm>
#include <vector>

#include "tests/vm/functions.hpp"

namespace test {

template <class T>
using limits = std::numeric_limits<T>;

// The power of two after the largest number.
template <class T>
wider<T> beyond() {
    return std::ldexp(wider<T>(1), limits<T>::max_exponent);
}

template <class T>
wider<T> ulp_of(wider<T> y) {
    const int least = limits<T>::min_exponent - limits<T>::digits;
    const int most = limits<T>::max_exponent - limits<T>::digits;
    return std::ldexp(wider<T>(1), std::clamp(std::ilogb(y) + 1 - limits<T>::digits, least, most));
}

// Whether the sign of r is the wrong one, or it is infinite or NaN where y is not, or the other way round.
template <class T>
bool of_another_kind(T r, wider<T> y) {
    if (std::isnan(y) || std::isnan(r))
        return std::isnan(y) != std::isnan(r);
    if (std::signbit(r) != std::signbit(y))
        return true;
    return std::isinf(y) || y == 0 ? r != y : false;
}

// |r - y|, of values of the same kind.
template <class T>
wider<T> distance(T r, wider<T> y) {
    if (r == y || std::isnan(y) || (std::isinf(r) && std::fabs(y) >= beyond<T>()))
        return 0;
    return std::fabs((std::isinf(r) ? std::copysign(beyond<T>(), y) : r) - y);
}

class mpfr_value {
  public:
    explicit mpfr_value(mpfr_prec_t bits) { mpfr_init2(value_, bits); }
    ~mpfr_value() { mpfr_clear(value_); }
    mpfr_value(const mpfr_value &) = delete;
    mpfr_value &operator=(const mpfr_value &) = delete;
    operator mpfr_ptr() { return value_; }

  private:
    mpfr_t value_;
};

// In ulp of T.
template <class T>
constexpr double reference_error = sizeof(T) == 4 ? 0x1p-20 : 0x1p-8;

template <class T>
struct exact_values {
    using value_type = wider<T>;

    std::vector<value_type> y, inverse_ulp, inverse_y;
    std::vector<T> rounded;
    std::vector<char> rational; // of results below the normal numbers: y may be exact
    value_type worst = 0;       // deviation from MPFR, ulp

    void compute(const vector_function<T> &f, size_t n, const T *a, const T *b) {
        for (auto *all : {&y, &inverse_ulp, &inverse_y})
            all->resize(n);
        rounded.resize(n);
        rational.assign(n, 0);
        for (size_t i = 0; i < n; ++i) {
            value_type value = f.wide(a[i], b[i]);
            if ((value == 0 || std::isinf(value)) && std::isfinite(a[i]) && std::isfinite(b[i]))
                value = in_range(f, value, a[i], b[i]);
            y[i] = value;
            if (f.ha != rounding::near)
                rounded[i] = f.rounded(a[i], b[i]);
            // Special values have no error that is divided: they are looked at one by one.
            const bool plain = std::isfinite(value) && value != 0;
            inverse_ulp[i] = plain ? 1 / ulp_of<T>(value) : limits<value_type>::quiet_NaN();
            inverse_y[i] = plain && std::fabs(value) >= limits<T>::min()
                               ? 1 / std::fabs(value)
                               : limits<value_type>::quiet_NaN();
            const bool tiny = plain && std::fabs(value) < 2 * limits<T>::min();
            if (tiny || (plain && i % 61 == 0 && std::fabs(value) < beyond<T>()))
                ask_mpfr(f, i, a[i], b[i]);
        }
    }

  private:
    // Whether the function's value is exact in 64 bits.
    bool by_mpfr(const vector_function<T> &f, T a, T b) {
        mpfr_clear_flags();
        mpfr_set_ld(first_, a, MPFR_RNDN);
        mpfr_set_ld(second_, b, MPFR_RNDN);
        return f.mpfr(result_, first_, second_) == 0;
    }
    // A value that has left the range of the wider type is the last number before its end.
    value_type in_range(const vector_function<T> &f, value_type value, T a, T b) {
        by_mpfr(f, a, b);
        if (mpfr_regular_p(result_) || mpfr_overflow_p() || mpfr_underflow_p())
            return std::copysign(
                value == 0 ? limits<value_type>::denorm_min() : limits<value_type>::max(), value);
        return value;
    }
    void ask_mpfr(const vector_function<T> &f, size_t i, T a, T b) {
        rational[i] = by_mpfr(f, a, b);
        const auto off =
            value_type(std::fabs(mpfr_get_ld(result_, MPFR_RNDN) - y[i]) * inverse_ulp[i]);
        if (off > worst || std::isnan(off)) // which stays
            worst = off;
    }

    mpfr_value first_{64}, second_{64}, result_{64};
};

} // namespace test
