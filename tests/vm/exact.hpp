// exact.hpp - the exact values of arguments, in extended precision, and what is known of them.
//
// They are the C library's in `long double`, 2^-8 ulp of T or less off: of a sample MPFR says so. MPFR also says
// which of the tiny results are exact.
#pragma once

#include <vector>

#include "tests/vm/accuracy.hpp"
#include "tests/vm/functions.hpp"

namespace test {

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

constexpr long double reference_error = 0x1p-8L; // ulp

template <class T>
struct exact_values {
    std::vector<long double> y, inverse_ulp, inverse_y;
    std::vector<T> rounded;
    std::vector<char> rational; // of results below the normal numbers: y may be exact
    long double worst = 0;      // deviation from MPFR, ulp

    void compute(const vector_function<T> &f, size_t n, const T *a, const T *b) {
        for (auto *all : {&y, &inverse_ulp, &inverse_y})
            all->resize(n);
        rounded.resize(n);
        rational.assign(n, 0);
        for (size_t i = 0; i < n; ++i) {
            long double value = f.wide(a[i], b[i]);
            if ((value == 0 || std::isinf(value)) && std::isfinite(a[i]) && std::isfinite(b[i]))
                value = in_range(f, value, a[i], b[i]);
            y[i] = value;
            if (f.ha == rounding::exact)
                rounded[i] = f.rounded(a[i], b[i]);
            // Special values have no error that is divided: they are looked at one by one.
            const bool plain = std::isfinite(value) && value != 0;
            inverse_ulp[i] = plain ? 1 / ulp_of<T>(value) : limits<long double>::quiet_NaN();
            inverse_y[i] = plain && std::fabs(value) >= limits<T>::min()
                               ? 1 / std::fabs(value)
                               : limits<long double>::quiet_NaN();
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
    // A value that has left the range of `long double` is the last number before its end.
    long double in_range(const vector_function<T> &f, long double value, T a, T b) {
        by_mpfr(f, a, b);
        if (mpfr_regular_p(result_) || mpfr_overflow_p() || mpfr_underflow_p())
            return std::copysign(
                value == 0 ? limits<long double>::denorm_min() : limits<long double>::max(), value);
        return value;
    }
    void ask_mpfr(const vector_function<T> &f, size_t i, T a, T b) {
        rational[i] = by_mpfr(f, a, b);
        const long double off = std::fabs(mpfr_get_ld(result_, MPFR_RNDN) - y[i]) * inverse_ulp[i];
        if (off > worst || std::isnan(off)) // which stays
            worst = off;
    }

    mpfr_value first_{64}, second_{64}, result_{64};
};

} // namespace test
