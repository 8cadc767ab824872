// rotg_test.cpp - the construction of rotations: rotg against long double over the whole range, rotmg by
// the equations that define it.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/blas/level1.hpp"
#include "tests/support/whole_range.hpp"

namespace {

using namespace test;

template <class T>
class Rotg : public ::testing::Test {};
TYPED_TEST_SUITE(Rotg, element_types);

// Each result comes from at most 12 roundings of relative size u. Where numbers are denormal, each part
// may lose half a denormal number in the scaling and in either of two products besides.
TYPED_TEST(Rotg, IsAccurateOverTheWholeRange) {
    using T = TypeParam;
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    const auto close = [](wide got, wide want) {
        const long double lost = std::sqrt(2.0L) * 1.5L * limits::denorm_min();
        return std::abs(got - want) <= test::gamma<R>(12) * std::abs(want) + lost;
    };
    for (T f : whole_range<T>())
        for (T g : whole_range<T>())
            for (form which : {form::fortran, form::c}) {
                const wide a = widen(f), b = widen(g);
                const long double size_a = std::abs(a), size_b = std::abs(b);
                const long double length = std::sqrt(std::norm(a) + std::norm(b));
                wide direction = size_a > 0 ? a / size_a : 1; // of the result
                if (!is_complex<T>)
                    direction = std::copysign(1.0L, (size_a > size_b ? a : b).real());
                if (length == 0)
                    direction = 1;
                const wide r = direction * length;
                if (length > limits::max())
                    continue;
                const wide c = size_b == 0 ? 1 : is_complex<T> ? size_a / length : a / r;
                const wide s = size_b == 0     ? 0
                               : is_complex<T> ? std::conj(b) * direction / length
                                               : b / r;
                T got_a = f, got_b = g, got_s;
                R got_c;
                rotg(which, &got_a, &got_b, &got_c, &got_s);
                EXPECT_TRUE(close(widen(got_a), size_b == 0 ? a : r))
                    << a << b << widen(got_a) << r;
                EXPECT_TRUE(close(got_c, c)) << a << b << got_c << c;
                EXPECT_TRUE(close(widen(got_s), s)) << a << b << widen(got_s) << s;
                if constexpr (is_complex<T>) {
                    EXPECT_EQ(widen(got_b), b);
                } else {
                    const R z = size_b == 0       ? 0
                                : size_a == 0     ? 1
                                : size_a > size_b ? got_s
                                : got_c != 0      ? 1 / got_c
                                                  : 1;
                    EXPECT_EQ(got_b, z) << a << b;
                }
            }
}

TYPED_TEST(Rotg, CarriesNaN) {
    using T = TypeParam;
    using R = real_of<T>;
    const T nan = narrow<T>(std::numeric_limits<long double>::quiet_NaN()), one = narrow<T>(1);
    for (auto [f, g] : {std::pair{nan, one}, {one, nan}, {nan, nan}}) {
        T a = f, b = g, s;
        R c;
        rotg(form::fortran, &a, &b, &c, &s);
        EXPECT_TRUE(std::isnan(widen(a).real()));
        EXPECT_TRUE(std::isnan(c));
    }
}

template <class R>
class Rotmg : public ::testing::Test {};
TYPED_TEST_SUITE(Rotmg, real_types);

struct matrix {
    long double h11, h21, h12, h22;
};
template <class R>
matrix spelled_out(const R *param) {
    const R flag = param[0];
    if (flag == -2)
        return {1, 0, 0, 1};
    return {flag == 0 ? 1 : param[1], flag == 1 ? -1 : param[2], flag == 1 ? 1 : param[3],
            flag == 0 ? 1 : param[4]};
}

// The weighted rotation: H' D' H = D, and H (x1, y1) = (x1', 0). Each equation holds up to the
// roundings of its terms.
TYPED_TEST(Rotmg, SolvesItsEquations) {
    using R = TypeParam;
    const R weights[] = {R(1e-9), R(0.3), 1, R(2.5), R(3e9)}, parts[] = {R(-7), R(0.01), 1, R(500)};
    const long double bound = test::gamma<R>(16);
    int flags[4] = {};
    for (R d1 : weights)
        for (R d2_size : weights)
            for (R d2 : {d2_size, -d2_size})
                for (R x1 : parts)
                    for (R y1 : parts)
                        for (form f : {form::fortran, form::c}) {
                            const bool feasible =
                                d2 > 0 || std::fabs((long double)d1 * x1 * x1) >
                                              1.0001L * std::fabs((long double)d2 * y1 * y1);
                            const bool infeasible =
                                d2 < 0 && std::fabs((long double)d1 * x1 * x1) <
                                              0.9999L * std::fabs((long double)d2 * y1 * y1);
                            R e1 = d1, e2 = d2, z1 = x1, param[5] = {9, 9, 9, 9, 9};
                            rotmg(f, &e1, &e2, &z1, y1, param);
                            SCOPED_TRACE(::testing::Message() << d1 << ' ' << d2 << ' ' << x1 << ' '
                                                              << y1 << " flag " << param[0]);
                            if (infeasible) {
                                for (R zero : {e1, e2, z1, param[1], param[2], param[3], param[4]})
                                    EXPECT_EQ(zero, 0);
                                EXPECT_EQ(param[0], -1);
                            }
                            if (!feasible)
                                continue;
                            ++flags[int(param[0]) + 2];
                            const matrix h = spelled_out(param);
                            const auto small = [&](long double a, long double b, long double c) {
                                return std::fabs(a + b - c) <=
                                       bound * (std::fabs(a) + std::fabs(b) + std::fabs(c));
                            };
                            EXPECT_TRUE(small(e1 * h.h11 * h.h11, e2 * h.h21 * h.h21, d1));
                            EXPECT_TRUE(small(e1 * h.h12 * h.h12, e2 * h.h22 * h.h22, d2));
                            EXPECT_TRUE(small(e1 * h.h11 * h.h12, e2 * h.h21 * h.h22, 0));
                            EXPECT_TRUE(small(h.h11 * x1, h.h12 * y1, z1));
                            EXPECT_TRUE(small(h.h21 * x1, h.h22 * y1, 0));
                            for (R weight : {e1, e2}) {
                                EXPECT_GT(std::fabs(weight), R(0x1p-24));
                                EXPECT_LT(std::fabs(weight), R(0x1p24));
                            }
                        }
    EXPECT_GT(flags[1], 0);
    EXPECT_GT(flags[2], 0);
    EXPECT_GT(flags[3], 0);
}

TYPED_TEST(Rotmg, KnowsTheSpecialCasesAndEndsOnAnyInput) {
    using R = TypeParam;
    const R inf = std::numeric_limits<R>::infinity(), nan = std::numeric_limits<R>::quiet_NaN();
    R d1 = 2, d2 = 3, x1 = 5, param[5] = {9, 9, 9, 9, 9};
    rotmg(form::fortran, &d1, &d2, &x1, R(0), param); // nothing to annihilate
    EXPECT_EQ(param[0], -2);
    EXPECT_TRUE(d1 == 2 && d2 == 3 && x1 == 5 && param[1] == 9);
    d1 = -1;
    rotmg(form::fortran, &d1, &d2, &x1, R(1), param);
    EXPECT_TRUE(param[0] == -1 && d1 == 0 && d2 == 0 && x1 == 0 && param[4] == 0);
    const R hostile[] = {
        0,   -1,   1,  std::numeric_limits<R>::denorm_min(), std::numeric_limits<R>::max(),
        inf, -inf, nan};
    for (R a : hostile)
        for (R b : hostile)
            for (R c : hostile)
                for (R d : hostile) {
                    d1 = a, d2 = b, x1 = c;
                    rotmg(form::fortran, &d1, &d2, &x1, d, param);
                    EXPECT_TRUE(param[0] == -2 || param[0] == -1 || param[0] == 0 || param[0] == 1);
                }
}

} // namespace
