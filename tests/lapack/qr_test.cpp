// qr_test.cpp - QR and LQ factors, their Q and products with it, reflectors one by one and in blocks,
// and QR with pivoting.
#include <gtest/gtest.h>
#include <tuple>

#include "tests/lapack/reflectors.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/thread_counts.hpp"

namespace {

using namespace test;

template <class T>
class Qr : public ::testing::Test {
  protected:
    using E = exact<T>;
    using routine = fortran<T>;

    // What geqrf and gelqf leave, with their reflectors.
    struct factored {
        bool by_columns;
        matrix<T> a;
        std::vector<T> tau;
        int order() const { return by_columns ? a.rows() : a.columns(); }
        int k() const { return std::min(a.rows(), a.columns()); }
        reflectors<T> q() const { return {by_columns, true, order(), k(), a, tau}; }
        matrix<E> triangle() const {
            matrix<E> r(a.rows(), a.columns());
            for (int j = 0; j < a.columns(); ++j)
                for (int i = 0; i < a.rows(); ++i)
                    if (by_columns ? i <= j : i >= j)
                        r(i, j) = to_exact(a(i, j));
            return r;
        }
    };
    // By the blocked routine, which says how much workspace it wants, or by the other.
    template <class Blocked, class Other, class... X>
    static void run(bool blocked, Blocked *with_lwork, Other *other, int least, const X &...x) {
        std::vector<T> work(size_t(least), T{});
        EXPECT_EQ(blocked ? call_with_work<T>(with_lwork, x...) : call(other, x..., work.data()),
                  0);
    }
    static factored factor(bool by_columns, bool blocked, matrix<T> a) {
        std::vector<T> tau(size_t(std::min(a.rows(), a.columns())));
        run(blocked, by_columns ? routine::geqrf : routine::gelqf,
            by_columns ? routine::geqr2 : routine::gelq2, std::max(a.rows(), a.columns()), a.rows(),
            a.columns(), a.data(), a.ld(), tau.data());
        EXPECT_TRUE(a.nothing_between_was_touched());
        return {by_columns, std::move(a), std::move(tau)};
    }

    // What is as far from C, or its adjoint, as rounding takes it.
    static void expect_close(const matrix<T> &got, bool plain, const matrix<E> &expected,
                             long double scale) {
        EXPECT_TRUE(got.nothing_between_was_touched());
        EXPECT_LE(scaled<T>(one_norm(minus(exactly(got, plain ? 'N' : 'C'), expected)),
                            expected.rows(), scale),
                  threshold);
    }
    // A = Q R, or L Q by its adjoint: Q as the product of the computed reflectors.
    static void expect_product(const matrix<T> &a, const factored &got) {
        matrix<E> qr = got.by_columns ? got.triangle() : adjoint(got.triangle());
        got.q().apply_left(false, qr);
        expect_close(a, got.by_columns, qr, one_norm(exactly(a, got.by_columns ? 'N' : 'C')));
    }
    // Reflectors are unitary, 2 re(tau) = |tau|^2 |v|^2, and take columns to real numbers, as they
    // are defined.
    static void expect_reflectors(const factored &got) {
        const reflectors<T> q = got.q();
        for (int i = 0; i < got.k(); ++i) {
            const E tau = to_exact(got.tau[size_t(i)]);
            exact_part<T> square = 0;
            for (int row = 0; row < got.order(); ++row)
                square += std::norm(q.element(row, i));
            EXPECT_LE(std::abs(2 * std::real(tau) - std::norm(tau) * square),
                      2 * threshold * got.order() * unit_roundoff<vox::real_of<T>>);
            EXPECT_EQ(vox::imag(got.a(i, i)), 0);
        }
    }
    static void expect_factors(int m, int n, bool by_columns, bool blocked) {
        SCOPED_TRACE(testing::Message() << m << " x " << n << (by_columns ? " QR" : " LQ")
                                        << (blocked ? "" : " unblocked"));
        const matrix<T> a = random_matrix<T>(m, n, unsigned(m * 1000 + n), 3);
        const factored got = factor(by_columns, blocked, a);
        expect_product(a, got);
        expect_reflectors(got);
    }

