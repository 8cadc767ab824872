// lu_test.cpp - LU factorisation, solutions and inverses: backward errors over shapes that straddle
// every block edge, pivots, singular and extreme matrices, NaN and infinities, workspaces, threads.
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "tests/lapack/fortran.hpp"
#include "tests/lapack/support.hpp"
#include "tests/support/thread_counts.hpp"

namespace {

using namespace test;

template <class T>
class Lu : public ::testing::Test {};
TYPED_TEST_SUITE(Lu, element_types);

template <class T>
struct factored {
    matrix<T> lu;
    std::vector<int> pivots;
    int info;
};
template <class T>
factored<T> factor(const matrix<T> &a) {
    factored<T> f = {a, std::vector<int>(std::min(a.rows(), a.columns()), -1), 0};
    f.info = call(fortran<T>::getrf, a.rows(), a.columns(), f.lu, f.pivots);
    return f;
}
template <class T>
int invert(factored<T> &f) {
    return call_with_work<T>(fortran<T>::getri, f.lu.rows(), f.lu, f.pivots);
}

// |P A - L U| / (n |A| u), and what holds for any such factors.
template <class T>
void expect_factors(const matrix<T> &a, const factored<T> &f) {
    const int m = a.rows(), n = a.columns(), steps = std::min(m, n);
    EXPECT_TRUE(f.lu.nothing_between_was_touched());
    matrix<exact<T>> rest = exactly(a), l(m, steps), u(steps, n);
    for (int i = 0; i < steps; ++i) {
        ASSERT_TRUE(f.pivots[i] > i && f.pivots[i] <= m) << "pivot " << i << ": " << f.pivots[i];
        for (int j = 0; j < n; ++j)
            std::swap(rest(i, j), rest(f.pivots[i] - 1, j));
    }
    long double largest = 0;
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i) {
            const exact<T> x = to_exact(f.lu(i, j));
            (i <= j ? u(i, j) : l(i, j)) = x;
            if (i == j)
                l(i, j) = 1;
            else if (i > j)
                largest = std::max<long double>(largest, std::abs(x));
        }
    // |re| + |im| of a pivot is the largest of its column.
    EXPECT_LE(largest, vox::is_complex<T> ? 1.4143 : 1);
    const long double size = one_norm(rest);
    EXPECT_LE(scaled<T>(one_norm(minus_product(rest, l, u)), n, size), threshold);
}

TYPED_TEST(Lu, FactorsAreThoseOfANearbyMatrix) {
    constexpr struct {
        int rows, columns, between;
    } shapes[] = {
        {0, 0, 0},    {0, 3, 0},   {3, 0, 1},     {1, 1, 0},    {1, 9, 0},    {9, 1, 0},
        {2, 2, 1},    {3, 3, 0},   {7, 7, 2},     {8, 8, 0},    {9, 9, 0},    {15, 15, 0},
        {16, 16, 0},  {17, 17, 0}, {31, 31, 0},   {32, 32, 3},  {33, 33, 0},  {40, 16, 0},
        {16, 40, 0},  {47, 65, 0}, {64, 64, 0},   {65, 65, 0},  {70, 17, 0},  {100, 100, 0},
        {96, 129, 1}, {5, 700, 0}, {1000, 16, 0}, {700, 21, 0}, {20, 500, 0}, {163, 171, 0},
    };
    for (const auto &s : shapes) {
        SCOPED_TRACE(testing::Message() << s.rows << " x " << s.columns);
        const auto a = random_matrix<TypeParam>(s.rows, s.columns, 1, s.between);
        const auto f = factor(a);
        EXPECT_EQ(f.info, 0);
        expect_factors(a, f);
    }
}

TYPED_TEST(Lu, SpecialMatrices) {
    using R = vox::real_of<TypeParam>;
    constexpr R least = std::numeric_limits<R>::min(), most = std::numeric_limits<R>::max();
    const int n = 50;
    const auto random = random_matrix<TypeParam>(n, n, 2);
    const auto expect = [&](const char *name, bool residual, auto value) {
        SCOPED_TRACE(name);
        matrix<TypeParam> a(n, n);
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i)
                a(i, j) = value(i, j);
        const auto f = factor(a);
        if (residual)
            return expect_factors(a, f);
        // Subnormal numbers have few bits, but their quotients are no infinities.
        for (int j = 0; j < n; ++j)
            for (int i = j + 1; i < n; ++i)
                EXPECT_LE(std::abs(to_exact(f.lu(i, j))), 1.5) << i << ", " << j;
    };
    const auto number = [](R x) { return vox::make<TypeParam>(x); };
    expect("Hilbert", true, [&](int i, int j) { return number(R(1) / R(i + j + 1)); });
    expect("Wilkinson's growth", true, [&](int i, int j) {
        return number(R(j == n - 1 || i == j ? 1 : i > j ? -1 : 0));
    });
    expect("rows of all sizes", true,
           [&](int i, int j) { return std::ldexp(R(1), i - 25) * random(i, j); });
    expect("columns of all sizes", true,
           [&](int i, int j) { return std::ldexp(R(1), 25 - j) * random(i, j); });
    expect("near overflow", true, [&](int i, int j) { return most / 64 * random(i, j); });
    expect("zero", true, [&](int, int) { return number(0); });
    expect("subnormal", false,
           [&](int i, int j) { return (i == j ? least / 8 : least / 64) * random(i, j); });
}

