// sequences_test.cpp - what holds for every generator: requests may be split and mixed, all kernel sets give the same bits, skipping
// is discarding, leapfrogging is sub-sampling, uniform numbers stay in their interval.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>

#include "rng/brng/instructions.hpp"
#include "serv/kernel_sets.hpp"
#include "tests/rng/generator.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/temporary.hpp"

namespace {

using namespace test;

enum ability { no, yes, by_coordinate };

struct sequence {
    const char *name;
    int id;
    numbers seed;
    ability leapfrog, skip;
    int skip_unit = 1; // counts that are skipped are multiples of it
    bool repeats = true;

    generator start() const {
        generator g(id, seed);
        EXPECT_EQ(g.status, 0);
        return g;
    }
};

const sequence sequences[] = {
    {"mcg31m1", RSK_BRNG_MCG31M1, {777}, yes, yes},
    {"r250", RSK_BRNG_R250, {777}, no, no},
    {"mrg32k3a", RSK_BRNG_MRG32K3A, {777, 778, 779, 780}, no, yes},
    {"mcg59", RSK_BRNG_MCG59, {777, 778}, yes, yes},
    {"wh0", RSK_BRNG_WH, {777, 778}, yes, yes},
    {"wh272", RSK_BRNG_WH + 272, {}, yes, yes},
    {"mt19937", RSK_BRNG_MT19937, {777}, no, yes},
    {"mt2203_0", RSK_BRNG_MT2203, {777}, no, no},
    {"mt2203_6023", RSK_BRNG_MT2203 + 6023, {777, 778}, no, no},
    {"sfmt19937", RSK_BRNG_SFMT19937, {777}, no, yes},
    {"sobol", RSK_BRNG_SOBOL, {10}, by_coordinate, by_coordinate, 10},
    {"niederr", RSK_BRNG_NIEDERR, {318}, by_coordinate, by_coordinate, 318},
    {"nondeterm", RSK_BRNG_NONDETERM, {}, no, no, 1, false},
    {"ars5", RSK_BRNG_ARS5, {1, 2, 3, 4, 5, 6, 7, ~0u}, no, yes},
    {"philox4x32x10", RSK_BRNG_PHILOX4X32X10, {1, 2, 3, ~0u, ~0u, ~0u}, no, yes},
};

// One type of output: the numbers of a sequence from its beginning, and whether a further request gives those
// from `from` on, written no farther than where they belong.
template <class T>
struct output {
    output(const sequence &s, int n)
        : per_number(std::is_same_v<T, uint32_t> ? s.start().words() : 1),
          all(size_t(n * per_number)) {
        EXPECT_EQ(s.start().fill(all.data(), n), 0);
    }
    bool gives(generator &g, int from, int n) const {
        const int before = 16, count = n * per_number;
        const guarded<T> r(std::vector<T>(size_t(before + count), T(7)), edge::back);
        T *const first = r.data() + before;
        return g.fill(first, n) == 0 && std::count(r.data(), first, T(7)) == before &&
               std::equal(first, first + count, all.begin() + from * per_number);
    }