    // Q's first vectors, as orgqr and orglq give them.
    static void expect_q(int order, int count, int k, bool by_columns, bool blocked) {
        SCOPED_TRACE(testing::Message()
                     << order << ' ' << count << ' ' << k << ' ' << by_columns << ' ' << blocked);
        const auto shape = [&](int n) {
            return by_columns ? random_matrix<T>(order, n, 5, 1) : random_matrix<T>(n, order, 5, 1);
        };
        factored given = factor(by_columns, true, shape(k));
        matrix<T> q = shape(count);
        for (int j = 0; j < given.a.columns(); ++j)
            std::copy_n(given.a.column(j), given.a.rows(), q.column(j));
        run(blocked, by_columns ? routine::orgqr : routine::orglq,
            by_columns ? routine::org2r : routine::orgl2, count, q.rows(), q.columns(), k, q.data(),
            q.ld(), given.tau);
        matrix<E> expected(order, count);
        for (int i = 0; i < count; ++i)
            expected(i, i) = E(1);
        given.q().apply_left(false, expected);
        expect_close(q, by_columns, expected, 1);
        const matrix<E> got = exactly(q, by_columns ? 'N' : 'C');
        EXPECT_LE(
            scaled<T>(one_norm(minus_product(identity<E>(count), adjoint(got), got)), order, 1),
            threshold);
    }

