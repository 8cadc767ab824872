// cpu_test.cpp - the processor choice of a real process: settings from the environment, in
// children.
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/hosts/check.h"
#include "tests/support/child.hpp"
#include "vox/service.h"

namespace {

using namespace test;

CHILD(print_type) { std::printf("%d", vox_serv_cpu_detect()); }
CHILD(print_branch) {
    vox_serv_cpu_detect();
    std::printf("%d", vox_cbwr_get(1));
}

// What this machine's ladder gives when the vendor test is open: the reference for the settings.
int own_type() { return std::stoi(run_child(print_type, {{"VOX_CPU_VENDOR", "ANY"}}).out); }

std::string type_with(const environment &settings) { return run_child(print_type, settings).out; }

TEST(Cpu, AnotherMakersProcessorRunsDefUntilTheVendorTestIsOpened) {
    const int own = own_type();
    ASSERT_GE(own, VOX_CPU_SSSE3);
    const std::string closed = vox_serv_quarn_cpu_true() ? std::to_string(own) : "0";
    EXPECT_EQ(type_with({}), closed);
    expect_said(
        print_type, "VOX_CPU_VENDOR",
        {"", "any", "NoSuchVendor", "ANYANYANYANYANYANYANYANYANYANY1", std::string(100000, 'A')},
        closed);
}

TEST(Cpu, TheCeilingVariableTakesExactWordsOnly) {
    const auto expect_types = [](const std::vector<std::string> &words, int type) {
        expect_said(print_type, "VOX_ENABLE_INSTRUCTIONS", words, std::to_string(type),
                    {{"VOX_CPU_VENDOR", "ANY"}});
    };
    expect_types({"SSE4_2"}, 3);
    expect_types({"AVX"}, 4);
    expect_types({"", "AVX2 ", " SSE4_2", "sse4_2", std::string(100000, 'x')}, own_type());
}

TEST(Cpu, TheDebugTypeForcesAPathOrEndsTheProcess) {
    for (const char *type : {"0", "2", "3"})
        expect_said(print_type, "VOX_DEBUG_CPU_TYPE", {type, std::string(" ") + type}, type);
    if (own_type() == VOX_CPU_AVX512)
        expect_said(print_type, "VOX_DEBUG_CPU_TYPE", {"6", "8"}, "6");
    for (const char *type : {"9", "-1", "99999999999999999999"}) {
        const child_result r = run_child(print_type, {{"VOX_DEBUG_CPU_TYPE", type}});
        EXPECT_EQ(r.status, 1) << type;
        EXPECT_EQ(r.out, "") << type;
        EXPECT_EQ(r.err.substr(0, 21), "Quarn VOX ERROR: CPU ");
    }
    expect_said(print_type, "VOX_DEBUG_CPU_TYPE", {"9"},
                "Quarn VOX ERROR: CPU 9 is not supported.\n");
    expect_said(print_type, "VOX_DEBUG_CPU_TYPE",
                {"", "5x", "five", "3 ", std::string(100000, '3')}, type_with({}));
}

TEST(Cpu, TheBranchVariableForcesATypeOrWarns) {
    EXPECT_EQ(type_with({{"VOX_CBWR", "COMPATIBLE"}}), "0");
    EXPECT_EQ(type_with({{"VOX_CBWR", "BRANCH=SSSE3"}}), "2");
    EXPECT_EQ(type_with({{"VOX_CBWR", "SSE4_2"}, {"VOX_ENABLE_INSTRUCTIONS", "SSE4_2"}}), "3");
    const std::string warning =
        "Quarn VOX WARNING: incorrect conditional numerical reproducibility "
        "mode, VOX_CBWR_AUTO is set\n";
    for (const char *bad : {"OFF", "SSSE3 ", "BRANCH=", "AVX512_ZEL_E1"}) {
        const child_result r = run_child(print_branch, {{"VOX_CBWR", bad}});
        EXPECT_EQ(r.err, warning) << bad;
        EXPECT_EQ(r.out, "2") << bad;
    }
    expect_said(print_branch, "VOX_CBWR", {"", std::string(100000, 'A')}, "1");
}

CHILD_TEST(Cpu, TheBranchCanBeSetUntilThePathIsChosen, {"VOX_CBWR", "COMPATIBLE"}) {
    CHECK(vox_cbwr_set(99) == -1);
    CHECK(vox_cbwr_set(VOX_CBWR_AVX512_ZEL_E1) == -2);
    CHECK(vox_cbwr_set(VOX_CBWR_SSSE3) == 0);
    CHECK(vox_cbwr_get(1) == VOX_CBWR_SSSE3 && vox_serv_cpu_detect() == VOX_CPU_SSSE3);
    CHECK(vox_cbwr_set(VOX_CBWR_SSSE3) == 0);
    CHECK(vox_cbwr_set(VOX_CBWR_OFF) == -3);
}

CHILD(enable_then_detect) {
    std::printf("%d ", vox_enable_instructions(17));
    std::printf("%d ", vox_serv_get_cpu_type(0)); // the variable no longer counts
    std::printf("%d ", vox_enable_instructions(VOX_ENABLE_AVX));
    std::printf("%d ", vox_serv_is_avx_enabled() * 10 + vox_serv_is_avx2_enabled());
    std::printf("%d", vox_serv_get_cpu_type(1) * 10 + (vox_serv_get_cpu_type(0) > VOX_CPU_AVX));
}
TEST(Cpu, ACallFixesTheCeilingAndALaterOneDoesNotMoveAChosenPath) {
    const int own = own_type();
    ASSERT_GT(own, VOX_CPU_AVX);
    EXPECT_EQ(run_child(enable_then_detect,
                        {{"VOX_CPU_VENDOR", "ANY"}, {"VOX_ENABLE_INSTRUCTIONS", "SSE4_2"}})
                  .out,
              "0 " + std::to_string(own) + " 1 10 41");
    // A debug type leaves no say to the ceiling.
    EXPECT_EQ(
        run_child(enable_then_detect, {{"VOX_CPU_VENDOR", "ANY"}, {"VOX_DEBUG_CPU_TYPE", "2"}}).out,
        "0 2 0 11 20");
}

CHILD(survive_exit_handler) {
    vox_set_exit_handler([](int status) { std::printf("exit %d, ", status); });
    std::printf("type %d", vox_serv_cpu_detect());
}
TEST(Cpu, AnExitHandlerThatReturnsLeavesTheBaseline) {
    EXPECT_EQ(run_child(survive_exit_handler, {{"VOX_DEBUG_CPU_TYPE", "12"}}).out,
              "exit 1, type 0");
}

} // namespace
