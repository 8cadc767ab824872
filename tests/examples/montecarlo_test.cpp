// montecarlo_test.cpp - the example montecarlo as a user runs it.
#include <algorithm>

#include "tests/examples/example.hpp"

namespace {

using namespace test;

class Montecarlo : public Example {};

// The program itself compares with the formulas.
TEST_F(Montecarlo, PricesAreRightAndTheSameForAnyNumberOfThreads) {
    std::vector<std::string> prices;
    for (const char *split : {"skip", "leapfrog", "family"}) {
        const child_result one = run({"--split", split, "--paths", "50001"});
        EXPECT_EQ(one.status, 0) << split << one.err;
        EXPECT_EQ(std::count(one.out.begin(), one.out.end(), '\n'), 4) << one.out;
        for (const char *threads : {"2", "4", "7"})
            EXPECT_EQ(run({"--split", split, "--paths", "50001", "--threads", threads}).out,
                      one.out)
                << split;
        prices.push_back(one.out);
    }
    EXPECT_NE(prices[0], prices[1]);
    EXPECT_NE(prices[1], prices[2]);
}

TEST_F(Montecarlo, TheSeedMatters) {
    EXPECT_NE(run({"--paths", "1000", "--seed", "2"}).out, run({"--paths", "1000"}).out);
}

TEST_F(Montecarlo, WrongArgumentsAreOneLineAndStatus2) {
    const struct {
        std::vector<std::string> arguments;
        const char *error;
    } cases[] = {
        {{"--paths", "0"}, "montecarlo: --paths takes a number from 1 to 1000000000, not 0\n"},
        {{"--paths", "1e6"}, "montecarlo: --paths takes .*, not 1e6\n"},
        {{"--paths", "99999999999999999999"}, "montecarlo: --paths takes .*\n"},
        {{"--steps", "-3"}, "montecarlo: --steps takes .*, not -3\n"},
        {{"--threads", "65"}, "montecarlo: --threads takes a number from 1 to 64, not 65\n"},
        {{"--seed", ""}, "montecarlo: --seed takes .*\n"},
        {{"--split", "half"}, "montecarlo: --split takes skip, leapfrog or family, not half\n"},
        {{"--paths"}, ".*option '--paths' requires an argument\n"},
        {{"--colour"}, ".*unrecognized option '--colour'\n"},
        {{"file"}, "montecarlo: unexpected argument file\n"},
    };
    for (const auto &c : cases) {
        const child_result r = run(c.arguments);
        EXPECT_EQ(r.status, 2) << c.error;
        EXPECT_TRUE(matches(r.err, c.error)) << r.err;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    }
    EXPECT_EQ(run({"--help"}).status, 0);
}

} // namespace
