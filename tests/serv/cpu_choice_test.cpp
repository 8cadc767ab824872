// cpu_choice_test.cpp - features, ladder, ceiling, branches, debug type and kernel sets on synthetic
// processors.
#include "serv/cpu_choice.hpp"

#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "serv/cpu_model.hpp"
#include "serv/kernel_sets.hpp"
#include "tests/support/machines.hpp"

namespace {

using namespace test;
using vox::cpu_reason;

vox::cpu_facts facts(const vox::cpu_snapshot &s, const char *opened = "") {
    const vox::vendor_name vendor = vox::vendor_of(s);
    return {vox::feature_word(s), vox::e1_probe(s),
            std::string(vendor.text) == vox::supported_vendor ||
                vox::vendor_opened(opened, vendor)};
}

vox::cpu_choice choose(const vox::cpu_snapshot &s, const vox::cpu_settings &settings = {}) {
    return vox::choose_cpu(facts(s), settings);
}

int kernels(const vox::cpu_snapshot &s, const vox::cpu_settings &settings = {}) {
    return vox::kernel_index_of(facts(s), settings, choose(s, settings));
}

vox::cpu_snapshot other_makers(tier t) { return machine(t, xcr0_zmm, "AuthenticAMD"); }

vox::cpu_settings with_branch(int branch) { return {false, -1, branch, {}}; }
vox::cpu_settings with_debug_type(int type) { return {true, type, VOX_CBWR_OFF, {}}; }
vox::cpu_settings with_ceiling(int level) {
    return {false, -1, VOX_CBWR_OFF, vox::tiers_of_level(level)};
}

// Which bit of the feature word each CPUID bit is, register by register, and the XCR0 bits it
// needs.
TEST(FeatureWord, EveryBitComesFromItsCpuidBitAndItsState) {
    using r = vox::cpuid_registers;
    using s = vox::cpu_snapshot;
    const struct {
        r s::*leaf;
        uint32_t r::*reg;
        uint64_t state;
        std::vector<std::pair<int, int>> bits; // of the register, of the word
    } groups[] = {
        {&s::leaf1, &r::edx, 0, {{0, 1}, {15, 2}, {23, 3}, {24, 4}, {25, 5}, {26, 6}}},
        {&s::leaf1,
         &r::ecx,
         0,
         {{0, 7}, {9, 8}, {19, 9}, {20, 10}, {22, 11}, {23, 12}, {1, 13}, {25, 14}, {30, 17}}},
        {&s::leaf1, &r::ecx, 6, {{29, 15}, {28, 16}, {12, 18}}},
        {&s::extended1, &r::ecx, 0, {{5, 20}}},
        {&s::leaf7, &r::ebx, 0, {{4, 21}, {11, 22}, {19, 28}, {18, 29}, {29, 35}}},
        {&s::leaf7, &r::ebx, 6, {{5, 23}}},
        {&s::leaf7, &r::ebx, 0x18, {{14, 36}}},
        {&s::leaf7,
         &r::ebx,
         0xE6,
         {{17, 24}, {16, 27}, {21, 30}, {27, 32}, {26, 33}, {28, 34}, {30, 37}, {31, 38}}},
        {&s::leaf7, &r::ecx, 0xE6, {{1, 39}, {14, 42}}},
        {&s::leaf7, &r::edx, 0xE6, {{3, 40}, {2, 41}}},
    };
    for (const auto &g : groups)
        for (const auto &[cpuid, word] : g.bits) {
            SCOPED_TRACE(word);
            s cpu{};
            cpu.leaf0.eax = 7;
            (cpu.*g.leaf).*g.reg |= 1u << cpuid;
            const uint64_t set = uint64_t(1) << word | 1;
            EXPECT_EQ(vox::feature_word(cpu), g.state ? 1 : set);
            cpu.leaf1.ecx |= 1u << 27;
            cpu.xcr0 = 0xFF;
            EXPECT_EQ(vox::feature_word(cpu), set);
            for (int state = 0; state < 8; ++state) {
                cpu.xcr0 = 0xFF & ~(1u << state);
                EXPECT_EQ(vox::feature_word(cpu), g.state >> state & 1 ? 1 : set)
                    << "XCR0 bit " << state;
            }
        }
}

TEST(FeatureWord, BmiNeedsBothHalvesAndSmallCoresAreThreeModels) {
    vox::cpu_snapshot s{};
    s.leaf7.ebx = 1u << 3;
    EXPECT_EQ(vox::feature_word(s), 1u);
    s.leaf7.ebx |= 1u << 8;
    EXPECT_EQ(vox::feature_word(s), 1u | 1u << 19);

    auto small = [](uint32_t signature) {
        vox::cpu_snapshot cpu{};
        cpu.leaf1.eax = signature;
        return vox::feature_word(cpu) >> 31 & 1;
    };
    for (uint32_t signature : {0x106C0u, 0x20660u, 0x20670u})
        EXPECT_TRUE(small(signature)) << signature;
    for (uint32_t signature : {0x006C0u, 0x106D0u, 0x106F0u, 0x10FC0u})
        EXPECT_FALSE(small(signature)) << signature;
}

TEST(TierLadder, TakesTheHighestTierThatProcessorAndSystemHave) {
    // Processor type, branch that AUTO stands for, kernels, microarchitecture.
    const std::pair<tier, std::array<int, 4>> tiers[] = {
        {sse2, {0, 4, 0, VOX_UARCH_BASELINE}}, {ssse3, {2, 6, 3, VOX_UARCH_SSSE3}},
        {sse42, {3, 8, 5, VOX_UARCH_SSE42}},   {avx, {4, 9, 6, VOX_UARCH_AVX}},
        {avx2, {5, 10, 7, VOX_UARCH_AVX2}},    {avx512, {7, 12, 9, VOX_UARCH_AVX512}},
        {zel, {6, 11, 8, VOX_UARCH_ZEL}},      {zel_e1, {8, 13, 8, VOX_UARCH_ZEL_E1}}};
    for (const auto &[t, expected] : tiers) {
        const vox::cpu_snapshot cpu = machine(t);
        EXPECT_EQ((std::array{choose(cpu).type, vox::auto_branch(facts(cpu), {}), kernels(cpu),
                              vox::microarchitecture_of(cpu)}),
                  expected)
            << t;
        // Another maker's gets the kernels all the same.
        EXPECT_EQ(choose(other_makers(t)).type, 0) << t;
        EXPECT_EQ(vox::auto_branch(facts(other_makers(t)), {}), 3) << t;
        EXPECT_EQ(kernels(other_makers(t)), expected[2]) << t;
    }
    EXPECT_EQ(choose(machine(bare, 0, "AuthenticAMD")).type, 0);
    EXPECT_EQ(choose(machine(avx512, xcr0_ymm)).type, 5); // what the system does not save is off
    EXPECT_EQ(choose(machine(avx512, xcr0_sse)).type, 3);
    EXPECT_EQ(choose(machine(avx512, 0xC7)).type, 5); // opmasks
    vox::cpu_snapshot sse3_only = machine(sse2), sse41_only = machine(ssse3);
    sse3_only.leaf1.ecx |= 1;
    sse41_only.leaf1.ecx |= 1 | 1 << 19;
    EXPECT_EQ(kernels(sse3_only), 2);
    EXPECT_EQ(kernels(sse41_only), 4);
    // The sets of the others are asked for by name in the tests that run on each set.
    EXPECT_EQ(vox::kernel_set_of(1), vox::kernel_set::cnr_def);
    EXPECT_EQ(vox::kernel_set_of(2), vox::kernel_set::def);

    vox::cpu_snapshot hidden = machine(avx512); // a hypervisor that hides one AVX2 companion
    hidden.extended1.ecx = 0;
    EXPECT_EQ(choose(hidden).type, 4);
    hidden = machine(avx512);
    hidden.leaf1.ecx &= ~(1u << 27); // no OSXSAVE: XCR0 cannot be trusted
    EXPECT_EQ(choose(hidden).type, 3);
}

TEST(TierLadder, BelowTheMinimumIsFatal) {
    const vox::cpu_choice choice = choose(machine(bare));
    EXPECT_EQ(choice.message, 1210);
    EXPECT_EQ(choice.reason, cpu_reason::below_minimum);
}

TEST(Vendor, TheTestOpensForAnyOrForTheExactVendor) {
    const vox::cpu_snapshot other = other_makers(avx2);
    const std::pair<const char *, int> cases[] = {
        {"", 0},    {"ANY", 5},          {"any", 0},           {"ANY ", 0},
        {"AMD", 0}, {"AuthenticAMD", 5}, {"AuthenticAMD ", 0}, {"GenuineQuarn", 0}};
    for (const auto &[value, type] : cases)
        EXPECT_EQ(vox::choose_cpu(facts(other, value), {}).type, type) << value;
    EXPECT_EQ(choose(other).reason, cpu_reason::vendor);
    EXPECT_EQ(vox::choose_cpu(facts(other, "ANY"), {}).reason, cpu_reason::features);
}

TEST(Ceiling, EveryLevelOnEveryProcessor) {
    const tier tiers[] = {sse2, ssse3, sse42, avx, avx2, avx512, zel, zel_e1};
    // Type by level (rows "SSE4_2", "AVX", "AVX2", "AVX512_ZEL", "AVX512", "AVX512_ZEL_E1") and by
    // processor; -1: the level is rejected, the processor keeps its own tier.
    const int expected[6][8] = {
        {-1, -1, 3, 3, 3, 3, 3, 3},      {-1, -1, -1, 4, 4, 4, 4, 4},
        {-1, -1, -1, -1, 5, 5, 5, 5},    {-1, -1, -1, -1, -1, -1, 6, 6},
        {-1, -1, -1, -1, -1, 7, -1, -1}, {-1, -1, -1, -1, -1, -1, -1, 8},
    };
    for (int level = 0; level < 6; ++level)
        for (int i = 0; i < 8; ++i) {
            const vox::cpu_facts cpu = facts(machine(tiers[i]));
            ASSERT_EQ(vox::level_supported(cpu, level), expected[level][i] >= 0)
                << level << ' ' << i;
            if (expected[level][i] >= 0) {
                EXPECT_EQ(vox::choose_cpu(cpu, with_ceiling(level)).type, expected[level][i])
                    << level << ' ' << i;
            }
        }
    for (int level : {-1, 6, 100})
        EXPECT_FALSE(vox::level_supported(facts(machine(zel_e1)), level));

    const auto reason = [](int level) {
        return choose(machine(avx512), with_ceiling(level)).reason;
    };
    EXPECT_EQ(reason(VOX_ENABLE_SSE4_2), cpu_reason::ceiling);
    EXPECT_EQ(reason(VOX_ENABLE_AVX512), cpu_reason::features);
    // It holds where the vendor test does not.
    for (const vox::cpu_snapshot &cpu : {machine(avx512), other_makers(avx512)})
        EXPECT_EQ(kernels(cpu, with_ceiling(VOX_ENABLE_AVX)), 6);
}

TEST(Ceiling, OnlyExactWordsCount) {
    const std::pair<const char *, int> words[] = {
        {"SSE4_2", 0}, {"AVX", 1},           {"AVX2", 2},  {"AVX512_ZEL", 3},
        {"AVX512", 4}, {"AVX512_ZEL_E1", 5}, {"", -1},     {"AVX2 ", -1},
        {" AVX2", -1}, {"avx2", -1},         {"AVX3", -1}, {"AVX51", -1}};
    for (const auto &[word, level] : words)
        EXPECT_EQ(vox::parse_level(word), level) << word;
}

TEST(Branch, EveryWordAndItsType) {
    const struct {
        std::string word;
        int branch, type, kernels;
    } rows[] = {{"COMPATIBLE", 3, 0, 1}, {"SSE2", 4, 0, 1},          {"SSE3", 4, 0, 1},
                {"SSSE3", 6, 2, 3},      {"SSE4_1", 7, 2, 4},        {"SSE4_2", 8, 3, 5},
                {"AVX", 9, 4, 6},        {"AVX2", 10, 5, 7},         {"AVX512_ZEL", 11, 6, 8},
                {"AVX512", 12, 7, 9},    {"AVX512_ZEL_E1", 13, 8, 8}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.word);
        for (const char *front : {"", "BRANCH=", "x,BRANCH="})
            EXPECT_EQ(vox::parse_branch((front + row.word).c_str()), row.branch);
        for (const char *tail : {" ", ",", "x"}) // the word must end the value
            EXPECT_EQ(vox::parse_branch((row.word + tail).c_str()), 0);
        // Forced whatever the vendor, on a processor that has what the branch needs.
        const tier t = row.branch == 12 ? avx512 : zel_e1;
        const vox::cpu_choice choice = choose(other_makers(t), with_branch(row.branch));
        EXPECT_EQ(choice.type, row.type);
        EXPECT_EQ(choice.message, 0);
        EXPECT_EQ(vox::branch_word(row.branch), row.word == "SSE3" ? "SSE2" : row.word);
        for (const vox::cpu_snapshot &cpu : {machine(t), other_makers(t)})
            EXPECT_EQ(kernels(cpu, with_branch(row.branch)), row.kernels);
    }
    EXPECT_EQ(kernels(machine(avx512), with_branch(VOX_CBWR_AUTO)), 9);
    EXPECT_EQ(kernels(other_makers(avx512), with_branch(VOX_CBWR_AUTO)), 9);
    EXPECT_EQ(kernels(machine(sse2), with_branch(VOX_CBWR_AUTO)), 1); // a reproducible set
    EXPECT_EQ(vox::parse_branch("AUTO"), 2);
    for (const char *bad : {"OFF", "auto", "BRANCH=", "BRANCH= AVX2", "1", "AVX1024"})
        EXPECT_EQ(vox::parse_branch(bad), 0) << bad;
}

