// cholesky_test.cpp - Cholesky factors, solutions and inverses, and the same of triangles: backward
// errors over orders that straddle every block edge, what may not be touched, info of every failure.
#include <gtest/gtest.h>

#include "tests/lapack/fortran.hpp"
#include "tests/lapack/support.hpp"

namespace {

using namespace test;

template <class T>
class Cholesky : public ::testing::Test {};
template <class T>
class Triangle : public ::testing::Test {};
TYPED_TEST_SUITE(Cholesky, element_types);
TYPED_TEST_SUITE(Triangle, element_types);

constexpr int orders[] = {0,  1,  2,  3,  4,  5,  7,  8,  9,  15, 16,
                          17, 24, 31, 32, 33, 47, 49, 64, 65, 100};

bool inside(char uplo, int i, int j) { return uplo == 'U' ? i <= j : i >= j; }

// Every row's magnitudes beside the diagonal sum up to less than the diagonal's; imaginary parts on the
// diagonal are there to be ignored.
template <class T>
matrix<T> positive_definite(int n, unsigned seed) {
    matrix<T> a = random_matrix<T>(n, n, seed, 3);
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < j; ++i)
            a(i, j) = vox::conj_if(true, a(j, i));
        a(j, j) = vox::make<T>(1.5 * n, 7);
    }
    return a;
}
template <class T>
matrix<T> triangle(int n, unsigned seed) {
    matrix<T> a = random_matrix<T>(n, n, seed, 2);
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < n; ++i)
            a(i, j) = vox::real_of<T>(1) / vox::real_of<T>(n) * a(i, j);
        a(j, j) += vox::make<T>(j % 3 ? 1.5 : -2.5);
    }
    return a;
}

// What a routine is given: NaN where it is not to look.
template <class T>
matrix<T> given(char uplo, char diag, matrix<T> a) {
    constexpr auto nan = std::numeric_limits<vox::real_of<T>>::quiet_NaN();
    for (int j = 0; j < a.columns(); ++j)
        for (int i = 0; i < a.rows(); ++i)
            if (!inside(uplo, i, j) || (diag == 'U' && i == j))
                a(i, j) = vox::make<T>(nan, 3);
    return a;
}
// The triangle that came back; what was not to be looked at is as it was.
template <class T>
matrix<T> taken(char uplo, char diag, matrix<T> a) {
    EXPECT_TRUE(a.nothing_between_was_touched());
    EXPECT_TRUE(a.same_bits(given(uplo, diag, a)));
    for (int j = 0; j < a.columns(); ++j)
        for (int i = 0; i < a.rows(); ++i)
            if (!inside(uplo, i, j) || (diag == 'U' && i == j))
                a(i, j) = vox::make<T>(i == j);
    return a;
}
// The Hermitian matrix of which a triangle came back.
template <class T>
matrix<T> completed(char uplo, matrix<T> a) {
    a = taken(uplo, 'N', a);
    for (int j = 0; j < a.columns(); ++j) {
        EXPECT_EQ(vox::imag(a(j, j)), 0);
        for (int i = 0; i < a.rows(); ++i)
            if (!inside(uplo, i, j))
                a(i, j) = vox::conj_if(true, a(j, i));
    }
    return a;
}
template <class T>
matrix<T> without_imaginary_diagonal(matrix<T> a) {
    for (int j = 0; j < a.columns(); ++j)
        a(j, j) = vox::make<T>(vox::real(a(j, j)));
    return a;
}

