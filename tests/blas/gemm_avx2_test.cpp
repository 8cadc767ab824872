// gemm_avx2_test.cpp - the parts of dgemm on avx2: routes, blocks, buffers, packed strips and the kernels
// that multiply them. Compiled for that path, on machines that have it.
#include <gtest/gtest.h>

#include "blas/kernels/blocks.hpp"
#include "tests/blas/exact_gemm.hpp"
#include "tests/serv/memory_support.hpp"

extern "C" {
typedef void copy_routine(vox::index_t, vox::index_t, const double *, vox::index_t, double *);
typedef void in_place_routine(const vox::product<double> *);
typedef int buffers_routine(vox::gemm_info *, vox::index_t);
#define NAMES(name)                                                                                \
    vox_blas_avx2_dgemm_##name##_bn, vox_blas_avx2_dgemm_##name##_b1,                              \
        vox_blas_avx2_dgemm_##name##_b0
copy_routine vox_blas_avx2_dgemm_copyan, vox_blas_avx2_dgemm_copyat, vox_blas_avx2_dgemm_copybn,
    vox_blas_avx2_dgemm_copybt, vox_blas_avx2_dgemm_dcopy_down12_ea,
    vox_blas_avx2_dgemm_dcopy_right12_ea, vox_blas_avx2_dgemm_dcopy_right4_ea,
    vox_blas_avx2_dgemm_dcopy_down4_ea;
in_place_routine NAMES(kernel_nocopy_NN), NAMES(kernel_nocopy_NT), NAMES(kernel_nocopy_TN),
    NAMES(kernel_nocopy_TT), vox_blas_avx2_dgemm_nocopy_anbn_meq6_keq6,
    vox_blas_avx2_dgemm_nocopy_anbn_meq6_keq6_b0;
buffers_routine vox_blas_avx2_dgemm_get_bufs, vox_blas_avx2_dgemm_get_bufs_pack;
void vox_blas_avx2_dgemm_free_bufs(vox::gemm_info *);
void vox_blas_avx2_dgemm_get_info(const vox::gemm_strategy *, vox::index_t m, vox::index_t n,
                                  vox::index_t k, vox::gemm_info *);
void vox_blas_avx2_dgemm_map_thread_to_kernel(int role, vox::gemm_strategy *);
void vox_blas_avx2_dgemm_kernel_0(vox::index_t depth, const double *alpha, const double *a,
                                  const double *b, const double *beta, double *c, vox::index_t ldc);
void vox_blas_avx2_dgemm_kernel_0_b0(vox::index_t depth, const double *alpha, const double *a,
                                     const double *b, double *c, vox::index_t ldc);
}

