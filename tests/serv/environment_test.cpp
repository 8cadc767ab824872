// environment_test.cpp - the bounded reader and the two number parsers.
#include "serv/environment.hpp"

#include <climits>
#include <cstdio>
#include <gtest/gtest.h>
#include <string>

#include "tests/support/child.hpp"

namespace {

using namespace test;

CHILD(read_variable) {
    const vox::env_value<30> value("VOX_TEST_VARIABLE");
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

TEST(Environment, ParsesDigitsOnly) {
    int value = -7;
    for (const char *text : {"", " 4", "4 ", "+4", "-4", "4x", "0x4", "4.0"})
        EXPECT_FALSE(vox::parse_digits(text, &value)) << text;
    EXPECT_EQ(value, -7);
    const std::pair<const char *, int> good[] = {{"0", 0},
                                                 {"007", 7},
                                                 {"2147483647", INT_MAX},
                                                 {"2147483648", INT_MAX},
                                                 {"99999999999999999999999999", INT_MAX}};
    for (const auto &[text, expected] : good) {
        EXPECT_TRUE(vox::parse_digits(text, &value)) << text;
        EXPECT_EQ(value, expected) << text;
    }
}

TEST(Environment, ParsesOneIntegerAndNothingAfterIt) {
    long long value = 0;
    for (const char *text : {"", " ", "x", "1 ", "1x", "1.5", "--1"})
        EXPECT_FALSE(vox::parse_integer(text, 10, &value)) << text;
    EXPECT_TRUE(vox::parse_integer(" -12", 10, &value));
    EXPECT_EQ(value, -12);
    EXPECT_TRUE(vox::parse_integer("0x1", 0, &value));
    EXPECT_EQ(value, 1);
    EXPECT_TRUE(vox::parse_integer("99999999999999999999", 10, &value));
    EXPECT_EQ(value, LLONG_MAX);
}

} // namespace