// |A - U^H U| or |A - L L^H| over n |A| u.
template <class T>
long double factor_error(char uplo, const matrix<T> &a, const matrix<T> &factor) {
    const matrix<T> f = taken(uplo, 'N', factor);
    const bool upper = uplo == 'U';
    const auto rest =
        minus_product(exactly(a), exactly(f, upper ? 'C' : 'N'), exactly(f, upper ? 'N' : 'C'));
    return scaled<T>(one_norm(rest), a.rows(), one_norm(exactly(a)));
}
TYPED_TEST(Cholesky, BackwardErrors) {
    using T = TypeParam;
    using routines = fortran<T>;
    for (const int n : orders)
        for (const char uplo : {'U', 'L'}) {
            SCOPED_TRACE(testing::Message() << uplo << " " << n);
            const matrix<T> drawn = positive_definite<T>(n, n),
                            a = without_imaginary_diagonal(drawn);
            matrix<T> f = a;
            for (auto *factor : {routines::potf2, routines::potrf2, routines::potrf}) {
                f = given(uplo, 'N', drawn);
                ASSERT_EQ(call(factor, uplo, n, f), 0);
                EXPECT_LE(factor_error(uplo, a, f), threshold);
                for (int j = 0; j < n; ++j)
                    EXPECT_EQ(vox::imag(f(j, j)), 0) << j;
            }
            for (const int nrhs : {1, 3}) {
                const matrix<T> b = random_matrix<T>(n, nrhs, 7, 1);
                matrix<T> x = b, again = given(uplo, 'N', drawn), y = b;
                EXPECT_EQ(call(routines::potrs, uplo, n, x.columns(), f, x), 0);
                EXPECT_TRUE(x.nothing_between_was_touched());
                EXPECT_LE(solution_error(exactly(a), x, b), threshold);
                EXPECT_EQ(call(routines::posv, uplo, n, y.columns(), again, y), 0);
                EXPECT_TRUE(again.same_bits(f) && y.same_bits(x));
            }
            matrix<T> inverse = f;
            EXPECT_EQ(call(routines::potri, uplo, n, inverse), 0);
            EXPECT_LE(inverse_error(a, completed(uplo, inverse)), threshold);
        }
}

// The order of the first minor that is not positive, whatever makes it so; the factor of what precedes
// it is complete.
TYPED_TEST(Cholesky, NotPositiveDefinite) {
    using T = TypeParam;
    using routines = fortran<T>;
    using R = vox::real_of<T>;
    constexpr R nan = std::numeric_limits<R>::quiet_NaN();
    for (const int n : {1, 5, 48, 49, 100})
        for (const char uplo : {'U', 'L'})
            for (const int k : {1, 3, 4, 5, 17, 32, 33, 70, 100})
                for (const R pivot : {R(0), R(-1), nan}) {
                    if (k > n)
                        continue;
                    SCOPED_TRACE(testing::Message()
                                 << uplo << " " << n << " " << k << " " << pivot);
                    const matrix<T> a = without_imaginary_diagonal(positive_definite<T>(n, 5));
                    matrix<T> f = a;
                    f(k - 1, k - 1) = vox::make<T>(pivot);
                    EXPECT_EQ(call(routines::potrf, uplo, n, f), k);
                    matrix<T> leading(k - 1, k - 1), of_a = leading, b(n, 1);
                    for (int j = 0; j < k - 1; ++j)
                        for (int i = 0; i < k - 1; ++i)
                            leading(i, j) = f(i, j), of_a(i, j) = a(i, j);
                    EXPECT_LE(factor_error(uplo, of_a, given(uplo, 'N', leading)), threshold);
                    f = a;
                    f(k - 1, k - 1) = vox::make<T>(pivot);
                    b(0, 0) = vox::make<T>(5);
                    const matrix<T> before = b;
                    EXPECT_EQ(call(routines::posv, uplo, n, b.columns(), f, b), k);
                    EXPECT_TRUE(b.same_bits(before));
                    if (k == 1)
                        continue;
                    f = a; // NaN beside the diagonal reaches the later of its two pivots
                    f(k - 1, 0) = f(0, k - 1) = vox::make<T>(nan);
                    EXPECT_EQ(call(routines::potrf, uplo, n, f), k);
                }
}