namespace {

using namespace test;

bool refuse = false;
// The library looks at its hooks when it first allocates.
const bool hooked = (
    i_malloc = [](size_t size) { return refuse ? nullptr : std::malloc(size); }, true);

TEST(DgemmAvx2, ChoosesItsRouteByShape) {
    constexpr route in_place = route::in_place, packed = route::packed,
                    narrow = route::packed_narrow;
    const struct {
        const char *transposes;
        index_t m, n, k;
        int alpha, beta; // zero or not
        route want;
    } cases[] = {
        {"NN", 9, 500, 9, 0, 0, in_place},  {"NN", 12, 500, 12, 0, 0, in_place},
        {"NN", 12, 500, 12, 0, 1, packed},  {"NN", 11, 500, 11, 0, 0, packed},
        {"NN", 12, 500, 11, 0, 0, packed},  {"TT", 100, 12, 128, 1, 1, in_place},
        {"TT", 101, 12, 128, 1, 1, packed}, {"NN", 101, 13, 128, 1, 1, narrow},
        {"TN", 101, 13, 128, 1, 1, narrow}, {"NN", 101, 12, 129, 1, 1, narrow},
        {"NN", 101, 12, 128, 1, 1, packed}, {"NN", 101, 3, 3, 1, 1, narrow},
        {"NN", 101, 4, 3, 1, 1, packed},    {"NN", 101, 3, 4, 1, 1, packed},
        {"NN", 5, 4, 3, 0, 1, packed},      {"NN", 5, 300, 300, 0, 0, packed},
        {"NN", 40, 40, 6, 1, 1, in_place},  {"NN", 71, 500, 129, 1, 0, in_place},
        {"NN", 72, 500, 129, 1, 0, packed}, {"NN", 72, 72, 129, 1, 0, packed},
        {"NT", 72, 71, 129, 1, 0, narrow},  {"TN", 55, 500, 129, 1, 0, in_place},
        {"TN", 56, 500, 129, 1, 0, packed}, {"TT", 56, 56, 129, 1, 0, packed},
        {"TN", 56, 55, 129, 1, 0, narrow},  {"NN", 72, 72, 7, 1, 1, packed},
    };
    for (const auto &c : cases)
        EXPECT_EQ(choose_route<double>(c.transposes[0] == 'T', c.transposes[1] == 'T', c.m, c.n,
                                       c.k, !c.alpha, !c.beta),
                  c.want)
            << c.transposes << ' ' << c.m << " x " << c.n << " x " << c.k << ", alpha " << c.alpha
            << ", beta " << c.beta;
}

TEST(DgemmAvx2, HasAStrategyForEachRole) {
    const int kinds[] = {2, 4, 0, 32, 0, 16, 0};
    for (int role = 0; role < 7; ++role) {
        vox::gemm_strategy s;
        vox_blas_avx2_dgemm_map_thread_to_kernel(role, &s);
        EXPECT_EQ(s.kind, kinds[role]) << role;
        EXPECT_TRUE(s.rows == 12 && s.columns == 4 && s.depth_multiple == 1) << role;
        vox::gemm_info info;
        s.fill(&s, 100, 100, 100, &info);
        EXPECT_EQ(info.mode, role == 1 ? 2 : 3) << role;
    }
}

TEST(DgemmAvx2, DividesIntoBlocks) {
    vox::gemm_strategy s;
    vox_blas_avx2_dgemm_map_thread_to_kernel(2, &s);
    // m, n, k: mb, nb, kb
    const index_t cases[][6] = {{1, 1, 1, 12, 4, 128},
                                {12, 4, 47, 12, 4, 128},
                                {13, 5, 47, 24, 8, 128},
                                {24, 24, 47, 24, 24, 128},
                                {25, 25, 47, 36, 24, 128},
                                {300, 300, 47, 300, 24, 128},
                                {4991, 25, 48, 4992, 28, 128},
                                {4999, 188, 100, 5004, 188, 128},
                                {5000, 189, 128, 5004, 192, 128},
                                {5001, 192, 129, 5004, 192, 129},
                                {90000, 193, 256, 5004, 192, 256},
                                {90000, 9999, 257, 5004, 192, 128},
                                {60, 60, 301, 60, 60, 150},
                                {60, 60, 383, 60, 60, 191},
                                {60, 60, 384, 60, 60, 192},
                                {60, 60, 1000, 60, 60, 192}};
    for (const auto &[m, n, k, mb, nb, kb] : cases) {
        vox::gemm_info info;
        vox_blas_avx2_dgemm_get_info(&s, m, n, k, &info);
        EXPECT_TRUE(info.mb == mb && info.nb == nb && info.kb == kb)
            << m << " x " << n << " x " << k << ": " << info.mb << ' ' << info.nb << ' ' << info.kb;
    }
}

TEST(DgemmAvx2, PutsItsBuffersOnPages) {
    constexpr index_t a = 36 * 150 * 8, b = 2000 * 150 * 8, team = 3;
    constexpr index_t large = 0x200000, small = 4096;
    const struct {
        int mode;
        index_t bytes, kept_bytes, a_page, b_page; // kept: for packed operands; 0: no such block
    } cases[] = {
        {1, a + 0x400680, a + 0x600680, large, 0},
        {2, b + 8960, b + 0x600300, 0, small},
        {3, a + b + 4204928, a + b + 0x600680 + 0x600300, large, small},
        {4, (b + 8960) * team + 0x400000, (b + 8960) * team + 0x400000, 0, large},
        {5, (a + 9856) * team + 0x400000, (a + 9856) * team + 0x400000, large, 0},
    };
    for (bool kept : {false, true})
        for (const auto &c : cases) {
            buffers_routine *const get =
                kept ? vox_blas_avx2_dgemm_get_bufs_pack : vox_blas_avx2_dgemm_get_bufs;
            const index_t bytes = kept ? c.kept_bytes : c.bytes;
            SCOPED_TRACE(testing::Message() << "mode " << c.mode << (kept ? ", kept" : ""));
            vox_free_buffers();
            const held before = held_now();
            vox::gemm_info info{};
            info.mb = 36, info.nb = 2000, info.kb = 150, info.mode = c.mode;
            EXPECT_EQ(get(&info, team), 0);
            EXPECT_EQ(held_now() - before, pooled(size_t(bytes), 128));

            // Every block on its page's offset, as early as can be, its bytes its own.
            const char *at = static_cast<char *>(info.memory);
            const auto check = [&](char *block, index_t page, index_t offset, index_t size) {
                ASSERT_EQ(block != nullptr, page != 0);
                if (!page)
                    return;
                EXPECT_EQ((index_t(block) - offset) % page, 0);
                EXPECT_TRUE(block - offset >= at && block - offset < at + page);
                const index_t blocks = c.mode >= 4 ? team : 1;
                EXPECT_TRUE(blocks == 1 || info.pitch >= size);
                at = block + (blocks - 1) * info.pitch + size;
                EXPECT_LE(at, static_cast<char *>(info.memory) + bytes);
            };
            check(info.b, c.b_page, 768, b);
            check(info.a, c.a_page, 1664, a);
            vox_blas_avx2_dgemm_free_bufs(&info);
            vox_free_buffers();
            EXPECT_EQ(held_now(), before);

            refuse = true;
            EXPECT_EQ(get(&info, team), 0);
            refuse = false;
            EXPECT_TRUE(!info.a && !info.b && !info.memory);
            vox_blas_avx2_dgemm_free_bufs(&info);
            for (int unknown : {0, 6}) {
                info.mode = unknown;
                EXPECT_EQ(get(&info, team), 1);
            }
        }
}

TEST(DgemmAvx2, PacksStripsStepByStep) {
    const struct {
        copy_routine *copy;
        index_t width, strips; // the most at once
        bool down;             // whether a strip's values of a step are stored side by side
    } cases[] = {
        {vox_blas_avx2_dgemm_copyan, 12, 9, true},
        {vox_blas_avx2_dgemm_copyat, 12, 9, false},
        {vox_blas_avx2_dgemm_copybn, 4, 9, false},
        {vox_blas_avx2_dgemm_copybt, 4, 9, true},
        {vox_blas_avx2_dgemm_dcopy_down12_ea, 12, 1, true},
        {vox_blas_avx2_dgemm_dcopy_right12_ea, 12, 1, false},
        {vox_blas_avx2_dgemm_dcopy_down4_ea, 4, 1, true},
        {vox_blas_avx2_dgemm_dcopy_right4_ea, 4, 1, false},
    };
    for (const auto &[copy, width, strips, down] : cases)
        for (index_t n = 1; n <= width * strips; ++n)
            for (index_t depth : {1, 2, 3, 4, 5, 11, 16}) {
                const index_t ld = (down ? n : depth) + 2;
                const std::vector<double> x =
                    random_vector<double>(size_t(ld * (down ? depth : n)), 1);
                const index_t whole = (n + width - 1) / width * width;
                std::vector<double> got(size_t(whole * depth) + 1, 9), want(got);
                for (index_t i = 0; i < whole; ++i)
                    for (index_t p = 0; p < depth; ++p)
                        want[size_t((i / width * depth + p) * width + i % width)] =
                            i < n ? x[size_t(down ? i + p * ld : p + i * ld)] : 0;
                copy(n, depth, x.data(), ld, got.data());
                ASSERT_EQ(got, want) << "strips of " << width << (down ? ", down, " : ", right, ")
                                     << n << " x " << depth;
            }
}

TEST(DgemmAvx2, MultipliesPackedStrips) {
    for (index_t depth : {0, 1, 2, 3, 4, 5, 7, 8, 9, 15, 16, 33, 192, 256})
        for (double beta : {0., 1., -2.}) {
            const exact_gemm<double> g("NN", 12, 4, depth, 3, beta, 5);
            std::vector<double> a(size_t(12 * depth) + 1), b(size_t(4 * depth) + 1);
            vox_blas_avx2_dgemm_copyan(12, depth, g.a.data(), g.lda, a.data());
            vox_blas_avx2_dgemm_copybn(4, depth, g.b.data(), g.ldb, b.data());
            const auto any = [&](double *c) {
                vox_blas_avx2_dgemm_kernel_0(depth, &g.alpha, a.data(), b.data(), &beta, c, g.ldc);
            };
            const auto b0 = [&](double *c) {
                vox_blas_avx2_dgemm_kernel_0_b0(depth, &g.alpha, a.data(), b.data(), c, g.ldc);
            };
            EXPECT_EQ(g.fault(any) + (beta == 0 ? g.fault(b0) : ""), "");
        }
}

TEST(DgemmAvx2, MultipliesInPlace) {
    const struct {
        const char *transposes;
        bool six; // 6 x 6 x 6 alone
        in_place_routine *by_beta[3];
    } cases[] = {
        {"NN", false, {NAMES(kernel_nocopy_NN)}},
        {"NT", false, {NAMES(kernel_nocopy_NT)}},
        {"TN", false, {NAMES(kernel_nocopy_TN)}},
        {"TT", false, {NAMES(kernel_nocopy_TT)}},
        {"NN",
         true,
         {vox_blas_avx2_dgemm_nocopy_anbn_meq6_keq6, vox_blas_avx2_dgemm_nocopy_anbn_meq6_keq6,
          vox_blas_avx2_dgemm_nocopy_anbn_meq6_keq6_b0}},
    };
    const index_t shapes[][3] = {{6, 6, 6},    {1, 1, 1},  {2, 13, 1},   {3, 1, 9},
                                 {5, 3, 7},    {9, 8, 9},  {11, 2, 171}, {12, 4, 171},
                                 {13, 5, 200}, {23, 9, 2}, {25, 13, 6},  {71, 6, 200}};
    for (const auto &c : cases)
        for (int i = 0; i < 3; ++i)
            for (const auto &[m, n, k] : shapes) {
                if (c.six && m != 6)
                    continue;
                const double beta[] = {-2, 1, 0};
                const exact_gemm<double> g(c.transposes, m, n, k, 3, beta[i], m % 2);
                EXPECT_EQ(g.fault([&](double *to) {
                    const vox::product<double> job = g.job(to);
                    c.by_beta[i](&job);
                }),
                          "");
            }
}

} // namespace
