// nondeterm_test.cpp - NONDETERM: what can be said of numbers that nobody can repeat.
#include <algorithm>
#include <set>

#include "rng/brng/nondeterm.hpp"
#include "tests/rng/generator.hpp"

namespace {

using namespace test;

constexpr int id = RSK_BRNG_NONDETERM;

TEST(Nondeterm, TakesTheRetryLimitFromTheSecondSeedWord) {
    const auto retries = [](const numbers &seeds) {
        return generator(id, seeds).object().state<vox::rng::nondeterm_state>().retries;
    };
    EXPECT_EQ(retries({}), 10u);
    EXPECT_EQ(retries({5}), 10u);
    EXPECT_EQ(retries({5, 0}), 10u);
    EXPECT_EQ(retries({5, 3}), 3u);
    EXPECT_EQ(retries({5, ~0u, 9}), ~0u);
}

TEST(Nondeterm, TriesOnceAndAgainUpToTheLimit) {
    for (uint32_t limit : {1u, 10u})
        for (uint32_t failures = 0; failures <= 12; ++failures) {
            uint32_t tries = 0;
            uint64_t bits = 0;
            const auto source = [&](uint64_t *out) {
                *out = 42;
                return ++tries > failures;
            };
            EXPECT_EQ(vox::rng::draw_with_retries(source, limit, &bits), failures <= limit);
            EXPECT_EQ(tries, std::min(failures, limit) + 1);
        }
}

TEST(Nondeterm, GivesExactlyAsManyNumbersAsAskedForAndNeverTheSame) {
    generator g(id);
    std::set<uint32_t> seen;
    for (int n = 0; n < 40; ++n) {
        std::vector<uint32_t> r(41, 0);
        ASSERT_EQ(g.fill(r.data(), n), 0);
        for (int i = n; i < 41; ++i)
            EXPECT_EQ(r[i], 0u);
        seen.insert(r.begin(), r.begin() + n);
    }
    EXPECT_GE(seen.size(), 775u); // of 780; five equal pairs: once in 10^22 runs
}

} // namespace
