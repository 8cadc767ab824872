// level2_large_test.cpp - the numbers of level 2 on large and extreme shapes: on one thread, on
// several that do not divide the work evenly, for several callers at once, and with offsets beyond 32
// bits.
#include <gtest/gtest.h>

#include "tests/blas/callers.hpp"
#include "tests/blas/draw.hpp"
#include "tests/blas/level2_reference.hpp"
#include "tests/support/far_vector.hpp"

namespace {

using namespace test;

template <class T>
class Level2Threads : public ::testing::Test {};
TYPED_TEST_SUITE(Level2Threads, element_types);

// The largest of each kind are enough for seven threads.
template <class T>
std::vector<std::pair<vox_int, vox_int>> shapes(bool band, bool rectangular) {
    const vox_int most = band ? 9001 : vox_int(701 * std::sqrt(4.0 / sizeof(T)));
    std::vector<std::pair<vox_int, vox_int>> all = {
        {100, 100}, {129, 129}, {300, 300}, {most, most}};
    if (rectangular)
        all.insert(all.end(), {{1, 500}, {500, 1}, {3, 30011}, {30011, 3}, {85, 4001}, {4001, 85}});
    return all;
}

TYPED_TEST(Level2Threads, AnyNumberOfThemStaysWithinTheErrorBounds) {
    const thread_counts counts;
    lottery lots(1);
    for (const routine<TypeParam> &r : routines<TypeParam>())
        for (int threads : {1, 2, 3, 7}) {
            counts.set(threads);
            for (const auto &[m, n] : shapes<TypeParam>(r.has('k'), r.has('m')))
                EXPECT_EQ(fault(r, m, n, 0, lots), "") << threads << " threads";
        }
}

TEST(Level2Callers, EachGetTheirOwnResults) {
    expect_each_gets_its_own_results([]<class T>(unsigned caller) {
        lottery lots(caller);
        std::string faults;
        for (int call = 0; call < 10; ++call) {
            const routine<T> &r = routines<T>()[lots.number() % routines<T>().size()];
            faults += fault(r, 310 + vox_int(caller), 310 + 17 * call, 0, lots);
        }
        return faults;
    });
}

// The elements 8 j + i, i < 8, lie at far j + i. Powers of two and small integers: no rounding.
TEST(Level2Offsets, ReachBeyond32Bits) {
    constexpr vox_int n = 3, far = 1 << 30;
    constexpr size_t all = size_t(far) * n;
    const far_vector<float> spread[3] = {far_vector<float>(all), far_vector<float>(all),
                                         far_vector<float>(all)};
    for (const routine<float> &r : routines<float>())
        for (int combination = 0; combination < combinations(r); ++combination) {
            arguments<float> close;
            set_options(r, combination, close);
            close.m = close.n = n;
            close.kl = close.ku = 1;
            close.lda = close.incx = 8;
            close.incy = -8;
            close.alpha = close.beta = 2;
            arguments<float> distant = close;
            distant.lda = distant.incx = far;
            distant.incy = -far;
            const auto offset = [&r](int operand, int64_t k) {
                return k / 8 * (operand == 0 && !r.has('L') ? 8 : far) + k % 8;
            };
            std::vector<float> values[3];
            for (int v = 0; v < 3; ++v)
                for (int64_t k = 0; k < 8 * n; ++k) {
                    values[v].push_back(v == 0 ? (k % 3 ? -1.0F : 2.0F) : float(k % 5 + 1));
                    spread[v][offset(v, k)] = values[v].back();
                }
            close.a = values[0].data();
            close.x = values[1].data();
            close.y = values[2].data();
            distant.a = spread[0].data();
            distant.x = spread[1].data();
            distant.y = spread[2].data();
            r.fortran(close);
            r.fortran(distant);
            for (int v = 0; v < 3; ++v)
                for (int64_t k = 0; k < 8 * n; ++k)
                    ASSERT_EQ(spread[v][offset(v, k)], values[v][size_t(k)])
                        << r.name << ' ' << combination;
        }
}

} // namespace