    // op(Q) C or C op(Q) with k reflectors in columns or rows.
    static void expect_products(int order, int others, int k, bool by_columns, bool blocked) {
        const factored given = factor(by_columns, true,
                                      by_columns ? random_matrix<T>(order, k, 7, 2)
                                                 : random_matrix<T>(k, order, 7, 2));
        guarded<T> v({given.a.data(), given.a.column(given.a.columns())}, edge::front);
        v.freeze(); // not even for a moment may ones be written among the reflectors
        for (char side : {'L', 'R'})
            for (char trans : {'N', vox::is_complex<T> ? 'C' : 'T'}) {
                SCOPED_TRACE(testing::Message() << order << ' ' << others << ' ' << k << ' '
                                                << by_columns << ' ' << blocked << side << trans);
                const bool left = side == 'L';
                const matrix<T> c =
                    random_matrix<T>(left ? order : others, left ? others : order, 9, 1);
                matrix<T> got = c;
                run(blocked, by_columns ? routine::ormqr : routine::ormlq,
                    by_columns ? routine::orm2r : routine::orml2, others, side, trans, c.rows(),
                    c.columns(), k, v.data(), given.a.ld(), given.tau, got.data(), got.ld());
                // C Q = (Q^H C^H)^H; the Q of LQ is the adjoint of its reflectors' product.
                matrix<E> expected = exactly(c, left ? 'N' : 'C');
                given.q().apply_left(((trans != 'N') == left) == by_columns, expected);
                expect_close(got, left, expected, one_norm(expected));
            }
    }
};
TYPED_TEST_SUITE(Qr, element_types);

// Around vectors, panels' parts and panels; long and wide.
constexpr std::tuple<int, int> shapes[] = {
    {1, 1},   {1, 5},   {5, 1},    {2, 2},    {3, 7},     {7, 3},    {8, 8},   {9, 10},
    {16, 17}, {33, 31}, {48, 48},  {49, 49},  {50, 130},  {130, 50}, {65, 64}, {81, 80},
    {97, 65}, {65, 97}, {20, 200}, {200, 20}, {129, 128}, {150, 161}};

TYPED_TEST(Qr, FactorsMultiplyToTheMatrix) {
    for (const auto &[m, n] : shapes)
        for (bool by_columns : {true, false})
            for (bool blocked : {true, false})
                this->expect_factors(m, n, by_columns, blocked);
}

TYPED_TEST(Qr, ThreadsFactorWhatOneDoes) {
    const thread_counts counts;
    counts.set(3);
    const int n = vox::is_complex<TypeParam> ? 241 : 375; // as small as it takes
    for (bool by_columns : {true, false})
        this->expect_factors(n + 4, n, by_columns, true);
}

TYPED_TEST(Qr, QHasOrthonormalVectors) {
    constexpr int sizes[][3] = {{1, 1, 1},       {5, 3, 3},      {5, 5, 2},
                                {9, 9, 0},       {33, 20, 11},   {70, 70, 70},
                                {140, 130, 100}, {129, 129, 64}, {130, 70, 65}};
    for (const auto &[order, count, k] : sizes)
        for (bool by_columns : {true, false})
            for (bool blocked : {true, false})
                this->expect_q(order, count, k, by_columns, blocked);
}

TYPED_TEST(Qr, ProductsWithQ) {
    constexpr int sizes[][3] = {{1, 1, 1},   {4, 3, 4},     {17, 1, 9},    {30, 7, 30},
                                {40, 9, 33}, {129, 5, 100}, {150, 33, 131}};
    for (const auto &[order, others, k] : sizes)
        for (bool by_columns : {true, false})
            for (bool blocked : {true, false})
                this->expect_products(order, others, k, by_columns, blocked);
}

// T and H of every kind: H(1) .. H(k) or H(k) .. H(1), in columns or in rows.
TYPED_TEST(Qr, BlocksOfReflectors) {
    using T = TypeParam;
    using f = fortran<T>;
    for (const auto &[n, k, others] :
         {std::tuple(1, 1, 2), {5, 5, 4}, {9, 1, 3}, {20, 7, 1}, {61, 33, 18}})
        for (bool forward : {true, false})
            for (bool by_columns : {true, false}) {
                const matrix<T> v =
                    by_columns ? random_matrix<T>(n, k, 3, 1) : random_matrix<T>(k, n, 3, 1);
                std::vector<T> tau(size_t(k), T{});
                reflectors<T> h = {by_columns, forward, n, k, v, tau};
                for (int i = 0; i < k; ++i) { // some unitary ones, and an identity
                    exact_part<T> square = 0;
                    for (int row = 0; row < n; ++row)
                        square += std::norm(h.element(row, i));
                    tau[size_t(i)] = i == 2 ? T{} : vox::make<T>(vox::real_of<T>(2 / square));
                }
                const char direct = forward ? 'F' : 'B', storev = by_columns ? 'C' : 'R';
                matrix<T> t(k, k, 1);
                invoke(f::larft, direct, storev, n, k, v, tau, t);
                for (char side : {'L', 'R'})
                    for (char trans : {'N', vox::is_complex<T> ? 'C' : 'T'}) {
                        const bool left = side == 'L';
                        const matrix<T> c =
                            random_matrix<T>(left ? n : others, left ? others : n, 4, 1);
                        matrix<T> got = c;
                        const int ldwork = others + 1;
                        std::vector<T> work(size_t(ldwork * k));
                        invoke(f::larfb, side, trans, direct, storev, c.rows(), c.columns(), k, v,
                               t, got, work, ldwork);
                        auto expected = exactly(c, left ? 'N' : 'C');
                        h.apply_left((trans != 'N') == left, expected);
                        SCOPED_TRACE(testing::Message()
                                     << n << ' ' << k << direct << storev << side << trans);
                        this->expect_close(got, left, expected, one_norm(expected));
                    }
            }
}

// H C and C H with v given whole, from either end; what its last zeros stand beside is not looked at.
TYPED_TEST(Qr, OneReflectorTimesAMatrix) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    const int order = 9, zeros = 2, others = 5;
    const R nan = std::numeric_limits<R>::quiet_NaN();
    const T tau = random_matrix<T>(1, 1, 1)(0, 0);
    for (vox_int inc : {1, 2, -1, -3})
        for (char side : {'L', 'R'}) {
            const bool left = side == 'L';
            matrix<T> v = random_matrix<T>(1 + (order - 1) * std::abs(inc), 1, 2);
            matrix<exact<T>> x(order, 1);
            for (int i = 0; i < order; ++i) {
                T &at = v((inc > 0 ? i : i - (order - 1)) * inc, 0);
                if (i >= order - zeros)
                    at = T{};
                x(i, 0) = to_exact(at);
            }
            const matrix<T> c =
                random_matrix<T>(left ? order : others, left ? others : order, 3, 1);
            matrix<T> got = c;
            for (int j = 0; j < others; ++j)
                (left ? got(order - 1, j) : got(j, order - 1)) = vox::make<T>(nan);
            std::vector<T> work(size_t(others), T{});
            invoke(fortran<T>::larf, side, c.rows(), c.columns(), v.data(), inc, tau, got, work);
            for (int j = 0; j < others; ++j) {
                T &at = left ? got(order - 1, j) : got(j, order - 1);
                EXPECT_TRUE(std::isnan(vox::real(at)));
                at = left ? c(order - 1, j) : c(j, order - 1);
            }
            // C H = (H^H C^H)^H
            const auto whole = exactly(c, left ? 'N' : 'C');
            auto row = times(adjoint(x), whole);
            for (int j = 0; j < others; ++j)
                row(0, j) *= to_exact(vox::conj_if(!left, tau));
            const auto expected = minus_product(whole, x, row);
            SCOPED_TRACE(testing::Message() << inc << side);
            this->expect_close(got, left, expected, one_norm(expected));
        }
}