// Powers of two as scales change no digit, up to the ends of the range; infinity ends.
TYPED_TEST(Cholesky, Extremes) {
    using T = TypeParam;
    using routines = fortran<T>;
    using R = vox::real_of<T>;
    const int n = 40, top = std::numeric_limits<R>::max_exponent - 10;
    for (const char uplo : {'U', 'L'}) {
        const matrix<T> a = without_imaginary_diagonal(positive_definite<T>(n, 8));
        matrix<T> f = a;
        ASSERT_EQ(call(routines::potrf, uplo, n, f), 0);
        for (const int exponent : {top / 2 * 2, -(top - 40) / 2 * 2}) {
            matrix<T> g = a, h = f;
            for (int j = 0; j < n; ++j)
                for (int i = 0; i < n; ++i) {
                    g(i, j) = std::ldexp(R(1), exponent) * a(i, j);
                    h(i, j) = std::ldexp(R(1), exponent / 2) * f(i, j);
                }
            EXPECT_EQ(call(routines::potrf, uplo, n, g), 0);
            EXPECT_TRUE(taken(uplo, 'N', given(uplo, 'N', g))
                            .same_bits(taken(uplo, 'N', given(uplo, 'N', h))))
                << exponent;
        }
        f = a;
        f(2, 2) = vox::make<T>(std::numeric_limits<R>::infinity());
        EXPECT_EQ(call(routines::potrf, uplo, n, f), 0); // its column becomes zero
        f(3, 1) = f(1, 3) = f(2, 2) = vox::make<T>(std::numeric_limits<R>::infinity());
        EXPECT_GE(call(routines::potrf, uplo, n, f), 0);
    }
}

TYPED_TEST(Triangle, BackwardErrors) {
    using T = TypeParam;
    using routines = fortran<T>;
    for (const int n : orders)
        for (const char uplo : {'U', 'L'})
            for (const char diag : {'N', 'U'}) {
                SCOPED_TRACE(testing::Message() << uplo << diag << " " << n);
                const matrix<T> in = given(uplo, diag, triangle<T>(n, n)),
                                a = taken(uplo, diag, in);
                matrix<T> x = in, y = in;
                EXPECT_EQ(call(routines::trtri, uplo, diag, n, x), 0);
                const matrix<T> inverse = taken(uplo, diag, x);
                EXPECT_LE(inverse_error(a, inverse), threshold); // on either side
                EXPECT_LE(inverse_error(inverse, a), threshold);
                EXPECT_EQ(call(routines::trti2, uplo, diag, n, y), 0);
                EXPECT_LE(inverse_error(a, taken(uplo, diag, y)), threshold);
                for (const char trans : {'N', 'T', 'C'})
                    for (const int nrhs : {1, 4}) {
                        const matrix<T> b = random_matrix<T>(n, nrhs, 9, 1);
                        matrix<T> s = b;
                        EXPECT_EQ(call(routines::trtrs, uplo, trans, diag, n, s.columns(), in, s),
                                  0);
                        EXPECT_TRUE(s.nothing_between_was_touched());
                        EXPECT_LE(solution_error(exactly(a, trans), s, b), threshold);
                    }
                if (diag == 'U')
                    continue;
                const matrix<T> real = without_imaginary_diagonal(in);
                matrix<T> product = real;
                const matrix<T> u = taken(uplo, diag, real);
                EXPECT_EQ(call(routines::lauum, uplo, n, product), 0);
                const auto rest = minus_product(exactly(completed(uplo, product)),
                                                exactly(u, uplo == 'U' ? 'N' : 'C'),
                                                exactly(u, uplo == 'U' ? 'C' : 'N'));
                EXPECT_LE(
                    scaled<T>(one_norm(rest), n, one_norm(exactly(u)) * one_norm(exactly(u, 'C'))),
                    threshold);
            }
}

// The first zero on the diagonal is found before anything is touched; a diagonal of ones is not read.
TYPED_TEST(Triangle, Singular) {
    using T = TypeParam;
    using routines = fortran<T>;
    const int n = 50;
    for (const char uplo : {'U', 'L'})
        for (const int k : {1, 20, n}) {
            matrix<T> a = triangle<T>(n, 4), b = random_matrix<T>(n, 2, 6);
            a(k - 1, k - 1) = a(n - 1, n - 1) = T{};
            matrix<T> x = a, y = b;
            EXPECT_EQ(call(routines::trtri, uplo, 'N', n, x), k);
            EXPECT_EQ(call(routines::potri, uplo, n, x), k);
            EXPECT_EQ(call(routines::trtrs, uplo, 'N', 'N', n, y.columns(), x, y), k);
            EXPECT_TRUE(x.same_bits(a) && y.same_bits(b));
            EXPECT_EQ(call(routines::trtri, uplo, 'U', n, x), 0);
            EXPECT_EQ(call(routines::trtrs, uplo, 'T', 'U', n, y.columns(), a, y), 0);
        }
}

} // namespace
