// condition_test.cpp - condition estimates against norms of inverses in higher precision, at the ends
// of the range too, and the robust substitution under them.
#include <gtest/gtest.h>

#include "lapack/drivers/scaled_solve.hpp"
#include "tests/lapack/reflectors.hpp"

namespace {

using namespace test;

// rcond as a routine gives it, whose arguments before it and order n are given.
template <class T, class Routine, class... X>
vox::real_of<T> rcond_of(int n, Routine *routine, const X &...x) {
    std::vector<T> work(4 * n + 1);
    std::vector<std::conditional_t<vox::is_complex<T>, vox::real_of<T>, int>> last(2 * n + 1);
    vox::real_of<T> rcond = -99;
    EXPECT_EQ(call(routine, x..., &rcond, work, last), 0);
    return rcond;
}
template <class T>
vox::real_of<T> gecon(char norm, const matrix<T> &a, vox::real_of<T> anorm) {
    return rcond_of<T>(a.columns(), fortran<T>::gecon, norm, a.columns(), a, anorm);
}
template <class T>
vox::real_of<T> pocon(char uplo, const matrix<T> &a, vox::real_of<T> anorm) {
    return rcond_of<T>(a.columns(), fortran<T>::pocon, uplo, a.columns(), a, anorm);
}
template <class T>
vox::real_of<T> trcon(char norm, char uplo, char diag, const matrix<T> &a) {
    return rcond_of<T>(a.columns(), fortran<T>::trcon, norm, uplo, diag, a.columns(), a);
}

template <class T>
class Condition : public ::testing::Test {};
TYPED_TEST_SUITE(Condition, element_types);

// The inverse by Gauss and Jordan, without pivots, which these matrices do not ask for.
template <class E>
matrix<E> inverse_of(matrix<E> a) {
    const int n = a.rows();
    matrix<E> x = identity<E>(n);
    for (int k = 0; k < n; ++k) {
        const E pivot = E(1) / a(k, k);
        for (int j = 0; j < n; ++j)
            a(k, j) *= pivot, x(k, j) *= pivot;
        for (int i = 0; i < n; ++i)
            if (const E factor = a(i, k); i != k && factor != E{})
                for (int j = 0; j < n; ++j)
                    a(i, j) -= factor * a(k, j), x(i, j) -= factor * x(k, j);
    }
    return x;
}
template <class E>
long double norm_of(char norm, const matrix<E> &a) {
    return one_norm(norm == 'I' ? adjoint(a) : a);
}

// An estimate of a norm is never too large, and Higham found none below a third of it in matrices that
// are not made for it.
template <class R, class E>
void expect_estimate(char norm, R rcond, const matrix<E> &a, bool exact = false) {
    const long double truth = 1 / norm_of(norm, a) / norm_of(norm, inverse_of(a));
    const long double rounding = 100 * a.rows() * std::numeric_limits<R>::epsilon();
    EXPECT_GE(rcond, truth * (1 - rounding));
    EXPECT_LE(rcond, truth * (exact ? 1 + rounding : 3));
}

template <class T>
matrix<T> dominant(int n, unsigned seed) {
    matrix<T> a = random_matrix<T>(n, n, seed, 1);
    for (int j = 0; j < n; ++j)
        a(j, j) += vox::make<T>(j % 4 ? n : n / 2 + 2); // no pivots needed
    return a;
}

TYPED_TEST(Condition, Estimates) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    for (const int n : {1, 2, 3, 10, 35})
        for (const char norm : {'1', 'O', 'I'}) {
            SCOPED_TRACE(testing::Message() << norm << " " << n);
            const matrix<T> a = dominant<T>(n, n);
            matrix<T> lu = a;
            std::vector<int> pivots(n);
            ASSERT_EQ(call(fortran<T>::getrf, n, n, lu, pivots), 0);
            expect_estimate(norm, gecon(norm, lu, R(norm_of(norm, exactly(a)))), exactly(a));
            for (const char uplo : {'U', 'L'})
                for (const char diag : {'N', 'U'}) {
                    matrix<T> given = a, t = a;
                    for (int j = 0; j < n; ++j)
                        for (int i = 0; i < n; ++i) {
                            if (uplo == 'U' ? i > j : i < j)
                                t(i, j) = T{},
                                     given(i, j) =
                                         vox::make<T>(std::numeric_limits<R>::quiet_NaN());
                            else if (i == j && diag == 'U')
                                t(i, j) = vox::make<T>(1), given(i, j) = T{};
                            else if (i != j && diag == 'U')
                                t(i, j) = given(i, j) = R(0.25) * a(i, j);
                        }
                    expect_estimate(norm, trcon(norm, uplo, diag, given), exactly(t));
                }
        }
}

