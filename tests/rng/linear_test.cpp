// MCG31M1, MCG59, MRG32K3A, R250 and WH: known answers, rules of seeding, uniform numbers of integers.
#include <cmath>
#include <cstring>
#include <map>

#include "rng/brng/mrg32k3a.hpp"
#include "rng/brng/wh.hpp"
#include "tests/rng/csv.hpp"
#include "tests/rng/generator.hpp"

namespace {

using test::generator;
using test::numbers;

// "2^40+3+1": a sum of numbers and of powers.
uint64_t index_of(const std::string &text) {
    uint64_t sum = 0;
    std::istringstream terms(text);
    for (std::string term; std::getline(terms, term, '+');) {
        const size_t hat = term.find('^');
        uint64_t value = std::stoull(term);
        if (hat != term.npos)
            for (uint64_t base = value, n = std::stoull(term.substr(hat + 1)); n > 1; --n)
                value *= base;
        sum += value;
    }
    return sum;
}

numbers words_of(const std::vector<uint64_t> &values) {
    return numbers(values.begin(), values.end());
}

// What stands at an index of a sequence, reached by skipping and, where that is possible, through all before.
numbers at(int id, const numbers &seed, uint64_t index) {
    generator g(id, seed);
    EXPECT_EQ(g.skip(index), 0);
    const numbers found = g.integers(1);
    if (index <= 1000000) {
        generator walking(id, seed);
        const numbers all = walking.integers(int(index) + 1);
        EXPECT_EQ(numbers(all.end() - g.words(), all.end()), found) << index;
    }
    return found;
}

numbers mcg59_words(uint64_t x) { return {uint32_t(x), uint32_t(x >> 32)}; }

numbers r250_seed(const std::string &name) {
    numbers seed(250);
    uint32_t x = 1;
    for (uint32_t i = 0; i < 250; ++i) {
        x = 1664525 * x + 1013904223;
        seed[i] = name == "lcg1" ? x : (i + 1) * 2654435761u;
    }
    return seed;
}

int rows_checked(const char *file, const char *seed_column, const char *index_column) {
    std::map<std::string, int> checked;
    for (const test::csv_row &row : test::read_csv(file)) {
        const std::string &name = row["generator"], &start = row[seed_column];
        const bool states = file == std::string("basic_kat.csv") && row["kind"] == "state";
        const numbers seed = words_of(row.numbers(seed_column));
        SCOPED_TRACE(name + ' ' + start + ' ' + row[index_column]);
        const uint64_t index = index_of(row[index_column]);
        const std::string &text = row["value"], whole = text.substr(0, text.find("/0."));
        const std::vector<uint64_t> value = test::numbers_in(whole);
        if (name == "MCG31M1") {
            EXPECT_EQ(at(RSK_BRNG_MCG31M1, seed, index), words_of(value));
        } else if (name == "MCG59") {
            EXPECT_EQ(at(RSK_BRNG_MCG59, mcg59_words(row.number(seed_column)), index),
                      mcg59_words(value[0]));
        } else if (name == "MRG32K3A" && !states) {
            EXPECT_EQ(at(RSK_BRNG_MRG32K3A, seed, index - 1), words_of(value));
        } else if (name == "MRG32K3A") {
            generator g(RSK_BRNG_MRG32K3A, seed);
            EXPECT_EQ(g.skip(index), 0);
            numbers state(6);
            std::memcpy(state.data(), &g.object()->state<vox::rng::mrg32k3a_state>(), 24);
            EXPECT_EQ(state, words_of(value));
        } else if (name == "R250") { // counts its seed words, from 1 or from 0
            const numbers words = r250_seed(start);
            const uint64_t first = start == "lcg1" ? 0 : 1;
            if (index < 250 + first) {
                EXPECT_EQ(words[index - first], value[0]);
            } else if (index <= 1000001) {
                generator g(RSK_BRNG_R250, words);
                EXPECT_EQ(g.integers(int(index - 250 - first) + 1).back(), value[0]);
            } else {
                continue; // it cannot skip
            }
        } else if (name == "WH0") {
            EXPECT_EQ(at(RSK_BRNG_WH, seed, index), words_of(value));
            generator g(RSK_BRNG_WH, seed);
            EXPECT_EQ(g.skip(index), 0);
            EXPECT_NEAR(g.doubles(1)[0], std::stod(text.substr(whole.size() + 1)),
                        0x1p-50); // seven roundings of sums below 4
        } else {
            ADD_FAILURE() << "no such generator";
        }
        ++checked[name];
    }
    int least = 1000;
    for (const auto &[name, count] : checked)
        least = std::min(least, count);
    return least;
}

TEST(Linear, KnownAnswers) {
    EXPECT_GE(rows_checked("basic_kat.csv", "seed", "index"), 30);
    EXPECT_GE(rows_checked("lcg_vectors.csv", "start", "n"), 25);
}

TEST(Linear, Mrg32k3aGivesThePublishedUniforms) {
    generator g(RSK_BRNG_MRG32K3A, numbers(6, 12345));
    const std::vector<double> u = g.doubles(2);
    EXPECT_NEAR(u[0], 0.127011122046577, 1e-15);
    EXPECT_NEAR(u[1], 0.318527565396794, 1e-15);
}

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
        {5, {3}, {3}}, // an older number of the second member
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.id << ' ' << &row - rows);
        const int id = row.id == 5 ? RSK_BRNG_WH + 1 : row.id;
        EXPECT_EQ(generator(row.id, row.words).integers(300),
                  generator(id, row.same).integers(300));
    }
}

