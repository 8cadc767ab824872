// kernel_sets_test.cpp - which of the ten kernel sets synthetic processors and settings get.
#include "serv/kernel_sets.hpp"

#include <gtest/gtest.h>
#include <string>

#include "tests/support/machines.hpp"

namespace {

using namespace test;
using vox::kernel_set;

int index(const vox::cpu_snapshot &s, vox::cpu_settings settings = {}) {
    const bool ours = std::string(vox::vendor_of(s).text) == vox::supported_vendor;
    const vox::cpu_facts facts = {vox::feature_word(s), vox::e1_probe(s), ours};
    return vox::kernel_index_of(facts, settings, vox::choose_cpu(facts, settings));
}

TEST(KernelSets, FollowTheProcessorWhoeverMadeIt) {
    vox::cpu_snapshot sse3_only = machine(sse2), sse41_only = machine(ssse3);
    sse3_only.leaf1.ecx |= 1;
    sse41_only.leaf1.ecx |= 1 | 1 << 19;
    for (const char *vendor : {vox::supported_vendor, "AuthenticAMD"}) {
        SCOPED_TRACE(vendor);
        const auto of = [&](tier t) { return index(machine(t, xcr0_zmm, vendor)); };
        EXPECT_EQ(of(sse2), 0);
        EXPECT_EQ(of(ssse3), 3);
        EXPECT_EQ(of(sse42), 5);
        EXPECT_EQ(of(avx), 6);
        EXPECT_EQ(of(avx2), 7);
        EXPECT_EQ(of(zel), 8);
        EXPECT_EQ(of(zel_e1), 8);
        EXPECT_EQ(of(avx512), 9);
    }
    EXPECT_EQ(index(sse3_only), 2);
    EXPECT_EQ(index(sse41_only), 4);
}

TEST(KernelSets, FollowSettings) {
    const vox::cpu_snapshot ours = machine(avx512),
                            other = machine(avx512, xcr0_zmm, "AuthenticAMD");
    const int by_branch[][2] = {
        {VOX_CBWR_AUTO, 9},  {VOX_CBWR_COMPATIBLE, 1}, {VOX_CBWR_SSE2, 1},
        {VOX_CBWR_SSSE3, 3}, {VOX_CBWR_SSE4_1, 4},     {VOX_CBWR_SSE4_2, 5},
        {VOX_CBWR_AVX, 6},   {VOX_CBWR_AVX2, 7},       {VOX_CBWR_AVX512, 9}};
    for (const auto &[branch, expected] : by_branch) {
        vox::cpu_settings settings;
        settings.branch = branch;
        EXPECT_EQ(index(ours, settings), expected) << branch;
        EXPECT_EQ(index(other, settings), expected) << branch;
    }
    vox::cpu_settings reproducible;
    reproducible.branch = VOX_CBWR_AUTO;
    EXPECT_EQ(index(machine(sse2), reproducible), 1);

    const int by_type[][2] = {{0, 0}, {2, 3}, {3, 5}, {4, 6}, {5, 7}, {6, 8}, {7, 9}, {8, 8}};
    for (const auto &[type, expected] : by_type) {
        vox::cpu_settings settings;
        settings.debug_given = true;
        settings.debug_type = type;
        EXPECT_EQ(index(other, settings), expected) << type;
    }
    vox::cpu_settings held; // the ceiling holds where the vendor test does not
    held.tiers = vox::tiers_of_level(VOX_ENABLE_AVX);
    EXPECT_EQ(index(ours, held), 6);
    EXPECT_EQ(index(other, held), 6);
}

TEST(KernelSets, TenIndicesNineSets) {
    const kernel_set sets[] = {kernel_set::def,   kernel_set::cnr_def, kernel_set::def,
                               kernel_set::ssse3, kernel_set::sse41,   kernel_set::sse42,
                               kernel_set::avx,   kernel_set::avx2,    kernel_set::avx512_zel,
                               kernel_set::avx512};
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(vox::kernel_set_of(i), sets[i]) << i;
}

} // namespace
