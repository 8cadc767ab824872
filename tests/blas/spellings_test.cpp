// spellings_test.cpp - every routine of level 1 under its names, and its line in verbose mode.
#include <cctype>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/child.hpp"
#include "vox/vox.h"

namespace {

using namespace test;

constexpr const char *names[] = {
    "sdot",   "ddot",   "dsdot",  "sdsdot", "cdotu",  "zdotu",  "cdotc",  "zdotc",  "sasum",
    "dasum",  "scasum", "dzasum", "snrm2",  "dnrm2",  "scnrm2", "dznrm2", "isamax", "idamax",
    "icamax", "izamax", "isamin", "idamin", "icamin", "izamin", "scabs1", "dcabs1", "scopy",
    "dcopy",  "ccopy",  "zcopy",  "sswap",  "dswap",  "cswap",  "zswap",  "sscal",  "dscal",
    "cscal",  "zscal",  "csscal", "zdscal", "saxpy",  "daxpy",  "caxpy",  "zaxpy",  "saxpby",
    "daxpby", "caxpby", "zaxpby", "srot",   "drot",   "csrot",  "zdrot",  "crot",   "zrot",
    "srotg",  "drotg",  "crotg",  "zrotg",  "srotm",  "drotm",  "srotmg", "drotmg", "saxpyi",
    "daxpyi", "caxpyi", "zaxpyi", "sdoti",  "ddoti",  "cdotui", "zdotui", "cdotci", "zdotci",
    "sgthr",  "dgthr",  "cgthr",  "zgthr",  "sgthrz", "dgthrz", "cgthrz", "zgthrz", "sroti",
    "droti",  "ssctr",  "dsctr",  "csctr",  "zsctr"};

TEST(Spellings, AreOneRoutine) {
    ASSERT_NE(vox_get_max_threads(), 0); // the library is loaded
    for (std::string name : names) {
        void *const found = dlsym(RTLD_DEFAULT, name.c_str());
        EXPECT_TRUE(found) << name;
        EXPECT_EQ(dlsym(RTLD_DEFAULT, (name + "_").c_str()), found) << name;
        for (char &c : name)
            c = char(std::toupper(c));
        EXPECT_EQ(dlsym(RTLD_DEFAULT, name.c_str()), found) << name;
    }
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
    const char *const lines[] = {"DAXPY(0,0x1,0x2,1,0x3,-2) ",
                                 "ICAMAX(0,0x1,7) ",
                                 "CSSCAL(0,0x1,0x2,1) ",
                                 "ZDOTC(0,0x1,1,0x2,1) ",
                                 "SAXPYI(0,0x1,0x2,0x3,0x4) ",
                                 "DROTM(0,0x1,1,0x2,1,0x3) ",
                                 "SDSDOT(0,0x"};
    const std::string out = run_child(verbose_calls, {{"VOX_VERBOSE", "1"}}).out;
    size_t from = 0;
    for (const char *line : lines) {
        const size_t found = out.find(std::string("\nVOX_VERBOSE ") + line, from);
        ASSERT_NE(found, std::string::npos) << line << " in " << out;
        from = found + 1;
    }
}

} // namespace
