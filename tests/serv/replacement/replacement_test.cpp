// replacement_test.cpp - programs that define xerbla and vox_progress themselves, in any one
// spelling, in C and in Fortran, linked to the shared and to the static library: every report
// reaches them.
#include <gtest/gtest.h>
#include <string>

#include "tests/support/child.hpp"

namespace {

using namespace test;

child_result run(const std::string &program) {
    return run_program({std::string(PROGRAMS) + "/replacement_" + program});
}

TEST(Replacement, InAnyOneSpellingReceivesEveryReport) {
    for (const char *program : {REPLACEMENTS}) {
        SCOPED_TRACE(program);
        const child_result result = run(program);
        EXPECT_EQ(result.out, "report DGEMM 3\n"
                              "report buffer 1089\n"
                              "handler DSYMM 3\n"
                              "handler cblas_dsymm 4\n"
                              "report DTRMM -2\n"
                              "report vdExp 3\n"
                              "report cblas_dgemv 7\n"
                              "report cblas_dtrsm 1000\n"
                              "report DPOTRF 3\n"
                              "progress 3 -2 DGETRF\n"
                              "result 17\n");
        EXPECT_EQ(result.err, "");
        EXPECT_EQ(result.status, 0);
    }
}

TEST(Replacement, InFortranReceivesEveryReportWithItsLength) {
    const child_result result = run("fortran");
    EXPECT_EQ(result.out, "report 6 DGEMM  3\n"
                          "report 11 cblas_dgemv 7\n"
                          "report 6 DPOTRF 4\n"
                          "progress 1 2 6 DGETRF\n"
                          "result 17\n");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.status, 0);
}

TEST(Replacement, WorksAsInTheGuide) {
    EXPECT_EQ(run("example_c").err, "cblas_dgemv: argument 7\n");
    EXPECT_EQ(run("example_fortran").out, "cblas_dgemv: argument 7\n");
}

} // namespace
