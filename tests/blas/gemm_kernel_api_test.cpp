// gemm_kernel_api_test.cpp - a program with its own vox_blas_get_kernel_api_version: version 2 hands
// products, but no vectors, to vox_blas_?gemm_omp_driver_v1, whatever their size. Linked with
// --wrap=vox_blas_dgemm_omp_driver_v1.
#include <gtest/gtest.h>

#include "blas/kernel_api.hpp"
#include "tests/blas/exact_gemm.hpp"
#include "tests/support/thread_counts.hpp"

static int version, handed_over;
int vox_blas_get_kernel_api_version() { return version; }
extern "C" void __real_vox_blas_dgemm_omp_driver_v1(const vox::product<double> *job);
extern "C" void __wrap_vox_blas_dgemm_omp_driver_v1(const vox::product<double> *job) {
    ++handed_over;
    __real_vox_blas_dgemm_omp_driver_v1(job);
}

namespace {

using namespace test;

TEST(KernelApi, Version2HandsProductsOver) {
    const struct {
        index_t m, n, k;
        int handed_over;
    } cases[] = {{2, 3, 4, 1}, {200, 100, 50, 1}, {100, 200, 400, 1}, {5, 6, 0, 1},
                 {1, 6, 7, 0}, {6, 1, 7, 0},      {6, 7, 1, 0}};
    const thread_counts counts;
    for (int threads : {1, 2, 5})
        for (const auto &c : cases)
            for (const char *transposes : {"NN", "NT", "TN", "TT"})
                for (double beta : {0., -2.})
                    for (int v : {1, 2}) {
                        counts.set(threads);
                        version = v;
                        handed_over = 0;
                        const exact_gemm<double> g(transposes, c.m, c.n, c.k, 3, beta, 1);
                        EXPECT_EQ(g.driver_fault(), "") << threads << " threads, version " << v;
                        EXPECT_EQ(handed_over, v == 2 ? c.handed_over : 0)
                            << c.m << " x " << c.n << " x " << c.k;
                    }
}

} // namespace
