// auxiliary_test.cpp - copies and scaling of matrices, routines on a few numbers, and what ilaenv says.
#include <cfloat>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

#include "tests/lapack/fortran.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/reports.hpp"
#include "tests/support/whole_range.hpp"
#include "tests/support/wide.hpp"
#include "vox/vox.h"

namespace {

using namespace test;
using vox::is_complex;
using vox::real_of;

template <class T>
std::vector<T> random_elements(size_t n, real_of<T> scale = 1) {
    const auto re = random_vector<real_of<T>>(n, 5), im = random_vector<real_of<T>>(n, 6);
    std::vector<T> v(n);
    for (size_t i = 0; i < n; ++i)
        v[i] = vox::make<T>(re[i] * scale, im[i] * scale);
    return v;
}
template <class T>
bool same(T a, T b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

template <class T>
class Auxiliary : public ::testing::Test {};
TYPED_TEST_SUITE(Auxiliary, element_types);

TYPED_TEST(Auxiliary, CopiesAndSetsTheNamedPart) {
    using T = TypeParam;
    const T alpha = vox::make<T>(3, -4), beta = vox::make<T>(-5, 6);
    for (char uplo : {'U', 'l', 'A'})
        for (vox_int m : {0, 1, 4, 33})
            for (vox_int n : {0, 1, 4, 20}) {
                const vox_int lda = m + 1, ldb = m + 2;
                const auto a = random_elements<T>(size_t(lda * n));
                auto set = a;
                std::vector<T> b(size_t(ldb * n), alpha);
                invoke(fortran<T>::lacpy, uplo, m, n, a, lda, b, ldb);
                invoke(fortran<T>::laset, uplo, m, n, alpha, beta, set, lda);
                for (vox_int j = 0; j < n; ++j)
                    for (vox_int i = 0; i <= m; ++i) {
                        const bool named = uplo == 'U' ? i < j : uplo == 'l' ? i > j : i != j;
                        const T was = a[size_t(i + j * lda)];
                        ASSERT_TRUE(
                            same(b[size_t(i + j * ldb)], i < m && (named || i == j) ? was : alpha));
                        ASSERT_TRUE(same(set[size_t(i + j * lda)], i == m   ? was
                                                                   : i == j ? beta
                                                                   : named  ? alpha
                                                                            : was));
                    }
            }
}

// Rows of the array that hold column j; kl and ku are 2 and 1, or 2 both for a symmetric band.
bool is_scaled(char type, vox_int m, vox_int n, vox_int i, vox_int j) {
    return type == 'L'   ? i >= j && i < m
           : type == 'U' ? i <= j && i < m
           : type == 'H' ? i <= j + 1 && i < m
           : type == 'B' ? i <= 2 && i + j < n
           : type == 'Q' ? i <= 2 && i + j >= 2
           : type == 'Z' ? i >= 2 && i <= 5 && i + j >= 3 && i + j < m + 3
                         : i < m;
}

// At most four factors; what is denormal in the end loses half a denormal number in each.
TYPED_TEST(Auxiliary, ScalesWithoutOverflowOnTheWay) {
    using T = TypeParam;
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    const R tiny = limits::denorm_min(), small = limits::min(), huge = limits::max();
    const std::pair<R, R> factors[] = {
        {1, 3},       {3, 3},       {huge, 2 * small}, {small, huge / 4},
        {tiny, R(1)}, {huge, tiny}, {-7, R(0.1)},      {3, 0}};
    for (char type : {'G', 'l', 'U', 'H', 'B', 'Q', 'Z'})
        for (const auto &[from, to] : factors) {
            const char kind = type == 'l' ? 'L' : type;
            const bool symmetric = kind == 'B' || kind == 'Q';
            const vox_int n = 6, m = symmetric ? 6 : 9, lda = 9 + 3 * (to > 3);
            const long double factor = static_cast<long double>(to) / from;
            // elements whose product with the factor is about 1
            const R scale =
                factor == 0 ? 1
                            : R(std::fmin(huge / 4, std::fmax(tiny * 8, std::fabs(1 / factor))));
            const auto before = random_elements<T>(size_t(lda * n), scale);
            auto a = before;
            EXPECT_EQ(call(fortran<T>::lascl, type, 2, symmetric ? 2 : 1, from, to, m, n, a, lda),
                      0);
            for (vox_int j = 0; j < n; ++j)
                for (vox_int i = 0; i < lda; ++i) {
                    const auto at = size_t(i + j * lda);
                    if (!is_scaled(kind, m, n, i, j)) {
                        ASSERT_TRUE(same(a[at], before[at])) << type << i << "," << j;
                        continue;
                    }
                    const auto want = widen(before[at]) * factor;
                    ASSERT_LE(size(widen(a[at]) - want), test::gamma<R>(5) * size(want) + 4 * tiny)
                        << type << i << "," << j << " " << from << " " << to;
                }
        }
}

// The first bad argument in the order in which LAPACK looks at them: widths of bands and the leading
// dimension, whose least depends on the type, come last.
TEST(Scaling, RefusesWrongArguments) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const struct {
        char type;
        vox_int kl, ku;
        double from, to;
        vox_int m, n, lda, info;
    } cases[] = {
        {'X', 0, 0, 0, nan, -1, -1, 0, -1}, {'G', 0, 0, 0, nan, -1, -1, 0, -4},
        {'G', 0, 0, nan, 1, 2, 2, 2, -4},   {'G', 0, 0, 1, nan, -1, -1, 0, -5},
        {'G', 0, 0, 1, 1, -1, -1, 0, -6},   {'G', 0, 0, 1, 1, 0, -1, 0, -7},
        {'B', -1, 0, 1, 1, 3, 2, 0, -7},    {'Q', 0, 0, 1, 1, 2, 3, 3, -7},
        {'H', -1, -1, 1, 1, 2, 3, 1, -9},   {'L', 0, 0, 1, 1, 0, 0, 0, -9},
        {'B', -1, 9, 1, 1, 3, 3, 0, -2},    {'Z', 3, -1, 1, 1, 3, 5, 0, -2},
        {'Q', 1, 2, 1, 1, 3, 3, 0, -3},     {'Z', 1, 5, 1, 1, 3, 5, 0, -3},
        {'B', 2, 2, 1, 1, 3, 3, 2, -9},     {'Q', 2, 2, 1, 1, 3, 3, 2, -9},
        {'Z', 2, 1, 1, 1, 3, 5, 5, -9},     {'Z', 2, 1, 1, 2, 3, 5, 6, 0},
    };
    const reports_recorded recorded;
    for (const auto &c : cases) {
        std::vector<double> a(30, 1.0);
        reports.clear();
        EXPECT_EQ(call(dlascl_, c.type, c.kl, c.ku, c.from, c.to, c.m, c.n, a, c.lda), c.info);
        EXPECT_EQ(reports, c.info ? "DLASCL:" + std::to_string(-c.info) + ' ' : "") << c.type;
        EXPECT_EQ(a == std::vector<double>(30, 1.0), c.info != 0);
    }
}

// What is there already, and vectors that go up and down; the sum is scale^2 sum.
TYPED_TEST(Auxiliary, AddsSquares) {
    using T = TypeParam;
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    const auto x = whole_range<T>();
    const auto length = vox_int(x.size());
    for (vox_int inc : {1, -1, 3, -3})
        for (vox_int first : {0, 1, length / 2})
            for (R scale : {R(0), limits::min(), R(2), limits::max() / 4})
                for (R sum : {R(0), limits::min(), R(1), R(9), limits::max() / 64}) {
                    // one from the end, or the other: small numbers alone, and large ones with them
                    const vox_int step = std::abs(inc), n = (length - first) / step;
                    for (vox_int count : {n, n / 2, vox_int(0)}) {
                        long double want = static_cast<long double>(scale) * scale * sum;
                        for (vox_int i = 0; i < count; ++i)
                            want += std::norm(
                                std::complex<long double>(widen(x[size_t(first + i * step)])));
                        if (std::sqrt(want) > limits::max())
                            continue;
                        R s = scale, q = sum;
                        invoke(fortran<T>::lassq, count, x.data() + first, inc, &s, &q);
                        const long double got = static_cast<long double>(s) * s * q;
                        EXPECT_LE(std::fabs(got - want), test::gamma<R>(2 * count + 12) * want)
                            << inc << " " << first << " " << count << " " << scale << " " << sum;
                    }
                }
    const R nan = limits::quiet_NaN();
    for (const auto &[scale, sum] : {std::pair(nan, R(2)), std::pair(R(2), nan)}) {
        R s = scale, q = sum;
        invoke(fortran<T>::lassq, 2, x, 1, &s, &q);
        EXPECT_TRUE(same(s, scale) && same(q, sum));
    }
    const T bad[] = {vox::make<T>(1), vox::make<T>(nan), vox::make<T>(limits::max())};
    for (vox_int n : {2, 3}) {
        R s = 1, q = 0;
        invoke(fortran<T>::lassq, n, bad, 1, &s, &q);
        EXPECT_TRUE(std::isnan(s * q));
    }
}

// c = |f| / l, s = conj(g) d / l, r = d l with l the length of (f, g) and d the direction of f.
TYPED_TEST(Auxiliary, RotatesOntoTheFirstAxis) {
    using T = TypeParam;
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    using number = std::complex<long double>;
    const long double lost = 2.2L * limits::denorm_min();
    for (T f : whole_range<T>())
        for (T g : whole_range<T>()) {
            const number a = widen(f), b = widen(g);
            const long double size = std::abs(a), length = std::sqrt(std::norm(a) + std::norm(b));
            if (length > limits::max())
                continue;
            const number direction = size > 0 ? a / size : number(1);
            const number wanted[] = {length > 0 ? size / length : 1,
                                     length > 0 ? std::conj(b) * direction / length : 0,
                                     direction * length};
            R c;
            T s, r;
            invoke(fortran<T>::lartg, f, g, &c, &s, &r);
            const number got[] = {c, widen(s), widen(r)};
            for (int i = 0; i < 3; ++i)
                EXPECT_LE(std::abs(got[i] - wanted[i]),
                          test::gamma<R>(12) * std::abs(wanted[i]) + lost)
                    << a << b << " " << i;
        }
}

template <class R>
class RealNumbers : public ::testing::Test {
  protected:
    using routine = fortran<R>;
    static R lapy2(R x, R y) { return invoke(routine::lapy2, x, y); }
    static R lapy3(R x, R y, R z) { return invoke(routine::lapy3, x, y, z); }
    // (a + i b) / (c + i d) by the routine for real numbers, and by that for complex ones.
    static std::complex<R> ladiv(R a, R b, R c, R d) {
        R re, im;
        invoke(routine::ladiv, a, b, c, d, &re, &im);
        return {re, im};
    }
    static std::complex<R> divided(R a, R b, R c, R d) {
        using C = std::conditional_t<sizeof(R) == 4, vox_complex_float, vox_complex_double>;
        const C q = invoke(fortran<C>::ladiv, C{a, b}, C{c, d});
        return {q.real, q.imag};
    }
};
TYPED_TEST_SUITE(RealNumbers, real_types);

TYPED_TEST(RealNumbers, HaveALength) {
    using R = TypeParam;
    using limits = std::numeric_limits<R>;
    const auto close = [](R got, long double want) {
        EXPECT_TRUE(want > limits::max() ? got >= limits::max() * (1 - 8 * limits::epsilon())
                                         : std::fabs(got - want) <=
                                               test::gamma<R>(8) * want + 2 * limits::denorm_min())
            << got << " " << want;
    };
    for (R x : whole_range<R>())
        for (R y : whole_range<R>()) {
            close(this->lapy2(x, y), std::hypot(static_cast<long double>(x), y));
            for (R z : whole_range<R>())
                close(this->lapy3(x, y, z), std::hypot(static_cast<long double>(x), y, z));
        }
    const R inf = limits::infinity(), nan = limits::quiet_NaN();
    for (R x : {R(0), R(1), limits::max(), inf}) {
        EXPECT_TRUE(std::isnan(this->lapy2(nan, x)) && std::isnan(this->lapy2(x, nan)));
        EXPECT_TRUE(std::isnan(this->lapy3(nan, x, x)) && std::isnan(this->lapy3(x, nan, x)) &&
                    std::isnan(this->lapy3(x, x, nan)));
        EXPECT_EQ(this->lapy2(-inf, x), inf);
        EXPECT_EQ(this->lapy2(x, -inf), inf);
        EXPECT_EQ(this->lapy3(x, -inf, x), inf);
    }
}

TYPED_TEST(RealNumbers, AreDividedInPairs) {
    using R = TypeParam;
    using limits = std::numeric_limits<R>;
    for (R a : whole_range<R>())
        for (R b : whole_range<R>())
            for (R c : whole_range<R>())
                for (R d : whole_range<R>()) {
                    const std::complex<long double> n(a, b), m(c, d);
                    if (std::abs(m) == 0)
                        continue;
                    const auto want = n * std::conj(m) / std::norm(m);
                    if (std::abs(want) > limits::max() / 2)
                        continue;
                    for (const auto &got : {this->ladiv(a, b, c, d), this->divided(a, b, c, d)})
                        EXPECT_LE(std::abs(std::complex<long double>(got) - want),
                                  test::gamma<R>(12) * std::abs(want) + 2 * limits::denorm_min())
                            << n << "/" << m;
                }
}

// Each part to its last bits: from table 2 of Baudin and Smith (arXiv:1210.4539).
using DoubleNumbers = RealNumbers<double>;
TEST_F(DoubleNumbers, AreDividedAccuratelyInEachPart) {
    const auto two = [](int e) { return std::ldexp(1.0, e); };
    const struct {
        double a, b, c, d, p, q;
    } cases[] = {
        {1, 1, 1, two(1023), two(-1023), -two(-1023)},
        {1, 1, two(-1023), two(-1023), two(1023), 0},
        {two(1023), two(-1023), two(677), two(-677), two(346), -two(-1008)},
        {two(1023), two(1023), 1, 1, two(1023), 0},
        {two(1020), two(-844), two(656), two(-780), two(364), -two(-1072)},
        {two(-71), two(1021), two(1001), two(-323), two(-1072), two(20)},
        {two(-347), two(-54), two(-1037), two(-1058), 3.898125604559113300e289,
         8.174961907852353577e295},
        {two(-1074), two(-1074), two(-1073), two(-1074), 0.6, 0.2},
        {two(1015), two(-989), two(1023), two(1023), 0.001953125, -0.001953125},
        {two(-622), two(-1071), two(-343), two(-798), 1.02951151789360578e-84,
         6.97145987515076231e-220},
    };
    for (const auto &c : cases) {
        const auto got = ladiv(c.a, c.b, c.c, c.d);
        EXPECT_LE(std::fabs(got.real() - c.p), 2 * DBL_EPSILON * std::fabs(c.p))
            << c.a << "/" << c.c;
        EXPECT_LE(std::fabs(got.imag() - c.q), 2 * DBL_EPSILON * std::fabs(c.q))
            << c.a << "/" << c.c;
    }
}

TYPED_TEST(RealNumbers, AreWhatTheStandardSays) {
    using R = TypeParam;
    using limits = std::numeric_limits<R>;
    const std::pair<const char *, R> answers[] = {{"Ee", limits::epsilon() / 2},
                                                  {"Ss", limits::min()},
                                                  {"Bb", 2},
                                                  {"Pp", limits::epsilon()},
                                                  {"Nn", limits::digits},
                                                  {"Rr", 1},
                                                  {"Mm", limits::min_exponent},
                                                  {"Uu", limits::min()},
                                                  {"Ll", limits::max_exponent},
                                                  {"Oo", limits::max()},
                                                  {"Xa", 0}};
    for (const auto &[letters, value] : answers) {
        EXPECT_EQ(invoke(fortran<R>::lamch, letters[0]), value) << letters;
        EXPECT_EQ(invoke(fortran<R>::lamch, letters[1]), value) << letters;
    }
    R small = limits::min(), large = limits::max();
    invoke(fortran<R>::labad, &small, &large);
    EXPECT_TRUE(small == limits::min() && large == limits::max());
}

vox_int asked(vox_int ispec, const char *name, vox_int n1 = 1000, vox_int n2 = 1000,
              vox_int n3 = -1, vox_int n4 = -1) {
    return ilaenv(&ispec, name, " ", &n1, &n2, &n3, &n4, std::strlen(name), 1);
}

TEST(Environment, KnowsItsRoutines) {
    for (const char *name :
         {"DGETRF", "spotrf", "Zgetri  ", "CUNGQR", "DORMLQ", "SGEQRF", "ZTRTRI"}) {
        EXPECT_GE(asked(1, name), 16) << name;
        EXPECT_GE(asked(2, name), 2) << name;
        EXPECT_LE(asked(2, name), asked(1, name)) << name;
        EXPECT_GE(asked(3, name), 0) << name;
    }
    for (const char *name : {"DGETRS", "XGETRF", "", "D", "DGETR", "DGETF2"}) {
        EXPECT_EQ(asked(1, name), 1) << name;
        EXPECT_EQ(asked(3, name), 0) << name;
    }
    EXPECT_LE(asked(1, "DGEQRF", 100, 100), asked(1, "DGEQRF", 3000, 3000));
    EXPECT_EQ(asked(1, "DGEQRF", -1, -1), asked(1, "DGEQRF", 3000, 3000)); // unknown: the most
    vox_int version[3];
    ilaver(version, version + 1, version + 2);
    EXPECT_EQ(version[0] * 10000 + version[1] * 100 + version[2], 31100);
}

// Parameters of algorithms, as LAPACK documents them.
TEST(Environment, AnswersAsDocumented) {
    const struct {
        vox_int ispec, n1, n2, n3, answer;
    } cases[] = {
        {-1, 0, 0, 0, -1},        {0, 0, 0, 0, -1},      {18, 0, 0, 0, -1},
        {4, 0, 0, 0, 6},          {5, 0, 0, 0, 2},       {6, 300, 200, 0, 320},
        {7, 0, 0, 0, 1},          {8, 0, 0, 0, 50},      {9, 0, 0, 0, 25},
        {10, 0, 0, 0, 1},         {11, 0, 0, 0, 1},      {12, 0, 0, 0, 75},
        {14, 0, 0, 0, 14},        {17, 0, 0, 0, 10},     {15, 29, 1, 29, 2},
        {15, 99, 11, 40, 4},      {15, 60, 1, 60, 10},   {15, 150, 1, 150, 20},
        {15, 400, 1, 400, 44},    {15, 590, 1, 590, 64}, {15, 3000, 1, 3000, 128},
        {15, 6000, 1, 6000, 256}, {13, 400, 1, 400, 44}, {13, 590, 1, 590, 96},
        {16, 149, 1, 149, 0},     {16, 150, 1, 150, 2},
    };
    for (const auto &c : cases)
        EXPECT_EQ(asked(c.ispec, "DHSEQR", c.n1, c.n2, c.n3), c.answer) << c.ispec << " " << c.n1;
    EXPECT_EQ(asked(16, "SGGHRD", 10, 1, 10), 1);
    EXPECT_EQ(asked(16, "CGGHD3", 14, 1, 14), 2);
    EXPECT_EQ(asked(16, "ZTREXC", 13, 1, 13), 0);
    EXPECT_EQ(asked(16, "DLAQR0", 200, 1, 200), 2);
    EXPECT_EQ(asked(16, "DLAHQR", 200, 1, 200), 0);
}

} // namespace
