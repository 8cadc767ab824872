// MT19937, SFMT19937 and MT2203: known answers, independent implementations, skipping ahead.
#include <algorithm>
#include <ext/random>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

#include "rng/brng/mt19937.hpp"
#include "rng/brng/mt2203.hpp"
#include "rng/brng/sfmt19937.hpp"
#include "rng/registry.hpp"
#include "tests/rng/csv.hpp"
#include "tests/support/failing_memory.hpp"
#include "vox/rsk.h"

namespace {

using namespace vox::rng;
using numbers = std::vector<uint32_t>;

constexpr int last_member = RSK_BRNG_MT2203 + 6023;

class twister {
  public:
    explicit twister(int id, const numbers &seeds = {}) {
        EXPECT_EQ(rskNewStreamEx(&handle_, id, int(seeds.size()), seeds.data()), 0);
        EXPECT_EQ(rskGetBrngProperties(id, &row_), 0);
    }
    ~twister() { rskDeleteStream(&handle_); }
    twister(const twister &) = delete;
    twister &operator=(const twister &) = delete;

    numbers next(size_t n) {
        numbers r(n);
        EXPECT_EQ(row_.integers(&object(), int(n), r.data()), 0);
        return r;
    }
    int skip(uint64_t n) { return rskSkipAheadStream(handle_, n); }
    int leapfrog() { return rskLeapfrogStream(handle_, 1, 3); }
    bool valid() { return row_.init(validate, &object(), 0, nullptr) == ok; }
    stream &object() { return *reinterpret_cast<stream *>(handle_); }