TYPED_TEST(Condition, EstimatesOfPositiveDefinite) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    const int n = 30;
    for (const char uplo : {'U', 'L'}) {
        matrix<T> f = dominant<T>(n, 3);
        for (int j = 0; j < n; ++j) {
            f(j, j) = vox::make<T>(vox::real(f(j, j)));
            for (int i = 0; i < n; ++i)
                if (uplo == 'U' ? i > j : i < j)
                    f(i, j) = T{};
        }
        const bool upper = uplo == 'U';
        const auto minus = minus_product(matrix<exact<T>>(n, n), exactly(f, upper ? 'C' : 'N'),
                                         exactly(f, upper ? 'N' : 'C'));
        expect_estimate('1', pocon(uplo, f, R(one_norm(minus))), minus);
    }
}

// The inverse of a bidiagonal triangle with 1 and -2 has no negative element, for which the estimate
// is exact: 2^n - 1. Plain substitution is no longer known to be safe from n = 65 or 613 on, and the
// inverse overflows at last, or before where the scale is small.
TYPED_TEST(Condition, Growth) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    const int top = std::numeric_limits<R>::max_exponent;
    for (const int n : {2, 30, top - 20, top + 200})
        for (const char uplo : {'U', 'L'})
            for (const char norm : {'1', 'I'})
                for (const R scale :
                     {R(1), std::ldexp(R(1), top - 2), std::ldexp(R(1), 30 - top)}) {
                    SCOPED_TRACE(testing::Message() << uplo << norm << n << " " << scale);
                    matrix<T> a(n, n);
                    for (int j = 0; j < n; ++j) {
                        a(j, j) = vox::make<T>(scale);
                        if (j > 0)
                            (uplo == 'U' ? a(j - 1, j) : a(j, j - 1)) = vox::make<T>(-2 * scale);
                    }
                    if (scale > 1)
                        for (int j = 0; j < n; ++j)
                            for (int i = 0; i < n; ++i)
                                a(i, j) = R(0.5) * a(i, j);
                    const R rcond = trcon(norm, uplo, 'N', a);
                    const long double truth = 1 / (3 * (std::exp2((long double)n) - 1));
                    if (n < top && (n < 30 || scale >= 1))
                        EXPECT_NEAR(rcond / truth, 1, 100 * n * std::numeric_limits<R>::epsilon());
                    else
                        EXPECT_EQ(rcond, 0);
                }
}

// What the documentation says of norms and matrices out of the ordinary.
TYPED_TEST(Condition, SpecialCases) {
    using T = TypeParam;
    using limits = std::numeric_limits<vox::real_of<T>>;
    const int n = 5;
    const matrix<T> good = dominant<T>(n, 2), none(0, 0);
    matrix<T> singular = good, with_nan = good;
    singular(2, 2) = T{};
    with_nan(1, 3) = with_nan(3, 1) = vox::make<T>(limits::quiet_NaN());
    EXPECT_EQ(gecon('1', none, 1), 1);
    EXPECT_EQ(pocon('U', none, 1), 1);
    EXPECT_EQ(trcon('1', 'U', 'N', none), 1);
    EXPECT_EQ(gecon('1', good, 0), 0);
    EXPECT_EQ(pocon('L', good, 0), 0);
    EXPECT_TRUE(std::isnan(gecon('1', good, limits::quiet_NaN())));
    EXPECT_EQ(gecon('1', good, limits::infinity()), 0);
    for (const char norm : {'1', 'I'}) {
        EXPECT_EQ(gecon(norm, singular, 1), 0);
        EXPECT_EQ(trcon(norm, 'L', 'N', singular), 0);
        gecon(norm, with_nan, 1); // ends
        trcon(norm, 'U', 'N', with_nan);
    }
    EXPECT_EQ(pocon('U', singular, 1), 0);
    pocon('U', with_nan, 1);
}

// The estimate's own way: a lower bound of the norm that its vector attests, exact where no element is
// negative; kase comes back as 1 and 2 in turns.
TYPED_TEST(Condition, ReverseCommunication) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    for (const int n : {1, 2, 9, 40})
        for (const bool positive : {true, false}) {
            matrix<T> a = random_matrix<T>(n, n, n);
            for (int j = 0; positive && j < n; ++j)
                for (int i = 0; i < n; ++i)
                    a(i, j) = vox::make<T>(std::abs(vox::real(a(i, j))));
            matrix<T> x(n, 1), v(n, 1);
            std::vector<int> isgn(n);
            int kase = 0, isave[3], calls = 0, transposed = 0;
            R estimate = 0;
            for (;; ++calls) {
                if constexpr (vox::is_complex<T>)
                    invoke(fortran<T>::lacn2, n, v.data(), x.data(), &estimate, &kase, isave);
                else
                    invoke(fortran<T>::lacn2, n, v.data(), x.data(), isgn, &estimate, &kase, isave);
                if (kase == 0)
                    break;
                ASSERT_TRUE(kase == 1 || kase == 2);
                ASSERT_LT(calls, 12);
                transposed += kase == 2;
                const auto y = minus_product(matrix<exact<T>>(n, 1),
                                             exactly(a, kase == 2 ? 'C' : 'N'), exactly(x));
                for (int i = 0; i < n; ++i) {
                    const auto value = -y(i, 0);
                    x(i, 0) = vox::make<T>(R(std::real(value)), R(std::imag(value)));
                }
            }
            EXPECT_EQ(transposed > 0, n > 1);
            const long double norm = one_norm(exactly(a)),
                              rounding = n * std::numeric_limits<R>::epsilon();
            EXPECT_LE(estimate, norm * (1 + rounding));
            EXPECT_GE(estimate, norm * (positive ? 1 - rounding : 0.3L));
            EXPECT_GT(one_norm(exactly(v)), 0);
        }
}

