// spellings_test.cpp - the names of every routine for Fortran, and level 1 in verbose mode.
#include <algorithm>
#include <dlfcn.h>
#include <fstream>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/child.hpp"
#include "tests/support/verbose_lines.hpp"
#include "vox/vox.h"

namespace {

using namespace test;

// Exported symbols in capitals are routines for Fortran; those of the services are functions of their own.
TEST(Spellings, AreOneRoutine) {
    std::ifstream exports(VOX_EXPORTS);
    int routines = 0;
    for (std::string upper; exports >> upper;) {
        std::string lower = upper;
        std::transform(upper.begin(), upper.end(), lower.begin(), ::tolower);
        if (upper.find_first_of("abcdefghijklmnopqrstuvwxyz") != upper.npos ||
            upper.back() == '_' || upper.rfind("VOX_", 0) == 0)
            continue;
        ++routines;
        void *const found = dlsym(RTLD_DEFAULT, upper.c_str());
        EXPECT_TRUE(found) << upper;
        EXPECT_EQ(dlsym(RTLD_DEFAULT, lower.c_str()), found) << lower;
        EXPECT_EQ(dlsym(RTLD_DEFAULT, (lower + '_').c_str()), found) << lower;
    }
    EXPECT_GT(routines, 400);
}

// Addresses that are known, since the calls end before they look at them.
template <class T>
T *at(uintptr_t address) {
    return reinterpret_cast<T *>(address);
}
CHILD(verbose_calls) {
    const vox_int none = 0, one = 1, minus = -2;
    daxpy_(&none, at<double>(1), at<double>(2), &one, at<double>(3), &minus);
    cblas_icamax(0, at<void>(1), 7);
    csscal_(&none, at<float>(1), at<vox_complex_float>(2), &one);
    zdotc_(&none, at<vox_complex_double>(1), &one, at<vox_complex_double>(2), &one);
    saxpyi_(&none, at<float>(1), at<float>(2), at<vox_int>(3), at<float>(4));
    drotm_(&none, at<double>(1), &one, at<double>(2), &one, at<double>(3));
    cblas_sdsdot(0, 0, at<float>(1), 1, at<float>(2), 1);
}

TEST(Verbose, ShowsIntegersByValueAndEverythingElseByAddress) {
    expect_verbose_lines(run_child(verbose_calls, {{"VOX_VERBOSE", "1"}}).out,
                         {"DAXPY(0,0x1,0x2,1,0x3,-2) ", "ICAMAX(0,0x1,7) ", "CSSCAL(0,0x1,0x2,1) ",
                          "ZDOTC(0,0x1,1,0x2,1) ", "SAXPYI(0,0x1,0x2,0x3,0x4) ",
                          "DROTM(0,0x1,1,0x2,1,0x3) ", "SDSDOT(0,0x"});
}

} // namespace