TEST(Branch, AboveTheProcessorOrUnknownWarnsAndUsesTheLadder) {
    const struct {
        int branch;
        tier cpu;
        int type;
    } cases[] = {{6, sse2, 0},    {8, ssse3, 2}, {9, sse42, 3}, {10, avx, 4},
                 {11, avx512, 7}, {12, zel, 6},  {12, avx2, 5}, {13, zel, 6},
                 {0, avx2, 5},    {14, avx2, 5}, {63, avx, 4},  {11, avx2, 5}};
    for (const auto &c : cases) {
        const vox::cpu_choice choice = choose(machine(c.cpu), with_branch(c.branch));
        EXPECT_EQ(choice.type, c.type) << c.branch;
        EXPECT_EQ(choice.message, 1209) << c.branch;
    }
    // Has no word, but its number is accepted.
    EXPECT_EQ(choose(machine(avx2), with_branch(5)).type, 0);
    EXPECT_EQ(choose(machine(avx2), with_branch(5)).message, 0);
}

TEST(DebugType, DecidesAloneWithinWhatTheCodeCanRunOn) {
    // The kernels of each type; the many-core code runs wherever AVX-512 does.
    const int kernels_of[] = {0, 0, 3, 5, 6, 7, 8, 9, 8};
    for (int type = 0; type <= 8; ++type) {
        vox::cpu_settings settings = with_debug_type(type);
        settings.branch = VOX_CBWR_AVX; // does not count
        settings.tiers = vox::tiers_of_level(VOX_ENABLE_SSE4_2);
        const vox::cpu_choice choice = choose(other_makers(avx512), settings);
        EXPECT_EQ(choice.type, type);
        EXPECT_EQ(choice.reason, cpu_reason::debug_type);
        EXPECT_EQ(kernels(other_makers(avx512), with_debug_type(type)), kernels_of[type]) << type;
    }
    for (int type : {-1, 9, 1 << 30})
        EXPECT_EQ(choose(machine(avx512), with_debug_type(type)).message, 1213) << type;
    // A type that would fault: warned about, the ladder instead.
    const vox::cpu_choice choice = choose(machine(avx2), with_debug_type(7));
    EXPECT_EQ(choice.type, 5);
    EXPECT_EQ(choice.message, 4);
}

