// verbose_test.cpp - verbose mode of a real process: who turns it on, where the lines go, and that
// they stay whole.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "tests/hosts/check.h"
#include "tests/support/child.hpp"
#include "tests/support/matches.hpp"
#include "tests/support/tasks.hpp"
#include "tests/support/temporary.hpp"
#include "vox/blas.h"
#include "vox/service.h"

namespace {

using namespace test;

const std::string too_long_or_empty =
    "VOX_VERBOSE WARNING: incorrect output filename: too long or empty\n";
const std::string cannot_be_opened = "VOX_VERBOSE WARNING: Unable to open verbose output file.\n";
const std::string falls_back = "VOX_VERBOSE WARNING: unable to open output file. Print to STDOUT\n";
const char *const header_pattern =
    "VOX_VERBOSE Quarn\\(R\\) VOX 2018\\.0 Update 2 Product build 20180127 for Quarn\\(R\\) 64 "
    "architecture Quarn\\(R\\) .*processors.*, Lnx [0-9]+\\.[0-9]{2}GHz lp64 quarn_thread";
const std::string line_tail =
    " [0-9.]+(ns|us|ms|s) CNR:OFF Dyn:1 FastMM:1 TID:0  NThr:[0-9]+(,(BLAS|FFT|TQM|PARDISO):[0-9]+"
    ")*";

void log_call(const char *call) { vox_serv_print_verbose_info(1, call, 1.5e-3); }

std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    EXPECT_TRUE(text.empty() || text.back() == '\n');
    return lines;
}

using calls = std::vector<std::string>;

calls calls_in(const std::string &text) {
    calls result;
    for (const std::string &line : lines_of(text)) {
        EXPECT_TRUE(matches(line, "VOX_VERBOSE [^ ]* 1\\.50ms CNR:OFF Dyn:1 .*")) << line;
        result.push_back(line.substr(12, line.find(" 1.50ms") - 12));
    }
    return result;
}

// The same after the one header.
calls logged_calls(const std::string &text) {
    const size_t end = std::min(text.find('\n'), text.size() - 1);
    EXPECT_TRUE(matches(text.substr(0, end), header_pattern)) << text.substr(0, end);
    return calls_in(text.substr(end + 1));
}

CHILD(print_mode) {
    std::printf("%d%d", *vox_serv_verbose_mode(),
                vox_serv_iface_verbose_mode() == vox_serv_verbose_mode());
}
TEST(Verbose, OnlyAWholeNumberEqualToOneTurnsItOn) {
    const std::string zeros(127, '0');
    expect_said(print_mode, "VOX_VERBOSE", {"1", "0x1", "01", "+1", " 1", zeros + "1"}, "11");
    expect_said(print_mode, "VOX_VERBOSE",
                {"", "0", "2", "-1", "1 ", "1x", "1.0", "on", "4294967297", zeros + "01",
                 std::string(100000, '1')},
                "01");
    EXPECT_EQ(run_child(print_mode).out, "01");
}

CHILD_TEST(Verbose, TheSetterHasTheLastWord, {"VOX_VERBOSE", "1"}) {
    const vox_int on = 1, off = 0, bad = 2;
    const int *const mode = vox_serv_verbose_mode();
    CHECK(vox_verbose(0) == 0 && *mode == 0);
    CHECK(vox_verbose(1) == 1 && *mode == 1);
    CHECK(vox_verbose(2) == -1 && *mode == 1);
    CHECK(vox_verbose_(&off) == 0 && *mode == 0);
    CHECK(vox_verbose_(&bad) == -1 && *mode == 0);
    CHECK(VOX_VERBOSE(&on) == 1 && *mode == 1);
}
CHILD_TEST(Verbose, TheSetterMayComeFirst, {"VOX_VERBOSE", "1"}) {
    vox_verbose(0);
    CHECK(*vox_serv_verbose_mode() == 0);
}

