// level2_test.cpp - the numbers of level 2, on every code path: every routine in every form, over
// sizes past every unroll, all letters, and everything else drawn. Large calls: level2_large_test.
#include <gtest/gtest.h>

#include "tests/blas/draw.hpp"
#include "tests/blas/level2_reference.hpp"

namespace {

using namespace test;

template <class T>
class Level2 : public ::testing::Test {
  protected:
    // One call; sizes of a few random numbers decide everything that is not given.
    void expect_right(const routine<T> &r, vox_int m, vox_int n, int combination,
                      std::optional<plant> p = {}) {
        const drawn_call<T> d = draw(r, m, n, 0, combination, lots);
        ASSERT_EQ(trial<T>(r, d.a, lots.number(), p).fault(d.call), "") << d;
    }
    lottery lots{1};
};
TYPED_TEST_SUITE(Level2, element_types);

TYPED_TEST(Level2, StaysWithinTheErrorBoundsAndItsOperands) {
    for (const routine<TypeParam> &r : routines<TypeParam>())
        for (int combination = 0; combination < combinations(r); ++combination)
            for (int repeat = 0; repeat < 24; repeat += 2 * combinations(r))
                // 0 to 20, 31 to 35, 63 to 67
                for (vox_int n = 0; n < 68; n += n == 20 ? 11 : n == 35 ? 28 : 1)
                    this->expect_right(r, this->lots.pick({0, 1, 2, 3, 5, 17, n, n, n + 1, 40}), n,
                                       combination);
}

TYPED_TEST(Level2, CarriesNansAndInfinitiesWhereTheDefinitionDoes) {
    constexpr double inf = std::numeric_limits<double>::infinity();
    for (const routine<TypeParam> &r : routines<TypeParam>())
        for (vox_int n : {1, 2, 3, 4, 7, 9, 16, 31, 70})
            for (char operand : {'A', 'X', 'Y'})
                for (double value : {std::numeric_limits<double>::quiet_NaN(), inf, -inf})
                    for (int repeat = 0; repeat < 4; ++repeat)
                        this->expect_right(r, this->lots.pick({n, n + 3, 5}), n,
                                           int(this->lots.number() % unsigned(combinations(r))),
                                           plant{operand, value});
}

} // namespace
