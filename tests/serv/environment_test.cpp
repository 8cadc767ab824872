// environment_test.cpp - the bounded reader, and the words in which the environment speaks about
// threads. Other numbers from it: memory_test, verbose_test, cpu_test.
#include "serv/environment.hpp"

#include <climits>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "serv/thread_environment.hpp"
#include "tests/support/child.hpp"

namespace {

using namespace test;
using namespace vox;

CHILD(read_variable) {
    const env_value<30> value("VOX_TEST_VARIABLE");
    std::printf("%d[%s]", int(value.state), value.text);
}

TEST(Environment, ReadsAtMostItsBoundAndNeverCutsAValue) {
    EXPECT_EQ(run_child(read_variable).out, "0[]");
    const std::string longest(30, 'a');
    for (const std::string &value : {std::string(), std::string(" 4 "), longest})
        expect_said(read_variable, "VOX_TEST_VARIABLE", {value}, "1[" + value + "]");
    expect_said(read_variable, "VOX_TEST_VARIABLE", {longest + "7", std::string(100000, '7')},
                "2[]");
}

const std::string junk(100000, '7');

TEST(ThreadEnvironment, ReadsEachKindOfNumber) {
    const struct {
        const char *text;
        int threads, stripes, processes, level; // -1: nothing said
    } cases[] = {
        {"", -1, -1, -1, 0},
        {"0", -1, 0, 0, 0},
        {"000", -1, 0, 0, 0},
        {"1", 1, 1, 1, 1},
        {"007", 7, 7, 7, 0},
        {"3", 3, 3, 3, 3},
        {"4", 4, 4, 4, 0},
        {"2147483648", INT_MAX, INT_MAX, INT_MAX, 0},
        {junk.c_str(), INT_MAX, INT_MAX, INT_MAX, 0},
        {"4x", 1, -1, -1, 0},
        {"0x4", 1, -1, -1, 0},
        {"4.0", 1, -1, -1, 0},
        {"4 ", 1, -1, -1, 0},
        {" 4", 1, -1, 4, 0},
        {"+4", 1, -1, 4, 0},
        {"-4", 1, -1, -1, 0},
        {"\"4\"", 1, -1, -1, 0},
        {"4,2", 1, -1, -1, 0},
        {"0:1:2", 1, -1, -1, 0},
        {" ", 1, -1, -1, 0},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(parse_thread_count(c.text), c.threads) << c.text;
        EXPECT_EQ(parse_stripes(c.text), c.stripes) << c.text;
        EXPECT_EQ(parse_process_count(c.text), c.processes) << c.text;
        EXPECT_EQ(parse_mpi_thread_level(c.text), c.level) << c.text;
    }
}

TEST(ThreadEnvironment, OnlyTheFirstWordFalseTurnsTheDynamicFlagOff) {
    for (const char *text : {"FALSE", "false", "  false", "\"FALSE\"", "' false x'", "FALSE TRUE"})
        EXPECT_EQ(parse_dynamic(text), 0) << text;
    for (const char *text : {"", "TRUE", "False", "fALSE", "falsely", "fals", "0", "no", ",false",
                             "false;", "TRUE FALSE", junk.c_str()})
        EXPECT_EQ(parse_dynamic(text), 1) << text;
}

TEST(ThreadEnvironment, ReadsTheListOfDomains) {
    using counts = std::vector<int>; // all, BLAS, FFT, TQM, PARDISO
    const struct {
        const char *text;
        counts expected;
    } cases[] = {
        {"", {-1, -1, -1, -1, -1}},
        {" ,;:\"'", {-1, -1, -1, -1, -1}},
        {"VOX_DOMAIN_ALL=2, VOX_DOMAIN_BLAS=4", {2, 4, -1, -1, -1}},
        {"VOX_DOMAIN_BLAS 3;VOX_DOMAIN_FFT=", {-1, 3, 1, -1, -1}},
        {"VOX_DOMAIN_TQM=5:VOX_DOMAIN_PARDISO=6", {-1, -1, -1, 5, 6}},
        {"\"VOX_DOMAIN_FFT = = 7\" 'VOX_DOMAIN_TQM==8'", {-1, -1, 7, 8, -1}},
        // No number counts as 1, less than 1 as nothing, and the first entry wins.
        {"VOX_DOMAIN_BLAS=4x,VOX_DOMAIN_FFT=-2,VOX_DOMAIN_TQM=+3", {-1, 1, 1, 1, -1}},
        {"VOX_DOMAIN_BLAS", {-1, 1, -1, -1, -1}},
        {"VOX_DOMAIN_BLAS,3", {-1, 1, -1, -1, -1}},
        {"VOX_DOMAIN_BLAS=\"4\"", {-1, 1, -1, -1, -1}},
        {"VOX_DOMAIN_BLAS=0,VOX_DOMAIN_BLAS=2,VOX_DOMAIN_BLAS=9", {-1, 2, -1, -1, -1}},
        {"VOX_DOMAIN_BLAS=99999999999999999999", {-1, INT_MAX, -1, -1, -1}},
        {"VOX_DOMAIN_BLAS VOX_DOMAIN_FFT=3", {-1, 1, -1, -1, -1}}, // the value is no number
        // Unknown names go with their values.
        {"FOO=9 BLAS=8 vox_domain_blas=7 VOX_DOMAIN_BLAS2=6 VOX_DOMAIN_FFT=5", {-1, -1, 5, -1, -1}},
        {"=4,VOX_DOMAIN_FFT=5", {-1, -1, 5, -1, -1}},
        {junk.c_str(), {-1, -1, -1, -1, -1}},
    };
    for (const auto &c : cases) {
        thread_environment e;
        parse_domain_counts(c.text, e.threads);
        EXPECT_EQ(counts(e.threads, e.threads + domain_count), c.expected) << c.text;
    }
}

} // namespace
