// bounded_test.cpp - the bounded functions: every constraint by table, copies exhaustively on a
// small buffer against a model that works on a second buffer, formatted output and input.
#include "vox/service.h"

#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "tests/hosts/check.h"
#include "tests/support/child.hpp"
#include "tests/support/guarded.hpp"

namespace {

using namespace test;

std::string reports; // since they were last taken

template <char handler>
void report(const char *message, void *pointer, int code) {
    EXPECT_EQ(pointer, nullptr);
    reports += handler + std::string(" ") + message + " " + std::to_string(code);
}
constexpr auto on_string = report<'s'>, on_memory = report<'m'>;
std::string taken_reports() { return std::exchange(reports, ""); }

class Bounded : public testing::Test {
  protected:
    void SetUp() override {
        taken_reports();
        vox_serv_set_str_constraint_handler_s(on_string);
        vox_serv_set_mem_constraint_handler_s(on_memory);
    }
};

constexpr char text[] = "text";

TEST_F(Bounded, LengthCountsToTheTerminatorOrTheLimit) {
    const std::string longest(5000, 'x');
    const guarded<char> unterminated({'a', 'b', 'c'}, edge::back);
    const struct {
        const char *s;
        size_t dmax, expected;
        const char *reports;
    } cases[] = {
        {nullptr, 0, 0, ""},
        {nullptr, 4097, 0, ""},
        {text, 0, 0, "s strnlen_s: dmax is 0 401"},
        {text, 4097, 0, "s strnlen_s: dmax exceeds max 403"},
        {text, SIZE_MAX, 0, "s strnlen_s: dmax exceeds max 403"},
        {text, 3, 3, ""},
        {text, 4, 4, ""},
        {text, 4096, 4, ""},
        {"", 1, 0, ""},
        {longest.c_str(), 4096, 4096, ""},
        {unterminated.data(), 3, 3, ""},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(vox_serv_strnlen_s(c.s, c.dmax), c.expected) << c.dmax;
        EXPECT_EQ(taken_reports(), c.reports) << c.dmax;
    }
}

TEST_F(Bounded, CopiesReportTheFirstViolation) {
    const struct {
        bool dest, src;
        size_t dmax, count;
        int code;
        const char *report;
        size_t emptied; // bytes of the destination
    } cases[] = {
        {false, false, 0, 0, 400, "s strncpy_s: dest is null", 0},
        {true, false, 0, 0, 401, "s strncpy_s: dmax is 0", 0},
        {true, false, 4097, 0, 403, "s strncpy_s: dmax exceeds max", 0},
        {true, false, 5, 0, 400, "s strncpy_s: src is null", 1},
        {true, true, 5, 0, 401, "s strncpy_s: slen is zero", 1},
        {true, true, 5, 4097, 403, "s strncpy_s: slen exceeds max", 1},
        {true, true, 4, 4, 406, "s strncpy_s: not enough space for src", 1},
        {true, true, 1, 4096, 406, "s strncpy_s: not enough space for src", 1},
        {false, false, 0, 0, 400, "m memcpy_s: dest is NULL", 0},
        {true, false, 0, 0, 401, "m memcpy_s: dmax is 0", 0},
        {true, false, 0x10000001, 0, 403, "m memcpy_s: dmax exceeds max", 0},
        {true, false, 4, 0, 401, "m memcpy_s: smax is 0", 4},
        {true, false, 4, 5, 403, "m memcpy_s: smax exceeds dmax", 4},
        {true, false, 4, 4, 400, "m memcpy_s: src is NULL", 4},
    };
    for (const auto &c : cases) {
        char buffer[] = "keptkept";
        char *const dest = c.dest ? buffer : nullptr;
        const char *const src = c.src ? text : nullptr;
        EXPECT_EQ(*c.report == 's' ? vox_serv_strncpy_s(dest, c.dmax, src, c.count)
                                   : vox_serv_memcpy_s(dest, c.dmax, src, c.count),
                  c.code);
        EXPECT_EQ(taken_reports(), c.report + (" " + std::to_string(c.code)));
        const size_t kept = c.emptied == 1 ? 5 : c.emptied; // the string's end is nobody's
        EXPECT_EQ(std::string(buffer, c.emptied), std::string(c.emptied, '\0')) << c.report;
        EXPECT_STREQ(buffer + kept, &"keptkept"[kept]) << c.report;
    }
}

// All placements of both operands in one buffer of 12 bytes. The model copies between two buffers
// and decides about overlap from the sets of bytes read and written.
constexpr size_t size = 12;
const std::string pattern("abc\0defg\0hij", size);

void expect_string_copy(size_t dest, size_t src, size_t dmax, size_t slen) {
    // dest[0] is emptied before src is read.
    std::string expected = pattern;
    expected[dest] = '\0';
    std::string source = pattern.substr(src, slen);
    source = source.substr(0, source.find('\0'));
    // Read: the characters, and the terminator unless slen ends the string.
    const size_t reads = std::min(source.size() + 1, slen);
    const size_t writes = std::min(source.size() + 1, dmax);
    const bool overlap = dest < src ? dest + writes > src : src + std::min(reads, dmax) > dest;
    const int code = overlap ? 404 : source.size() >= dmax ? 406 : 0;
    if (code == 0)
        expected.replace(dest, source.size() + 1, source.c_str(), source.size() + 1);
    std::string actual = pattern;
    ASSERT_EQ(vox_serv_strncpy_s(&actual[dest], dmax, &actual[src], slen), code);
    ASSERT_EQ(taken_reports().empty(), code == 0);
    // After a violation dest[1 .. dmax) may hold anything.
    if (code)
        actual.replace(dest + 1, dmax - 1, expected, dest + 1, dmax - 1);
    ASSERT_EQ(actual, expected);
}

void expect_memory_copy(size_t dest, size_t src, size_t dmax, size_t smax) {
    const bool apart = src + smax <= dest || dest + dmax <= src;
    std::string expected = pattern, actual = pattern;
    if (apart)
        expected.replace(dest, smax, pattern, src, smax);
    else
        expected.replace(dest, dmax, dmax, '\0');
    ASSERT_EQ(vox_serv_memcpy_s(&actual[dest], dmax, &actual[src], smax), apart ? 0 : 404);
    ASSERT_EQ(actual, expected);
    ASSERT_EQ(taken_reports(), apart ? "" : "m memcpy_s: overlap undefined 404");
}

TEST_F(Bounded, CopiesEqualTheirModelsForEveryOverlap) {
    for (size_t dest = 0; dest < size; ++dest)
        for (size_t src = 0; src < size; ++src)
            for (size_t dmax = 1; dmax <= size - dest; ++dmax)
                for (size_t count = 1; count <= size - src; ++count) {
                    SCOPED_TRACE(testing::Message()
                                 << dest << " " << src << " " << dmax << " " << count);
                    expect_string_copy(dest, src, dmax, count);
                    if (count <= dmax)
                        expect_memory_copy(dest, src, dmax, count);
                    if (HasFatalFailure())
                        return;
                }
}

TEST_F(Bounded, SettersReturnThePreviousHandlerAndNullSilences) {
    EXPECT_EQ(vox_serv_set_str_constraint_handler_s(nullptr), on_string);
    EXPECT_EQ(vox_serv_set_str_constraint_handler_s(on_string), vox_serv_ignore_handler_s);
    EXPECT_EQ(vox_serv_set_mem_constraint_handler_s(nullptr), on_memory);
    EXPECT_EQ(vox_serv_memcpy_s(nullptr, 1, text, 1), 400);
    EXPECT_EQ(taken_reports(), "");
}

CHILD_TEST(BoundedInAFreshProcess, NoHandlerIsRegistered) {
    char dest[4];
    CHECK(vox_serv_strncpy_s(nullptr, 4, text, 4) == 400);
    CHECK(vox_serv_memcpy_s(dest, 0, text, 4) == 401);
    CHECK(vox_serv_set_mem_constraint_handler_s(nullptr) == nullptr);
}

const char *volatile no_format = nullptr;

TEST(BoundedFormat, WritesNoMoreThanTheBufferHolds) {
    guarded<char> buffer(std::vector<char>(4, '#'), edge::back);
    const struct {
        size_t n;
        const char *argument, *written;
        int result;
    } cases[] = {{4, "abc", "abc", 3}, {4, "abcdef", "abc", 6}, {1, "abc", "", 3}, {4, "", "", 0}};
    for (const auto &c : cases) {
        EXPECT_EQ(vox_serv_sprintf_s(buffer.data(), c.n, "%s", c.argument), c.result);
        EXPECT_STREQ(buffer.data(), c.written);
        EXPECT_EQ(vox_serv_snprintf_s(buffer.data(), c.n, "%s", c.argument), c.result);
        EXPECT_STREQ(buffer.data(), c.written);
    }
    char small[] = "unchanged";
    EXPECT_EQ(vox_serv_sprintf_s(small, 0, "%d", 1), -1);
    EXPECT_EQ(vox_serv_sprintf_s(nullptr, 4, "%d", 1), -1);
    EXPECT_EQ(vox_serv_sprintf_s(small, sizeof small, no_format, 1), -1);
    EXPECT_STREQ(small, "unchanged");
    EXPECT_EQ(vox_serv_sprintf_s(small, SIZE_MAX, "%d", 12), 2); // more than an address can hold
    EXPECT_STREQ(small, "12");
    EXPECT_EQ(vox_serv_sprintf_s(small, sizeof small, "ab%ls", L"\x20ac"), -1); // not in "C"
    EXPECT_STREQ(small, "");
}

int by_list(int (*print)(const char *, va_list), const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = print(format, arguments);
    va_end(arguments);
    return result;
}

CHILD(print_everywhere) {
    vox_serv_printf_s("%s=%d ", "a", 1);
    vox_serv_fprintf_stdout_s("%s=%d ", "b", 2);
    by_list(vox_serv_vfprintf_stdout_s, "%s=%d ", "c", 3);
    vox_serv_fprintf_s(stdout, "%s=%d ", "d", 4);
    vox_serv_fprintf_stderr_s("%s=%d ", "e", 5);
    by_list(vox_serv_vfprintf_stderr_s, "%s=%d ", "f", 6);
    std::printf("%d", vox_serv_printf_s(no_format, 1) + vox_serv_fprintf_s(nullptr, "%d", 1) +
                          vox_serv_fprintf_stderr_s(no_format, 1));
}

TEST(BoundedFormat, PrintsWhereItsNameSays) {
    const child_result result = run_child(print_everywhere);
    EXPECT_EQ(result.out, "a=1 b=2 c=3 d=4 -3");
    EXPECT_EQ(result.err, "e=5 f=6 ");
}

TEST(BoundedFormat, ReadsFields) {
    int a = 0, b = 0;
    EXPECT_EQ(vox_serv_sscanf_s("12 34", "%d%d", &a, &b), 2);
    EXPECT_EQ(a * 100 + b, 1234);
    EXPECT_EQ(vox_serv_sscanf_s("", "%d", &a), EOF);
    EXPECT_EQ(vox_serv_sscanf_s(nullptr, "%d", &a), -1);
    EXPECT_EQ(vox_serv_sscanf_s("12", no_format, &a), -1);
    FILE *const file = std::tmpfile();
    ASSERT_NE(file, nullptr);
    EXPECT_EQ(vox_serv_fprintf_s(file, "56 x"), 4);
    std::rewind(file);
    EXPECT_EQ(vox_serv_fscanf_s(file, "%d%d", &a, &b), 1);
    EXPECT_EQ(a, 56);
    EXPECT_EQ(vox_serv_fscanf_s(nullptr, "%d", &a), -1);
    std::fclose(file);
}

} // namespace