CHILD(log_dot_products) {
    const double x[3] = {1, 2, 3};
    const vox_int n = 3, one = 1;
    std::printf("before\n"); // stays in the buffer of a pipe: the lines must come after it
    for (int mode : {1, 0, 1}) {
        vox_verbose(mode);
        errno = 77;
        ddot(&n, x, &one, x, &one);
        std::printf("errno %d\n", errno);
    }
}
TEST(Verbose, ACallPrintsItsLineInTheOrderOfTheOutput) {
    const child_result r = run_child(log_dot_products);
    EXPECT_EQ(r.err, "");
    const auto lines = lines_of(r.out);
    const std::string call = "VOX_VERBOSE DDOT\\(3,0x[0-9a-f]+,1,0x[0-9a-f]+,1\\)" + line_tail;
    const std::string expected[] = {"before",   header_pattern, call,      "errno 77",
                                    "errno 77", call,           "errno 77"};
    ASSERT_EQ(lines.size(), std::size(expected)) << r.out;
    for (size_t i = 0; i < lines.size(); ++i)
        EXPECT_TRUE(matches(lines[i], expected[i])) << lines[i];
}

CHILD(log_settings) {
    vox_set_num_threads(1);
    vox_domain_set_num_threads(3, VOX_DOMAIN_TQM);
    vox_set_dynamic(0);
    vox_disable_fast_mm();
    log_call("F()");
}
TEST(Verbose, ALineShowsTheSettingsInForce) {
    const auto lines = lines_of(run_child(log_settings, {{"VOX_CBWR", "COMPATIBLE"}}).out);
    ASSERT_EQ(lines.size(), 2u);
    EXPECT_EQ(lines[1], "VOX_VERBOSE F() 1.50ms CNR:COMPATIBLE Dyn:0 FastMM:0 TID:0  NThr:1,TQM:3");
}

CHILD(log_one) { log_call("ONE()"); }

// A path of the given length to a file in the directory.
std::string long_path(const temporary_directory &directory, size_t length) {
    std::string path = directory.path();
    const std::string name = (length - path.size()) % 2 ? "/ab" : "/a";
    while (path.size() + name.size() < length)
        path += "/.";
    return path + name;
}

TEST(Verbose, NamesThatCannotBeUsedAreReportedOnce) {
    const temporary_directory directory;
    const std::pair<std::string, std::string> rows[] = {
        {"", too_long_or_empty},
        {long_path(directory, 4095), ""},
        {long_path(directory, 4096), too_long_or_empty},
        {std::string(100000, 'a'), too_long_or_empty},
        {std::string(4000, 'a'), cannot_be_opened},
        {directory.path(), cannot_be_opened},
        {directory / "none/log", cannot_be_opened},
    };
    for (const auto &[name, warning] : rows) {
        const child_result child = run_child(log_one, {{"VOX_VERBOSE_OUTPUT_FILE", name}});
        EXPECT_EQ(child.err, warning) << name.size();
        EXPECT_EQ(logged_calls(warning.empty() ? contents_of(name) : child.out), calls{"ONE()"})
            << name.size();
    }
}

