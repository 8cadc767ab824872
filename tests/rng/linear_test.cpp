// linear_test.cpp - MCG31M1, MCG59, MRG32K3A, R250 and WH: rules of seeding, recurrences, uniforms of their own.
#include <cmath>

#include "rng/brng/wh.hpp"
#include "tests/rng/generator.hpp"

namespace {

using namespace test;

// Seed words that stand for others.
TEST(Linear, SeedWords) {
    constexpr uint32_t m = 0x7FFFFFFF, m1 = 4294967087, m2 = 4294944443;
    const struct {
        int id;
        numbers words, same;
    } rows[] = {
        {RSK_BRNG_MCG31M1, {}, {1}},
        {RSK_BRNG_MCG31M1, {0}, {1}},
        {RSK_BRNG_MCG31M1, {m}, {1}},
        {RSK_BRNG_MCG31M1, {m + 5, 7}, {5}},
        {RSK_BRNG_MCG59, {}, {1}},
        {RSK_BRNG_MCG59, {0}, {1, 0}},
        {RSK_BRNG_MCG59, {0, 1u << 27}, {1}},
        {RSK_BRNG_MCG59, {7, 0xF8000001}, {7, 1}},
        {RSK_BRNG_MRG32K3A, {}, {1, 1, 1, 1, 1, 1}},
        {RSK_BRNG_MRG32K3A, {9, 8, 7, 6}, {9, 8, 7, 6, 1, 1}},
        {RSK_BRNG_MRG32K3A, {0, 0, 0, 0, 0, 0}, {1, 0, 0, 1, 0, 0}},
        {RSK_BRNG_MRG32K3A, {m1, m1, m1, m2, m2, m2}, {1, 0, 0, 1, 0, 0}},
        {RSK_BRNG_MRG32K3A, {m1 + 3, m2, 1, m2 + 3, m2, 1}, {3, m2, 1, 3, 0, 1}},
        {RSK_BRNG_R250, {}, {1}},
        {RSK_BRNG_R250, {0, 5}, {1}},
        {RSK_BRNG_R250, numbers(249, 6), {6}},
        {RSK_BRNG_WH, {}, {1, 1, 1, 1}},
        {RSK_BRNG_WH, {3, 0}, {3, 1, 1, 1}},
        {RSK_BRNG_WH, {16770647, 16770643 + 2, 1, 16770617}, {1, 2, 1, 1}},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.id << ' ' << &row - rows);
        EXPECT_EQ(generator(row.id, row.words).integers(300),
                  generator(row.id, row.same).integers(300));
    }
    EXPECT_EQ(generator(5).integers(300),
              generator(RSK_BRNG_WH + 1).integers(300)); // the older number
}

// 250 seed words are taken as they are; of fewer than that come independent ones.
TEST(Linear, R250FollowsItsRecurrence) {
    numbers x(250);
    for (uint32_t i = 0; i < 250; ++i)
        x[i] = (i + 1) * 2654435761u;
    const numbers got = generator(RSK_BRNG_R250, x).integers(100000);
    for (size_t i = 0; i < got.size(); ++i) {
        x.push_back(x[i] ^ x[i + 147]);
        ASSERT_EQ(got[i], x.back()) << i;
    }
    EXPECT_EQ(generator(RSK_BRNG_R250, numbers(250, 0)).integers(1000), numbers(1000, 0));
}
TEST(Linear, R250SeedsAreIndependent) {
    const generator g(RSK_BRNG_R250, {4711});
    const auto *const words = reinterpret_cast<const uint32_t *>(&g.object() + 1);
    numbers basis;
    for (int i = 0; i < 250; ++i) {
        uint32_t x = words[i];
        for (const uint32_t b : basis)
            x = std::min(x, x ^ b);
        if (x)
            basis.push_back(x);
    }
    EXPECT_EQ(basis.size(), 32u);
}

// Every member follows its own recurrence, and its uniforms are the fractions of sums, after seven roundings of
// sums below 4.
TEST(Linear, MembersOfWh) {
    for (int member : {0, 1, 272}) {
        SCOPED_TRACE(member);
        generator g(RSK_BRNG_WH + member);
        const vox::rng::wh_member &p = vox::rng::wh_member_of(&g.object());
        const std::vector<double> u = generator(RSK_BRNG_WH + member).uniforms<double>(200);
        const std::vector<float> v = generator(RSK_BRNG_WH + member).uniforms<float>(200);
        const numbers x = g.integers(200);
        for (size_t i = 0; i < 200; ++i) {
            long double sum = 0;
            for (size_t j = 0; j < 4; ++j) {
                sum += x[4 * i + j] / (long double)(p.m[j]);
                if (i) {
                    EXPECT_EQ(x[4 * i + j], uint64_t(x[4 * i + j - 4]) * p.a[j] % p.m[j]);
                }
            }
            EXPECT_NEAR(u[i], double(sum - std::floor(sum)), 0x1p-50);
            EXPECT_EQ(v[i], float(std::floor(u[i] * 0x1p24) / 0x1p24)) << i;
        }
    }
    EXPECT_NE(generator(RSK_BRNG_WH).integers(9), generator(RSK_BRNG_WH + 272).integers(9));
}

} // namespace
