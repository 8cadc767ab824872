// xerbla_test.cpp - bad-argument reports: the standard text, handlers, the C interface's reports.
// Programs that define xerbla themselves: replacement_test.
#include "vox/service.h"

#include <atomic>
#include <climits>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

#include "tests/hosts/check.h"
#include "tests/support/child.hpp"
#include "tests/support/tasks.hpp"

namespace {

using namespace test;

struct standard_report {
    const char *name;
    int length;
    vox_int code;
    const char *line;
};

// The name has no terminator at its length in most of them, as Fortran's have none.
const standard_report standard_reports[] = {
    {"DDOT", 4, 3, "ERROR: Parameter 3 was incorrect on entry to DDOT."},
    {"DDOTxx", 4, INT_MAX, "ERROR: Parameter 2147483647 was incorrect on entry to DDOT."},
    {"ddot  ", 6, 1, "ERROR: Parameter 1 was incorrect on entry to ddot  ."},
    {"DDOT", 4000, 1, "ERROR: Parameter 1 was incorrect on entry to DDOT."},
    {"ABCDEFGHIJKLMNOPQRSTUVWXY", 25, 2,
     "ERROR: Parameter 2 was incorrect on entry to ABCDEFGHIJKLMNOPQRST."},
    {"ABCDEFGHIJKLMNOPQRSTUVWXY", 20, 2,
     "ERROR: Parameter 2 was incorrect on entry to ABCDEFGHIJKLMNOPQRST."},
    {"DDOT", 0, 2, "ERROR: Parameter 2 was incorrect on entry to ."},
    {"DDOT", -1, 2, "ERROR: Parameter 2 was incorrect on entry to ."},
    {"100%s%n", 7, 2, "ERROR: Parameter 2 was incorrect on entry to 100%s%n."},
    {"DGEMM", 5, 0, "INTERNAL ERROR: Condition 0 detected in function DGEMM."},
    {"DGEMM", 5, -4, "INTERNAL ERROR: Condition 4 detected in function DGEMM."},
    {"DGEMM", 5, INT_MIN, "INTERNAL ERROR: Condition -2147483648 detected in function DGEMM."},
    {"DTRSM", 5, 1000, "INTERNAL ERROR: Insufficient workspace available in function DTRSM."},
    {"DTRSM", 5, 1001, "ERROR: Incompatible optional parameters on entry to DTRSM."},
    {"DTRSM", 5, 1089, "INTERNAL ERROR: Not enough work memory in function DTRSM"},
    {"DTRSM", 5, 1212, "INTERNAL ERROR: Issue accessing coprocessor DTRSM."},
};

CHILD(report_by_default) {
    for (const standard_report &r : standard_reports)
        vox_serv_default_xerbla(r.name, &r.code, r.length);
}

TEST(Xerbla, ThePrintedLineDependsOnTheCode) {
    std::string expected;
    for (const standard_report &r : standard_reports)
        expected += std::string("\nQuarn VOX ") + r.line + "\n";
    expect_output(report_by_default, expected);
}

const vox_int three = 3;
const std::string ddot_report = "\nQuarn VOX ERROR: Parameter 3 was incorrect on entry to DDOT.\n";

CHILD(report_every_way) {
    for (const vox_xerbla_handler entry : {xerbla, xerbla_, XERBLA, XERBLA_, vox_serv_xerbla,
                                           vox_serv_default_xerbla, cdecl_xerbla}) {
        entry("DDOT", &three, 4);
        entry(nullptr, &three, 4);
        entry("DDOT", nullptr, 4);
    }
    cblas_xerbla("DDOT", 3);
    cblas_xerbla(nullptr, 3);
    cblas_xerbla_malloc_error(nullptr);
    for (auto check : {vox_serv_check_ptr, vox_serv_check_ptr_and_warn}) {
        CHECK(check(&three, "DDOT") == 0 && check(&three, nullptr) == 0);
        CHECK(check(nullptr, nullptr) == 1);
    }
    CHECK(vox_serv_check_ptr_and_warn(nullptr, "DDOT") == 1);
}

TEST(Xerbla, EveryWayLeadsToTheStandardReportAndNullIsIgnored) {
    std::string expected;
    for (int i = 0; i < 8; ++i)
        expected += ddot_report;
    expect_output(report_every_way, expected);
}

CHILD(report_while_output_is_pending) {
    FILE *const other = fdopen(dup(2), "w");
    std::fprintf(other, "pending");
    xerbla("DDOT", &three, 4);
    _exit(0);
}

TEST(Xerbla, FlushesAllStreams) {
    const child_result result = run_child(report_while_output_is_pending);
    EXPECT_EQ(result.err, "pending");
    EXPECT_EQ(result.out, ddot_report);
}

std::string reported;

void record(const char *name, const vox_int *code, int length) {
    reported += std::string(name, size_t(length)) + ":" + std::to_string(*code) + " ";
}

void ignore(const char *, const vox_int *, int) {}

TEST(Xerbla, HandlersAreSetAndRestored) {
    reported.clear();
    EXPECT_EQ(vox_set_xerbla(record), vox_serv_default_xerbla);
    vox_serv_xerbla("DDOT  ", &three, 6);
    EXPECT_EQ(vox_serv_check_ptr(nullptr, "dgemm"), 1);
    EXPECT_EQ(vox_serv_check_ptr(nullptr, std::string(5000, 'x').c_str()), 1);
    EXPECT_EQ(reported, "DDOT  :3 dgemm:1089 " + std::string(4096, 'x') + ":1089 ");
    vox_serv_set_xerbla_interface(ignore); // the slot is taken
    EXPECT_EQ(vox_serv_set_xerbla(ignore), record);
    EXPECT_EQ(vox_serv_set_xerbla(nullptr), ignore);
    EXPECT_EQ(vox_serv_set_xerbla(vox_serv_default_xerbla), vox_serv_default_xerbla);
    vox_serv_set_xerbla_interface(nullptr);
    vox_serv_set_xerbla_interface(record);
    EXPECT_EQ(vox_serv_set_xerbla(nullptr), record);
    EXPECT_EQ(vox_serv_set_xerbla(nullptr), vox_serv_default_xerbla);
}

CHILD(report_from_c) {
    cblas_xerbla("cblas_dgemv", 7);
    CHECK(vox_set_xerbla(nullptr) == cdecl_xerbla);
    vox_set_xerbla(record);
    cblas_xerbla_malloc_error("cblas_dgemm");
    CHECK(reported == "cblas_dgemm:1000 ");
    CHECK(vox_set_xerbla(nullptr) == record); // the program's handler is still there
}

TEST(Xerbla, TheCInterfaceRegistersItsHandlerUnlessThereIsOne) {
    expect_output(report_from_c,
                  "\nQuarn VOX ERROR: Parameter 7 was incorrect on entry to cblas_dgemv.\n");
}

// Many threads report while others exchange the handler: each report arrives exactly once.
std::atomic<int> arrived_a, arrived_b;
void count_a(const char *, const vox_int *, int) { ++arrived_a; }
void count_b(const char *, const vox_int *, int) { ++arrived_b; }

TEST(Xerbla, HandlersMayChangeWhileOthersReport) {
    vox_set_xerbla(count_a);
    on_threads(4, [](int) {
        for (int i = 0; i < 500; ++i) {
            vox_set_xerbla(i % 2 ? count_a : count_b);
            vox_serv_xerbla("DDOT", &three, 4);
        }
    });
    vox_set_xerbla(nullptr);
    EXPECT_EQ(arrived_a + arrived_b, 4 * 500);
}

CHILD(report_concurrently) {
    on_threads(8, [](int) {
        for (int i = 0; i < 50; ++i)
            vox_serv_xerbla("DDOT", &three, 4);
    });
}

TEST(Xerbla, ConcurrentReportsInterleaveByWholeMessages) {
    const std::string line = ddot_report.substr(1, ddot_report.size() - 2);
    std::string out = run_child(report_concurrently).out;
    int count = 0;
    for (size_t at; (at = out.find(line)) != out.npos; ++count)
        out.erase(at, line.size());
    EXPECT_EQ(count, 400);
    EXPECT_EQ(out, std::string(800, '\n'));
}

} // namespace