CHILD(change_files) {
    const std::string good = std::string(std::getenv("TEST_DIRECTORY")) + "/good";
    const std::string padded = good + "2   ", endless = std::string(5000, 'a');
    CHECK(vox_serv_verbose_output_file_mode() ==
          std::string(std::getenv("VOX_VERBOSE_OUTPUT_FILE")));
    log_call("A()");
    const auto log_after = [](int failed, const char *call) {
        CHECK((*vox_serv_verbose_output_file_mode() == '\0') == failed);
        log_call(call);
        return failed;
    };
    CHECK(log_after(vox_verbose_output_file(good.c_str()), "B()") == 0);
    CHECK(log_after(vox_serv_verbose_output_file(""), "C()") == 1);
    CHECK(log_after(vox_verbose_output_file_(padded.data(), padded.size()), "D()") == 0);
    CHECK(log_after(vox_verbose_output_file_(endless.data(), endless.size()), "E()") == 1);
    CHECK(log_after(VOX_VERBOSE_OUTPUT_FILE("     ", 5), "F()") == 1);
    CHECK(log_after(vox_verbose_output_file_((good + '\0' + "x").data(), good.size() + 2), "G()") ==
          0);
    CHECK(log_after(vox_verbose_output_file(nullptr), "H()") == 1);
    CHECK(log_after(vox_verbose_output_file_(nullptr, 0), "I()") == 1);
}
TEST(Verbose, TheFileCanBeChangedFromCAndFortran) {
    const temporary_directory directory;
    const std::string first = directory / "first";
    const child_result r = run_child(
        change_files, {{"VOX_VERBOSE_OUTPUT_FILE", first}, {"TEST_DIRECTORY", directory.path()}});
    EXPECT_EQ(logged_calls(contents_of(first)), calls{"A()"});
    EXPECT_EQ(calls_in(contents_of(directory / "good")), (calls{"B()", "G()"})); // appended
    EXPECT_EQ(calls_in(contents_of(directory / "good2")), calls{"D()"});
    EXPECT_EQ(calls_in(r.out), (calls{"C()", "E()", "F()", "H()", "I()"}));
    std::string warnings;
    for (int i = 0; i < 5; ++i)
        warnings += too_long_or_empty;
    EXPECT_EQ(r.err, warnings);
}

CHILD(lose_the_directory) {
    const std::string directory = std::string(std::getenv("TEST_DIRECTORY")) + "/d";
    mkdir(directory.c_str(), 0777);
    vox_verbose_output_file((directory + "/log").c_str());
    log_call("A()");
    std::filesystem::remove_all(directory);
    log_call("B()");
    mkdir(directory.c_str(), 0777);
    log_call("C()");
}
TEST(Verbose, ALineWhoseFileIsGoneGoesToStandardOutput) {
    const temporary_directory directory;
    const child_result r = run_child(lose_the_directory, {{"TEST_DIRECTORY", directory.path()}});
    EXPECT_EQ(r.err, falls_back);
    EXPECT_EQ(calls_in(r.out), calls{"B()"});
    EXPECT_EQ(calls_in(contents_of(directory / "d/log")), calls{"C()"});
}

constexpr int writers = 8, lines_per_writer = 200;

CHILD(log_from_many_threads) {
    on_threads(writers, [](int t) {
        const std::string call = std::string(size_t(20 * t), char('a' + t)) + "()";
        for (int i = 0; i < lines_per_writer; ++i)
            log_call(call.c_str());
    });
}
TEST(Verbose, LinesOfManyThreadsStayWholeAfterOneHeader) {
    const temporary_directory directory;
    const std::string file = directory / "log";
    const std::string outputs[] = {
        run_child(log_from_many_threads).out,
        (run_child(log_from_many_threads, {{"VOX_VERBOSE_OUTPUT_FILE", file}}), contents_of(file))};
    for (const std::string &output : outputs) {
        const calls all = logged_calls(output);
        ASSERT_EQ(all.size(), size_t(writers * lines_per_writer));
        for (int t = 0; t < writers; ++t)
            EXPECT_EQ(std::ranges::count(all, std::string(size_t(20 * t), char('a' + t)) + "()"),
                      lines_per_writer);
    }
}

// The first look at every setting, from many threads at once: one warning, one value.
CHILD(first_look_by_many) {
    on_threads(writers, [](int) {
        CHECK(*vox_serv_verbose_mode() == 1 && !*vox_serv_verbose_output_file_mode());
    });
}
TEST(Verbose, ManyThreadsMayMakeTheFirstCall) {
    expect_said(first_look_by_many, "VOX_VERBOSE_OUTPUT_FILE", {""}, too_long_or_empty,
                {{"VOX_VERBOSE", "1"}});
}

} // namespace
