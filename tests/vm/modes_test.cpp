// modes_test.cpp - mode fields, status, callback, and all that the error routine does about an error.
#include "vox/tqm.h"

#include <cerrno>
#include <cfenv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/child.hpp"
#include "tests/vm/kernel_sets.hpp"
#include "vm/errors.hpp"

namespace {

using test::in_new_thread;
using test::run_child;
using vox::vm::element;
using vox::vm::report_element;

TEST(Mode, FieldsAreReplacedWholeAndEmptyOnesKept) {
    in_new_thread([] {
        EXPECT_EQ(tqmGetMode(), 0x1A02u);
        const uint32_t steps[][2] = {{0, 0x1A02},
                                     {TQM_LA, 0x1A01},
                                     {0x400, 0x401},
                                     {TQM_EP | 0x40000, 0x40403},
                                     {0x5000000, 0x5040403},
                                     {0x380000 | TQM_HA, 0x5380402},
                                     {0xF0000020, 0x5380402},
                                     {0x2000, 0x5382002}};
        for (const auto &[argument, expected] : steps) {
            const uint32_t before = tqmGetMode();
            EXPECT_EQ(tqmSetMode(argument), before);
            EXPECT_EQ(tqmGetMode(), expected) << std::hex << argument;
        }
    });
    EXPECT_EQ(tqmGetMode(), 0x1A02u) << "another thread's mode";
}

CHILD(print_mode) { std::printf("%x", tqmGetMode()); }

TEST(Mode, ComesFromTheEnvironmentOnce) {
    const char *cases[][2] = {{"1", "1a01"},          {"0x400", "402"}, {"0x1000003", "1001a03"},
                              {"nonsense", "1a02"},   {"", "1a02"},     {"-1", "1a02"},
                              {"99999999999", "1a02"}};
    for (const auto &[value, mode] : cases)
        EXPECT_EQ(run_child(print_mode, {{"VOX_TQM_MODE", value}}).out, mode) << value;
}

int ignore(tqmErrorContext *) { return 0; }

TEST(Callback, SetsAndClearsItsBit) {
    in_new_thread([] {
        tqmSetMode(0x200);
        EXPECT_EQ(tqmSetErrorCallBack(ignore), nullptr);
        EXPECT_EQ(tqmGetMode(), 0x1202u);
        EXPECT_EQ(tqmGetErrorCallBack(), ignore);
        EXPECT_EQ(tqmClearErrorCallBack(), ignore);
        EXPECT_EQ(tqmGetMode(), 0x202u);
        tqmSetMode(0x1000);
        tqmClearErrorCallBack();
        EXPECT_EQ(tqmGetMode(), 0x1002u) << "an empty field replaces nothing";
    });
}

TEST(Status, TheLastErrorWins) {
    in_new_thread([] {
        EXPECT_EQ(tqmGetErrStatus(), 0);
        EXPECT_EQ(tqmSetErrStatus(3), 0);
        EXPECT_EQ(tqmSetErrStatus(1), 3);
        EXPECT_EQ(tqmClearErrStatus(), 1);
        EXPECT_EQ(tqmGetErrStatus(), 0);
    });
}

struct seen {
    int calls = 0;
    tqmErrorContext context;
    int answer = 0;
} told;

int listen(tqmErrorContext *context) {
    ++told.calls;
    told.context = *context;
    context->dbR1 = 42;
    return told.answer;
}

// One error of every kind under every way of dealing with it.
TEST(Error, DoesWhatTheModeAsks) {
    in_new_thread([] {
        tqmSetErrorCallBack(listen);
        const int numbers[] = {33, 34, 34, 34};
        const int exceptions[] = {FE_INVALID, FE_DIVBYZERO, FE_OVERFLOW, FE_UNDERFLOW};
        for (const uint32_t mode : {0x100, 0x200, 0x800, 0x1000, 0x1A00, 0x2000, 0x2200})
            for (const int answer : {0, 1})
                for (int status = 1; status <= 4; ++status) {
                    SCOPED_TRACE(testing::Message()
                                 << std::hex << mode << ' ' << answer << ' ' << status);
                    tqmSetMode(mode);
                    tqmClearErrStatus();
                    told = {.context = {}, .answer = answer};
                    std::feclearexcept(FE_ALL_EXCEPT);
                    errno = 0;
                    const double vector[3] = {1, 2, 3};
                    double r = 7;
                    report_element<double>(status, {vector, 2, &vector[2], nullptr, &r, nullptr},
                                           "vdExp");
                    const bool called = mode & 0x1000, handled = called && answer;
                    EXPECT_EQ(tqmGetErrStatus(), mode == 0x2000 ? 0 : status);
                    EXPECT_EQ(told.calls, called);
                    EXPECT_EQ(errno, (mode & 0x200) && !handled ? numbers[status - 1] : 0);
                    unsigned short x87;
                    asm volatile("fnstsw %0" : "=am"(x87));
                    EXPECT_EQ((x87 & exceptions[status - 1]) != 0, (mode & 0x800) && !handled);
                    EXPECT_EQ(r, called && !handled ? 42 : 7);
                    if (called) {
                        EXPECT_EQ(told.context.iCode, status);
                        EXPECT_EQ(told.context.iIndex, 2);
                        EXPECT_EQ(told.context.dbA1, 3);
                        EXPECT_EQ(told.context.dbR1, 7);
                        EXPECT_STREQ(told.context.cFuncName, "vdExp");
                        EXPECT_EQ(told.context.iFuncNameLen, 5);
                    }
                }
    });
}

TEST(Error, ComplexNumbersAreToldInParts) {
    in_new_thread([] {
        tqmSetErrorCallBack(listen);
        told = {};
        vox_complex_double z[2] = {{1, 2}, {3, 4}}, s[2] = {{5, 6}, {7, 8}};
        report_element<vox_complex_double>(1, {z, 1, &z[0], &z[1], &s[0], &s[1]}, "vzPow");
        const tqmErrorContext &c = told.context;
        EXPECT_EQ(c.dbA1 + c.dbA1Im * 10, 21);
        EXPECT_EQ(c.dbA2 + c.dbA2Im * 10, 43);
        EXPECT_EQ(c.dbR1 + c.dbR1Im * 10, 65);
        EXPECT_EQ(c.dbR2 + c.dbR2Im * 10, 87);
    });
}

CHILD(print_errors) {
    tqmSetMode(TQM_ERRMODE_STDERR);
    const double a[] = {7, 0.5}, b = -2;
    double r = 3, z = 4;
    for (int status = 1; status <= 5; ++status)
        report_element<double>(status, {a, 1, &a[1], &b, &r, nullptr}, "vdPow");
    report_element<double>(1, {a, 1, &a[1], nullptr, &r, &z}, "vdTwo");
    vox::vm::report_call(TQM_STATUS_BADSIZE, -3, "vdExp");
    vox::vm::report_call(TQM_STATUS_BADMEM, 5, "vdExp");
}

TEST(Error, PrintsMessagesWithTheValues) {
    const std::string values = "a(1)=0.5\nb(1)=-2\nr(1)=3\n";
    EXPECT_EQ(run_child(print_errors).err,
              "Error (TQM_STATUS_ERRDOM) in vdPow: argument is out of domain.\n" + values +
                  "Error (TQM_STATUS_SING) in vdPow: argument caused singularity.\n" + values +
                  "Error (TQM_STATUS_OVERFLOW) in vdPow: argument caused overflow.\n" + values +
                  "Error (TQM_STATUS_UNDERFLOW) in vdPow: argument caused underflow.\n" + values +
                  "Unknown error in vdPow.\n" + values +
                  "Error (TQM_STATUS_ERRDOM) in vdTwo: argument is out of domain.\n"
                  "a(1)=0.5\ny(1)=3\nz(1)=4\n"
                  "Error (TQM_STATUS_BADSIZE) in vdExp: array size -3 is not positive.\n"
                  "Error (TQM_STATUS_BADMEM) in vdExp: NULL pointer is passed.\n");
}

CHILD(trap) {
    std::signal(SIGFPE, SIG_DFL); // checkers have handlers
    tqmSetMode(TQM_ERRMODE_EXCEPT | TQM_TRAP_DIVBYZERO);
    const double a = 0;
    double r = 0;
    const element<double> e = {&a, 0, &a, nullptr, &r, nullptr};
    report_element(TQM_STATUS_ERRDOM, e, "vdLn"); // not the one that traps
    std::printf("alive");
    std::fflush(stdout);
    report_element(TQM_STATUS_SING, e, "vdLn");
    std::printf(" and still");
}

TEST(Error, SelectedExceptionsTrap) {
    const test::child_result result = run_child(trap);
    EXPECT_EQ(result.out, "alive");
    EXPECT_EQ(result.signal, SIGFPE);
}

} // namespace