    int per_number;
    std::vector<T> all;
};

struct outputs {
    outputs(const sequence &s, int n) : integers(s, n), singles(s, n), doubles(s, n) {}
    bool gives(int type, generator &g, int from, int n) const {
        return type == 0   ? integers.gives(g, from, n)
               : type == 1 ? singles.gives(g, from, n)
                           : doubles.gives(g, from, n);
    }
    output<uint32_t> integers;
    output<float> singles;
    output<double> doubles;
};
constexpr int types = 3, mixed = 3;

template <class Body>
void for_each(bool only_repeating, const Body &body) {
    for (const sequence &s : sequences)
        if (s.repeats || !only_repeating) {
            SCOPED_TRACE(s.name);
            body(s);
        }
}

TEST(Sequences, RunOnTheSetThatWasAskedFor) {
    const char *running = nullptr;
#define NAME(set, ...)                                                                             \
    if (vox::this_kernel_set() == vox::kernel_set::set)                                            \
        running = #set;
    VOX_KERNEL_SETS(NAME)
#undef NAME
    const char *const wanted = std::getenv("VOX_TEST_SET");
    EXPECT_STREQ(running, wanted ? wanted : running);
}

TEST(Sequences, Splits) {
    constexpr int n = 12000;
    std::vector<int> ladder; // every remainder and alignment
    for (int i = 0; i <= 140; ++i)
        ladder.push_back(i);
    const std::vector<int> patterns[] = {
        {1}, {3}, {7}, {1000}, {5, 1, 2048, 17, 250, 0, 623, 64, 4097, 128}, ladder};
    for_each(true, [&](const sequence &s) {
        const outputs reference(s, n);
        for (const std::vector<int> &pattern : patterns)
            for (int type = 0; type <= mixed; ++type) {
                SCOPED_TRACE(testing::Message() << "type " << type << ", " << pattern.size()
                                                << " sizes, " << pattern[0]);
                generator g = s.start();
                const int end = pattern.size() > 1 || pattern[0] > 100 ? n : 2500;
                for (int from = 0, i = 0; from < end; ++i) {
                    const int piece = std::min(pattern[size_t(i) % pattern.size()], end - from);
                    ASSERT_TRUE(reference.gives(type == mixed ? i % types : type, g, from, piece))
                        << piece << " from " << from;
                    from += piece;
                }
            }
    });
}

TEST(Sequences, NothingAndRefusalsChangeNothing) {
    for_each(false, [](const sequence &s) {
        generator g = s.start();
        for (int n : {0, -1, -2147483647 - 1}) {
            EXPECT_EQ(g.fill(static_cast<uint32_t *>(nullptr), n), 0);
            EXPECT_EQ(g.fill(static_cast<float *>(nullptr), n), 0);
            EXPECT_EQ(g.fill(static_cast<double *>(nullptr), n), 0);
        }
        EXPECT_EQ(g.call(17), RSK_ERROR_UNKNOWN_METHOD);
        if (s.skip == no) {
            EXPECT_EQ(g.skip(5), RSK_ERROR_NO_SKIPAHEAD);
        }
        if (s.leapfrog != yes) {
            EXPECT_EQ(g.leapfrog(1, 3), RSK_ERROR_NO_LEAPFROG);
        }
        if (s.repeats) {
            EXPECT_EQ(g.integers(200), s.start().integers(200));
        }
    });
}

TEST(Sequences, NeedTheirInstructions) {
    for (const auto &[id, needed] : {std::pair(RSK_BRNG_ARS5, vox::feature::aes),
                                     std::pair(RSK_BRNG_NONDETERM, vox::feature::rdrand)}) {
        generator g(id), same(id);
        vox::rng::allowed_features = ~vox::feature_mask(needed);
        EXPECT_EQ(generator(id).status, RSK_ERROR_NO_INSTRUCTIONS);
        uint32_t word = 77;
        EXPECT_EQ(g.fill(&word, 1), RSK_ERROR_NO_INSTRUCTIONS);
        EXPECT_EQ(word, 77u);
        if (id == RSK_BRNG_ARS5) {
            EXPECT_EQ(g.skip(5), RSK_ERROR_NO_INSTRUCTIONS);
        }
        vox::rng::allowed_features = ~uint64_t(0);
        EXPECT_EQ(g.integers(10) == same.integers(10), id == RSK_BRNG_ARS5);
    }
}

uint64_t hash(const void *data, size_t bytes) { // FNV-1a
    uint64_t h = 0xcbf29ce484222325;
    for (size_t i = 0; i < bytes; ++i)
        h = (h ^ static_cast<const unsigned char *>(data)[i]) * 0x100000001b3;
    return h;
}

// The same bits in every set, on every machine and from one version to the next.
TEST(Sequences, SameBits) {
    constexpr int n = 10007;
    const std::string known = contents_of(RNG_TEST_DATA "sequences.csv");
    for_each(true, [&](const sequence &s) {
        const auto expect = [&](const char *type, const auto &values) {
            char row[100];
            std::snprintf(row, sizeof row, "\n%s,%s,%016llx\n", s.name, type,
                          static_cast<unsigned long long>(
                              hash(values.data(), values.size() * sizeof values[0])));
            EXPECT_NE(known.find(row), known.npos) << "no such row: " << row;
        };
        expect("integers", s.start().integers(n));
        expect("singles", s.start().uniforms<float>(n, -1, 3));
        expect("doubles", s.start().uniforms<double>(n, -1, 3));
    });
}

TEST(Sequences, SkippingIsDiscarding) {
    constexpr int n = 100;
    for_each(true, [&](const sequence &s) {
        if (s.skip == no)
            return;
        const int counts[] = {0, 1, 2, 3, 4, 5, 63, 64, 624, 1000, 4097};
        const outputs reference(s, 10 + 5000 * s.skip_unit);
        for (const int count : counts)
            for (const int drawn : {0, 3}) {
                SCOPED_TRACE(testing::Message() << count << " after " << drawn);
                for (int type = 0; type < types; ++type) {
                    generator g = s.start();
                    ASSERT_TRUE(reference.gives((type + 1) % types, g, 0, drawn));
                    ASSERT_EQ(g.skip(uint64_t(count * s.skip_unit)), 0);
                    EXPECT_TRUE(reference.gives(type, g, drawn + count * s.skip_unit, n));
                }
            }
        const uint64_t unit = uint64_t(s.skip_unit);
        const uint64_t far = s.skip == by_coordinate ? 1u << 20 : (uint64_t(1) << 62) + 12345;
        generator once = s.start(), twice = s.start();
        EXPECT_EQ(once.skip((far + 54321) * unit), 0);
        EXPECT_EQ(twice.skip(54321 * unit), 0);
        EXPECT_EQ(twice.skip(far * unit), 0);
        EXPECT_EQ(once.integers(n), twice.integers(n));
        EXPECT_NE(once.integers(n), s.start().integers(n));
    });
}

TEST(Sequences, LeapfrogIsSubsampling) {
    constexpr int n = 200;
    for_each(true, [&](const sequence &s) {
        if (s.leapfrog != yes)
            return;
        const output<uint32_t> reference(s, 10000);
        const auto every = [&](int step, int from) {
            numbers r;
            for (int i = 0; i < n; ++i)
                for (int w = 0; w < reference.per_number; ++w)
                    r.push_back(
                        reference.all[size_t((from + i * step) * reference.per_number + w)]);
            return r;
        };
        for (const auto &[k, streams] : {std::pair(0, 1), {0, 3}, {2, 3}, {6, 7}, {5, 37}}) {
            SCOPED_TRACE(testing::Message() << k << " of " << streams);
            generator g = s.start();
            ASSERT_EQ(g.leapfrog(k, streams), 0);
            EXPECT_EQ(g.integers(n), every(streams, k));
            generator skipped = s.start();
            ASSERT_EQ(skipped.leapfrog(k, streams), 0);
            ASSERT_EQ(skipped.skip(13), 0);
            EXPECT_EQ(skipped.integers(n), every(streams, k + 13 * streams));
        }
        generator nested = s.start();
        ASSERT_EQ(nested.leapfrog(1, 2), 0);
        ASSERT_EQ(nested.leapfrog(2, 3), 0);
        EXPECT_EQ(nested.integers(n), every(6, 5));
    });
}

template <class T>
void check_interval(const sequence &s, T a, T b) {
    constexpr int n = 100000;
    const std::vector<T> u = s.start().uniforms<T>(n), r = s.start().uniforms<T>(n, a, b);
    for (size_t i = 0; i < n; ++i) {
        ASSERT_TRUE(u[i] >= 0 && u[i] < 1) << u[i];
        ASSERT_TRUE(r[i] >= a && r[i] < b) << r[i];
        if (s.repeats) {
            ASSERT_EQ(r[i], a + (b - a) * u[i]);
        }
    }
    EXPECT_LT(*std::ranges::min_element(u), T(0.001)); // missed with a probability of 1e-43
    EXPECT_GT(*std::ranges::max_element(u), T(0.999));
}

TEST(Sequences, UniformOnTheInterval) {
    for_each(false, [](const sequence &s) {
        check_interval<float>(s, -1, 3);
        check_interval<double>(s, -1, 3);
    });
}

// The upper bits of the integers, or all of them over the modulus.
TEST(Sequences, UniformsAreMadeOfIntegers) {
    for_each(true, [](const sequence &s) {
        if (s.name[0] == 'w') // sums, see linear_test.cpp
            return;
        const outputs all(s, 3000);
        for (size_t i = 0; i < 3000; ++i) {
            const uint32_t *const x = &all.integers.all[i * size_t(all.integers.per_number)];
            double u = *x / 0x1p32;
            uint32_t upper = *x >> 8;
            if (s.id == RSK_BRNG_MCG31M1)
                u = *x * (1.0 / 0x7FFFFFFF), upper = *x >> 7;
            else if (s.id == RSK_BRNG_MRG32K3A)
                u = *x * 2.328306549295728e-10;
            else if (s.id == RSK_BRNG_MCG59)
                u = double((x[0] | uint64_t(x[1]) << 32) >> 6) / 0x1p53, upper = x[1] >> 3;
            ASSERT_EQ(all.doubles.all[i], u) << i;
            ASSERT_EQ(all.singles.all[i], float(upper) / 0x1p24f) << i;
        }
    });
}

} // namespace
