// PHILOX4X32X10 and ARS5: known answers, carries of the counter, skipping ahead, a processor without AES.
#include <gtest/gtest.h>

#include "rng/brng/ars5.hpp"
#include "rng/brng/instructions.hpp"
#include "rng/brng/philox4x32x10.hpp"
#include "tests/rng/csv.hpp"
#include "tests/rng/generator.hpp"

namespace {

using test::generator;
using vox::rng::counter128;
using words = std::vector<uint32_t>;

struct counter_generator {
    const char *name; // in the tables
    int id;
    int rounds;
    words key;
};

const counter_generator generators[] = {
    {"philox4x32", RSK_BRNG_PHILOX4X32X10, 10, {0x9abcdef0, 0x12345678}},
    {"ars4x32", RSK_BRNG_ARS5, 5, {0x9abcdef0, 0x12345678, 7, 0xfedcba98}},
};

class Counters : public testing::TestWithParam<counter_generator> {
  protected:
    const int id = GetParam().id;

    generator at(counter128 counter) const {
        words seeds = GetParam().key;
        for (int i = 0; i < 4; ++i)
            seeds.push_back(uint32_t(counter >> 32 * i));
        return generator(id, seeds);
    }
    // The words of the blocks from this counter on, each from a stream of its own.
    words blocks(counter128 first, int n) const {
        words all;
        for (int i = 0; i < n; ++i)
            for (uint32_t w : at(first + unsigned(i)).integers(4))
                all.push_back(w);
        return all;
    }
};

INSTANTIATE_TEST_SUITE_P(, Counters, testing::ValuesIn(generators),
                         [](const auto &g) { return g.param.name; });

TEST_P(Counters, GivesTheKnownAnswers) {
    const counter_generator &g = GetParam();
    int rows = 0;
    for (const char *file : {"philox_ars_kat.csv", "philox_ars.csv"})
        for (const test::csv_row &row : test::read_csv(file)) {
            if (row["generator"] != g.name || row.number("rounds") != uint64_t(g.rounds))
                continue;
            words seeds, expected;
            for (size_t i = 0; i < g.key.size(); ++i)
                seeds.push_back(uint32_t(row.number("k" + std::to_string(i), 16)));
            for (int i = 0; i < 4; ++i) {
                seeds.push_back(uint32_t(row.number("c" + std::to_string(i), 16)));
                expected.push_back(uint32_t(row.number("r" + std::to_string(i), 16)));
            }
            EXPECT_EQ(generator(g.id, seeds).integers(4), expected) << file << " row " << rows;
            ++rows;
        }
    EXPECT_GE(rows, 12);
}

TEST_P(Counters, TakesMissingSeedWordsAsZeros) {
    words seeds = GetParam().key;
    seeds.push_back(5);
    words all = seeds;
    all.resize(8);
    EXPECT_EQ(generator(id, seeds).integers(40), generator(id, all).integers(40));
    EXPECT_EQ(generator(id, {}).integers(40), generator(id, words(8)).integers(40));
}

TEST_P(Counters, CarriesTheCounterWhereverABatchMeetsABoundary) {
    for (int bits : {32, 64, 96, 128})
        for (int before = 1; before < 70; before += 3) {
            const counter128 boundary = bits == 128 ? 0 : counter128(1) << bits;
            const counter128 first = boundary - unsigned(before);
            EXPECT_EQ(at(first).integers(4 * 100), blocks(first, 100)) << bits << " " << before;
        }
}

TEST_P(Counters, MakesUniformsOfTheSameWords) {
    const words w = at(3).integers(1000);
    EXPECT_EQ(at(3).doubles(1000), test::as_doubles(w, 0, 1));
    EXPECT_EQ(at(3).doubles(1000, -3, 1e5), test::as_doubles(w, -3, 1e5));
    EXPECT_EQ(at(3).singles(1000), test::as_floats(w, 0, 1));
    EXPECT_EQ(at(3).singles(1000, 2, 7), test::as_floats(w, 2, 7));
}

TEST_P(Counters, ContinuesInTheMiddleOfABlock) {
    const words all = at(9).integers(3000);
    for (int first : {1, 2, 3, 130, 511}) {
        generator g = at(9);
        words got = g.integers(first);
        EXPECT_EQ(g.fill(static_cast<uint32_t *>(nullptr), 0), 0);
        EXPECT_EQ(g.fill(static_cast<uint32_t *>(nullptr), -1), 0);
        for (int n : {1, 1, 2, 3, 5, 64, 127, 700})
            for (uint32_t w : g.integers(n))
                got.push_back(w);
        EXPECT_EQ(got, words(all.begin(), all.begin() + long(got.size()))) << first;
    }
}

TEST_P(Counters, SkipsAsIfNumbersWereDiscarded) {
    for (int drawn : {0, 1, 2, 3, 6})
        for (int skipped : {0, 1, 2, 3, 4, 5, 101}) {
            generator g = at(11), discarding = at(11);
            g.integers(drawn);
            ASSERT_EQ(rskSkipAheadStream(g.handle, uint64_t(skipped)), 0);
            discarding.integers(drawn + skipped);
            EXPECT_EQ(g.integers(50), discarding.integers(50)) << drawn << " " << skipped;
        }
}

TEST_P(Counters, SkipsFarWithCarries) {
    const counter128 start = ~counter128(0) - 5;
    for (uint64_t skipped : {uint64_t(1) << 34, ~uint64_t(0)})
        for (unsigned drawn = 0; drawn < 4; ++drawn) {
            generator g = at(start);
            g.integers(int(drawn));
            ASSERT_EQ(rskSkipAheadStream(g.handle, skipped), 0);
            const counter128 place = counter128(skipped) + drawn; // from the start
            generator there = at(start + place / 4);
            there.integers(int(place % 4));
            EXPECT_EQ(g.integers(20), there.integers(20)) << skipped << " " << drawn;
        }
}

TEST_P(Counters, RefusesWhatItCannotDo) {
    generator g = at(1), same = at(1);
    EXPECT_EQ(rskLeapfrogStream(g.handle, 0, 2), RSK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(g.call(17, 0, {}), RSK_ERROR_UNKNOWN_METHOD);
    EXPECT_EQ(g.integers(9), same.integers(9));
}

TEST(PhiloxState, IsBadWithAPositionBeyondTheBlock) {
    generator g(RSK_BRNG_PHILOX4X32X10, {1});
    g.integers(3);
    EXPECT_EQ(g.call(vox::rng::validate, 0, {}), 0);
    g.object()->state<vox::rng::philox_state>().position = 4;
    EXPECT_EQ(g.call(vox::rng::validate, 0, {}), vox::rng::bad_state);
}

class Ars5 : public testing::Test {
  protected:
    void disallow(uint64_t features) { vox::rng::allowed_features &= ~features; }
    void TearDown() override { vox::rng::allowed_features = ~uint64_t(0); }
};

TEST_F(Ars5, NeedsAes) {
    generator g(RSK_BRNG_ARS5, {1, 2, 3}), same(RSK_BRNG_ARS5, {1, 2, 3});
    disallow(vox::feature_mask(vox::feature::aes));
    EXPECT_EQ(generator(RSK_BRNG_ARS5, {1}).status, RSK_ERROR_NO_INSTRUCTIONS);
    EXPECT_EQ(rskSkipAheadStream(g.handle, 5), RSK_ERROR_NO_INSTRUCTIONS);
    words r(10, 77);
    EXPECT_EQ(g.fill(r.data(), 10), RSK_ERROR_NO_INSTRUCTIONS);
    EXPECT_EQ(r, words(10, 77));
    TearDown();
    EXPECT_EQ(g.integers(10), same.integers(10));
}

TEST_F(Ars5, GivesTheSameNumbersWithoutWideAes) {
    const words wide = generator(RSK_BRNG_ARS5, {1, 2, 3, 4, ~0u, ~0u}).integers(1000);
    disallow(vox::rng::allowed_vaes);
    EXPECT_EQ(generator(RSK_BRNG_ARS5, {1, 2, 3, 4, ~0u, ~0u}).integers(1000), wide);
}

} // namespace