// One reflector from (alpha, x): its beta has their length, wherever that lies in the range.
TYPED_TEST(Qr, ReflectorsOfAnyLength) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    using limits = std::numeric_limits<R>;
    for (R scale : {R(1), limits::min() * 8, limits::denorm_min() * 4096, limits::max() / 64,
                    R(std::sqrt(limits::min())), R(std::sqrt(limits::max()))})
        for (int n : {1, 2, 3, 20})
            for (vox_int inc : {1, 3}) {
                matrix<T> x = random_matrix<T>(1 + n * inc, 1, unsigned(n));
                for (int i = 0; i < x.rows(); ++i)
                    x(i, 0) = scale * x(i, 0);
                matrix<T> got = x;
                T tau{};
                invoke(fortran<T>::larfg, n, got.data(), got.data() + 1, inc, &tau);
                // Element i of either, that of x in units of the scale.
                const auto at = [&](const matrix<T> &v, int i) {
                    return widen(v(i ? 1 + (i - 1) * inc : 0, 0)) / (&v == &x ? scale : 1.0L);
                };
                long double square = std::norm(at(x, 0)), v = 1, worst = 0;
                for (int i = 1; i < n; ++i)
                    square += std::norm(at(x, i)), v += std::norm(at(got, i));
                const long double beta = vox::real(got(0, 0));
                if (n == 1 && !vox::is_complex<T>) {
                    EXPECT_EQ(vox::real(tau), 0);
                    continue;
                }
                // Numbers that have no digits to lose carry them; subnormal ones have fewer.
                const long double u = unit_roundoff<R>,
                                  tiny = limits::denorm_min() / (long double)(scale);
                EXPECT_NEAR(std::fabs(beta) / scale, std::sqrt(square),
                            (8 + n) * (u * std::sqrt(square) + tiny));
                EXPECT_LE(beta * vox::real(x(0, 0)), 0);
                const long double re = vox::real(tau), im = vox::imag(tau);
                EXPECT_NEAR(2 * re, (re * re + im * im) * v, 10 * (8 + n) * (u + tiny));
                // H^H x = (beta, 0): x_i = v_i conj(tau) (v^H x) for all but the first.
                wide<T> sum = at(x, 0);
                for (int i = 1; i < n; ++i)
                    sum += conjugate(at(got, i)) * at(x, i);
                sum *= conjugate(widen(tau));
                for (int i = 1; i < n; ++i)
                    worst = std::max(worst, std::abs(at(x, i) - sum * at(got, i)));
                EXPECT_LE(worst, 10 * (8 + n) * std::sqrt(square) * (u + tiny));
            }
}