// The factors of a permutation matrix are exact: each interchange must be where it belongs.
TYPED_TEST(Lu, PermutationsAreFoundExactly) {
    for (const int n : {2, 5, 16, 17, 40, 130}) {
        std::vector<int> order(n);
        for (int i = 0; i < n; ++i)
            order[i] = i;
        std::shuffle(order.begin(), order.end(), std::mt19937(unsigned(n)));
        matrix<TypeParam> a(n, n), diagonal(n, n);
        for (int j = 0; j < n; ++j)
            a(order[j], j) = diagonal(j, j) = vox::make<TypeParam>(-2);
        const auto f = factor(a);
        EXPECT_EQ(f.info, 0);
        expect_factors(a, f);
        EXPECT_EQ(one_norm(exactly(f.lu)), 2) << n;
        EXPECT_EQ(one_norm(minus_product(exactly(diagonal), exactly(f.lu),
                                         identity<exact<TypeParam>>(n))),
                  0);
    }
}

TYPED_TEST(Lu, PivotsAreTheFirstOfTheLargest) {
    using R = vox::real_of<TypeParam>;
    const auto number = [](double re, double im = 0) { return vox::make<TypeParam>(R(re), R(im)); };
    const auto pivot_of = [](const std::vector<TypeParam> &column) {
        matrix<TypeParam> a(int(column.size()), 1);
        std::copy(column.begin(), column.end(), a.data());
        return factor(a).pivots[0];
    };
    const double nan = std::nan(""), inf = HUGE_VAL;
    EXPECT_EQ(pivot_of({number(1), number(-2), number(2)}), 2);
    EXPECT_EQ(pivot_of({number(0), number(0)}), 1);
    EXPECT_EQ(pivot_of({number(1), number(nan), number(2)}), 3);
    EXPECT_EQ(pivot_of({number(nan), number(5), number(2)}), 1);
    EXPECT_EQ(pivot_of({number(1), number(nan), number(-inf), number(inf)}), 3);
    if (vox::is_complex<TypeParam>) {
        EXPECT_EQ(pivot_of({number(5), number(-3, 3)}), 2); // not the modulus
        EXPECT_EQ(pivot_of({number(1, nan), number(5)}), 1);
    }
    for (const int m : {3, 8, 33, 40, 65, 130})
        for (int first = 0; first < m; first += 1 + m / 7) {
            std::vector<TypeParam> column(m, number(1));
            column[first] = number(-7);
            column[m - 1] = number(7);
            EXPECT_EQ(pivot_of(column), first + 1) << m;
            column[first] = number(nan);
            EXPECT_EQ(pivot_of(column), first == 0 || first == m - 1 ? 1 : m) << m;
        }
    for (const int m : {4, 20, 100}) { // row 0 is the last one when it and row 1 compete
        matrix<TypeParam> a(m, 2);
        a(0, 0) = number(1);
        a(m - 1, 0) = number(4);
        a(0, 1) = a(1, 1) = number(5);
        EXPECT_EQ(factor(a).pivots, (std::vector<int>{m, 2}));
    }
}

// info is the first zero pivot's place; what can be factored is, and nothing is solved.
TYPED_TEST(Lu, SingularMatricesAreFactoredToTheEnd) {
    for (const int n : {1, 2, 10, 17, 40, 90})
        for (const int zero : {0, n / 2, n - 1}) {
            SCOPED_TRACE(testing::Message() << n << ", column " << zero);
            auto a = random_matrix<TypeParam>(n, n, 3);
            std::fill_n(a.column(zero), n, TypeParam{});
            std::fill_n(a.column(n - 1), n, TypeParam{});
            auto f = factor(a);
            EXPECT_EQ(f.info, zero + 1);
            expect_factors(a, f);
            const auto b = random_matrix<TypeParam>(n, 2, 4);
            auto x = b;
            std::vector<int> pivots(n);
            EXPECT_EQ(call(fortran<TypeParam>::gesv, n, 2, a, pivots, x), zero + 1);
            EXPECT_TRUE(x.same_bits(b));
            EXPECT_TRUE(a.same_bits(f.lu));
            EXPECT_EQ(invert(f), zero + 1);
            EXPECT_TRUE(a.same_bits(f.lu));
        }
}

