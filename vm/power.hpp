// power.hpp - x^y of doubles: e^(y ln x) with a logarithm in two parts.
//
// One algorithm for the vectors of all kernel sets and for the single numbers of the fix-ups. It is written over an
// Arithmetic, which says what a real is, whether a product and a sum round once, and how the tables are read.
//
// x is 2^k m, and the top bits of m choose an inverse c of few bits, so that r = m c - 1 is small and exact: ln x =
// k ln 2 - ln c + ln(1 + r). The table has 2^log_bits intervals, centred such that c = 1 and k = 0 around x = 1;
// no cancellation harms a logarithm near 0. e^z is 2^(n / 2^table_bits) e^s with 2^table_bits entries in the table
// of powers.
//
// The exact logarithm: r - r^2 / 2 is kept in two parts, what follows is rounded once to about 2^-65 of the
// logarithm, which y ln x < 710 turns into less than 0.1 ulp. The short one, to base 2 and in one part, is good for 2^-29 of
// the power where that has less than half of a double's bits, or is a float.
//
// Tables computed with mpmath, polynomials with sollya's fpminimax; the error of each stands beside it.
#pragma once

#include <array>
#include <type_traits>

#include "serv/base.hpp"
#include "vox/tqm.h"

namespace {
namespace vm {

// What a power is computed to. single_ha and single_la: of floats that are widened.
enum class power_goal { ha, la, ep, single_ha, single_la };

constexpr bool is_exact(power_goal goal) {
    return goal == power_goal::ha || goal == power_goal::la;
}

template <int N>
using coefficients = std::array<double, N>;
template <int N>
struct led_by {
    double first;
    coefficients<N> rest;
};

// ln(1 + r) = r - r^2 / 2 + r^3 (c[0] + c[1] r + ...), relative error 2^-71.5, 2^-68.9, 2^-70.5, 2^-61.3.
// 16 intervals reach |r| <= 0.0342, 32 of them 0.0198, 128 of them 0.0053.
template <int log_bits, power_goal goal>
constexpr auto log_series() {
    if constexpr (log_bits == 5 && goal == power_goal::ha)
        return coefficients<9>{0x1.5555555555555p-2,  -0x1.0000000000001p-2, 0x1.999999999d0dap-3,
                               -0x1.555555555af88p-3, 0x1.249248c58e906p-3,  -0x1.fffffc39a1827p-4,
                               0x1.c724c7475e329p-4,  -0x1.99db89635e247p-4, 0x1.5387b438fd151p-4};
    else if constexpr (log_bits == 5)
        return coefficients<8>{0x1.5555555555553p-2,  -0x1.000000000002cp-2, 0x1.99999999b73b4p-3,
                               -0x1.555555541ccf5p-3, 0x1.24924587f9527p-3,  -0x1.000014296692bp-3,
                               0x1.c774df5977c72p-4,  -0x1.98e9f5e5c4ebap-4};
    else if constexpr (goal == power_goal::ha)
        return coefficients<6>{0x1.555555555555cp-2,  -0x1.ffffffffffd63p-3, 0x1.999999969c03cp-3,
                               -0x1.555555a190c2fp-3, 0x1.249544637963bp-3,  -0x1.ffc20264ec155p-4};
    else
        return coefficients<5>{0x1.555555555548ep-2, -0x1.fffffffe608ep-3, 0x1.999999dc00a9p-3,
                               -0x1.5557f99fa21f2p-3, 0x1.2470a6f0025adp-3};
}

// log2(1 + r) = first r + r^2 (rest[0] + rest[1] r + ...), relative error 2^-31.0, 2^-37.2, 2^-35.7, 2^-44.5.
template <int log_bits, power_goal goal>
constexpr auto log2_series() {
    if constexpr (log_bits == 4 && goal == power_goal::single_la)
        return led_by<4>{0x1.715476528a4e6p0,
                         {-0x1.71547315ced47p-1, 0x1.ec70b7af14251p-2, -0x1.71adbc6e5a80ap-2,
                          0x1.272e86caf6143p-2}};
    else if constexpr (log_bits == 4)
        return led_by<5>{0x1.71547652c27dbp0,
                         {-0x1.71547651a0d56p-1, 0x1.ec7093c7b16ebp-2, -0x1.715499a4a7894p-2,
                          0x1.27d290ae931b1p-2, -0x1.ebdc04c0051a2p-3}};
    else if constexpr (goal != power_goal::ep)
        return led_by<3>{0x1.715476529b033p0,
                         {-0x1.7154765cf938fp-1, 0x1.ec72aabae2d2fp-2, -0x1.713e82e24765fp-2}};
    else
        return led_by<4>{0x1.71547652b82ebp0,
                         {-0x1.715476523ebcap-1, 0x1.ec709de380b4dp-2, -0x1.715698ea02e9bp-2,
                          0x1.275ff4560e13bp-2}};
}

// e^s - 1 = s + s^2 (c[0] + c[1] s + ...), error 2^-66.2, 2^-56.4, 2^-65.4.
template <int table_bits, power_goal goal>
constexpr auto exp_series() {
    if constexpr (table_bits == 4 && goal == power_goal::ha)
        return coefficients<6>{0x1.0000000000004p-1, 0x1.55555555555fap-3, 0x1.555555548912bp-5,
                               0x1.111110febea14p-7, 0x1.6c1837bd9c5bp-10, 0x1.a03880b177236p-13};
    else if constexpr (table_bits == 4)
        return coefficients<5>{0x1.00000000000bfp-1, 0x1.555555549bd9p-3, 0x1.555555365d307p-5,
                               0x1.1112311f68c3dp-7, 0x1.6c36a4207a3afp-10};
    else
        return coefficients<4>{0x1.ffffffffffdefp-2, 0x1.5555555548d27p-3, 0x1.55555ca234276p-5,
                               0x1.1113620a6407dp-7};
}

// 2^s - 1 = s (c[0] + c[1] s + ...), error 2^-38.6, 2^-29.3, 2^-30.2.
template <int table_bits, power_goal goal>
constexpr auto exp2_series() {
    if constexpr (table_bits == 4 && goal == power_goal::single_ha)
        return coefficients<4>{0x1.62e42fec83b1fp-1, 0x1.ebfbdfb9141a8p-3, 0x1.c6b3d58d3eed4p-5,
                               0x1.3b4481b2ceca5p-7};
    else if constexpr (table_bits == 4)
        return coefficients<3>{0x1.62e42fae8fc07p-1, 0x1.ebffd421005d8p-3, 0x1.c6da21b6ecc11p-5};
    else
        return coefficients<2>{0x1.62e444734ede6p-1, 0x1.ebffcbe144549p-3};
}

// Arithmetic:
//   real, bits                 a double and its bits, or vectors of them
//   log_bits(goal)             2^log_bits intervals in the table of logarithms
//   table_bits                 2^table_bits entries in the table of powers
//   fused
//   fma(a, b, c)               a b + c, rounded once if fused
//   real_exponent(bits)        the exponent of a positive normal number, as a real
//   log_rows(bits i)           rows of the table of logarithms, at the low bits of i
//     .entry(c, log2)          c and -log2 c
//     .entry(c, high, low)     c and -ln c in two parts
//   exp_entry(bits n, real &power, real &tail), exp_power(bits n)
//                              the table of powers, at the low bits of n
template <class Arithmetic, power_goal goal>
struct power {
    using A = Arithmetic;
    using real = typename A::real;
    using bits = typename A::bits;
    static constexpr int log_bits = A::log_bits(goal), table_bits = A::table_bits;

