// least_squares_test.cpp - ?gels: least squares and minimum norms, from every side, scaled and not.
#include <gtest/gtest.h>
#include <tuple>

#include "tests/lapack/reflectors.hpp"

namespace {

using namespace test;

template <class T>
class Gels : public ::testing::Test {
  protected:
    using E = exact<T>;

    static matrix<T> scaled_by(matrix<T> a, long double scale) {
        for (int j = 0; j < a.columns(); ++j)
            for (int i = 0; i < a.rows(); ++i)
                a(i, j) = vox::make<T>(vox::real_of<T>(vox::real(a(i, j)) * scale),
                                       vox::real_of<T>(vox::imag(a(i, j)) * scale));
        return a;
    }
    static matrix<T> top(const matrix<T> &a, int rows) {
        matrix<T> t(rows, a.columns());
        for (int j = 0; j < a.columns(); ++j)
            std::copy_n(a.column(j), rows, t.column(j));
        return t;
    }

    // A and B of ordinary size; gels gets multiples of them, and X is that multiple of theirs.
    static void expect_solution(int m, int n, int nrhs, char trans, long double a_scale = 1,
                                long double b_scale = 1) {
        SCOPED_TRACE(testing::Message() << m << " x " << n << ", " << nrhs << ' ' << trans << ' '
                                        << a_scale << ' ' << b_scale);
        const int rows = trans == 'N' ? m : n, unknowns = trans == 'N' ? n : m;
        const matrix<T> a = random_matrix<T>(m, n, 1, 2);
        const matrix<T> b = random_matrix<T>(std::max(m, n), nrhs, 2, 1);
        matrix<T> factors = scaled_by(a, a_scale), x = scaled_by(b, b_scale);
        ASSERT_EQ(call_with_work<T>(fortran<T>::gels, trans, m, n, nrhs, factors, x), 0);
        EXPECT_TRUE(x.nothing_between_was_touched());
        const auto op = exactly(a, trans);
        const matrix<T> unscaled = top(scaled_by(x, a_scale / b_scale), unknowns);
        const auto solution = exactly(unscaled);
        const auto rest = minus_product(exactly(top(b, rows)), op, solution);
        const int size = std::max({m, n, nrhs});
        const long double x_norm = one_norm(solution), op_norm = one_norm(op);
        if (rows >= unknowns) { // what is left is orthogonal to A
            EXPECT_LE(scaled<T>(one_norm(times(adjoint(op), rest)), size,
                                op_norm * (op_norm * x_norm + one_norm(rest))),
                      threshold);
        } else { // nothing is left, and X is a combination of A's rows
            EXPECT_LE(scaled<T>(one_norm(rest), size, op_norm * x_norm), threshold);
            EXPECT_LE(scaled<T>(one_norm(beside_rows(a, trans, unscaled)), size, x_norm),
                      threshold);
        }
    }
    // X less its projection on the rows of op(A): what the best combination of them leaves.
    static matrix<E> beside_rows(const matrix<T> &a, char trans, const matrix<T> &x) {
        const char other = trans == 'N' ? adjoined : 'N';
        matrix<T> factors = a, z = x;
        EXPECT_EQ(call_with_work<T>(fortran<T>::gels, other, a.rows(), a.columns(), x.columns(),
                                    factors, z),
                  0);
        const int rows = trans == 'N' ? a.rows() : a.columns();
        return minus_product(exactly(x), exactly(a, other), exactly(top(z, rows)));
    }
    static constexpr char adjoined = vox::is_complex<T> ? 'C' : 'T';
};
TYPED_TEST_SUITE(Gels, element_types);

TYPED_TEST(Gels, SolvesFromEverySide) {
    for (const auto &[m, n] :
         {std::tuple(1, 1), {5, 3}, {3, 5}, {20, 20}, {60, 33}, {33, 60}, {130, 80}, {80, 130}})
        for (int nrhs : {1, 5, 20})
            for (char trans : {'N', this->adjoined})
                this->expect_solution(m, n, nrhs, trans);
}

TYPED_TEST(Gels, ScalesWhatIsTooLargeOrTooSmall) {
    using limits = std::numeric_limits<vox::real_of<TypeParam>>;
    // So large that columns' norms, and so small that their squares and quotients, are out of range.
    const long double small = limits::min() * 4, ordinary = 1;
    const long double large = limits::max() / (vox::is_complex<TypeParam> ? 2 : 1);
    for (const auto &[a, b] : {std::tuple(small, small),
                               {large, large},
                               {ordinary, small * 16},
                               {small, small * ordinary},
                               {ordinary, large / 64}})
        for (const auto &[m, n] : {std::tuple(9, 6), {6, 9}})
            for (char trans : {'N', this->adjoined})
                this->expect_solution(m, n, 2, trans, a, b);
}

TYPED_TEST(Gels, TellsTheColumnThatDepends) {
    using T = TypeParam;
    for (const auto &[m, n] : {std::tuple(9, 6), {6, 9}})
        for (char trans : {'N', this->adjoined}) {
            matrix<T> a = random_matrix<T>(m, n, 1), b = random_matrix<T>(9, 1, 2);
            for (int i = 0; i < std::max(m, n); ++i)
                (m > n ? a(i, 3) : a(3, i)) = T{};
            EXPECT_EQ(call_with_work<T>(fortran<T>::gels, trans, m, n, 1, a, b), 4);
        }
}

TYPED_TEST(Gels, ZeroMatricesHaveTheSolutionZero) {
    using T = TypeParam;
    for (int n : {3, 0}) {
        matrix<T> a(5, 3), b = random_matrix<T>(5, 2, 1, 2);
        EXPECT_EQ(call_with_work<T>(fortran<T>::gels, 'N', 5, n, 2, a, b), 0);
        EXPECT_EQ(one_norm(exactly(b)), 0);
        EXPECT_TRUE(b.nothing_between_was_touched());
    }
}

} // namespace