  private:
    rskStream handle_ = nullptr;
    brng_properties row_{};
};

numbers of_row(const test::csv_row &row, int count) {
    numbers r;
    for (int i = 1; i <= count; ++i)
        r.push_back(uint32_t(row.number("o" + std::to_string(i))));
    return r;
}

// The values of the rows whose key is prefix0, prefix1, ...
numbers of_keys(const char *file, const std::string &prefix) {
    numbers r;
    for (const auto &row : test::read_csv(file))
        if (row["key"] == prefix + std::to_string(r.size()))
            r.push_back(uint32_t(row.number("value")));
    return r;
}

numbers seed_array(size_t words) {
    numbers seeds(words);
    for (size_t i = 0; i < words; ++i)
        seeds[i] = uint32_t(2654435761u * (i + 1));
    return seeds;
}

TEST(Twisters, PublishedNumbers) {
    const struct {
        int id;
        numbers seeds;
        const char *file, *prefix;
    } rows[] = {
        {RSK_BRNG_MT19937, {0x123, 0x234, 0x345, 0x456}, "mt19937.csv", "array_"},
        {RSK_BRNG_SFMT19937, {1234}, "sfmt19937.csv", "seed1234_"},
        {RSK_BRNG_SFMT19937, {0x1234, 0x5678, 0x9abc, 0xdef0}, "sfmt19937.csv", "array_"},
    };
    for (const auto &row : rows) {
        const numbers expected = of_keys(row.file, row.prefix);
        ASSERT_GE(expected.size(), 8u);
        EXPECT_EQ(twister(row.id, row.seeds).next(expected.size()), expected) << row.prefix;
    }
}

TEST(Twisters, ArraysOfSeeds) {
    for (const auto &row : test::read_csv("array_seeds.csv")) {
        const int id = row["generator"] == "mt19937"     ? RSK_BRNG_MT19937
                       : row["generator"] == "sfmt19937" ? RSK_BRNG_SFMT19937
                                                         : last_member;
        const numbers got = twister(id, seed_array(row.number("words"))).next(1000);
        EXPECT_TRUE(std::ranges::equal(of_row(row, 4), numbers(got.begin(), got.begin() + 4)) &&
                    got[999] == row.number("o1000"))
            << row["generator"] << ' ' << row["words"];
    }
    for (int id : {int(RSK_BRNG_MT19937), int(RSK_BRNG_SFMT19937), last_member})
        EXPECT_EQ(twister(id).next(9), twister(id, {1}).next(9)) << "no seed is the seed 1";
}

template <class Engine>
void equals_engine(twister &t, Engine engine) {
    const numbers got = t.next(100000);
    for (size_t i = 0; i < got.size(); ++i)
        ASSERT_EQ(got[i], engine()) << "number " << i;
}
template <uint32_t a, uint32_t b, uint32_t c>
using mt2203_engine = std::mersenne_twister_engine<uint32_t, 32, 69, 34, 5, a, 12, 0xFFFFFFFF, 7, b,
                                                   15, c, 18, 1812433253>;

TEST(Twisters, StandardEngines) {
    twister mt(RSK_BRNG_MT19937, {20, 26});
    std::stringstream text; // the only way into the engine's state
    for (uint32_t w : mt.object().state<mt19937_state>().words)
        text << w << ' ';
    text << mt19937_state::size;
    std::mt19937 engine;
    text >> engine;
    equals_engine(mt, engine);

    twister sfmt(RSK_BRNG_SFMT19937, {77});
    equals_engine(sfmt, __gnu_cxx::sfmt19937(77));

    twister first(RSK_BRNG_MT2203, {5}), third(RSK_BRNG_MT2203 + 2, {0}), last(last_member, {~0u});
    equals_engine(first, mt2203_engine<0xFB150000, 0x4D6FB780, 0xBBDB0000>(5));
    equals_engine(third, mt2203_engine<0xD6080002, 0x9A8E4E80, 0xEFD50000>(0));
    equals_engine(last, mt2203_engine<0xA09D1787, 0xB6A8D780, 0xEFCE0000>(~0u));
}

TEST(Mt2203, MembersAsComputedElsewhere) {
    numbers got;
    std::string stream;
    for (const auto &row : test::read_csv("mt2203_vectors.csv")) {
        if (row["id"] + "/" + row["seed"] != stream) {
            stream = row["id"] + "/" + row["seed"];
            got = twister(RSK_BRNG_MT2203 + int(row.number("id")), {uint32_t(row.number("seed"))})
                      .next(10000);
        }
        ASSERT_EQ(got[row.number("n")], row.number("value")) << stream << ' ' << row["n"];
    }
}

TEST(Mt2203, EveryMemberHasTheParametersOfTheTable) {
    const auto table = test::read_csv("../../../rng/tables/mt2203.csv");
    ASSERT_EQ(table.size(), 6024u);
    for (const auto &row : table) {
        const auto of = [&](const char *column) { return uint32_t(row.number(column, 16)); };
        twister t(RSK_BRNG_MT2203 + int(row.number("id")));
        const mt2203_member &m = t.object().state<mt2203_state>().member;
        ASSERT_TRUE(m.a == of("a") && m.b == of("b") && m.c == of("c")) << row["id"];
    }
}

TEST(TwisterSkip, KnownNumbers) {
    const struct {
        int id;
        numbers seeds;
        const char *file;
        int unit, count;
    } rows[] = {
        {RSK_BRNG_MT19937, {0x123, 0x234, 0x345, 0x456}, "mt19937_skip_kat.csv", 1, 5},
        {RSK_BRNG_SFMT19937, {1234}, "sfmt19937_skip_kat.csv", 4, 8},
    };
    for (const auto &generator : rows)
        for (const auto &row : test::read_csv(generator.file)) {
            twister t(generator.id, generator.seeds);
            const bool beyond_64_bits = row["skip"] == "18446744073709551616";
            for (int i = 0; i < generator.unit; ++i) {
                ASSERT_EQ(t.skip(beyond_64_bits ? ~uint64_t(0) : row.number("skip")), 0);
                ASSERT_EQ(t.skip(beyond_64_bits), 0);
            }
            EXPECT_EQ(t.next(size_t(generator.count)), of_row(row, generator.count))
                << generator.file << ' ' << row["skip"];
        }
}

class TwisterSkips : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(All, TwisterSkips, testing::Values(RSK_BRNG_MT19937, RSK_BRNG_SFMT19937));

TEST_P(TwisterSkips, EqualsDiscarding) {
    for (size_t before : {0, 1, 5, 623, 624, 1001})
        for (uint64_t count : {0, 1, 3, 619, 623, 624, 625, 0xFFFFF, 0x100000, 0x100001, 1700001}) {
            twister skipping(GetParam(), {9}), discarding(GetParam(), {9});
            skipping.next(before);
            ASSERT_EQ(skipping.skip(count), 0);
            discarding.next(before + count);
            ASSERT_EQ(skipping.next(1300), discarding.next(1300)) << count << " after " << before;
            ASSERT_EQ(memcmp(&skipping.object(), &discarding.object(),
                             sizeof(stream) + sizeof(mt19937_state)),
                      0)
                << "states of " << count << " after " << before;
        }
}

TEST_P(TwisterSkips, Compose) {
    const uint64_t pairs[][2] = {{0x100000, 0x100000},
                                 {uint64_t(1) << 40, 12345},
                                 {987654321987654321, uint64_t(1) << 63},
                                 {~uint64_t(0) - 0x200000, 0x200000}};
    for (const auto &[a, b] : pairs) {
        twister twice(GetParam()), once(GetParam());
        twice.next(11);
        once.next(11);
        ASSERT_TRUE(twice.skip(a) == 0 && twice.skip(b) == 0 && once.skip(a + b) == 0);
        EXPECT_EQ(twice.next(700), once.next(700)) << a << " + " << b;
    }
}

TEST_P(TwisterSkips, LeavesTheStreamWithoutMemory) {
    twister refused(GetParam()), untouched(GetParam());
    vox_serv_thread_free_buffers();
    test::refused_request = test::every_request;
    EXPECT_EQ(refused.skip(0x100000), RSK_ERROR_NO_MEMORY);
    EXPECT_EQ(refused.skip(0xFFFFF), 0) << "steps take none";
    test::refused_request = 0;
    untouched.next(0xFFFFF);
    EXPECT_EQ(refused.next(700), untouched.next(700));
}

TEST(TwisterSkip, Refused) {
    for (int id : {int(RSK_BRNG_MT19937), int(RSK_BRNG_SFMT19937), last_member}) {
        twister t(id), same(id);
        EXPECT_EQ(t.leapfrog(), RSK_ERROR_NO_LEAPFROG);
        if (id == last_member) {
            EXPECT_EQ(t.skip(1), RSK_ERROR_NO_SKIPAHEAD);
        }
        EXPECT_EQ(t.next(700), same.next(700));
    }
}

// What a file may bring: the state is checked before a routine works with it.
template <class State>
void knows_its_states(int id) {
    for (int position : {-1, 0, State::size + 1, INT32_MAX}) {
        twister t(id);
        t.object().state<State>().position = position;
        EXPECT_FALSE(t.valid()) << std::hex << id << " position " << position;
    }
    twister t(id), early(id);
    State &state = t.object().state<State>();
    EXPECT_TRUE(t.valid());
    early.next(1);
    EXPECT_TRUE(early.valid());
    std::ranges::fill(state.words, 0u);
    EXPECT_FALSE(t.valid());
    if constexpr (requires { State::upper; }) {
        state.words[0] = ~State::upper; // no part of the state
        EXPECT_FALSE(t.valid());
    }
    state.words[State::size - 1] = 1;
    EXPECT_TRUE(t.valid());
    if constexpr (requires { state.member; }) {
        state.member.b ^= 0x80;
        EXPECT_FALSE(t.valid());
    }
}

TEST(Twisters, KnowTheirStates) {
    knows_its_states<mt19937_state>(RSK_BRNG_MT19937);
    knows_its_states<sfmt19937_state>(RSK_BRNG_SFMT19937);
    knows_its_states<mt2203_state>(last_member);
}

} // namespace
