// dot_threads_test.cpp - how ?dot divides its work: parts and their order, with memory and without.
#include <cstdio>
#include <gtest/gtest.h>
#include <vector>

#include "blas/blas.hpp"
#include "serv/parallel.hpp"
#include "tests/support/child.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/thread_counts.hpp"
#include "vox/vox.h"

namespace {

using namespace test;

// The documented division, computed here from the kernel alone: parts of nearly equal length, their
// sums added as partial 0 plus the others in four two-wide accumulators.
double in_parts(int64_t parts, int64_t n, const double *x, int64_t incx, const double *y,
                int64_t incy) {
    std::vector<double> partial;
    for (int64_t p = 0; p < parts; ++p) {
        const int64_t q = n / parts, r = n % parts;
        const int64_t length = p < r ? q + 1 : q, start = q * p + std::min(p, r);
        const int64_t first_x = (incx < 0 ? start + length - n : start) * incx;
        const int64_t first_y = (incy < 0 ? start + length - n : start) * incy;
        partial.push_back(vox_blas_xddot(&length, x + first_x, &incx, y + first_y, &incy));
    }
    double lane[4][2] = {};
    for (size_t i = 1; i < partial.size(); ++i)
        lane[(i - 1) % 8 / 2][(i - 1) % 2] += partial[i];
    const double low = (lane[0][0] + lane[1][0]) + (lane[2][0] + lane[3][0]);
    const double high = (lane[0][1] + lane[1][1]) + (lane[2][1] + lane[3][1]);
    return partial[0] + (low + high);
}

class DotThreads : public ::testing::Test {
  protected:
    const thread_counts counts;
};

TEST_F(DotThreads, FormsPartsOfAtLeast2048ElementsAndAddsThemInOrder) {
    const struct {
        int threads, n, parts;
    } cases[] = {{4, 5000, 3},  {4, 4095, 1},    {4, 4096, 2}, {2, 100000, 2},
                 {7, 10007, 5}, {16, 40000, 16}, {3, 6144, 3}, {1, 50000, 1}};
    const std::vector<double> x = random_vector<double>(200000, 1),
                              y = random_vector<double>(200000, 2);
    for (const auto &c : cases)
        for (int incx : {1, -2}) {
            counts.set(c.threads);
            const int64_t n = c.n, one = 1, step = incx;
            EXPECT_EQ(vox_blas_ddot(&n, x.data(), &step, y.data(), &one),
                      in_parts(c.parts, n, x.data(), incx, y.data(), 1))
                << c.threads << " threads, n " << c.n << ", incx " << incx;
        }
}

TEST_F(DotThreads, MoreThan512PartsTakeTheirPartialsFromScratchMemory) {
    const int64_t n = 600 * 2048, one = 1;
    const std::vector<double> x = random_vector<double>(size_t(n), 3);
    counts.set(600);
    const double got = vox_blas_ddot(&n, x.data(), &one, x.data(), &one);
    EXPECT_EQ(got, in_parts(600, n, x.data(), 1, x.data(), 1));
}

TEST_F(DotThreads, AZeroIncrementRunsSerially) {
    const int64_t n = 10000, zero = 0, one = 1;
    const double x = 3;
    const std::vector<double> y(size_t(n), 0.5);
    counts.set(4);
    EXPECT_EQ(vox_blas_ddot(&n, &x, &zero, y.data(), &one), 15000);
}

CHILD(no_memory) {
    i_malloc = [](size_t) -> void * { return nullptr; };
    vox_set_dynamic(0);
    vox_set_num_threads(600);
    const int64_t n = 600 * 2048, one = 1;
    const std::vector<double> ones(size_t(n), 1.0);
    std::printf("%.0f", vox_blas_ddot(&n, ones.data(), &one, ones.data(), &one));
}
TEST(DotWithoutMemory, FallsBackToOneThread) { EXPECT_EQ(run_child(no_memory).out, "1228800"); }

} // namespace
