// known_answers_test.cpp - what data/known_answers.csv says of generators.
#include <algorithm>

#include "tests/rng/csv.hpp"
#include "tests/rng/generator.hpp"

namespace {

using namespace test;

// Reached by skipping and, where that is possible, through all before.
TEST(KnownAnswers, StandAtTheirPlaces) {
    for (const csv_row &row : read_csv("known_answers.csv")) {
        SCOPED_TRACE(row["generator"] + ' ' + row["seed"] + ' ' + row["skips"]);
        const int id = id_of(row["generator"]);
        const numbers seed = row.numbers<uint32_t>("seed");
        const numbers expected = row.numbers<uint32_t>("numbers");
        const std::vector<uint64_t> skips = row.numbers<uint64_t>("skips");
        generator g(id, seed);
        const int n = int(expected.size()) / g.words();
        for (const uint64_t count : skips)
            ASSERT_EQ(g.skip(count), 0);
        EXPECT_EQ(g.integers(n), expected);
        if (skips[0] <= 1000000) {
            const numbers all = generator(id, seed).integers(int(skips[0]) + n);
            EXPECT_TRUE(std::equal(expected.rbegin(), expected.rend(), all.rbegin()));
        }
    }
}

} // namespace
