// operands_test.cpp - the operands of every routine of LAPACK: beside protected pages, with offsets beyond
// 32 bits, and with numbers that are none.
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

#include "tests/lapack/lapacke_table.hpp"
#include "tests/support/child.hpp"
#include "tests/support/far_vector.hpp"
#include "tests/support/guarded.hpp"
#include "vox/service.h"

namespace {

using namespace test::lapacke;

constexpr int layouts[] = {LAPACK_COL_MAJOR, LAPACK_ROW_MAJOR};

template <class T>
class LapackOperands : public ::testing::Test {
  protected:
    void SetUp() override { LAPACKE_set_nancheck(1); }
};
TYPED_TEST_SUITE(LapackOperands, test::element_types);

template <class T>
bool same(const std::vector<T> &a, const T *b) {
    return std::memcmp(a.data(), b, a.size() * sizeof(T)) == 0;
}

// The last line of a matrix ends at its last element, not at the leading dimension.
TYPED_TEST(LapackOperands, NothingBesideThemIsTouched) {
    using T = TypeParam;
    for (vox_int n = 1; n <= 75; n += n < 18 ? 1 : 11) {
        const sizes s{n, 1 + n % 9, n + n % 6};
        for (const routine<T> &r : routines<T>(s))
            for (int layout : layouts)
                for (test::edge where : {test::edge::back, test::edge::front}) {
                    arguments<T> plain = fill(r, layout), guarded = plain;
                    std::vector<std::unique_ptr<test::guarded<T>>> memory;
                    for (operand<T> &m : guarded.m) {
                        m.memory.resize(m.place(layout, m.rows - 1, m.cols - 1) + 1);
                        memory.push_back(std::make_unique<test::guarded<T>>(m.memory, where));
                        m.elsewhere = memory.back()->data();
                    }
                    EXPECT_EQ(r.call(layout, guarded), r.call(layout, plain)) << r.name << s.n;
                    for (size_t i = 0; i < plain.m.size(); ++i) {
                        plain.m[i].memory.resize(guarded.m[i].memory.size());
                        EXPECT_TRUE(same(plain.m[i].memory, guarded.m[i].data())) << r.name << s.n;
                    }
                }
    }
}

// The same operands with lines close together and far apart. Only the pages that are touched exist.
TYPED_TEST(LapackOperands, MayReachBeyond32Bits) {
    using T = TypeParam;
    const sizes s = {70, 33, 75};
    constexpr vox_int far = (1 << 25) + 3;
    const size_t all = size_t(far) * size_t(s.tall);
    ASSERT_GT(size_t(far) * size_t(s.n - 1), size_t(1) << 31);
    const test::far_vector<T> spread[3] = {test::far_vector<T>(all), test::far_vector<T>(all),
                                           test::far_vector<T>(all)};
    for (const routine<T> &r : routines<T>(s))
        for (int layout : layouts) {
            arguments<T> close = fill(r, layout), distant = close;
            for (size_t i = 0; i < distant.m.size(); ++i) {
                operand<T> &m = distant.m[i];
                m.ld = far;
                m.elsewhere = spread[i].data();
                for (vox_int row = 0; row < m.rows; ++row)
                    for (vox_int col = 0; col < m.cols; ++col)
                        spread[i][m.place(layout, row, col)] = m.values[row + size_t(col) * m.rows];
            }
            EXPECT_EQ(r.call(layout, distant), r.call(layout, close)) << r.name;
            EXPECT_EQ(close.number, distant.number) << r.name;
            EXPECT_EQ(close.pivots, distant.pivots) << r.name;
            for (size_t i = 0; i < close.m.size(); ++i) {
                const operand<T> &a = close.m[i], &b = distant.m[i];
                int different = 0;
                for (vox_int row = 0; row < a.rows; ++row)
                    for (vox_int col = 0; col < a.cols; ++col)
                        different += std::memcmp(&a.memory[a.place(layout, row, col)],
                                                 &spread[i][b.place(layout, row, col)], sizeof(T));
                EXPECT_EQ(different, 0) << r.name << i;
            }
        }
}

// Any number anywhere, in up to three places: the call ends, and its info is one of those that are
// documented. A child is ended when it takes too long.
template <class T>
void spoil_everything() {
    using R = real_of<T>;
    using limits = std::numeric_limits<R>;
    constexpr R values[] = {limits::quiet_NaN(), limits::infinity(),   -limits::infinity(),
                            limits::max(),       limits::denorm_min(), R(-0.0),
                            limits::min()};
    test::lottery lots(1);
    LAPACKE_set_nancheck(0);
    for (const sizes &s : {sizes{1, 1, 1}, {3, 1, 4}, {19, 3, 23}, {70, 3, 75}})
        for (const routine<T> &r : routines<T>(s))
            for (int repeat = 0; repeat < 24; ++repeat) {
                arguments<T> a = fill(r, LAPACK_COL_MAJOR);
                for (unsigned places = 1 + lots.number() % 3; places > 0; --places) {
                    std::vector<T> &m = a.m[lots.number() % a.m.size()].memory;
                    const R re = values[lots.number() % std::size(values)];
                    m[lots.number() % m.size()] = make<T>(re, lots.number() % 2 ? re : R(1));
                }
                const vox_int info = r.call(LAPACK_COL_MAJOR, a);
                if (info < 0 || info > s.tall)
                    std::printf("%s, n = %d: %d\n", r.name.c_str(), s.n, info);
            }
}
CHILD(spoiled) {
    spoil_everything<float>();
    spoil_everything<double>();
    spoil_everything<vox_complex_float>();
    spoil_everything<vox_complex_double>();
}
TEST(LapackTerminates, WhateverTheNumbersAre) {
    std::vector<std::pair<std::string, std::string>> path;
    for (const char *name : {"VOX_CBWR", "VOX_DEBUG_CPU_TYPE"})
        if (const char *value = std::getenv(name))
            path.emplace_back(name, value);
    const test::child_result result = test::run_child(spoiled, path);
    EXPECT_EQ(result.status, 0) << "signal " << result.signal;
    EXPECT_EQ(result.out, "");
}

} // namespace
