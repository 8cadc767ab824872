// level3_large_test.cpp - the numbers of level 3 on large and extreme shapes: on one thread, on
// several that do not divide the work evenly, for several callers at once, and with offsets beyond
// 32 bits.
#include <gtest/gtest.h>

#include "tests/blas/callers.hpp"
#include "tests/blas/level3_reference.hpp"
#include "tests/support/far_vector.hpp"

namespace {

using namespace test;

template <class T>
class Level3Threads : public ::testing::Test {
  protected:
    void expect_right(const char *name, vox_int m, vox_int n, vox_int k) {
        for (int threads : {1, 2, 4, 7}) {
            counts.set(threads);
            EXPECT_EQ(fault(routine_named<T>(name), m, n, k, lots), "") << threads << " threads";
        }
    }
    const thread_counts counts;
    lottery lots{1};
};
TYPED_TEST_SUITE(Level3Threads, element_types);

// In deep products the error bound hides a term that is missing; here nothing may be.
TYPED_TEST(Level3Threads, ProductsOfIntegersAreExact) {
    for (const char *name : {"gemm", "gemmt", "syrk", "syr2k"})
        for (const auto &[n, k] : {std::pair(16, 20011), {5, 9973}, {97, 1500}, {3, 100003}})
            for (int threads : {1, 2, 4, 7}) {
                this->counts.set(threads);
                const routine<TypeParam> &r = routine_named<TypeParam>(name);
                drawn_call<TypeParam> d = draw(r, n, n, k, this->lots);
                d.a.alpha = vox::make<TypeParam>(2, 1);
                d.a.beta = vox::make<TypeParam>(-1, 3);
                EXPECT_EQ(trial<TypeParam>(r, d.a, 1, {}, {1}, true).fault(d.call), "")
                    << d << ", " << threads << " threads";
            }
}

// Square, tall, wide and deep; and what a thread gets is less than one register block.
TYPED_TEST(Level3Threads, AnyNumberOfThemStaysWithinTheErrorBounds) {
    constexpr vox_int shapes[][3] = {
        {301, 299, 300}, {2003, 32, 33}, {31, 2005, 32}, {16, 17, 20011}, {3, 997, 401},
        {997, 2, 401},   {5013, 9, 12},  {11, 5013, 65}, {1, 1500, 700},  {1500, 1, 700}};
    for (const auto &[m, n, k] : shapes)
        this->expect_right("gemm", m, n, k);
    for (const routine<TypeParam> &r : level3_routines<TypeParam>()) {
        const char *const name = r.name.c_str() + 1;
        this->expect_right(name, 193, 257, 130); // orders 193 and 257, on either side
        this->expect_right(name, 18, 601, 50);
        this->expect_right(name, 601, 23, 1003);
    }
}

TEST(Level3Callers, EachGetTheirOwnResults) {
    expect_each_gets_its_own_results([]<class T>(unsigned caller) {
        lottery lots(caller);
        const std::vector<routine<T>> &all = level3_routines<T>();
        std::string faults;
        for (unsigned call = 0; call < 12; ++call)
            faults += fault(all[call % 2 ? 0 : lots.number() % all.size()], 110 + vox_int(caller),
                            110 + vox_int(17 * call), 60, lots);
        return faults;
    });
}

// The same call on operands whose columns are close together and, beyond 32 bits, far apart.
TEST(Level3Offsets, ReachBeyond32Bits) {
    constexpr vox_int n = 40, close = 43, far = (1 << 26) + 3;
    constexpr size_t all = size_t(far) * n;
    const far_vector<float> spread[3] = {far_vector<float>(all), far_vector<float>(all),
                                         far_vector<float>(all)};
    lottery lots(1);
    for (const routine<float> &r : level3_routines<float>())
        for (int combination = 0; combination < combinations(r); ++combination) {
            arguments<float> a = draw(r, n, n, n, combination, lots).a;
            a.layout = CblasColMajor;
            a.lda = a.ldb = a.ldc = close;
            arguments<float> distant = a;
            distant.lda = distant.ldb = distant.ldc = far;
            std::vector<float> values[3];
            for (unsigned v = 0; v < 3; ++v) {
                values[v] = random_vector<float>(close * n, v);
                const char letter = "ABC"[v];
                matrix_of(a, letter) = values[v].data();
                matrix_of(distant, letter) = spread[v].data();
                for (int64_t j = 0; j < n; ++j) {
                    values[v][size_t(j * close + j)] += v == 0 ? 8 : 0;
                    std::memcpy(&spread[v][j * far], &values[v][size_t(j * close)],
                                n * sizeof(float));
                }
            }
            r.fortran(a);
            r.fortran(distant);
            for (unsigned v = 0; v < 3; ++v)
                for (int64_t j = 0; j < n; ++j)
                    ASSERT_EQ(std::memcmp(&spread[v][j * far], &values[v][size_t(j * close)],
                                          n * sizeof(float)),
                              0)
                        << r.name << ' ' << combination;
        }
}

} // namespace