// Columns of zeros, lone elements, the ends of the range: the careful way takes over inside a panel.
TYPED_TEST(Qr, BadlyScaledColumns) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    using limits = std::numeric_limits<R>;
    for (int n : {12, 70})
        for (bool by_columns : {true, false}) {
            matrix<T> a = random_matrix<T>(n, n, 11);
            const R scales[] = {1, 0, limits::min() * 4, 1, limits::max() / 512};
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i)
                    a(i, j) = scales[(by_columns ? j : i) % 5] * a(i, j);
            const auto got = this->factor(by_columns, true, a);
            this->expect_reflectors(got);
            // Column by column: the bound is each column's own.
            auto qr = by_columns ? got.triangle() : adjoint(got.triangle());
            got.q().apply_left(false, qr);
            const auto whole = exactly(a, by_columns ? 'N' : 'C');
            for (int j = 0; j < n; ++j) {
                long double difference = 0, norm = 0;
                for (int i = 0; i < n; ++i) {
                    difference += std::abs(std::complex<long double>(qr(i, j)) -
                                           std::complex<long double>(whole(i, j)));
                    norm += std::abs(std::complex<long double>(whole(i, j)));
                }
                EXPECT_LE(difference,
                          threshold * n * (norm * unit_roundoff<R> + limits::denorm_min()))
                    << n << ' ' << j;
            }
        }
}

TYPED_TEST(Qr, NanAndInfinityTerminate) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    for (R bad : {std::numeric_limits<R>::quiet_NaN(), std::numeric_limits<R>::infinity()})
        for (int n : {3, 9, 60, 100})
            for (bool by_columns : {true, false})
                for (int at : {0, n / 2, n - 1}) {
                    matrix<T> a = random_matrix<T>(n, n, 2);
                    a(at, at / 2) = vox::make<T>(bad);
                    const auto got = this->factor(by_columns, true, a);
                    bool seen = false;
                    for (int j = 0; j < n; ++j)
                        for (int i = 0; i < n; ++i)
                            seen |= !std::isfinite(vox::real(got.a(i, j)));
                    EXPECT_TRUE(seen);
                }
}

// A P = Q R.
template <class T>
struct pivoted {
    matrix<T> a;
    std::vector<vox_int> jpvt;
    std::vector<T> tau;

    // By ?geqp3; the factors are A's.
    pivoted(const matrix<T> &given, std::vector<vox_int> fixed)
        : a(given), jpvt(std::move(fixed)), tau(size_t(std::min(a.rows(), a.columns()))) {
        const int n = a.columns();
        std::vector<vox::real_of<T>> rwork(size_t(2 * n));
        T best{};
        const auto run = [&](T *work, vox_int lwork) {
            if constexpr (vox::is_complex<T>)
                return call(fortran<T>::geqp3, a.rows(), n, a, jpvt, tau, work, lwork, rwork);
            else
                return call(fortran<T>::geqp3, a.rows(), n, a, jpvt, tau, work, lwork);
        };
        EXPECT_EQ(run(&best, -1), 0);
        std::vector<T> work(size_t(vox::real(best)));
        EXPECT_EQ(run(work.data(), vox_int(work.size())), 0);
        EXPECT_TRUE(a.nothing_between_was_touched());
        expect_product(given);
    }
    void expect_product(const matrix<T> &given) const {
        matrix<exact<T>> qr(a.rows(), a.columns()), permuted = qr;
        for (int j = 0; j < a.columns(); ++j)
            for (int i = 0; i < a.rows(); ++i) {
                permuted(i, j) = to_exact(given(i, jpvt[size_t(j)] - 1));
                if (i <= j)
                    qr(i, j) = to_exact(a(i, j));
            }
        reflectors<T>{true, true, a.rows(), int(tau.size()), a, tau}.apply_left(false, qr);
        EXPECT_LE(scaled<T>(one_norm(minus(qr, permuted)), std::max(a.rows(), a.columns()),
                            one_norm(permuted)),
                  threshold);
    }
    // Of what is left, the longest column stands first: |r_kk|^2 >= sum_{k <= i <= j} |r_ij|^2.
    void expect_longest_first(int from) const {
        for (int k = from; k < int(tau.size()); ++k)
            for (int j = k; j < a.columns(); ++j) {
                long double square = 0;
                for (int i = k; i <= std::min(j, a.rows() - 1); ++i)
                    square += std::norm(widen(a(i, j)));
                const long double first = std::abs(widen(a(k, k)));
                EXPECT_LE(std::sqrt(square),
                          first * (1 + 100 * std::sqrt(unit_roundoff<vox::real_of<T>>)))
                    << k << ' ' << j;
            }
    }
};

