// tables_test.cpp - the tables of kernels and costs behind each function, and the settings that choose from them.
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/child.hpp"
#include "tests/vm/kernel_sets.hpp"
#include "vm/frame.hpp"

using test::run_child;
using vox::vm::cost_table;
using vox::vm::kernel_1i_1o;
using vox::vm::kernel_table;

extern "C" kernel_table<kernel_1i_1o<double>> vox_tqm_kernel_dExp_ttab;
extern "C" kernel_table<kernel_1i_1o<float>> vox_tqm_kernel_sAbs_ttab;
extern "C" const cost_table vox_tqm_kernel_dExp_ctab, vox_tqm_kernel_sExp_ctab;

namespace {

// Each kernel set and accuracy has a place of its own, which a call fills. The baseline has one kernel for all
// accuracies, and so has a function that is always exact.
TEST(KernelTable, HasAPlaceForEachSetAndAccuracy) {
    const double x = 1;
    double r;
    test::in_every_kernel_set([&](int index, int accuracy) {
        vmdExp(1, &x, &r, accuracy);
        const auto kernel = [&](int a) {
            return vox_tqm_kernel_dExp_ttab[index + 10 * (a - 1)].load();
        };
        EXPECT_NE(kernel(accuracy), nullptr) << index << ' ' << accuracy;
        if (accuracy > TQM_LA) {
            EXPECT_EQ(kernel(accuracy) == kernel(TQM_LA), index < 2) << index << ' ' << accuracy;
        }
        const float one = 1;
        float s;
        vmsAbs(1, &one, &s, accuracy);
        EXPECT_EQ(vox_tqm_kernel_sAbs_ttab[index + 10 * (accuracy - 1)],
                  vox_tqm_kernel_sAbs_ttab[index]);
    });
}

TEST(CostTable, FollowsTheLengthOfVectorsAndTheAccuracy) {
    const float *d = vox_tqm_kernel_dExp_ctab.ns, *s = vox_tqm_kernel_sExp_ctab.ns;
    for (int place = 0; place < 30; ++place) {
        EXPECT_GT(d[place], 0) << place;
        EXPECT_EQ(s[place], d[place] / 2) << place;
        EXPECT_LE(d[place % 10 + 20], d[place]) << "TQM_EP is the cheapest: " << place;
    }
    EXPECT_EQ(d[12], 2 * d[17]) << "TQM_HA of 128 bits and of 256";
    EXPECT_EQ(d[17], 2 * d[19]) << "of 512";
}

// The places that a call fills, in a process of its own.
CHILD(filled_places) {
    const double x = 1;
    double r;
    vdExp(1, &x, &r);
    for (int place = 0; place < 30; ++place)
        if (vox_tqm_kernel_dExp_ttab[place])
            std::printf("%d\n", place);
}

TEST(KernelTable, IsChosenFromByTheEnvironment) {
    const struct {
        const char *path, *mode;
        int place;
    } rows[] = {{"0", "0x1", 0},   {"1", "2", 11}, {"2", "3", 22},
                {"2", "0x401", 2}, {"2", "4", 12}, {"2", "x", 12}};
    for (const auto &row : rows)
        EXPECT_EQ(
            run_child(filled_places, {{"VOX_TQM_CODE_PATH", row.path}, {"VOX_TQM_MODE", row.mode}})
                .out,
            std::to_string(row.place) + "\n")
            << row.path << ' ' << row.mode;
    const std::string own = run_child(filled_places).out;
    for (const char *nonsense : {"10", "-1", "avx", "", "1x"})
        EXPECT_EQ(run_child(filled_places, {{"VOX_TQM_CODE_PATH", nonsense}}).out, own) << nonsense;
    for (int index = 0; index < vox::vm::index_count; ++index)
        if (vox::kernel_index_runs(vox::this_cpu(), index)) {
            EXPECT_EQ(run_child(filled_places, {{"VOX_TQM_CODE_PATH", std::to_string(index)}}).out,
                      std::to_string(10 + index) + "\n");
        }
}

} // namespace
