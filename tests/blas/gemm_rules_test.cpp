// gemm_rules_test.cpp - what a general product decides before it multiplies: threads, shapes that are
// less than a product of matrices, stripes, a divided depth.
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string_view>

#include "blas/drivers/gemm_threads.hpp"
#include "tests/blas/exact_gemm.hpp"
#include "tests/support/child.hpp"
#include "tests/support/failing_memory.hpp"
#include "tests/support/thread_counts.hpp"

namespace {

using namespace test;

// How many threads, and whether it asked how many are allowed.
std::pair<int, bool> choose(char type, int path, int allowed, index_t m, index_t n, index_t k) {
    constexpr vox::gemm_weights weights[] = {
        vox::gemm_weights_of<float>, vox::gemm_weights_of<double>,
        vox::gemm_weights_of<vox_complex_float>, vox::gemm_weights_of<vox_complex_double>};
    bool asked = false;
    const auto answer = [&] { return asked = true, allowed; };
    const size_t at = std::string_view("sdcz").find(type);
    const int threads = vox::gemm_threads(path, weights[at], m, n, k, answer);
    return {threads, asked};
}

// Products m x 4 x 4: one thread, then from so many rows on so many threads.
TEST(GemmThreads, StepUpWithTheWork) {
    const struct {
        char type;
        int path, allowed;
        const char *steps; // rows and threads
    } cases[] = {
        {'s', 5, 1, "1000000000 1"},
        {'s', 5, 2, "6001 2"},
        {'s', 0, 3, "4501 3"},
        {'s', 2, 4, "4001 4"},
        {'s', 3, 5, "8126 5"},
        {'s', 4, 8, "8001 4 8401 6 9143 8"},
        {'s', 5, 32, "8001 4 8401 6 9143 8 10910 12 12801 16 14737 20 16696 24 20646 32"},
        {'s', 5, 64,
         "8001 4 8401 6 9143 8 10910 12 12801 16 14737 20 16696 24 20646 32 24616 40 "
         "28596 48 32582 56 36572 64"},
        {'d', 5, 4, "2001 4"},
        {'d', 5, 8, "4001 4 4201 6 4572 8"},
        {'c', 5, 4, "501 4"},
        {'c', 5, 8, "1001 4 1051 6 1143 8"},
        {'z', 5, 4, "251 4"},
        {'z', 5, 8, "501 4 526 6 572 8"},
        {'s', 7, 4, "8001 4"},
        {'s', 7, 8, "16001 4 16801 6 18286 8"},
        {'d', 7, 1, "1000000000 1"},
        {'d', 7, 4, "4001 4"},
        {'d', 7, 16, "8001 4 8401 6 9143 8 10910 12 12801 16"},
        {'c', 7, 8, "2001 4 2101 6 2286 8"},
        {'z', 7, 8, "1001 4 1051 6 1143 8"},
        {'d', 6, 1, "1000000000 1"},
        {'d', 6, 2, "1601 2"},
        {'d', 6, 4, "1601 2 1734 4"},
        {'d', 6, 5, "1576 3 1938 5"},
        {'d', 6, 16, "1601 2 1734 4 2161 6 2629 8 3601 12 4587 16"},
        {'d', 6, 64,
         "1601 2 1734 4 2161 6 2629 8 3601 12 4587 16 5579 20 6574 24 8568 32 10565 40 "
         "12562 48 14561 56 16559 64"},
        {'s', 6, 8, "3201 2 3467 4 4321 6 5258 8"},
        {'c', 6, 8, "401 2 434 4 541 6 658 8"},
        {'z', 6, 8, "201 2 217 4 271 6 329 8"},
    };
    for (const auto &c : cases) {
        std::istringstream steps(c.steps);
        index_t rows;
        for (int before = 1, threads; steps >> rows >> threads; before = threads)
            for (int below : {1, 0})
                EXPECT_EQ(choose(c.type, c.path, c.allowed, rows - below, 4, 4).first,
                          below ? before : threads)
                    << c.type << ", path " << c.path << ", allowed " << c.allowed << ", rows "
                    << rows - below;
    }
}

// Small products do not even ask how many threads there are; deep ones on avx512_zel take them all.
TEST(GemmThreads, LookAtTheShape) {
    const struct {
        char type;
        int path, allowed;
        index_t m, n, k;
        std::pair<int, bool> want;
    } cases[] = {
        {'s', 5, 8, 2999, 4, 4, {1, false}},   {'s', 5, 8, 3000, 4, 4, {1, true}},
        {'d', 5, 4, 1499, 4, 4, {1, false}},   {'d', 0, 4, 1500, 4, 4, {1, true}},
        {'c', 5, 4, 374, 4, 4, {1, false}},    {'z', 5, 4, 187, 4, 4, {1, false}},
        {'z', 4, 4, 188, 4, 4, {1, true}},     {'d', 7, 4, 2999, 4, 4, {1, false}},
        {'d', 7, 4, 3000, 4, 4, {1, true}},    {'d', 5, 8, 10, 10, 200, {1, false}},
        {'d', 6, 8, 199, 64, 1, {1, false}},   {'d', 6, 8, 201, 64, 1, {1, true}},
        {'d', 6, 8, 32, 60, 32, {1, false}},   {'d', 6, 8, 33, 60, 32, {8, true}},
        {'d', 6, 8, 32, 61, 32, {8, true}},    {'d', 6, 8, 32, 60, 33, {8, true}},
        {'d', 6, 8, 128, 112, 16, {1, false}}, {'d', 6, 8, 129, 112, 16, {8, true}},
        {'d', 6, 8, 128, 113, 16, {8, true}},  {'d', 6, 8, 128, 112, 17, {8, true}},
        {'z', 6, 8, 1, 1, 32, {1, false}},     {'d', 6, 8, 1, 1, 33, {8, true}},
        {'d', 6, 8, 10, 10, 39, {1, false}},   {'d', 6, 8, 10, 10, 40, {8, true}},
        {'d', 6, 8, 9, 10, 39, {1, false}},    {'d', 6, 1, 10, 10, 40, {1, true}},
        {'d', 6, 8, 16, 16, 63, {1, true}},    {'d', 6, 8, 16, 16, 64, {8, true}},
        {'d', 6, 3, 10, 16, 64, {3, true}},    {'d', 6, 8, 20, 20, 80, {4, true}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(choose(c.type, c.path, c.allowed, c.m, c.n, c.k), c.want)
            << c.type << ", path " << c.path << ": " << c.m << " x " << c.n << " x " << c.k;
}

TEST(GemmThreads, AreOneForWhatEveryPathRunsSerially) {
    int serial = 0;
    for (int m = 1; m < 100; m += 3)
        for (int n = 1; n < 100; n += 3)
            for (int k = 1; k < 300; k += 7)
                if (vox::surely_serial<double>(m, n, k))
                    for (int path : {5, 6, 7})
                        for (int allowed : {4, 64}) {
                            ++serial;
                            ASSERT_EQ(choose('d', path, allowed, m, n, k).first, 1)
                                << m << ' ' << n << ' ' << k;
                        }
    EXPECT_GT(serial, 0);
}

template <class T>
class GemmShapes : public ::testing::Test {
  protected:
    static constexpr T some = vox::make<T>(2, -1), zero{};
    void expect_right(const char *transposes, index_t m, index_t n, index_t k) const {
        const struct {
            T alpha, beta;
            index_t pad;
        } cases[] = {{some, zero, 0},
                     {some, vox::one<T>, 3},
                     {some, some, 0},
                     {zero, some, 3},
                     {zero, zero, 0}};
        for (const auto &[alpha, beta, pad] : cases) {
            const exact_gemm<T> g(transposes, m, n, k, alpha, beta, pad);
            for (int threads : {1, 3}) {
                counts.set(threads);
                EXPECT_EQ(g.driver_fault(), "") << threads << " threads";
            }
        }
    }
    const thread_counts counts;
};
TYPED_TEST_SUITE(GemmShapes, element_types);

constexpr const char *all_transposes[] = {"NN", "NT", "NC", "TN", "TT", "TC", "CN", "CT", "CC"};

TYPED_TEST(GemmShapes, ThatAreLessThanProductsOfMatrices) {
    const index_t shapes[][3] = {
        {0, 5, 3},     {5, 0, 3},     {0, 5, 0},    {5, 0, 0},      {5, 3, 0},     {1, 3, 0},
        {1, 5, 7},     {5, 1, 7},     {1, 1, 9},    {1, 1, 1},      {6, 7, 1},     {1, 7, 1},
        {7, 1, 1},     {64, 5, 1},    {65, 5, 1},   {66, 5, 1},     {7, 5, 256},   {8, 5, 256},
        {300, 400, 1}, {301, 2, 256}, {301, 3, 64}, {300, 15, 256}, {300, 16, 256}};
    for (const auto &[m, n, k] : shapes)
        for (const char *transposes : all_transposes)
            this->expect_right(transposes, m, n, k);
}

TYPED_TEST(GemmShapes, CopyALongStridedColumnIfThereIsMemory) {
    const struct {
        const char *transposes;
        index_t m;
        int requests;
    } cases[] = {{"TN", 64, 0}, {"TN", 65, 1}, {"TT", 66, 1}, {"NN", 66, 0}, {"NT", 1000, 0}};
    this->counts.set(1);
    for (const auto &c : cases)
        for (bool without : {false, true}) {
            const exact_gemm<TypeParam> g(c.transposes, c.m, 5, 1, this->some, this->some, 2);
            vox_free_buffers();
            memory_requests = 0;
            refused_request = without ? every_request : 0;
            EXPECT_EQ(g.driver_fault(), "");
            refused_request = 0;
            EXPECT_EQ(memory_requests, c.requests) << c.transposes << ' ' << c.m;
        }
}

TYPED_TEST(GemmShapes, InStripes) {
    for (int threads : {1, 2, 3, 4, 7})
        for (int stripes : {1, 2, 3, 4, 5}) {
            this->counts.set(threads);
            vox_set_num_stripes(stripes);
            for (const auto &[m, n, k] :
                 {std::tuple(37, 29, 5), {8, 9, 3}, {5, 200, 9}, {24, 16, 40}, {100, 17, 0}})
                for (const char *transposes : all_transposes)
                    EXPECT_EQ(exact_gemm<TypeParam>(transposes, m, n, k, this->some, this->some, 1)
                                  .driver_fault(),
                              "")
                        << threads << " threads, " << stripes << " stripes";
        }
    vox_set_num_stripes(0);
}

// More threads than tiles, and so deep that threads divide the depth.
TYPED_TEST(GemmShapes, OfAFewTiles) {
    for (index_t k : {8000, 199999}) {
        const exact_gemm<TypeParam> g("CN", 16, 16, k, this->some, this->some);
        for (int threads : {2, 4, 7, 8}) {
            this->counts.set(threads);
            EXPECT_EQ(g.driver_fault(), "") << threads << " threads";
        }
    }
}

// Where results are to be reproducible, the depth stays whole.
CHILD(deep) {
    const index_t k = 199999;
    const std::vector<double> a = random_vector<double>(16 * k, 1),
                              b = random_vector<double>(16 * k, 2);
    const auto product = [&](int threads) {
        const thread_counts counts;
        counts.set(threads);
        std::vector<double> c(16 * 16);
        vox::gemm<double>('N', 'N', 16, 16, k, 1, a.data(), 16, b.data(), k, 0, c.data(), 16);
        return c;
    };
    for (int threads : {2, 3, 4})
        std::printf("%d ",
                    std::memcmp(product(1).data(), product(threads).data(), 16 * 16 * 8) == 0);
}
TEST(ReproducibleGemm, DoesNotDependOnThreadsWhereItIsAFewTiles) {
    for (const char *branch : {"COMPATIBLE", "SSE4_2", "AVX", "AVX2", "AVX512", "AUTO"})
        EXPECT_EQ(run_child(deep, {{"VOX_CBWR", branch}}).out, "1 1 1 ") << branch;
}

} // namespace
