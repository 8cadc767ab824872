// counters_test.cpp - PHILOX4X32X10 and ARS5: carries of the counter, skipping far.
#include "rng/brng/counter.hpp"
#include "rng/brng/instructions.hpp"
#include "tests/rng/generator.hpp"

namespace {

using namespace test;
using vox::rng::counter128;

class Counters : public testing::TestWithParam<int> {
  protected:
    numbers key() const {
        if (GetParam() == RSK_BRNG_PHILOX4X32X10)
            return {0x9abcdef0, 0x12345678};
        return {0x9abcdef0, 0x12345678, 7, 0xfedcba98};
    }
    generator at(counter128 counter) const {
        numbers seeds = key();
        for (int i = 0; i < 4; ++i)
            seeds.push_back(uint32_t(counter >> 32 * i));
        return generator(GetParam(), seeds);
    }
    // The words of the blocks from this counter on, each from a stream of its own.
    numbers blocks(counter128 first, int n) const {
        numbers all;
        for (int i = 0; i < n; ++i)
            for (uint32_t w : at(first + unsigned(i)).integers(4))
                all.push_back(w);
        return all;
    }
};

INSTANTIATE_TEST_SUITE_P(All, Counters, testing::Values(RSK_BRNG_PHILOX4X32X10, RSK_BRNG_ARS5));

TEST_P(Counters, TakesMissingSeedWordsAsZeros) {
    const int id = GetParam();
    numbers seeds = key();
    seeds.push_back(5);
    numbers all = seeds;
    all.resize(8);
    EXPECT_EQ(generator(id, seeds).integers(40), generator(id, all).integers(40));
    EXPECT_EQ(generator(id, {}).integers(40), generator(id, numbers(8)).integers(40));
}

TEST_P(Counters, CarriesTheCounterWhereverABatchMeetsABoundary) {
    for (int bits : {32, 64, 96, 128})
        for (int before = 1; before < 70; before += 3) {
            const counter128 boundary = bits == 128 ? 0 : counter128(1) << bits;
            const counter128 first = boundary - unsigned(before);
            EXPECT_EQ(at(first).integers(4 * 100), blocks(first, 100)) << bits << " " << before;
        }
}

TEST_P(Counters, SkipsWithCarriesFromAnywhereInABlock) {
    const counter128 start = ~counter128(0) - 5;
    for (uint64_t skipped : {uint64_t(0), uint64_t(1), uint64_t(2), uint64_t(3), uint64_t(101),
                             uint64_t(1) << 34, ~uint64_t(0)})
        for (unsigned drawn = 0; drawn < 7; ++drawn) {
            generator g = at(start);
            g.integers(int(drawn));
            ASSERT_EQ(g.skip(skipped), 0);
            const counter128 place = counter128(skipped) + drawn; // from the start
            generator there = at(start + place / 4);
            there.integers(int(place % 4));
            EXPECT_EQ(g.integers(20), there.integers(20)) << skipped << " " << drawn;
        }
}

TEST(Ars5, GivesTheSameNumbersWithoutWideAes) {
    const numbers wide = generator(RSK_BRNG_ARS5, {1, 2, 3, 4, ~0u, ~0u}).integers(1000);
    vox::rng::allowed_features = ~vox::rng::allowed_vaes;
    EXPECT_EQ(generator(RSK_BRNG_ARS5, {1, 2, 3, 4, ~0u, ~0u}).integers(1000), wide);
    vox::rng::allowed_features = ~uint64_t(0);
}

} // namespace