// op(A) x = s b to the accuracy of substitution: the residual's size against that of the terms of which
// it is the sum.
template <class T>
void expect_solution(char uplo, char trans, char diag, const matrix<T> &a, const matrix<T> &b) {
    using R = vox::real_of<T>;
    const int n = a.rows();
    matrix<T> x = b;
    std::vector<R> norms(n);
    const R s = vox::lapack::scaled_solve(uplo, trans, diag, false, n, a.data(), a.ld(), x.data(),
                                          norms.data());
    ASSERT_TRUE(s >= 0 && std::isfinite(s));
    bool any = false;
    for (int i = 0; i < n; ++i) {
        wide<T> sum = (long double)s * widen(b(i, 0));
        long double terms = std::abs(sum), row_sum = 1;
        for (int k = 0; k < n; ++k) {
            const int row = trans == 'N' ? i : k, column = trans == 'N' ? k : i;
            if (uplo == 'U' ? row > column : row < column)
                continue;
            const T e = row == column && diag == 'U' ? vox::make<T>(1)
                                                     : vox::conj_if(trans == 'C', a(row, column));
            const wide<T> term = widen(e) * widen(x(k, 0));
            sum -= term, terms += std::abs(term), row_sum += vox::lapack::size(e);
        }
        ASSERT_TRUE(std::isfinite(vox::real(x(i, 0))) && std::isfinite(vox::imag(x(i, 0)))) << i;
        any = any || !vox::is_zero(x(i, 0));
        // an entry that underflows is off by a rounding each step
        EXPECT_LE(std::abs(sum), n * (threshold * std::numeric_limits<R>::epsilon() * terms +
                                      4 * row_sum * std::numeric_limits<R>::denorm_min()))
            << i;
    }
    EXPECT_TRUE(any);
}

TYPED_TEST(Condition, ScaledSolve) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    const int n = 24, top = std::numeric_limits<R>::max_exponent;
    const auto power = [](int e) { return std::ldexp(R(1), e); };
    for (const char uplo : {'U', 'L'})
        for (const char trans : {'N', 'T', 'C'})
            for (const char diag : {'N', 'U'})
                for (int kind = 0; kind < 8; ++kind) {
                    SCOPED_TRACE(testing::Message() << uplo << trans << diag << " kind " << kind);
                    matrix<T> a = random_matrix<T>(n, n, 31 + kind), b = random_matrix<T>(n, 1, 5);
                    for (int j = 0; j < n; ++j)
                        for (int i = 0; i < n; ++i) {
                            T &e = a(i, j);
                            if (kind == 1 && i == j) // a small diagonal
                                e = power(-top / 8) * e;
                            if (kind == 2 && i == j && j == n / 2) // zero
                                e = T{};
                            if (kind == 3 && i == j && j % 5 == 0) // nearly
                                e = power(3 - top) * e;
                            if (kind == 4) // all large
                                e = power(top - 1) * e;
                            if (kind == 5 && i != j) // large beside the diagonal
                                e = power(top - 1) * e;
                            if (kind == 6 && i != j && i % 2)
                                e = power(top - 30) * e;
                        }
                    if (kind == 7) // a large right-hand side
                        for (int i = 0; i < n; ++i)
                            b(i, 0) = power(top - 1) * b(i, 0);
                    expect_solution(uplo, trans, diag, a, b);
                }
}

TYPED_TEST(Condition, SafeDivision) {
    using T = TypeParam;
    using R = vox::real_of<T>;
    const R small = std::numeric_limits<R>::denorm_min(), large = std::numeric_limits<R>::max();
    for (const R divisor : {small, R(3), large})
        for (const R factor : {R(1), R(7)}) {
            T x[3] = {vox::make<T>(divisor * (divisor < large ? factor : 1)), T{}, T{}};
            vox::lapack::rscl<T>(2, divisor, x, 2);
            EXPECT_NEAR(vox::real(x[0]), divisor < large ? factor : 1,
                        8 * std::numeric_limits<R>::epsilon());
        }
}

} // namespace
