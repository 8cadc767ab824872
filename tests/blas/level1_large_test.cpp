// level1_large_test.cpp - level 1 on elements that lie further apart than 32 bits can count.
#include <cstring>
#include <gtest/gtest.h>

#include "tests/blas/level1.hpp"
#include "tests/support/far_vector.hpp"

namespace {

using namespace test;

template <class T>
class Level1Offsets : public ::testing::Test {};
TYPED_TEST_SUITE(Level1Offsets, element_types);

// Each routine with increments of 8 and of 2^30, of either sign.
TYPED_TEST(Level1Offsets, ReachBeyond32Bits) {
    using T = TypeParam;
    using R = real_of<T>;
    constexpr vox_int n = 5, close = 8, far = 1 << 30;
    constexpr form c = form::c;
    const far_vector<T> far_x(size_t(far) * n), far_y(size_t(far) * n);
    const T a = narrow<T>({0.75, -0.5});
    const auto expect_same = [&](const char *name, auto routine) {
        for (vox_int sign : {1, -1}) {
            std::vector<T> x = random_numbers<T>(n * close, 1), y = random_numbers<T>(n * close, 2);
            for (vox_int i = 0; i < n; ++i) {
                far_x[size_t(far) * i] = x[close * i];
                far_y[size_t(far) * i] = y[close * i];
            }
            const T near_result = routine(x.data(), close, y.data(), sign * close);
            const T far_result = routine(far_x.data(), far, far_y.data(), sign * far);
            EXPECT_EQ(std::memcmp(&near_result, &far_result, sizeof(T)), 0) << name << sign;
            for (vox_int i = 0; i < n; ++i) {
                EXPECT_EQ(std::memcmp(&far_x[size_t(far) * i], &x[close * i], sizeof(T)), 0)
                    << name;
                EXPECT_EQ(std::memcmp(&far_y[size_t(far) * i], &y[close * i], sizeof(T)), 0)
                    << name;
            }
        }
    };
    const auto real = [](auto value) { return vox::make<T>(R(value)); };
#define EXPECT_SAME(name, ...)                                                                     \
    expect_same(#name, [&](T *x, vox_int incx, T *y, vox_int incy) {                               \
        (void)y, (void)incy;                                                                       \
        return __VA_ARGS__;                                                                        \
    })
    EXPECT_SAME(copy, (copy(c, n, x, incx, y, incy), a));
    EXPECT_SAME(swap, (test::swap(c, n, x, incx, y, incy), a));
    EXPECT_SAME(scal, (scal(c, n, a, x, incx), a));
    EXPECT_SAME(axpy, (axpy(c, n, a, x, incx, y, incy), a));
    EXPECT_SAME(axpby, (axpby(c, n, a, x, incx, a, y, incy), a));
    EXPECT_SAME(rot, (rot(c, n, x, incx, y, incy, R(0.6), R(0.8)), a));
    EXPECT_SAME(dot, dot(c, n, x, incx, y, incy));
    EXPECT_SAME(dotc, dotc(c, n, x, incx, y, incy));
    EXPECT_SAME(asum, real(asum(c, n, x, incx)));
    EXPECT_SAME(nrm2, real(nrm2(c, n, x, incx)));
    EXPECT_SAME(amax, real(iamax(c, n, x, incx)));
    EXPECT_SAME(amin, real(iamin(c, n, x, incx)));
    if constexpr (!is_complex<T>) {
        const T h[5] = {-1, R(0.9), R(0.1), R(-0.2), R(1.1)};
        EXPECT_SAME(rotm, (rotm(c, n, x, incx, y, incy, h), a));
    }
}

} // namespace
