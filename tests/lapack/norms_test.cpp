// norms_test.cpp - norms of whole matrices, triangles, symmetric and Hermitian ones, against their
// definitions in long double: over shapes, over the whole range, with NaN and infinity at every place.
#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/lapack/fortran.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/wide.hpp"

namespace {

using namespace test;
using vox::is_complex;
using vox::real_of;

enum class kind { general, triangular, unit, symmetric, hermitian };

// A norm as it may be asked for, and the matrix it is of.
struct question {
    kind what;
    char norm, uplo;
    vox_int m, n, lda;

    bool mirrored() const { return what == kind::symmetric || what == kind::hermitian; }
    bool stored(vox_int i, vox_int j) const {
        return what == kind::general || (i == j ? what != kind::unit : (i < j) == (uplo == 'U'));
    }
};

std::ostream &operator<<(std::ostream &out, const question &q) {
    return out << int(q.what) << " " << q.norm << " " << q.uplo << " " << q.m << "x" << q.n;
}

template <class T>
real_of<T> answer(const question &q, const std::vector<T> &a) {
    const bool by_rows = q.norm == 'I' || q.norm == 'i';
    const bool sums = by_rows || q.norm == 'O' || q.norm == '1';
    std::vector<real_of<T>> room(size_t(q.m), real_of<T>(-7)); // no more is asked for
    real_of<T> *const work = (q.mirrored() ? sums : by_rows) ? room.data() : nullptr;
    using f = fortran<T>;
    switch (q.what) {
    case kind::general:
        return invoke(f::lange, q.norm, q.m, q.n, a, q.lda, work);
    case kind::symmetric:
        return invoke(f::lansy, q.norm, q.uplo, q.n, a, q.lda, work);
    case kind::hermitian:
        if constexpr (is_complex<T>)
            return invoke(f::lanhe, q.norm, q.uplo, q.n, a, q.lda, work);
        [[fallthrough]];
    default:
        return invoke(f::lantr, q.norm, q.uplo, q.what == kind::unit ? 'U' : 'N', q.m, q.n, a,
                      q.lda, work);
    }
}

// The definition, on the magnitudes of the whole matrix.
template <class T>
long double expected(const question &q, const std::vector<T> &a) {
    long double most = 0, squares = 0;
    std::vector<long double> rows(size_t(q.m)), cols(size_t(q.n));
    bool nan = false;
    for (vox_int j = 0; j < q.n; ++j)
        for (vox_int i = 0; i < q.m; ++i) {
            const bool mirror = q.mirrored() && !q.stored(i, j);
            const auto x = widen(a[size_t(mirror ? j + i * q.lda : i + j * q.lda)]);
            long double size = std::hypot(std::real(x), std::imag(x));
            if (q.what == kind::hermitian && i == j)
                size = std::fabs(std::real(x));
            if (!mirror && !q.stored(i, j))
                size = q.what == kind::unit && i == j;
            nan |= std::isnan(size);
            most = std::max(most, size);
            rows[size_t(i)] += size;
            cols[size_t(j)] += size;
            squares += size * size;
        }
    const auto largest = [](const auto &v) {
        return v.empty() ? 0.0L : *std::max_element(v.begin(), v.end());
    };
    const char norm = char(std::toupper(q.norm));
    return nan                          ? std::numeric_limits<long double>::quiet_NaN()
           : q.m * q.n == 0             ? 0
           : norm == 'M'                ? most
           : norm == 'I'                ? largest(rows)
           : norm == 'O' || norm == '1' ? largest(cols)
                                        : std::sqrt(squares);
}

// Calls body for each norm of each kind of matrix of this shape.
template <class T, class Body>
void for_questions(vox_int m, vox_int n, const Body &body) {
    for (char norm : {'M', 'O', '1', 'I', 'F', 'E', 'm', 'i', 'f'})
        for (kind what :
             {kind::general, kind::triangular, kind::unit, kind::symmetric, kind::hermitian})
            for (char uplo : {'U', 'L'}) {
                const question q{what, norm, uplo, m, n, std::max(m, 1) + (m + n) % 3};
                const bool exists = (is_complex<T> || what != kind::hermitian) &&
                                    (what != kind::general || uplo == 'U') &&
                                    (!q.mirrored() || m == n);
                if (exists)
                    body(q);
            }
}

// Random elements times the scale, complex ones in both parts; NaN wherever nothing may be read.
template <class T>
std::vector<T> matrix_for(const question &q, real_of<T> scale) {
    const real_of<T> nan = std::numeric_limits<real_of<T>>::quiet_NaN();
    const auto size = size_t(q.lda * q.n);
    const auto re = random_vector<real_of<T>>(size, 1), im = random_vector<real_of<T>>(size, 2);
    std::vector<T> a(size, vox::make<T>(nan, nan));
    for (vox_int j = 0; j < q.n; ++j)
        for (vox_int i = 0; i < q.m; ++i)
            if (const auto at = size_t(i + j * q.lda); q.stored(i, j))
                a[at] = vox::make<T>(re[at] * scale,
                                     q.what == kind::hermitian && i == j ? nan : im[at] * scale);
    return a;
}

template <class T>
class Norms : public ::testing::Test {};
TYPED_TEST_SUITE(Norms, element_types);

// m n terms, each a root of a sum of squares, which loses half a denormal number at most.
TYPED_TEST(Norms, AreTheirDefinitionsOverTheWholeRange) {
    using T = TypeParam;
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    const std::pair<vox_int, vox_int> shapes[] = {{0, 0},   {0, 3},   {4, 0},  {1, 1},
                                                  {1, 5},   {2, 2},   {7, 3},  {3, 9},
                                                  {17, 17}, {70, 70}, {300, 9}};
    for (const auto &[m, n] : shapes)
        for_questions<T>(m, n, [&](const question &q) {
            const R huge = limits::max() / R(2 * q.m * q.n + 2);
            for (R scale : {R(1), huge, 4 * limits::min(), 64 * limits::denorm_min(),
                            std::sqrt(limits::min()), std::sqrt(limits::max())}) {
                const auto a = matrix_for<T>(q, scale);
                const long double want = expected(q, a), got = answer(q, a);
                const long double terms = q.m * q.n;
                EXPECT_LE(std::fabs(got - want), test::gamma<R>(int64_t(terms) + 8) * want +
                                                     2 * terms * limits::denorm_min())
                    << q << " " << scale;
            }
        });
}

// The same number in all places but one: sizes that a sum of squares has to keep apart.
TYPED_TEST(Norms, KeepSmallAndLargeApart) {
    using T = TypeParam;
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    for (R small : {R(0), limits::min(), R(1)})
        for_questions<T>(33, 33, [&](const question &q) {
            std::vector<T> a(size_t(q.lda * q.n), vox::make<T>(small));
            a[size_t(32 * q.lda)] = a[32] = vox::make<T>(0, limits::max() / 4);
            if (!is_complex<T>)
                a[size_t(32 * q.lda)] = a[32] = vox::make<T>(-limits::max() / 4);
            const long double want = expected(q, a);
            EXPECT_LE(std::fabs(answer(q, a) - want), test::gamma<R>(33 * 33) * want) << q;
        });
}

// A NaN is the result wherever it stands, in either part; so is an infinity, where there is no NaN.
TYPED_TEST(Norms, PassNaNAndInfinityOn) {
    using T = TypeParam;
    using R = real_of<T>;
    const R nan = std::numeric_limits<R>::quiet_NaN(), inf = std::numeric_limits<R>::infinity();
    for (vox_int m : {5, 40})
        for_questions<T>(m, m == 5 ? 5 : 3, [&](const question &q) {
            const auto clean = matrix_for<T>(q, 1);
            for (vox_int j = 0; j < q.n; ++j)
                for (vox_int i = 0; i < q.m; ++i)
                    if (q.stored(i, j)) {
                        auto a = clean;
                        const auto at = size_t(i + j * q.lda);
                        a[at] = vox::make<T>(i == j ? -inf : 1, -inf);
                        if (!is_complex<T>)
                            a[at] = vox::make<T>(-inf);
                        EXPECT_EQ(answer(q, a), inf) << q << " " << i << "," << j;
                        a[at] = vox::make<T>(is_complex<T> && i != j ? R(1) : nan, nan);
                        EXPECT_TRUE(std::isnan(answer(q, a))) << q << " " << i << "," << j;
                    }
        });
}

} // namespace
