// dot_test.cpp - ?dot against a sum in long double, on every code path.
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <vector>

#include "tests/support/guarded.hpp"
#include "tests/support/numbers.hpp"
#include "vox/vox.h"

namespace {

using namespace test;

template <class T>
struct blas;
template <>
struct blas<double> {
    static double dot(vox_int n, const double *x, vox_int incx, const double *y, vox_int incy) {
        return ddot_(&n, x, &incx, y, &incy);
    }
};

struct shape {
    vox_int n, incx, incy;
};

std::ostream &operator<<(std::ostream &out, const shape &s) {
    return out << "n " << s.n << " incx " << s.incx << " incy " << s.incy;
}

// Every length past the loops for short vectors, then some beyond the threading threshold, the last
// so long that each of two threads reads from beyond the second-level cache.
std::vector<vox_int> lengths() {
    std::vector<vox_int> n;
    for (vox_int i = 0; i <= 300; ++i)
        n.push_back(i);
    for (vox_int i : {1000, 1023, 4095, 4096, 4097, 5000, 10007, 70001})
        n.push_back(i);
    return n;
}

std::vector<shape> shapes() {
    std::vector<shape> all;
    for (vox_int n : lengths())
        for (vox_int incx : {1, 2, -1, -3, 0, 17})
            for (vox_int incy : {1, -1, 3})
                if (n <= 40 || incx * incy != 51)
                    all.push_back({n, incx, incy});
    return all;
}

size_t extent(vox_int n, vox_int inc) {
    return n > 0 ? size_t(n - 1) * size_t(std::abs(inc)) + 1 : 0;
}

// Element i of a BLAS vector: a negative increment walks it from its end.
template <class T>
T element(const T *x, vox_int n, vox_int inc, vox_int i) {
    return x[inc < 0 ? int64_t(i + 1 - n) * inc : int64_t(i) * inc];
}

struct reference {
    long double value = 0, magnitude = 0;
};

template <class T>
reference reference_dot(const shape &s, const T *x, const T *y) {
    reference r;
    for (vox_int i = 0; i < s.n; ++i) {
        const long double product =
            (long double)element(x, s.n, s.incx, i) * element(y, s.n, s.incy, i);
        r.value += product;
        r.magnitude += std::fabs(product);
    }
    return r;
}

template <class T>
class Dot : public ::testing::Test {};
using real_types = ::testing::Types<double>;
TYPED_TEST_SUITE(Dot, real_types);

TYPED_TEST(Dot, StaysWithinTheForwardErrorBoundAndItsOperands) {
    using T = TypeParam;
    for (const shape &s : shapes()) {
        SCOPED_TRACE(s);
        const edge where = s.n % 2 ? edge::back : edge::front;
        const guarded<T> x(random_vector<T>(extent(s.n, s.incx), 1), where);
        const guarded<T> y(random_vector<T>(extent(s.n, s.incy), 2), where);
        const reference ref = reference_dot(s, x.data(), y.data());
        const long double got = blas<T>::dot(s.n, x.data(), s.incx, y.data(), s.incy);
        ASSERT_LE(std::fabs(got - ref.value), gamma<T>(s.n) * ref.magnitude);
    }
}

TYPED_TEST(Dot, GivesTheSameBitsWhateverTheAlignment) {
    using T = TypeParam;
    for (vox_int n : {7, 64, 129, 1000, 6000}) {
        const std::vector<T> x = random_vector<T>(size_t(n), 3), y = random_vector<T>(size_t(n), 4);
        const T expected = blas<T>::dot(n, x.data(), 1, y.data(), 1);
        std::vector<T> px(size_t(n) + 16), py(size_t(n) + 16);
        for (size_t shift = 1; shift < 16; ++shift) {
            std::copy(x.begin(), x.end(), px.begin() + ptrdiff_t(shift));
            std::copy(y.begin(), y.end(), py.begin() + ptrdiff_t(16 - shift));
            EXPECT_EQ(blas<T>::dot(n, px.data() + shift, 1, py.data() + 16 - shift, 1), expected)
                << n << ' ' << shift;
        }
    }
}

TYPED_TEST(Dot, CarriesSpecialValuesFromEveryPosition) {
    using T = TypeParam;
    const T inf = std::numeric_limits<T>::infinity(), nan = std::numeric_limits<T>::quiet_NaN();
    for (vox_int n : {1, 2, 3, 9, 31, 70, 150}) {
        const std::vector<T> ones(size_t(n), T(1));
        for (size_t i = 0; i < size_t(n); ++i) {
            std::vector<T> x = ones, y = ones;
            x[i] = nan;
            EXPECT_TRUE(std::isnan(blas<T>::dot(n, x.data(), 1, y.data(), 1)));
            x[i] = -inf;
            EXPECT_EQ(blas<T>::dot(n, x.data(), 1, y.data(), 1), -inf);
            y[i] = 0; // inf times zero
            EXPECT_TRUE(std::isnan(blas<T>::dot(n, x.data(), 1, y.data(), 1)));
        }
    }
}

TYPED_TEST(Dot, TouchesNothingWhenThereIsNothingToSum) {
    using T = TypeParam;
    for (vox_int n : {0, -1, std::numeric_limits<vox_int>::min()})
        EXPECT_EQ(blas<T>::dot(n, nullptr, 1, nullptr, 1), T(0));
}

TEST(Ddot, AllSpellingsAreOneRoutine) {
    const double x[] = {1, 2, 3}, y[] = {4, 5, 6};
    const vox_int n = 3, one = 1;
    EXPECT_EQ(ddot(&n, x, &one, y, &one), 32);
    EXPECT_EQ(ddot_(&n, x, &one, y, &one), 32);
    EXPECT_EQ(DDOT(&n, x, &one, y, &one), 32);
    EXPECT_EQ(cblas_ddot(n, x, one, y, one), 32);
    // The compiler must not decide by the names.
    void *volatile const spellings[] = {reinterpret_cast<void *>(&ddot),
                                        reinterpret_cast<void *>(&ddot_),
                                        reinterpret_cast<void *>(&DDOT)};
    EXPECT_EQ(spellings[0], spellings[1]);
    EXPECT_EQ(spellings[0], spellings[2]);
}

} // namespace
