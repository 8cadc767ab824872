// registry_test.cpp - what identifiers mean, and generators that are added.
#include "tests/rng/streams.hpp"

namespace {

using namespace test;
using namespace vox::rng;

TEST(Registry, PlacesOfIdentifiers) {
    const struct {
        int id;
        brng_place place;
        int row, status;
    } cases[] = {
        {-1, {brng_place::legacy, -1, 0}, 0, -1000},
        {3, {brng_place::legacy, 3, 0}, MCG59, 0},
        {4, {brng_place::legacy, 4, 0}, WH, 0},
        {5, {brng_place::legacy, 5, 1}, WH, 0},
        {276, {brng_place::legacy, 276, 272}, WH, 0},
        {277, {brng_place::legacy, 277, 0}, SOBOL, 0},
        {278, {brng_place::legacy, 278, 0}, NIEDERR, 0},
        {279, {brng_place::legacy, 279, 0}, 0, -1000},
        {0xFFFFF, {brng_place::legacy, 0xFFFFF, 0}, 0, -1000},
        {0x100000, {brng_place::current, 0, 0}, MCG31M1, 0},
        {0x500110, {brng_place::current, 4, 272}, WH, 0},
        {0x500111, {brng_place::current, 4, 273}, 0, -1000},
        {0x901787, {brng_place::current, 8, 6023}, MT2203, 0},
        {0x901788, {brng_place::current, 8, 6024}, 0, -1000},
        {0x1000000, {brng_place::current, 15, 0}, PHILOX4X32X10, 0},
        {0x7FFFFFFF, {brng_place::current, 2046, 0xFFFFF}, 0, -1000},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_EQ(rskGetBrngBaseOffset(c.id), c.place);
        EXPECT_EQ(rskIsBrngValid(c.place), c.status);
        brng_properties row{};
        EXPECT_EQ(rskGetBrngProperties(c.id, &row), c.status);
        if (c.status == 0) {
            EXPECT_EQ(row.init, properties_of((c.row + 1) << 20).init);
        }
    }
}

TEST(Registry, SizesHoldTheWordsOfState) {
    EXPECT_EQ(properties_of(RSK_BRNG_SOBOL).stream_size, 11712);
    EXPECT_EQ(properties_of(RSK_BRNG_WH).word_size, 16);
    for (int row = 0; row < built_in_rows; ++row) {
        const brng_properties p = properties_of((row + 1) << 20);
        EXPECT_TRUE(p.stream_size >= 16 + p.word_size * p.seed_words || row == WH) << row;
    }
}

TEST(Registry, RefusesInItsOrder) {
    brng_properties p{-1, 0, 0, 5, 0, nullptr, nullptr, nullptr, nullptr};
    const auto refused = [&](int expected) { EXPECT_EQ(rskRegisterBrng(&p), expected); };
    const int before = rskGetNumRegBrngs();
    refused(RSK_ERROR_STREAM_SIZE);
    p.stream_size = 0;
    refused(RSK_ERROR_WORD_SIZE);
    p.word_size = 16;
    refused(RSK_ERROR_SEED_WORDS);
    p.seed_words = 1;
    refused(RSK_ERROR_BITS);
    p.bits = 1;
    refused(RSK_ERROR_NULL_PTR);
    p.init = walker_properties.init;
    refused(RSK_ERROR_NULL_PTR);
    p.singles = walker_properties.singles;
    refused(RSK_ERROR_NULL_PTR);
    p.doubles = walker_properties.doubles;
    refused(RSK_ERROR_NULL_PTR);
    EXPECT_EQ(rskRegisterBrng(nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(rskGetNumRegBrngs(), before);
}

// The last: it leaves no room.
TEST(Registry, HasRoomFor512Generators) {
    EXPECT_EQ(rskGetNumRegBrngs(), 16);
    EXPECT_EQ(walker(), 0x1100000);
    int last = walker();
    while (rskGetNumRegBrngs() < 512) {
        const int id = rskRegisterBrng(&walker_properties);
        ASSERT_EQ(id, last + 0x100000);
        last = id;
    }
    EXPECT_EQ(rskRegisterBrng(&walker_properties), RSK_ERROR_NO_MEMORY);
    EXPECT_EQ(last, 0x20000000);
    EXPECT_EQ(generator(last).integers(100), generator(walker()).integers(100));
    rskStream s;
    EXPECT_EQ(rskNewStream(&s, last + 0x100000, 1), RSK_ERROR_INVALID_BRNG);
    EXPECT_EQ(rskNewStream(&s, last + 1, 1), RSK_ERROR_INVALID_BRNG);
}

} // namespace
