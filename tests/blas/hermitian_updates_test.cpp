// hermitian_updates_test.cpp - the diagonal of C in ?herk and ?her2k: what stands in its imaginary
// parts is not looked at, becomes zero, and is left alone where nothing is to be done.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

#include "tests/blas/level3_table.hpp"

namespace {

using namespace test;

struct update_case {
    double alpha, beta;
    vox_int k;
    bool touched;
};
constexpr update_case cases[] = {{2, 1, 0, false}, {0, 1, 3, false}, {0, 1, 0, false},
                                 {0, 3, 3, true},  {2, 3, 0, true},  {0, 0, 3, true},
                                 {2, 1, 3, true},  {2, 3, 3, true},  {2, 0, 3, true}};

template <class T>
class HermitianUpdates : public ::testing::Test {};
using types = ::testing::Types<vox_complex_float, vox_complex_double>;
TYPED_TEST_SUITE(HermitianUpdates, types);

TYPED_TEST(HermitianUpdates, HaveARealDiagonalUnlessNothingIsToBeDone) {
    using T = TypeParam;
    constexpr int n = 5;
    const auto nan = std::numeric_limits<vox::real_of<T>>::quiet_NaN();
    std::vector<T> ones(n * n, vox::one<T>);
    for (const routine<T> &r : level3_routines<T>())
        for (const update_case &u : cases)
            for (char uplo : {'U', 'L'})
                for (int form = 0; form < 3 && r.hermitian() && r.has('K'); ++form) {
                    std::vector<T> c(n * n, T{1, 0});
                    for (int i = 0; i < n; ++i)
                        c[size_t(i * n + i)] = {1, nan};
                    arguments<T> a;
                    a.layout = form == 2 ? CblasRowMajor : CblasColMajor;
                    a.uplo = uplo;
                    a.n = n, a.k = u.k;
                    a.lda = a.ldb = a.ldc = n;
                    a.a = a.x = ones.data();
                    a.alpha = {vox::real_of<T>(u.alpha), 0};
                    a.beta = {vox::real_of<T>(u.beta), 0};
                    a.y = c.data();
                    (form == 0 ? r.fortran : r.c)(a);
                    const double terms = r.has('M') ? 2 : 1;
                    const double expected = u.beta + u.alpha * double(u.k) * terms;
                    for (int i = 0; i < n; ++i) {
                        const T diagonal = c[size_t(i * n + i)];
                        EXPECT_EQ(diagonal.real, expected)
                            << r.name << ' ' << u.alpha << ' ' << u.beta << ' ' << u.k;
                        EXPECT_TRUE(u.touched ? diagonal.imag == 0 : std::isnan(diagonal.imag))
                            << r.name << ' ' << u.alpha << ' ' << u.beta << ' ' << u.k;
                    }
                }
}

} // namespace
