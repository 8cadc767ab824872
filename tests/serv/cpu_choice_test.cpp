// cpu_choice_test.cpp - features, ladder, ceiling, branches and debug type on synthetic processors.
#include "serv/cpu_choice.hpp"

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "serv/cpu_model.hpp"
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

// Which bit of the feature word each CPUID bit is, register by register, and the XCR0 bits it
// needs.
struct cpuid_bit {
    uint32_t vox::cpuid_registers::*reg;
    vox::cpuid_registers vox::cpu_snapshot::*leaf;
    int cpuid, word;
    uint64_t state;
};

std::vector<cpuid_bit> documented_bits() {
    using r = vox::cpuid_registers;
    using s = vox::cpu_snapshot;
    std::vector<cpuid_bit> bits;
    auto add = [&](auto leaf, auto reg, std::initializer_list<std::array<int, 2>> pairs,
                   uint64_t state) {
        for (auto [cpuid, word] : pairs)
            bits.push_back({reg, leaf, cpuid, word, state});
    };
    add(&s::leaf1, &r::edx, {{0, 1}, {15, 2}, {23, 3}, {24, 4}, {25, 5}, {26, 6}}, 0);
    add(&s::leaf1, &r::ecx,
        {{0, 7}, {9, 8}, {19, 9}, {20, 10}, {22, 11}, {23, 12}, {1, 13}, {25, 14}, {30, 17}}, 0);
    add(&s::leaf1, &r::ecx, {{29, 15}, {28, 16}, {12, 18}}, 6);
    add(&s::extended1, &r::ecx, {{5, 20}}, 0);
    add(&s::leaf7, &r::ebx, {{4, 21}, {11, 22}, {19, 28}, {18, 29}, {29, 35}}, 0);
    add(&s::leaf7, &r::ebx, {{5, 23}}, 6);
    add(&s::leaf7, &r::ebx, {{14, 36}}, 0x18);
    add(&s::leaf7, &r::ebx,
        {{17, 24}, {16, 27}, {21, 30}, {27, 32}, {26, 33}, {28, 34}, {30, 37}, {31, 38}}, 0xE6);
    add(&s::leaf7, &r::ecx, {{1, 39}, {14, 42}}, 0xE6);
    add(&s::leaf7, &r::edx, {{3, 40}, {2, 41}}, 0xE6);
    return bits;
}

