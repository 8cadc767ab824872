// bounded_test.cpp - the bounded functions: every constraint by table, copies exhaustively on a
// small buffer against a model that works on a second buffer, formatted output and input.
#include "vox/service.h"

#include <climits>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "tests/support/child.hpp"
#include "tests/support/guarded.hpp"

namespace {

using namespace test;

struct report {
    std::string message;
    int code;
    bool operator==(const report &) const = default;
};

std::ostream &operator<<(std::ostream &out, const report &r) {
    return out << r.message << " (" << r.code << ")";
}

std::vector<report> string_reports, memory_reports;

void on_string(const char *message, void *pointer, int code) {
    EXPECT_EQ(pointer, nullptr);
    string_reports.push_back({message, code});
}

void on_memory(const char *message, void *pointer, int code) {
    EXPECT_EQ(pointer, nullptr);
    memory_reports.push_back({message, code});
}

class Bounded : public testing::Test {
  protected:
    void SetUp() override {
        string_reports.clear();
        memory_reports.clear();
        vox_serv_set_str_constraint_handler_s(on_string);
        vox_serv_set_mem_constraint_handler_s(on_memory);
    }
    void TearDown() override {
        vox_serv_set_str_constraint_handler_s(nullptr);
        vox_serv_set_mem_constraint_handler_s(nullptr);
    }
};

constexpr char text[] = "text";

TEST_F(Bounded, LengthCountsToTheTerminatorOrTheLimit) {
    const std::string longest(5000, 'x');
    const guarded<char> unterminated({'a', 'b', 'c'}, edge::back);
    const struct {
        const char *s;
        size_t dmax, expected;
        std::vector<report> reports;
    } cases[] = {
        {nullptr, 0, 0, {}},
        {nullptr, 4097, 0, {}},
        {text, 0, 0, {{"strnlen_s: dmax is 0", 401}}},
        {text, 4097, 0, {{"strnlen_s: dmax exceeds max", 403}}},
        {text, SIZE_MAX, 0, {{"strnlen_s: dmax exceeds max", 403}}},
        {text, 3, 3, {}},
        {text, 4, 4, {}},
        {text, 4096, 4, {}},
        {"", 1, 0, {}},
        {longest.c_str(), 4096, 4096, {}},
        {unterminated.data(), 3, 3, {}},
    };
    for (const auto &c : cases) {
        string_reports.clear();
        EXPECT_EQ(vox_serv_strnlen_s(c.s, c.dmax), c.expected) << c.dmax;
        EXPECT_EQ(string_reports, c.reports) << c.dmax;
    }
}

TEST_F(Bounded, StringCopyReportsTheFirstViolation) {
    const char *const kept = "kept";
    const char *const emptied = "";
    const struct {
        bool dest, src;
        size_t dmax, slen;
        int code;
        const char *message, *dest_after;
    } cases[] = {
        {false, false, 0, 0, 400, "strncpy_s: dest is null", kept},
        {true, false, 0, 0, 401, "strncpy_s: dmax is 0", kept},
        {true, false, 4097, 0, 403, "strncpy_s: dmax exceeds max", kept},
        {true, false, 5, 0, 400, "strncpy_s: src is null", emptied},
        {true, true, 5, 0, 401, "strncpy_s: slen is zero", emptied},
        {true, true, 5, 4097, 403, "strncpy_s: slen exceeds max", emptied},
        {true, true, 4, 4, 406, "strncpy_s: not enough space for src", emptied},
        {true, true, 1, 4096, 406, "strncpy_s: not enough space for src", emptied},
    };
    for (const auto &c : cases) {
        string_reports.clear();
        char dest[] = "kept";
        EXPECT_EQ(
            vox_serv_strncpy_s(c.dest ? dest : nullptr, c.dmax, c.src ? text : nullptr, c.slen),
            c.code);
        EXPECT_EQ(string_reports, (std::vector<report>{{c.message, c.code}}));
        EXPECT_STREQ(dest, c.dest_after) << c.message;
    }
    EXPECT_TRUE(memory_reports.empty());
}

TEST_F(Bounded, MemoryCopyReportsTheFirstViolation) {
    const struct {
        bool dest, src;
        size_t dmax, smax;
        int code;
        const char *message;
        bool cleared;
    } cases[] = {
        {false, false, 0, 0, 400, "memcpy_s: dest is NULL", false},
        {true, false, 0, 0, 401, "memcpy_s: dmax is 0", false},
        {true, false, 0x10000001, 0, 403, "memcpy_s: dmax exceeds max", false},
        {true, false, 4, 0, 401, "memcpy_s: smax is 0", true},
        {true, false, 4, 5, 403, "memcpy_s: smax exceeds dmax", true},
        {true, false, 4, 4, 400, "memcpy_s: src is NULL", true},
    };
    for (const auto &c : cases) {
        memory_reports.clear();
        char dest[] = "keptkept";
        EXPECT_EQ(
            vox_serv_memcpy_s(c.dest ? dest : nullptr, c.dmax, c.src ? text : nullptr, c.smax),
            c.code);
        EXPECT_EQ(memory_reports, (std::vector<report>{{c.message, c.code}}));
        EXPECT_EQ(std::string(dest, 8), c.cleared ? std::string("\0\0\0\0kept", 8) : "keptkept")
            << c.message;
    }
    EXPECT_TRUE(string_reports.empty());
}

// All placements of both operands in one buffer of 12 bytes. The model copies between two buffers
// and decides about overlap from the sets of bytes read and written.
constexpr size_t size = 12;
const std::string pattern("abc\0defg\0hij", size);

TEST_F(Bounded, StringCopyEqualsItsModelForEveryOverlap) {
    for (size_t dest = 0; dest < size; ++dest)
        for (size_t src = 0; src < size; ++src)
            for (size_t dmax = 1; dmax <= size - dest; ++dmax)
                for (size_t slen = 1; slen <= size - src; ++slen) {
                    SCOPED_TRACE(testing::Message()
                                 << dest << " " << src << " " << dmax << " " << slen);
                    // dest[0] is emptied before src is read.
                    std::string expected = pattern;
                    expected[dest] = '\0';
                    std::string source = pattern.substr(src, slen);
                    source = source.substr(0, source.find('\0'));
                    // Read: the characters, and the terminator unless slen ends the string.
                    const size_t reads = std::min(source.size() + 1, slen);
                    const size_t writes = std::min(source.size() + 1, dmax);
                    const bool overlap =
                        dest < src ? dest + writes > src : src + std::min(reads, dmax) > dest;
                    int code = 0;
                    if (overlap)
                        code = 404;
                    else if (source.size() >= dmax)
                        code = 406;
                    if (code == 0)
                        expected.replace(dest, source.size() + 1, source.c_str(),
                                         source.size() + 1);
                    string_reports.clear();
                    std::string actual = pattern;
                    ASSERT_EQ(vox_serv_strncpy_s(&actual[dest], dmax, &actual[src], slen), code);
                    ASSERT_EQ(string_reports.size(), code ? 1u : 0u);
                    ASSERT_EQ(actual[dest], expected[dest]);
                    if (code == 0) {
                        ASSERT_EQ(actual, expected);
                    }
                    // Nothing outside dest[0 .. dmax) changes, whatever the result.
                    ASSERT_EQ(actual.substr(0, dest), pattern.substr(0, dest));
                    ASSERT_EQ(actual.substr(dest + dmax), pattern.substr(dest + dmax));
                }
}

TEST_F(Bounded, MemoryCopyEqualsItsModelForEveryOverlap) {
    for (size_t dest = 0; dest < size; ++dest)
        for (size_t src = 0; src < size; ++src)
            for (size_t dmax = 1; dmax <= size - dest; ++dmax)
                for (size_t smax = 1; smax <= std::min(dmax, size - src); ++smax) {
                    SCOPED_TRACE(testing::Message()
                                 << dest << " " << src << " " << dmax << " " << smax);
                    const bool apart = src + smax <= dest || dest + dmax <= src;
                    std::string expected = pattern;
                    if (apart)
                        expected.replace(dest, smax, pattern, src, smax);
                    else
                        expected.replace(dest, dmax, dmax, '\0');
                    memory_reports.clear();
                    std::string actual = pattern;
                    ASSERT_EQ(vox_serv_memcpy_s(&actual[dest], dmax, &actual[src], smax),
                              apart ? 0 : 404);
                    ASSERT_EQ(actual, expected);
                    ASSERT_EQ(memory_reports,
                              apart ? std::vector<report>{}
                                    : (std::vector<report>{{"memcpy_s: overlap undefined", 404}}));
                }
}

TEST_F(Bounded, SettersReturnThePreviousHandlerAndNullSilences) {
    EXPECT_EQ(vox_serv_set_str_constraint_handler_s(nullptr), on_string);
    EXPECT_EQ(vox_serv_set_str_constraint_handler_s(on_string), vox_serv_ignore_handler_s);
    EXPECT_EQ(vox_serv_set_mem_constraint_handler_s(nullptr), on_memory);
    EXPECT_EQ(vox_serv_memcpy_s(nullptr, 1, text, 1), 400);
    EXPECT_TRUE(memory_reports.empty());
}

CHILD(violate_without_handlers) {
    char dest[4];
    std::printf("%d %d %d", vox_serv_strncpy_s(nullptr, 4, text, 4),
                vox_serv_memcpy_s(dest, 0, text, 4),
                vox_serv_set_mem_constraint_handler_s(nullptr) == nullptr);
}

TEST(BoundedInAFreshProcess, NoHandlerIsRegistered) {
    const child_result result = run_child(violate_without_handlers);
    EXPECT_EQ(result.out, "400 401 1");
    EXPECT_EQ(result.err, "");
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
