// verbose_text_test.cpp - the lines of verbose mode, rule by rule.
#include "serv/verbose_text.hpp"

#include <cfloat>
#include <climits>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <string>

#include "tests/support/child.hpp"
#include "tests/support/temporary.hpp"

namespace {

using namespace test;

constexpr vox::call_facts quiet = {1.5e-3, VOX_CBWR_OFF, 1, 1, 0, 2, {2, 2, 2, 2}};

std::string call_line(const vox::call_facts &facts, const char *call = "DDOT(1)") {
    char text[vox::line_size];
    vox::text_writer line(text, sizeof text);
    vox::add_call_line(line, call, facts);
    EXPECT_EQ(line.length(), std::string(text).size());
    return text;
}

TEST(VerboseText, TheUnitFollowsTheTime) {
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<double, const char *> cases[] = {
        {0.0, "0.00s"},
        {-0.0, "0.00s"},
        {-1e-3, "0.00s"},
        {-inf, "0.00s"},
        {std::nan(""), "0.00s"},
        {DBL_TRUE_MIN, "0ns"},
        {4e-10, "0ns"},
        {123.4e-9, "123ns"},
        {1e-6, "1000ns"},
        {std::nextafter(1e-6, 1), "1.00us"},
        {999.999e-6, "1000.00us"},
        {1e-3, "1000.00us"},
        {std::nextafter(1e-3, 1), "1.00ms"},
        {1.5e-3, "1.50ms"},
        {1.0, "1000.00ms"},
        {std::nextafter(1.0, 2), "1.00s"},
        {1.115, "1.11s"},
        {86400.0, "86400.00s"},
        {inf, "infs"},
    };
    for (const auto &[seconds, expected] : cases) {
        vox::call_facts facts = quiet;
        facts.seconds = seconds;
        EXPECT_EQ(call_line(facts), std::string("VOX_VERBOSE DDOT(1) ") + expected +
                                        " CNR:OFF Dyn:1 FastMM:1 TID:0  NThr:2\n");
    }
}

TEST(VerboseText, EveryBranchHasItsWord) {
    // The words themselves: cpu_choice_test.
    const std::pair<int, const char *> cases[] = {
        {1, "OFF"}, {2, "AUTO"}, {10, "AVX2"}, {13, "AVX512_ZEL_E1"}, {0, "?0"},
        {5, "?5"},  {14, "?e"},  {63, "?3f"},  {-1, "?ffffffff"}};
    for (const auto &[branch, word] : cases) {
        vox::call_facts facts = quiet;
        facts.branch = branch;
        EXPECT_NE(call_line(facts).find(std::string(" CNR:") + word + " Dyn"), std::string::npos)
            << branch;
    }
}

TEST(VerboseText, SettingsAndTheDomainsThatDiffer) {
    vox::call_facts facts = {1.5e-3, VOX_CBWR_OFF, 0, 0, 7, 2, {2, 1, 2, 16}};
    EXPECT_EQ(call_line(facts), "VOX_VERBOSE DDOT(1) 1.50ms CNR:OFF Dyn:0 FastMM:0 TID:7  "
                                "NThr:2,FFT:1,PARDISO:16\n");
    facts.thread = 128;
    facts.threads = 8;
    EXPECT_EQ(call_line(facts), "VOX_VERBOSE DDOT(1) 1.50ms CNR:OFF Dyn:0 FastMM:0 TID:128 "
                                "NThr:8,BLAS:2,FFT:1,TQM:2,PARDISO:16\n");
}

// Nothing that a line can hold makes it lose its end.
TEST(VerboseText, TheLongestLineIsWhole) {
    const std::string call(10000, 'x');
    const std::string line = call_line(
        {DBL_MAX, -1, INT_MIN, INT_MIN, INT_MIN, INT_MIN, {-INT_MAX, -INT_MAX, -INT_MAX, -INT_MAX}},
        call.c_str());
    const std::string end = "NThr:-2147483648,BLAS:-2147483647,FFT:-2147483647,TQM:-2147483647,"
                            "PARDISO:-2147483647\n";
    ASSERT_GT(line.size(), end.size());
    EXPECT_EQ(line.substr(line.size() - end.size()), end);
    EXPECT_EQ(line.substr(0, 512), "VOX_VERBOSE " + std::string(500, 'x'));
    EXPECT_EQ(call_line(quiet, nullptr).substr(0, 20), "VOX_VERBOSE  1.50ms ");
}

std::string header(vox_version version, double ghz, int interface_kind) {
    char text[vox::line_size];
    vox::text_writer line(text, sizeof text);
    vox::add_header_line(line, version, ghz, interface_kind);
    return text;
}

TEST(VerboseText, TheHeader) {
    vox_version version = {2018, 0, 2, "Product", "20180127", "Some processors", "Some platform"};
    const std::string front = "VOX_VERBOSE Quarn(R) VOX 2018.0";
    const std::string middle =
        " Product build 20180127 for Some platform Some processors, Lnx 2.45GHz";
    const std::pair<int, const char *> words[] = {
        {0, ""},          {1, " lp64"},           {2, " ilp64"},   {-1, " cdecl"},
        {-2, " stdcall"}, {-3, " ifacefffffffd"}, {17, " iface11"}};
    for (const auto &[kind, word] : words)
        EXPECT_EQ(header(version, 2.449, kind),
                  front + " Update 2" + middle + word + " quarn_thread\n");
    version.update = 0;
    EXPECT_EQ(header(version, 2.449, 0), front + middle + " quarn_thread\n");
}

CHILD(line_under_a_decimal_comma) {
    char number[16];
    if (!std::setlocale(LC_ALL, "comma"))
        std::printf("no locale ");
    std::snprintf(number, sizeof number, "%.1f ", 2.5);
    std::printf("%s%s%s", number, call_line(quiet).c_str(),
                header({1, 0, 0, "", "", "", ""}, 2.45, 0).c_str());
}
TEST(VerboseText, NumbersHaveAPointInEveryLocale) {
    const temporary_directory locales;
    const child_result made =
        run_program({"localedef", "--no-archive", "-i", "de_DE", "-f", "UTF-8", locales / "comma"});
    ASSERT_EQ(made.status, 0) << made.err;
    const std::string out =
        run_child(line_under_a_decimal_comma, {{"LOCPATH", locales.path()}}).out;
    EXPECT_EQ(out.substr(0, 4), "2,5 ");
    EXPECT_NE(out.find(" 1.50ms "), std::string::npos) << out;
    EXPECT_NE(out.find(" 2.45GHz "), std::string::npos) << out;
}

} // namespace
