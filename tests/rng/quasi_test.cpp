// quasi_test.cpp - SOBOL and NIEDERR: against GSL, users' own dimensions, coordinates, skipping ahead, the end.
#include <algorithm>

#include "rng/brng/polynomials.hpp"
#include "rng/brng/quasi.hpp"
#include "tests/rng/streams.hpp"
#include <gsl/gsl_qrng.h>

namespace {

using namespace test;
using vox::rng::quasi_state;
using words = numbers;

constexpr uint32_t sobol = RSK_BRNG_SOBOL, niederr = RSK_BRNG_NIEDERR;
constexpr uint32_t polynomials = RSK_QUASI_POLYNOMIALS, direction_numbers = RSK_QUASI_DIRECTIONS;
constexpr int any_stream = 0x7FFFFFFF; // nstreams that asks for a coordinate

void append(words &to, const words &from) { to.insert(to.end(), from.begin(), from.end()); }

// Every stride-th word.
words every(const words &w, size_t first, size_t stride) {
    words picked;
    for (size_t i = first; i < w.size(); i += stride)
        picked.push_back(w[i]);
    return picked;
}

// Of its vectors from number 1 on the upper 30 bits are those of GSL's.
void expect_gsl(uint32_t id, const gsl_qrng_type *type, uint32_t dimension) {
    constexpr int vectors = 5000;
    words got = generator(int(id), {dimension}).integers(vectors * int(dimension)), expected;
    for (uint32_t &x : got)
        x >>= 2;
    gsl_qrng *const q = gsl_qrng_alloc(type, dimension);
    std::vector<double> point(dimension);
    if (id == niederr)
        gsl_qrng_get(q, point.data()); // begins with the origin
    for (int i = 0; i < vectors; ++i) {
        gsl_qrng_get(q, point.data());
        for (double x : point)
            expected.push_back(uint32_t(x * 0x1p30));
    }
    gsl_qrng_free(q);
    EXPECT_EQ(got, expected) << dimension;
}

TEST(Quasi, EqualsGsl) {
    for (uint32_t d : {1, 2, 3, 7, 10, 12, 13, 16, 31, 32, 40}) {
        expect_gsl(sobol, gsl_qrng_sobol, d);
        if (d <= 12)
            expect_gsl(niederr, gsl_qrng_niederreiter_2, d);
    }
}

// Rows of one vector or many, with a rest or without.
TEST(Quasi, MayBeSplitAnywhereInAnyDimension) {
    for (uint32_t d : {1, 3, 40, 64, 100}) {
        const words all = generator(niederr, {d}).integers(9000);
        generator g(niederr, {d});
        words got;
        for (int n : {1, 3, 7, 1, 1, 64, 1000, 2, 333, 80, 4000})
            append(got, g.integers(n));
        EXPECT_TRUE(std::equal(got.begin(), got.end(), all.begin())) << d;
        for (int drawn : {0, 1, 25})
            for (int skipped : {0, 1, 2, 9, 10, 640, 7654}) {
                generator skipping(niederr, {d});
                skipping.integers(drawn);
                ASSERT_EQ(skipping.skip(uint64_t(skipped)), 0);
                got = skipping.integers(700);
                EXPECT_TRUE(std::equal(got.begin(), got.end(), all.begin() + drawn + skipped))
                    << d << ' ' << skipped;
            }
    }
}

// In every dimension of both tables the first 2^m vectors, the origin among them, put as many points into each
// interval of length 2^-(m - t), t the quality parameter: 0 for SOBOL, the polynomial's degree - 1 for NIEDERR.
TEST(Quasi, IsEquidistributedInEveryDimension) {
    constexpr int m = 12, vectors = (1 << m) - 1;
    for (const auto &[id, d] : {std::pair(sobol, 40u), std::pair(niederr, 318u)}) {
        const words w = generator(int(id), {d}).integers(vectors * int(d));
        for (uint32_t i = 0; i < d; ++i) {
            const int t = id == sobol ? 0 : iNiederrIrredPolyDeg[i] - 1;
            std::vector<int> count(1 << (m - t));
            count[0] = 1; // the origin
            for (uint32_t x : every(w, i, d))
                ++count[x >> (32 - (m - t))];
            EXPECT_EQ(count, std::vector<int>(count.size(), 1 << t)) << i;
        }
    }
}

TEST(Quasi, TakesDimensionOneForWhatItsTablesLack) {
    const words one = generator(sobol, {1}).integers(100);
    for (const words &seeds : {words{}, words{0}, words{41}, words{777, 0}, words{~0u}})
        EXPECT_EQ(generator(sobol, seeds).integers(100), one);
    EXPECT_EQ(generator(niederr, {319}).integers(100), generator(niederr, {1}).integers(100));
}

// The tables once more, as the user's own.
words own_sobol(uint32_t d, uint32_t first) {
    words seeds = {d, polynomials, first};
    for (uint32_t i = first; i <= d; ++i) {
        const uint32_t *m = uSobolMInit + 8 * (i - 2);
        seeds.push_back(uSobolIrredPoly[i - 2]);
        seeds.insert(seeds.end(), m, m + iSobolIrredPolyDeg[i - 2]);
    }
    return seeds;
}
words own_niederr(uint32_t d, uint32_t first) {
    words seeds = {d, polynomials, first};
    for (uint32_t i = first; i <= d; ++i)
        seeds.push_back(uNiederrIrredPoly[i - 1]);
    return seeds;
}

TEST(QuasiOwnTables, GiveWhatTheStandardOnesGive) {
    for (uint32_t first : {2, 9, 40})
        EXPECT_EQ(generator(sobol, own_sobol(40, first)).integers(4000),
                  generator(sobol, {40}).integers(4000));
    for (uint32_t first : {1, 2, 318})
        EXPECT_EQ(generator(niederr, own_niederr(318, first)).integers(4000),
                  generator(niederr, {318}).integers(4000));
}

TEST(QuasiOwnTables, TakeDirectionNumbers) {
    // Vector 2^i is v_i ^ v_(i-1); dimensions 2 and 3 of the table take the place of 1 and 2.
    const words w = generator(sobol, {3}).integers(3 * 1024);
    words seeds = {2, direction_numbers, 1};
    for (uint32_t dimension : {1, 2}) {
        uint32_t v = 0;
        for (int i = 0; i < 10; ++i)
            seeds.push_back(v ^= w[3 * ((1u << i) - 1) + dimension]);
        for (int i = 10; i < 32; ++i) // not reached, but independent
            seeds.push_back(0x80000000u >> i);
    }
    words expected;
    for (size_t i = 0; i < 1023; ++i)
        append(expected, {w[3 * i + 1], w[3 * i + 2]});
    EXPECT_EQ(generator(sobol, seeds).integers(2 * 1023), expected);
    EXPECT_EQ(generator(niederr, seeds).integers(2 * 1023), expected);
}

TEST(QuasiOwnTables, ReachBeyondTheStandardDimensions) {
    // Next in the order of Sobol's polynomials is one of degree 8; any odd m do.
    words seeds = {41, polynomials, 41, 0x171, 1, 1, 5, 11, 7, 33, 101, 203};
    words w = generator(sobol, seeds).integers(41 * 255);
    EXPECT_EQ(every(w, 39, 41), every(generator(sobol, {40}).integers(40 * 255), 39, 40));
    words last = every(w, 40, 41);
    for (uint32_t &x : last)
        x >>= 24; // all of 1..255 once
    std::sort(last.begin(), last.end());
    for (uint32_t i = 0; i < 255; ++i)
        EXPECT_EQ(last[i], i + 1);

    words all_room = {2896, direction_numbers, 1};
    for (uint32_t i = 0; i < 2896 * 32; ++i)
        all_room.push_back(0x80000000u >> i % 32);
    generator largest(sobol, all_room);
    w = largest.integers(2896 * 20);
    EXPECT_EQ(every(w, 0, 2896), generator(sobol, {1}).integers(20));
    EXPECT_EQ(every(w, 2895, 2896), every(w, 0, 2896));
}

// The caller has the stream, but nothing can be drawn from it.
void expect_nothing(generator &g) {
    words r(10, 77);
    EXPECT_EQ(g.fill(r.data(), 10), vox::rng::bad_state);
    EXPECT_EQ(r, words(10, 77));
    EXPECT_EQ(g.skip(1), RSK_ERROR_NO_SKIPAHEAD);
    EXPECT_EQ(g.leapfrog(0, any_stream), RSK_ERROR_NO_LEAPFROG);
}

TEST(QuasiOwnTables, AreRefusedWhereTheyAreWrong) {
    const words good = own_sobol(8, 2);
    const auto changed = [](words seeds, size_t i, uint32_t word) {
        seeds[i] = word;
        return seeds;
    };
    const words shorter(good.begin(), good.end() - 1);
    words longer = good;
    longer.push_back(1);
    words dependent = {1, direction_numbers, 1};
    for (uint32_t i = 0; i < 31; ++i)
        dependent.push_back(1u << i);
    dependent.push_back(0x40000001);
    const struct {
        const char *what;
        uint32_t id;
        words seeds;
    } cases[] = {
        {"no records", sobol, {8, polynomials}},
        {"unknown form", sobol, changed(good, 1, 3)},
        {"dimension 0", sobol, changed(good, 0, 0)},
        {"too many dimensions", sobol, {2897, direction_numbers, 1}},
        {"too many dimensions", niederr, {21041, polynomials, 1}},
        {"no polynomial for the first dimension", sobol, changed(good, 2, 1)},
        {"first beyond the last", sobol, {8, polynomials, 9}},
        {"a gap after the tables", sobol, {45, polynomials, 42, 0x171, 1, 1, 1, 1, 1, 1, 1, 1}},
        {"words missing", sobol, shorter},
        {"words left over", sobol, longer},
        {"polynomial 0", sobol, changed(good, 3, 0)},
        {"polynomial of degree 0", sobol, changed(good, 3, 1)},
        {"reducible", sobol, {2, polynomials, 2, 5, 1, 1}},
        {"irreducible, not primitive", sobol, {2, polynomials, 2, 31, 1, 1, 1, 1}},
        {"even m", sobol, {2, polynomials, 2, 7, 1, 2}},
        {"m too large", sobol, {2, polynomials, 2, 7, 1, 5}},
        {"reducible", niederr, {1, polynomials, 1, 5}},
        {"polynomial 1", niederr, {1, polynomials, 1, 1}},
        {"dependent direction numbers", niederr, dependent},
        {"direction number 0", niederr, changed(dependent, 34, 0)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        generator g(int(c.id), c.seeds);
        EXPECT_EQ(g.status, RSK_ERROR_BAD_ARGS);
        expect_nothing(g);
    }
}

TEST(QuasiOwnTables, AreRefusedWithoutMemory) {
    const words seeds = {2, polynomials, 1, 2, 3};
    const words expected = generator(niederr, seeds).integers(10);
    refuse_in_turn([&] {
        generator g(niederr, seeds);
        if (g.status == 0) {
            EXPECT_EQ(g.integers(10), expected);
        } else if (g) {
            expect_nothing(g);
        }
        return g.status;
    });
}

TEST(QuasiPolynomials, ArePrimitiveOrIrreducible) {
    using namespace vox::rng::gf2;
    const int primitive[] = {0, 1, 1, 2, 2, 6, 6, 18, 16, 48, 60}; // phi(2^s - 1) / s
    const int irreducible[] = {0, 2, 1, 2, 3, 6, 9, 18, 30, 56, 99};
    for (int s = 1; s <= 10; ++s) {
        int primitives = 0, irreducibles = 0;
        for (uint64_t p = uint64_t(1) << s; p < uint64_t(2) << s; ++p) {
            primitives += is_primitive(p);
            irreducibles += is_irreducible(p);
        }
        EXPECT_EQ(primitives, primitive[s]) << s;
        EXPECT_EQ(irreducibles, irreducible[s]) << s;
    }
    EXPECT_TRUE(is_primitive(0x80000009) && is_irreducible(0x80000009)); // x^31 + x^3 + 1
}

TEST(QuasiPolynomials, OfNiederrAreTheFirstIrreducibleOnes) {
    uint32_t p = 1;
    for (int i = 0; i < 318; ++i) {
        do
            ++p;
        while (!vox::rng::gf2::is_irreducible(p));
        EXPECT_EQ(uNiederrIrredPoly[i], p) << i;
        EXPECT_EQ(iNiederrIrredPolyDeg[i], vox::rng::gf2::degree(p)) << i;
    }
}

// It goes on with the first vector whose coordinate is left, after a vector's end or in its middle.
TEST(QuasiLeapfrog, SelectsACoordinate) {
    for (uint32_t d : {1, 3, 40, 100})
        for (uint32_t k : {0u, 1u, d / 2, d - 1})
            for (uint32_t drawn : {3 * d, 3 * d - d / 2}) {
                if (k >= d)
                    continue;
                const words left = every(generator(niederr, {d}).integers(int(d) * 3000),
                                         drawn % d > k ? 3 * d + k : drawn / d * d + k, d);
                generator g(niederr, {d});
                g.integers(int(drawn));
                ASSERT_EQ(g.leapfrog(int(k), any_stream), 0);
                words got;
                for (int n : {1, 100, 63, 2000})
                    append(got, g.integers(n));
                EXPECT_TRUE(std::equal(got.begin(), got.end(), left.begin())) << d << " " << k;
                ASSERT_EQ(g.skip(7), 0); // counts this stream's numbers
                EXPECT_EQ(g.integers(1)[0], left[got.size() + 7]);
            }
}

TEST(QuasiLeapfrog, RefusesAnythingElse) {
    generator g(sobol, {5}), same(sobol, {5});
    for (int k : {5, -1})
        EXPECT_EQ(g.leapfrog(k, any_stream), RSK_ERROR_NO_LEAPFROG);
    refused_request = every_request;
    EXPECT_EQ(g.leapfrog(3, any_stream), RSK_ERROR_NO_MEMORY);
    refused_request = 0;
    EXPECT_EQ(g.integers(99), same.integers(99));
}

TEST(QuasiSkip, ReachesVectorsFarAway) {
    // Number 2^31 + 2^10 is in Gray code bits 31, 30, 10 and 9; in dimension 1 v_i is 2^(31-i).
    generator g(sobol, {1});
    ASSERT_EQ(g.skip((1u << 31) + (1 << 10) - 1), 0);
    EXPECT_EQ(g.integers(1)[0], 0x00600003u);
}

TEST(QuasiSkip, StopsBeforeTheEnd) {
    constexpr uint64_t end = quasi_state::all_vectors;
    for (uint32_t d : {1, 3, 10, 100}) {
        generator g(niederr, {d}), same(niederr, {d});
        g.integers(int(2 * d)), same.integers(int(2 * d));
        for (uint64_t count : {(end - 2) * d, (end - 2) * d + 1, ~uint64_t(0)})
            EXPECT_EQ(g.skip(count), RSK_ERROR_NO_SKIPAHEAD);
        EXPECT_EQ(g.call(vox::rng::skip, 0, {1}), RSK_ERROR_NO_SKIPAHEAD);
        EXPECT_EQ(g.integers(300), same.integers(300));

        // The last vector but two, and no number more than there are.
        generator last(niederr, {d});
        last.integers(1);
        ASSERT_EQ(last.skip((end - 1) * d - 1 - 2 * d), 0);
        words r(3 * d + 1, 77);
        EXPECT_EQ(last.fill(r.data(), int(3 * d + 1)), RSK_ERROR_SEQUENCE_END);
        EXPECT_EQ(r, words(3 * d + 1, 77));
        words got = last.integers(1);
        append(got, last.integers(int(3 * d - 1)));
        // 2^32 - 3, - 2 and - 1 are in Gray code bit 31 and bits 1 and 0, bit 0, none.
        EXPECT_EQ(got[0], 0xC0000001u);
        EXPECT_EQ(got[d], 0x80000001u);
        EXPECT_EQ(got[2 * d], 0x00000001u);
        EXPECT_EQ(last.fill(r.data(), 1), RSK_ERROR_SEQUENCE_END);
        EXPECT_EQ(last.fill(r.data(), 0), 0);
        EXPECT_EQ(last.call(vox::rng::validate), 0);
    }
}

// A row that came from outside is not trusted.
TEST(QuasiState, IsValidatedByMakingItsRowAgain) {
    generator g(niederr, {10}), same(niederr, {10});
    g.integers(33), same.integers(33);
    g.object().state<quasi_state>().row()[5] ^= 1;
    EXPECT_EQ(g.call(vox::rng::validate), 0);
    EXPECT_EQ(g.integers(99), same.integers(99));
}

} // namespace