TEST(FeatureWord, EveryBitComesFromItsCpuidBitAndItsState) {
    for (const cpuid_bit &b : documented_bits()) {
        SCOPED_TRACE(b.word);
        vox::cpu_snapshot s{};
        s.leaf0.eax = 7;
        (s.*b.leaf).*b.reg |= 1u << b.cpuid;
        const uint64_t set = uint64_t(1) << b.word | 1;
        EXPECT_EQ(vox::feature_word(s), b.state ? 1 : set);
        s.leaf1.ecx |= 1u << 27;
        s.xcr0 = 0xFF;
        EXPECT_EQ(vox::feature_word(s), set);
        for (int state = 0; state < 8; ++state) {
            s.xcr0 = 0xFF & ~(1u << state);
            EXPECT_EQ(vox::feature_word(s), b.state >> state & 1 ? 1 : set) << "XCR0 bit " << state;
        }
    }
    EXPECT_EQ(documented_bits().size(), 38u);
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
    const struct {
        const char *what;
        vox::cpu_snapshot cpu;
        int type;
    } cases[] = {
        {"sse2", machine(sse2), 0},
        {"ssse3", machine(ssse3), 2},
        {"sse4.2", machine(sse42), 3},
        {"avx", machine(avx), 4},
        {"avx2", machine(avx2), 5},
        {"avx512", machine(avx512), 7},
        {"zel", machine(zel), 6},
        {"zel e1", machine(zel_e1), 8},
        {"avx512, zmm state off", machine(avx512, xcr0_ymm), 5},
        {"avx512, ymm state off", machine(avx512, xcr0_sse), 3},
        {"avx512, opmask state off", machine(avx512, 0xC7), 5},
        {"another vendor", machine(avx512, xcr0_zmm, "AuthenticAMD"), 0},
        {"another vendor without sse2", machine(bare, 0, "AuthenticAMD"), 0},
    };
    for (const auto &c : cases)
        EXPECT_EQ(choose(c.cpu).type, c.type) << c.what;

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
    const vox::cpu_snapshot other = machine(avx2, xcr0_ymm, "AuthenticAMD");
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
            vox::cpu_settings settings;
            settings.tiers = vox::tiers_of_level(level);
            if (expected[level][i] >= 0) {
                EXPECT_EQ(vox::choose_cpu(cpu, settings).type, expected[level][i])
                    << level << ' ' << i;
            }
        }
    for (int level : {-1, 6, 100})
        EXPECT_FALSE(vox::level_supported(facts(machine(zel_e1)), level));

    vox::cpu_settings low;
    low.tiers = vox::tiers_of_level(VOX_ENABLE_SSE4_2);
    EXPECT_EQ(choose(machine(avx512), low).reason, cpu_reason::ceiling);
    low.tiers = vox::tiers_of_level(VOX_ENABLE_AVX512);
    EXPECT_EQ(choose(machine(avx512), low).reason, cpu_reason::features);
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
        const char *word;
        int branch, type;
    } rows[] = {{"COMPATIBLE", 3, 0},  {"SSE2", 4, 0},    {"SSE3", 4, 0},          {"SSSE3", 6, 2},
                {"SSE4_1", 7, 2},      {"SSE4_2", 8, 3},  {"AVX", 9, 4},           {"AVX2", 10, 5},
                {"AVX512_ZEL", 11, 6}, {"AVX512", 12, 7}, {"AVX512_ZEL_E1", 13, 8}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.word);
        EXPECT_EQ(vox::parse_branch(row.word), row.branch);
        EXPECT_EQ(vox::parse_branch((std::string("BRANCH=") + row.word).c_str()), row.branch);
        EXPECT_EQ(vox::parse_branch((std::string("x,BRANCH=") + row.word).c_str()), row.branch);
        for (const char *tail : {" ", ",", "x"}) // the word must end the value
            EXPECT_EQ(vox::parse_branch((std::string(row.word) + tail).c_str()), 0);
        vox::cpu_settings settings;
        settings.branch = row.branch;
        // Forced whatever the vendor, on a processor that has what the branch needs.
        const tier t = row.branch == 12 ? avx512 : zel_e1;
        const vox::cpu_choice choice = choose(machine(t, xcr0_zmm, "AuthenticAMD"), settings);
        EXPECT_EQ(choice.type, row.type);
        EXPECT_EQ(choice.message, 0);
    }
    EXPECT_EQ(vox::parse_branch("AUTO"), 2);
    for (const char *bad : {"OFF", "auto", "BRANCH=", "BRANCH= AVX2", "1", "AVX1024"})
        EXPECT_EQ(vox::parse_branch(bad), 0) << bad;
}

TEST(Branch, AboveTheProcessorOrUnknownWarnsAndUsesTheLadder) {
    vox::cpu_settings settings;
    const struct {
        int branch;
        tier cpu;
        int type;
    } cases[] = {{6, sse2, 0},    {8, ssse3, 2}, {9, sse42, 3}, {10, avx, 4},
                 {11, avx512, 7}, {12, zel, 6},  {12, avx2, 5}, {13, zel, 6},
                 {0, avx2, 5},    {14, avx2, 5}, {63, avx, 4},  {11, avx2, 5}};
    for (const auto &c : cases) {
        settings.branch = c.branch;
        const vox::cpu_choice choice = choose(machine(c.cpu), settings);
        EXPECT_EQ(choice.type, c.type) << c.branch;
        EXPECT_EQ(choice.message, 1209) << c.branch;
    }
    settings.branch = 5; // has no word, but its number is accepted
    EXPECT_EQ(choose(machine(avx2), settings).type, 0);
    EXPECT_EQ(choose(machine(avx2), settings).message, 0);
}