    static bits bits_of(real x) { return __builtin_bit_cast(bits, x); }
    static real real_of(bits x) { return __builtin_bit_cast(real, x); }

    // The high 26 bits of x: a product of two such numbers is exact.
    static real head(real x) { return real_of(bits_of(x) & ~uint64_t(0x7FFFFFF)); }

    // Even and odd powers apart, which halves the time until the result is there.
    template <size_t N>
    static real polynomial(real x, real square, const std::array<double, N> &c) {
        real even = real{} + c[(N - 1) & ~size_t(1)], odd = real{} + c[(N - 2) | 1];
#pragma GCC unroll 16
        for (int i = int((N - 1) & ~size_t(1)) - 2; i >= 0; i -= 2)
            even = A::fma(even, square, real{} + c[size_t(i)]);
#pragma GCC unroll 16
        for (int i = int((N - 2) | 1) - 2; i >= 1; i -= 2)
            odd = A::fma(odd, square, real{} + c[size_t(i)]);
        return A::fma(x, odd, even);
    }

    // x = 2^k m of a normal x > 0, with m between 0.67 and 1.35, and the rows of m's intervals.
    struct split {
        real k, m;
        typename A::log_rows rows;
    };
    static split split_of(real x) {
        constexpr uint64_t one = uint64_t(1023) << 52,
                           least = 0x3FE6000000000000 - (uint64_t(1) << (51 - log_bits));
        const bits from_least = bits_of(x) + (one - least);
        return {A::real_exponent(from_least),
                real_of((from_least & ((uint64_t(1) << 52) - 1)) + least),
                typename A::log_rows(from_least >> (52 - log_bits))};
    }

