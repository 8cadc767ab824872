// logarithm.cpp - logarithms of what is no positive normal number, and next to the poles.
#include "vm/fixup.hpp"

namespace {

using vox::vm::outcome;

constexpr double infinity = __builtin_inf();

// The value at infinity, at a NaN, at a pole where `above` (x less the pole) is zero, and beyond it.
template <class T>
outcome<T> special(T x, T above) {
    if (above < 0)
        return {T(__builtin_nan("")), TQM_STATUS_ERRDOM};
    if (above == 0)
        return {T(-infinity), TQM_STATUS_SING};
    return {x + x, TQM_STATUS_OK};
}

// ln m for 1 <= m < 2, with an error below 2^-50: 2 artanh((m - 1) / (m + 1)), whose argument is at most 1/3.
double ln_of_mantissa(double m) {
    const double z = (m - 1) / (m + 1);
    double sum = 0;
    for (int i = 33; i > 0; i -= 2)
        sum = sum * (z * z) + 2.0 / i;
    return z * sum;
}

// Of a subnormal number: k ln 2 is so large that ln m needs no more than its own precision. The head of ln 2 has
// trailing zeros for k.
outcome<double> of_subnormal(double x, int scaled) {
    constexpr double head = 0x1.62e42fefa38p-1, tail = 0x1.ef35793c7673p-45;
    int k;
    const double m = 2 * __builtin_frexp(x, &k);
    k -= scaled + 1;
    return {k * head + (ln_of_mantissa(m) + k * tail), TQM_STATUS_OK};
}

outcome<double> ln(double x) {
    if (x > 0 && x < infinity)
        return of_subnormal(x * 0x1p54, 54);
    return special(x, x);
}

outcome<float> ln(float x) {
    if (x > 0 && x < float(infinity))
        return {float(of_subnormal(x, 0).value), TQM_STATUS_OK};
    return special(x, x);
}

// Small numbers are their own results, rounded.
template <class T>
outcome<T> log1p(T x) {
    if (x > -1 && x < T(infinity))
        return {x, x == 0 || __builtin_isnormal(x) ? TQM_STATUS_OK : TQM_STATUS_UNDERFLOW};
    return special(x, x + 1);
}

} // namespace

VOX_VM_FIXUP_1(Ln, ln)
VOX_VM_FIXUP_1(Log1p, log1p)