TEST(Branch, AutoStandsForTheBranchOfTheLadder) {
    const std::pair<tier, int> cases[] = {{sse2, 4},  {ssse3, 6},   {sse42, 8}, {avx, 9},
                                          {avx2, 10}, {avx512, 12}, {zel, 11},  {zel_e1, 13}};
    for (const auto &[t, branch] : cases)
        EXPECT_EQ(vox::auto_branch(facts(machine(t)), {}), branch) << t;
    EXPECT_EQ(vox::auto_branch(facts(machine(avx512, xcr0_zmm, "AuthenticAMD")), {}), 3);
}

TEST(DebugType, DecidesAloneWithinWhatTheCodeCanRunOn) {
    vox::cpu_settings settings;
    settings.debug_given = true;
    settings.branch = VOX_CBWR_AVX; // does not count
    settings.tiers = vox::tiers_of_level(VOX_ENABLE_SSE4_2);
    for (int type : {0, 1, 2, 3, 4, 5, 7}) {
        settings.debug_type = type;
        const vox::cpu_choice choice = choose(machine(avx512, xcr0_zmm, "AuthenticAMD"), settings);
        EXPECT_EQ(choice.type, type);
        EXPECT_EQ(choice.reason, cpu_reason::debug_type);
    }
    for (int type : {6, 8}) { // the many-core code runs wherever AVX-512 does
        settings.debug_type = type;
        EXPECT_EQ(choose(machine(avx512), settings).type, type);
    }
    for (int type : {-1, 9, 1 << 30}) {
        settings.debug_type = type;
        EXPECT_EQ(choose(machine(avx512), settings).message, 1213) << type;
    }
    settings = {};
    settings.debug_given = true;
    settings.debug_type = 7;
    const vox::cpu_choice choice = choose(machine(avx2), settings);
    EXPECT_EQ(choice.type, 5); // a type that would fault: warned about, the ladder instead
    EXPECT_EQ(choice.message, 4);
}

TEST(Reevaluation, IgnoresTheBranchAndMayAnswerEight) {
    vox::cpu_settings settings;
    settings.branch = VOX_CBWR_COMPATIBLE;
    EXPECT_EQ(vox::reevaluate_cpu(facts(machine(zel_e1)), settings), 8);
    EXPECT_EQ(vox::reevaluate_cpu(facts(machine(avx2)), settings), 5);
    settings.debug_given = true;
    settings.debug_type = 3;
    EXPECT_EQ(vox::reevaluate_cpu(facts(machine(avx2)), settings), 3);
}

TEST(Microarchitecture, ModelsWhereTheyMatterFeaturesElsewhere) {
    auto amd = [](uint32_t signature, tier t) {
        vox::cpu_snapshot s = machine(t, xcr0_zmm, "AuthenticAMD");
        s.leaf1.eax = signature;
        return vox::microarchitecture_of(s);
    };
    EXPECT_EQ(amd(0x00800F12, avx2), VOX_UARCH_ZEN1);
    EXPECT_EQ(amd(0x00830F10, avx2), VOX_UARCH_ZEN2);
    EXPECT_EQ(amd(0x00A20F12, avx2), VOX_UARCH_ZEN3);
    EXPECT_EQ(amd(0x00A10F11, avx512), VOX_UARCH_ZEN4);
    EXPECT_EQ(amd(0x00A60F12, avx512), VOX_UARCH_ZEN4);
    EXPECT_EQ(amd(0x00B40F40, avx512), VOX_UARCH_ZEN5);
    EXPECT_EQ(amd(0x00C00F00, avx512), VOX_UARCH_AVX512); // a family not known yet: by features
    const std::pair<tier, int> by_features[] = {
        {bare, VOX_UARCH_UNKNOWN}, {sse2, VOX_UARCH_BASELINE}, {ssse3, VOX_UARCH_SSSE3},
        {sse42, VOX_UARCH_SSE42},  {avx, VOX_UARCH_AVX},       {avx2, VOX_UARCH_AVX2},
        {zel, VOX_UARCH_ZEL},      {zel_e1, VOX_UARCH_ZEL_E1}, {avx512, VOX_UARCH_AVX512}};
    for (const auto &[t, id] : by_features)
        EXPECT_EQ(vox::microarchitecture_of(machine(t)), id) << t;
}

} // namespace
