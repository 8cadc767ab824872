// signed_zeros_test.cpp - zeros have the signs that the reference BLAS gives them, on every code path.
#include <cmath>
#include <gtest/gtest.h>
#include <vector>

#include "vox/vox.h"

namespace {

constexpr vox_int one = 1;
constexpr double plus = 0.0, minus = -0.0, unit = 1, opposite = -1;

// 'p' for +0, 'm' for -0, '?' for anything else or both.
char sign_of(const std::vector<double> &v) {
    size_t negative = 0;
    for (double x : v) {
        if (x != 0)
            return '?';
        negative += std::signbit(x);
    }
    return negative == 0 ? 'p' : negative == v.size() ? 'm' : '?';
}

class SignedZeros : public ::testing::TestWithParam<vox_int> {
  protected:
    vox_int n = GetParam();
    std::vector<double> vector(double value) { return std::vector<double>(size_t(n), value); }
};
INSTANTIATE_TEST_SUITE_P(Sizes, SignedZeros, ::testing::Values(1, 2, 3, 5, 8, 13, 31, 64, 100));

TEST_P(SignedZeros, Level1) {
    const std::vector<double> x = vector(minus), ones = vector(1);
    std::vector<double> y = vector(plus), z = vector(plus);
    dcopy(&n, x.data(), &one, y.data(), &one);
    EXPECT_EQ(sign_of(y), 'm') << "copy";
    daxpy(&n, &unit, x.data(), &one, y.data(), &one);
    EXPECT_EQ(sign_of(y), 'm') << "-0 + 1 (-0)";
    dswap(&n, y.data(), &one, z.data(), &one);
    EXPECT_EQ(sign_of(y), 'p') << "swap";
    EXPECT_EQ(sign_of(z), 'm') << "swap";
    dscal(&n, &opposite, y.data(), &one);
    EXPECT_EQ(sign_of(y), 'm') << "(-1) (+0)";
    daxpy(&n, &unit, vector(plus).data(), &one, y.data(), &one);
    EXPECT_EQ(sign_of(y), 'p') << "-0 + 1 (+0)";
    // Sums begin with +0.
    EXPECT_FALSE(std::signbit(ddot(&n, x.data(), &one, ones.data(), &one)));
    EXPECT_FALSE(std::signbit(dasum(&n, x.data(), &one)));
    EXPECT_FALSE(std::signbit(dnrm2(&n, x.data(), &one)));
}

TEST_P(SignedZeros, Level2) {
    const std::vector<double> a(size_t(n) * size_t(n), plus), x = vector(1);
    for (const char *trans : {"N", "T"}) {
        std::vector<double> y = vector(7);
        dgemv(trans, &n, &n, &opposite, a.data(), &n, x.data(), &one, &plus, y.data(), &one);
        EXPECT_EQ(sign_of(y), 'p') << "0 + (-1) (+0), " << trans;
        dgemv(trans, &n, &n, &plus, a.data(), &n, x.data(), &one, &opposite, y.data(), &one);
        EXPECT_EQ(sign_of(y), 'm') << "(-1) (+0), " << trans;
        dgemv(trans, &n, &n, &plus, a.data(), &n, x.data(), &one, &unit, y.data(), &one);
        EXPECT_EQ(sign_of(y), 'm') << "nothing to do, " << trans;
    }
    std::vector<double> y = vector(7);
    dsymv("L", &n, &opposite, a.data(), &n, x.data(), &one, &plus, y.data(), &one);
    EXPECT_EQ(sign_of(y), 'p') << "symv";
    std::vector<double> b = vector(minus);
    dtrsv("L", "N", "U", &n, a.data(), &n, b.data(), &one);
    EXPECT_EQ(sign_of(b), 'm') << "a zero leaves its column out";
}

} // namespace