TYPED_TEST(Lu, SolutionsHaveSmallResiduals) {
    for (const int n : {1, 2, 5, 8, 16, 17, 33, 64, 100})
        for (const int columns : {1, 2, 9, 40}) {
            const auto a = random_matrix<TypeParam>(n, n, 6, 2);
            const auto b = random_matrix<TypeParam>(n, columns, 7, 1);
            const auto f = factor(a);
            for (const char op : {'N', 'T', 'C', 'S'}) { // S: factored and solved at once
                SCOPED_TRACE(testing::Message() << n << ", " << columns << ", " << op);
                auto x = b, lu = a;
                std::vector<int> pivots(n);
                EXPECT_EQ(op == 'S'
                              ? call(fortran<TypeParam>::gesv, n, columns, lu, pivots, x)
                              : call(fortran<TypeParam>::getrs, op, n, columns, f.lu, f.pivots, x),
                          0);
                EXPECT_TRUE(x.nothing_between_was_touched());
                EXPECT_LE(solution_error(exactly(a, op == 'S' ? 'N' : op), x, b), threshold);
            }
        }
}

TYPED_TEST(Lu, InversesWithAnyWorkspace) {
    for (const int n : {1, 2, 7, 8, 9, 17, 63, 64, 65, 130}) {
        TypeParam best;
        EXPECT_EQ(call(fortran<TypeParam>::getri, n, nullptr, n, nullptr, &best, -1), 0);
        const int optimal = int(vox::real(best));
        ASSERT_GE(optimal, n);
        const auto a = random_matrix<TypeParam>(n, n, 8, 3);
        const auto f = factor(a);
        for (const int lwork : {n, 3 * n, optimal}) {
            SCOPED_TRACE(testing::Message() << n << ", workspace " << lwork);
            auto inverse = f.lu;
            const TypeParam guard = vox::make<TypeParam>(77);
            std::vector<TypeParam> work(lwork + 1, guard);
            EXPECT_EQ(call(fortran<TypeParam>::getri, n, inverse, f.pivots, work, lwork), 0);
            EXPECT_TRUE(work[lwork] == guard);
            EXPECT_EQ(vox::real(work[0]), optimal);
            EXPECT_TRUE(inverse.nothing_between_was_touched());
            EXPECT_LE(inverse_error(inverse, a), threshold);
        }
    }
}

TYPED_TEST(Lu, InterchangesInEitherDirection) {
    const thread_counts threads;
    threads.set(3);
    const int k1 = 3;
    for (const int columns : {1, 3, 4, 9, 33, 700}) // 700: more than a cache holds
        for (const int inc : {1, 2, -1, -3, 0}) {
            const int step = std::abs(inc), m = columns == 700 ? 400 : 40, k2 = m - 10;
            std::vector<int> pivots(k1 + (k2 - k1) * std::max(1, step), -1);
            const auto pivot_of = [&](int i) -> int & { return pivots[k1 - 1 + (i - k1) * step]; };
            lottery some(9);
            for (int i = k1; i <= k2; ++i)
                pivot_of(i) = 1 + int(some.number() % m);
            const auto a = random_matrix<TypeParam>(m, columns, 10, 1);
            auto expected = a, got = a;
            for (int s = 0; inc != 0 && s <= k2 - k1; ++s) {
                const int i = inc > 0 ? k1 + s : k2 - s;
                for (int j = 0; j < columns; ++j)
                    std::swap(expected(i - 1, j), expected(pivot_of(i) - 1, j));
            }
            invoke(fortran<TypeParam>::laswp, columns, got, k1, k2, pivots, inc);
            EXPECT_TRUE(got.same_bits(expected)) << columns << ", increment " << inc;
            EXPECT_TRUE(got.nothing_between_was_touched());
        }
}

// X A v - v for some v: as good as the whole product at a matrix beyond the caches, on several threads.
TYPED_TEST(Lu, LargeMatricesOnThreads) {
    const thread_counts threads;
    threads.set(3);
    const int n = 1030;
    const auto a = random_matrix<TypeParam>(n, n, 11);
    auto f = factor(a);
    EXPECT_EQ(f.info, 0);
    EXPECT_EQ(invert(f), 0);
    const auto v = exactly(random_matrix<TypeParam>(n, 1, 12));
    const auto exact_a = exactly(a), exact_x = exactly(f.lu);
    auto rest = v;
    for (int i = 0; i < n; ++i)
        rest(i, 0) = -rest(i, 0);
    const matrix<exact<TypeParam>> zero(n, 1);
    rest = minus_product(rest, exact_x, minus_product(zero, exact_a, v));
    EXPECT_LE(
        scaled<TypeParam>(one_norm(rest), n, one_norm(exact_a) * one_norm(exact_x) * one_norm(v)),
        threshold);
}

} // namespace
