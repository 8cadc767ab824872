// power.cpp - powers of special values, of negative and subnormal bases, and those near and beyond the ends of the
// range.
#include "vm/power.hpp"
#include "vm/fixup.hpp"
#include "vm/fixups/scaling.hpp"
#include "vm/power_tables.hpp"

namespace {

using vox::vm::outcome;
using vox::vm::smallest_normal;

struct scalar_arithmetic {
    using real = double;
    using bits = uint64_t;
    static constexpr int log_bits(vm::power_goal) { return 7; }
    static constexpr int table_bits = 7;
    static constexpr bool fused = false;
    static real fma(real a, real b, real c) { return a * b + c; }
    static real real_exponent(bits x) { return double(int64_t(x >> 52)) - 1023; }
    struct log_rows {
        const double *row;
        explicit log_rows(bits i) : row(vox::vm::vox_vm_power_log[i & 127]) {}
        void entry(real &c, real &high, real &low) const {
            c = row[0], high = row[2], low = row[3];
        }
    };
    static void exp_entry(bits i, real &power, real &tail) {
        power = vox::vm::vox_vm_power_exp[i & 127][0];
        tail = vox::vm::vox_vm_power_exp[i & 127][1];
    }
};
using computation = vm::power<scalar_arithmetic, vm::power_goal::ha>;

constexpr double infinity = __builtin_inf();

template <class T>
constexpr int least_exponent = sizeof(T) == 4 ? -149 : -1074; // of any number

double magnitude(double x) { return __builtin_fabs(x); }
bool is_negative(double x) { return __builtin_signbit(x); }

// Finite numbers; from 2^53 on all are even integers.
bool is_integer(double y) { return magnitude(y) >= 0x1p53 || double(int64_t(y)) == y; }
bool is_odd(double y) { return magnitude(y) < 0x1p53 && (int64_t(y) & 1) && is_integer(y); }

// 2^k, 2^-1022 at least.
long double power_of_two(int k) { return __builtin_ldexpl(1, k); }

// The root of m, or 0 if it is no integer.
uint64_t exact_root(uint64_t m) {
    const auto root = uint64_t(__builtin_sqrt(double(m)));
    return root * root == m ? root : 0;
}

// Whether x^y, below the normal numbers of T but above half of its least number, is itself a number of T: x = m 2^e
// with an odd m, and y m's power and y e must be integers, for fractional y = p / 2^j after j roots.
template <class T>
bool is_exact(double x, double y) {
    int e;
    auto m = uint64_t(__builtin_frexp(x, &e) * 0x1p53);
    e -= 53;
    for (; m % 2 == 0; m /= 2)
        ++e;
    if (m > 1) {
        for (int roots = 0; !is_integer(y); y += y, ++roots) {
            m = exact_root(m);
            if (m == 0 || e % 2 != 0 || roots == 6)
                return false;
            e /= 2;
        }
        if (y < 0 || y > 33)
            return false;
    }
    const long double exponent = static_cast<long double>(y) * e; // of 64 bits at most, so exact
    if (exponent != int(exponent) || exponent < least_exponent<T>)
        return false;
    double power = 1;
    if (m > 1)
        for (int i = 0; i < int(y) && power < 0x1p53; ++i)
            power *= double(m);
    return power < 0x1p53;
}

// x^y of finite x > 0, other than 1, and finite y.
template <class T>
outcome<T> positive_power(double x, double y) {
    const bool subnormal = x < smallest_normal<double>;
    auto parts = computation::split_of(subnormal ? x * 0x1p54 : x);
    if (subnormal)
        parts.k -= 54;
    const auto z = computation::exponent(parts, y);
    const double about = z.high;
    if (about > 800)
        return {T(infinity), TQM_STATUS_OVERFLOW};
    if (about < -800)
        return {T(0), TQM_STATUS_UNDERFLOW};
    const auto result = computation::exp(z);
    // s without its exponent, then that and the rounding to T at once.
    const int k = int(int64_t(result.n << 13) >> 13 >> 7);
    const double s =
        computation::scale(result.n & 127, 0, vox::vm::vox_vm_power_exp[result.n & 127][0]).s;
    const long double exact = s + static_cast<long double>(s) * result.p;
    const T value = T(exact * power_of_two(k));
    if (value > (sizeof(T) == 4 ? T(0x1.fffffep127) : T(0x1.fffffffffffffp1023)))
        return {value, TQM_STATUS_OVERFLOW};
    if (value < smallest_normal<T> && !(value > 0 && is_exact<T>(x, y)))
        return {value, TQM_STATUS_UNDERFLOW};
    return {value, TQM_STATUS_OK};
}

// C, Annex F.
template <class T>
outcome<T> pow(T x, T y) {
    if (y == 0 || x == 1)
        return {1, TQM_STATUS_OK};
    if (x != x || y != y)
        return {x + y, TQM_STATUS_OK};
    const T base = T(magnitude(x));
    if (magnitude(y) == infinity) {
        const T value = base == 1 ? T(1) : (base > 1) == (y > 0) ? T(infinity) : T(0);
        return {value, TQM_STATUS_OK};
    }
    const T sign = is_negative(x) && is_odd(y) ? T(-1) : T(1);
    if (base == 0 && y < 0)
        return {sign * T(infinity), TQM_STATUS_SING};
    if (base == 0 || base == infinity)
        return {sign * ((base > 0) == (y > 0) ? T(infinity) : T(0)), TQM_STATUS_OK};
    if (x < 0 && !is_integer(y))
        return {T(__builtin_nan("")), TQM_STATUS_ERRDOM};
    const outcome<T> result = base == 1 ? outcome<T>{1, TQM_STATUS_OK} : positive_power<T>(base, y);
    return {sign * result.value, result.status};
}

} // namespace

VOX_VM_FIXUP_2(Pow, pow)
VOX_VM_FIXUP_2(Powx, pow)