    struct two_parts {
        real high, low;
    };

    // y ln x.
    static two_parts exponent(const split &x, real y) {
        constexpr double ln2_high = 0x1.62e42fefa38p-1, // k ln2_high is exact
            ln2_low = 0x1.ef35793c7673p-45;
        real c, ln_high, ln_low;
        x.rows.entry(c, ln_high, ln_low);
        // Exact, and so is the square of the head of r, where products are rounded.
        const real m_head = head(x.m);
        const real r =
            A::fused ? A::fma(x.m, c, real{} - 1.0) : (m_head * c - 1.0) + (x.m - m_head) * c;
        const real r_head = A::fused ? r : head(r);
        const real half = -0.5 * r_head, half_square = half * r_head;
        const real table = A::fma(x.k, real{} + ln2_high, ln_high); // exact
        const real sum = table + r, high = sum + half_square;
        const real below_sum = (table - sum) + r, below_high = (sum - high) + half_square;
        const real below_square =
            A::fused ? A::fma(half, r_head, -half_square) : -0.5 * (r - r_head) * (r + r_head);
        const real square = r * r;
        const real rest =
            A::fma(r * square, polynomial(r, square, log_series<log_bits, goal>()), below_high);
        const real low = A::fma(x.k, real{} + ln2_low, ln_low) + (below_sum + below_square) + rest;
        if constexpr (goal == power_goal::ha) {
            const real all = high + low;
            return product(y, all, (high - all) + low);
        } else {
            return product(y, high, low);
        }
    }

    // y (high + low)
    static two_parts product(real y, real high, real low) {
        if constexpr (A::fused) {
            const real first = y * high;
            return {first, A::fma(y, low, A::fma(y, high, -first))};
        } else {
            const real y_head = head(y), high_head = head(high);
            return {y_head * high_head, (y - y_head) * high_head + y * ((high - high_head) + low)};
        }
    }

    // y log2 x.
    static real short_exponent(const split &x, real y) {
        real c, log2;
        x.rows.entry(c, log2);
        const real r = A::fma(x.m, c, real{} - 1.0);
        const real square = r * r;
        constexpr auto series = log2_series<log_bits, goal>();
        return y * A::fma(square, polynomial(r, square, series.rest),
                          A::fma(r, real{} + series.first, x.k + log2));
    }

    // A power is s + s p. n: its exponent of 2 is n >> table_bits; s is right as long as that is one of normal
    // numbers'.
    struct scaled {
        real s, p;
        bits n;
        real value() const { return A::fma(s, p, s); }
    };

    static scaled scale(bits n, real p, real power) {
        return {real_of(bits_of(power) + (n << (52 - table_bits))), p, n};
    }

    // e^(z.high + z.low)
    static scaled exp(const two_parts &z) {
        constexpr int intervals = 1 << table_bits;
        constexpr double per_interval = 0x1.71547652b82fep0 * intervals, shift = 0x1.8p52;
        constexpr double high = 0x1.62e42feep-1 / intervals, // n high is exact
            low = 0x1.a39ef35793c76p-33 / intervals;
        const real shifted = A::fma(goal == power_goal::ha ? z.high : z.high + z.low,
                                    real{} + per_interval, real{} + shift);
        const real n = shifted - shift;
        const real s = A::fma(n, real{} - high, z.high) + A::fma(n, real{} - low, z.low);
        real power, tail;
        A::exp_entry(bits_of(shifted), power, tail);
        const real square = s * s;
        const real p =
            A::fma(square, polynomial(s, square, exp_series<table_bits, goal>()), s + tail);
        return scale(bits_of(shifted), p, power);
    }

    // 2^z
    static real exp2(real z) {
        constexpr double shift = 0x1.8p52 / (1 << table_bits);
        const real shifted = z + shift;
        const real s = z - (shifted - shift);
        const real power = scale(bits_of(shifted), s, A::exp_power(bits_of(shifted))).s;
        return A::fma(power * s, polynomial(s, s * s, exp2_series<table_bits, goal>()), power);
    }
};

} // namespace vm
} // namespace