// 250 seed words are taken as they are; of fewer than that come independent ones.
TEST(Linear, R250SeedsAreIndependent) {
    generator g(RSK_BRNG_R250, {4711});
    const auto *const words = reinterpret_cast<const uint32_t *>(g.object() + 1);
    std::vector<uint32_t> basis;
    for (int i = 0; i < 250; ++i) {
        uint32_t x = words[i];
        for (const uint32_t b : basis)
            x = std::min(x, x ^ b);
        if (x)
            basis.push_back(x);
    }
    EXPECT_EQ(basis.size(), 32u);
    EXPECT_EQ(words[0], 4711 * 69069u);
    EXPECT_EQ(words[1], 4711 * 69069u * 69069u);
    EXPECT_EQ(words[2], 4711 * 69069u * 69069u * 69069u);
    EXPECT_EQ(words[3] >> 31, 1u);
    EXPECT_EQ(words[3 + 14 * 15] >> 1, 1u);
    EXPECT_EQ(words[10 + 14 * 15], 1u);

    generator zeros(RSK_BRNG_R250, numbers(250, 0));
    EXPECT_EQ(zeros.integers(1000), numbers(1000, 0));
}

// Every member follows its own recurrence.
TEST(Linear, MembersOfWh) {
    for (int member : {0, 1, 272}) {
        SCOPED_TRACE(member);
        generator g(RSK_BRNG_WH + member);
        const vox::rng::wh_member &p = vox::rng::wh_member_of(g.object());
        const numbers x = g.integers(200);
        for (size_t i = 0; i + 4 < x.size(); ++i)
            EXPECT_EQ(x[i + 4], uint64_t(x[i]) * p.a[i % 4] % p.m[i % 4]);
    }
    EXPECT_NE(generator(RSK_BRNG_WH).integers(9), generator(RSK_BRNG_WH + 272).integers(9));
}

// Uniforms from the integer outputs, which tests above have checked.
TEST(Linear, UniformsOfIntegers) {
    constexpr int n = 3000;
    const struct {
        int id;
        double (*u)(const uint32_t *);
        float (*v)(const uint32_t *);
    } rows[] = {
        {RSK_BRNG_MCG31M1, [](const uint32_t *x) { return *x * (1.0 / 0x7FFFFFFF); },
         [](const uint32_t *x) { return float(*x >> 7) / 0x1p24f; }},
        {RSK_BRNG_MCG59,
         [](const uint32_t *x) { return double((x[0] | uint64_t(x[1]) << 32) >> 6) / 0x1p53; },
         [](const uint32_t *x) { return float(x[1] >> 3) / 0x1p24f; }},
        {RSK_BRNG_MRG32K3A, [](const uint32_t *x) { return *x * 2.328306549295728e-10; },
         [](const uint32_t *x) { return float(*x >> 8) / 0x1p24f; }},
        {RSK_BRNG_R250, [](const uint32_t *x) { return *x / 0x1p32; },
         [](const uint32_t *x) { return float(*x >> 8) / 0x1p24f; }},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << row.id);
        const numbers x = generator(row.id, {99}).integers(n);
        const std::vector<double> u = generator(row.id, {99}).doubles(n);
        const std::vector<float> v = generator(row.id, {99}).singles(n);
        for (size_t i = 0; i < n; ++i) {
            const uint32_t *const word = &x[i * x.size() / n];
            EXPECT_EQ(u[i], row.u(word)) << i;
            EXPECT_EQ(v[i], row.v(word)) << i;
        }
    }
    const std::vector<double> u = generator(RSK_BRNG_WH, {99}).doubles(n);
    const std::vector<float> v = generator(RSK_BRNG_WH, {99}).singles(n);
    for (size_t i = 0; i < n; ++i)
        EXPECT_EQ(v[i], float(std::floor(u[i] * 0x1p24) / 0x1p24)) << i;
}

// States that cannot be.
TEST(Linear, Validation) {
    const struct {
        int id;
        std::vector<std::pair<size_t, uint32_t>> bad; // a word of the state, and what it cannot be
    } rows[] = {
        {RSK_BRNG_MCG31M1, {{0, 0}, {0, 0x7FFFFFFF}, {1, 0}, {1, 0x80000000}}},
        {RSK_BRNG_MCG59, {{1, 1u << 27}, {3, 1u << 27}}},
        {RSK_BRNG_MRG32K3A, {{0, 4294967087}, {2, ~0u}, {3, 4294944443}, {5, ~0u}}},
        {RSK_BRNG_R250, {{250, 250}, {251, 102}}},
        {RSK_BRNG_WH, {{0, 0}, {0, 16770647}, {3, 16770617}, {4, 0}, {7, 16770617}}},
    };
    for (const auto &row : rows)
        for (const auto &[place, value] : row.bad) {
            SCOPED_TRACE(testing::Message() << std::hex << row.id << ' ' << place << ' ' << value);
            generator g(row.id, {3});
            EXPECT_EQ(g.row.init(vox::rng::validate, g.object(), 0, nullptr), 0);
            reinterpret_cast<uint32_t *>(g.object() + 1)[place] = value;
            EXPECT_EQ(g.row.init(vox::rng::validate, g.object(), 0, nullptr), vox::rng::bad_state);
        }
}

} // namespace