TEST(Reevaluation, IgnoresTheBranchAndMayAnswerEight) {
    const auto type = [](tier t, const vox::cpu_settings &settings) {
        return vox::reevaluate_cpu(facts(machine(t)), settings);
    };
    EXPECT_EQ(type(zel_e1, with_branch(VOX_CBWR_COMPATIBLE)), 8);
    EXPECT_EQ(type(avx2, with_branch(VOX_CBWR_COMPATIBLE)), 5);
    EXPECT_EQ(type(avx2, with_debug_type(3)), 3);
}

TEST(Microarchitecture, IsTheModelWhereItMattersAndTheTierElsewhere) {
    const struct {
        uint32_t signature;
        tier t;
        int expected;
    } models[] = {{0x00800F12, avx2, VOX_UARCH_ZEN1},    {0x00830F10, avx2, VOX_UARCH_ZEN2},
                  {0x00A20F12, avx2, VOX_UARCH_ZEN3},    {0x00A10F11, avx512, VOX_UARCH_ZEN4},
                  {0x00A60F12, avx512, VOX_UARCH_ZEN4},  {0x00B40F40, avx512, VOX_UARCH_ZEN5},
                  {0x00C00F00, avx512, VOX_UARCH_AVX512}}; // a family not known yet
    for (const auto &m : models) {
        vox::cpu_snapshot cpu = other_makers(m.t);
        cpu.leaf1.eax = m.signature;
        EXPECT_EQ(vox::microarchitecture_of(cpu), m.expected) << m.signature;
    }
    EXPECT_EQ(vox::microarchitecture_of(machine(bare)), VOX_UARCH_UNKNOWN);
}

} // namespace