TYPED_TEST(Qr, PivotingPutsTheLongestColumnFirst) {
    using T = TypeParam;
    for (const auto &[m, n] : shapes)
        pivoted<T>(random_matrix<T>(m, n, unsigned(n), 1), std::vector<vox_int>(size_t(n), 0))
            .expect_longest_first(0);
}

TYPED_TEST(Qr, PivotingLeavesFixedColumnsInFront) {
    using T = TypeParam;
    for (const auto &[m, n] : {std::tuple(6, 9), {9, 6}, {120, 110}, {10, 40}}) {
        std::vector<vox_int> fixed(size_t(n), 0);
        fixed[1] = 5, fixed[4] = -1, fixed[size_t(n) - 1] = 1;
        const pivoted<T> got(random_matrix<T>(m, n, 21), fixed);
        EXPECT_EQ(std::vector(got.jpvt.begin(), got.jpvt.begin() + 3), (std::vector{2, 5, n}));
        got.expect_longest_first(3);
    }
}

// Columns that nearly depend on each other: norms that are brought up to date lose all digits here, and
// the rank shows only if they are computed anew.
TYPED_TEST(Qr, PivotingShowsTheRank) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    for (int n : {30, 150}) {
        const int rank = n / 3;
        const matrix<T> x = random_matrix<T>(n, rank, 1), y = random_matrix<T>(rank, n, 2);
        const auto product = times(exactly(x), exactly(y));
        matrix<T> a(n, n);
        for (int j = 0; j < n; ++j)
            for (int i = 0; i < n; ++i)
                a(i, j) = vox::make<T>(R(std::real(product(i, j))), R(std::imag(product(i, j))));
        const pivoted<T> got(a, std::vector<vox_int>(size_t(n), 0));
        const long double first = std::abs(widen(got.a(0, 0)));
        EXPECT_GT(std::abs(widen(got.a(rank - 1, rank - 1))), 1e-4L * first);
        for (int i = rank; i < n; ++i)
            EXPECT_LE(std::abs(widen(got.a(i, i))), threshold * n * unit_roundoff<R> * first) << i;
        // and among the rest, which is noise, too
        got.expect_longest_first(0);
    }
}

TYPED_TEST(Qr, EmptyMatricesAndQueries) {
    using T = TypeParam;
    using f = fortran<T>;
    T work{}, memory[4] = {}, *const nothing = memory;
    for (const auto &[m, n] : {std::tuple(0, 0), {0, 3}, {3, 0}}) {
        for (auto *factor : {f::geqrf, f::gelqf})
            EXPECT_EQ(call_with_work<T>(factor, m, n, nothing, 3, nothing), 0);
        EXPECT_EQ(call_with_work<T>(f::ormqr, 'L', 'N', m, n, 0, nothing, 3, nothing, nothing, 3),
                  0);
    }
    EXPECT_EQ(call(f::geqrf, 0, 3, nothing, 1, nothing, &work, 1), 0);
    for (const auto &[m, n] : {std::tuple(100, 30), {30, 100}}) // nothing but work is looked at
        for (const auto &[factor, least] : {std::pair(f::geqrf, n), {f::gelqf, m}}) {
            EXPECT_EQ(call(factor, m, n, nothing, m, nothing, &work, -1), 0);
            EXPECT_GE(vox::real(work), least);
        }
}

} // namespace
