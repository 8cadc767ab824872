// twisters_test.cpp - MT19937, SFMT19937 and MT2203: seeding, independent implementations, skipping ahead.
#include <algorithm>
#include <cstring>
#include <ext/random>
#include <random>

#include "rng/brng/mt19937.hpp"
#include "rng/brng/mt2203.hpp"
#include "tests/rng/csv.hpp"
#include "tests/rng/generator.hpp"
#include "tests/support/failing_memory.hpp"

namespace {

using namespace test;

constexpr int last_member = RSK_BRNG_MT2203 + 6023;

TEST(Twisters, ArraysOfSeeds) {
    for (const csv_row &row : read_csv("array_seeds.csv")) {
        SCOPED_TRACE(row["generator"] + ' ' + row["words"]);
        const int id = id_of(row["generator"]) + (row["generator"] == "MT2203" ? 6023 : 0);
        numbers seeds(row.number("words"));
        for (uint32_t i = 0; i < seeds.size(); ++i)
            seeds[i] = 2654435761u * (i + 1);
        const numbers got = generator(id, seeds).integers(1000);
        EXPECT_EQ(numbers(got.begin(), got.begin() + 4), row.numbers<uint32_t>("first"));
        EXPECT_EQ(got[999], row.number("o1000"));
    }
    for (int id : {int(RSK_BRNG_MT19937), int(RSK_BRNG_SFMT19937), last_member})
        EXPECT_EQ(generator(id).integers(9), generator(id, {1}).integers(9));
}

template <class Engine>
void equals_engine(generator g, Engine engine) {
    const numbers got = g.integers(100000);
    for (size_t i = 0; i < got.size(); ++i)
        ASSERT_EQ(got[i], engine()) << "number " << i;
}
template <uint32_t a, uint32_t b, uint32_t c>
using mt2203_engine = std::mersenne_twister_engine<uint32_t, 32, 69, 34, 5, a, 12, 0xFFFFFFFF, 7, b,
                                                   15, c, 18, 1812433253>;

TEST(Twisters, StandardEngines) {
    generator mt(RSK_BRNG_MT19937, {20, 26});
    std::stringstream text; // the only way into the engine's state
    for (uint32_t w : mt.object().state<vox::rng::mt19937_state>().words)
        text << w << ' ';
    text << vox::rng::mt19937_state::size;
    std::mt19937 engine;
    text >> engine;
    equals_engine(std::move(mt), engine);

    equals_engine(generator(RSK_BRNG_SFMT19937, {77}), __gnu_cxx::sfmt19937(77));

    equals_engine(generator(RSK_BRNG_MT2203, {5}),
                  mt2203_engine<0xFB150000, 0x4D6FB780, 0xBBDB0000>(5));
    equals_engine(generator(RSK_BRNG_MT2203 + 2, {0}),
                  mt2203_engine<0xD6080002, 0x9A8E4E80, 0xEFD50000>(0));
    equals_engine(generator(last_member, {~0u}),
                  mt2203_engine<0xA09D1787, 0xB6A8D780, 0xEFCE0000>(~0u));
}

TEST(Mt2203, EveryMemberHasTheParametersOfTheTable) {
    const auto table = read_csv("../../../rng/tables/mt2203.csv");
    ASSERT_EQ(table.size(), 6024u);
    for (const csv_row &row : table) {
        const generator g(RSK_BRNG_MT2203 + int(row.number("id")));
        const vox::rng::mt2203_member &m = g.object().state<vox::rng::mt2203_state>().member;
        ASSERT_TRUE(m.a == row.number("a", 16) && m.b == row.number("b", 16) &&
                    m.c == row.number("c", 16))
            << row["id"];
    }
}

class TwisterSkips : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(All, TwisterSkips, testing::Values(RSK_BRNG_MT19937, RSK_BRNG_SFMT19937));

TEST_P(TwisterSkips, EqualsDiscarding) {
    for (int before : {0, 1, 5, 623, 624, 1001})
        for (int count : {0, 1, 3, 619, 623, 624, 625, 0xFFFFF, 0x100000, 0x100001, 1700001}) {
            generator skipping(GetParam(), {9}), discarding(GetParam(), {9});
            skipping.integers(before);
            ASSERT_EQ(skipping.skip(uint64_t(count)), 0);
            discarding.integers(before + count);
            ASSERT_EQ(skipping.integers(1300), discarding.integers(1300))
                << count << " after " << before;
            ASSERT_EQ(memcmp(&skipping.object(), &discarding.object(),
                             sizeof(vox::rng::stream) + sizeof(vox::rng::mt19937_state)),
                      0)
                << "states of " << count << " after " << before;
        }
}

TEST_P(TwisterSkips, LeavesTheStreamWithoutMemory) {
    generator refused(GetParam()), untouched(GetParam());
    vox_serv_thread_free_buffers();
    refused_request = every_request;
    EXPECT_EQ(refused.skip(0x100000), RSK_ERROR_NO_MEMORY);
    EXPECT_EQ(refused.skip(0xFFFFF), 0) << "steps take none";
    refused_request = 0;
    untouched.integers(0xFFFFF);
    EXPECT_EQ(refused.integers(700), untouched.integers(700));
}

} // namespace
