// level3_memory_test.cpp - level 3 without memory: every allocation of a call failing in turn, and all
// of them, leave its results right.
#include <gtest/gtest.h>

#include "tests/blas/level3_reference.hpp"
#include "tests/support/failing_memory.hpp"
#include "tests/support/thread_counts.hpp"
#include "vox/service.h"

namespace {

using namespace test;

template <class T>
class Level3Memory : public ::testing::Test {
  protected:
    void expect_right(const routine<T> &r, vox_int m, vox_int n, vox_int k) {
        drawn_call<T> d = draw(r, m, n, k, lots);
        d.a.alpha = vox::one<T>;
        const trial<T> t(r, d.a, lots.number());
        const auto run = [&](int failing) {
            vox_free_buffers();
            memory_requests = 0;
            refused_request = failing;
            EXPECT_EQ(t.fault(d.call), "") << d << ", without allocation " << failing;
            return int(memory_requests);
        };
        const int wanted = run(0);
        for (int failing = 1; failing <= wanted; ++failing)
            run(failing);
        run(every_request);
        refused_request = 0;
        most = std::max(most, wanted);
    }
    const thread_counts counts;
    lottery lots{1};
    int most = 0;
};
TYPED_TEST_SUITE(Level3Memory, element_types);

TYPED_TEST(Level3Memory, ResultsAreRightWhicheverAllocationFails) {
    for (int threads : {1, 3}) {
        this->counts.set(threads);
        for (const routine<TypeParam> &r : level3_routines<TypeParam>())
            for (const auto &[m, n, k] : {std::tuple(101, 103, 140), {131, 33, 300}, {33, 131, 64}})
                this->expect_right(r, m, n, k);
        for (const auto &[m, n, k] : {std::tuple(131, 9, 1), {1, 301, 300}, {301, 1, 300}})
            for (int repeat = 0; repeat < 4; ++repeat)
                this->expect_right(routine_named<TypeParam>("gemm"), m, n, k);
    }
    EXPECT_GT(this->most, 0) << "no call needs memory";
}

} // namespace
