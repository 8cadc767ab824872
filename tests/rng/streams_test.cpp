// streams_test.cpp - operations on streams: what they report, what they leave alone, what copies do.
#include "tests/rng/streams.hpp"

#include <functional>
#include <numeric>
#include <thread>

namespace {

using namespace test;

TEST(Streams, NullAndDeadStreamsAreReportedAndLeftAlone) {
    reports reported;
    const generator good_one(RSK_BRNG_MCG31M1);
    rskStream out, good = good_one;
    const vox_int one = 1;
    const uint64_t many = 1;
    const struct {
        const char *report;
        std::function<int(rskStream)> c, fortran;
    } cases[] = {
        {"rskDeleteStream 1;", [&](rskStream s) { return rskDeleteStream(&s); },
         [&](rskStream s) { return rskdeletestream_(&s); }},
        {"rskCopyStream 2;", [&](rskStream s) { return rskCopyStream(&out, s); },
         [&](rskStream s) { return RSKCOPYSTREAM_(&out, &s); }},
        {"rskCopyStreamState 1;", [&](rskStream s) { return rskCopyStreamState(s, good); },
         [&](rskStream s) { return rskcopystreamstate_(&s, &good); }},
        {"rskCopyStreamState 2;", [&](rskStream s) { return rskCopyStreamState(good, s); },
         [&](rskStream s) { return RSKCOPYSTREAMSTATE_(&good, &s); }},
        {"rskCopyStreamState 1;", [&](rskStream s) { return rskCopyStreamState(s, s); },
         [&](rskStream s) { return rskcopystreamstate_(&s, &s); }},
        {"rskLeapfrogStream 1;", [&](rskStream s) { return rskLeapfrogStream(s, 0, -1); },
         [&](rskStream s) { return rskleapfrogstream_(&s, &one, &one); }},
        {"rskSkipAheadStream 1;", [&](rskStream s) { return rskSkipAheadStream(s, 1); },
         [&](rskStream s) { return rskskipaheadstream_(&s, &many); }},
        {"rskGetStreamStateBrng 1;", [&](rskStream s) { return rskGetStreamStateBrng(s); },
         [&](rskStream s) { return RSKGETSTREAMSTATEBRNG_(&s); }},
        {"rskGetStreamSize 1;", [&](rskStream s) { return rskGetStreamSize(s); },
         [&](rskStream s) { return rskgetstreamsize_(&s); }},
        {"rskSaveStreamM 1;", [&](rskStream s) { return rskSaveStreamM(s, nullptr); },
         [&](rskStream s) { return rsksavestreamm_(&s, nullptr); }},
        {"rskSaveStream 1;", [&](rskStream s) { return rskSaveStream(s, "/dev/null"); },
         [&](rskStream s) { return rsksavestream_(&s, "/dev/null", 9); }},
    };
    generator dead(RSK_BRNG_MCG31M1);
    for (uint8_t marker : {0, 2, 255}) {
        dead.object().marker = marker;
        const std::string before(reinterpret_cast<char *>(&dead.object()), 24);
        for (const auto &c : cases) {
            SCOPED_TRACE(c.report);
            for (const auto &call : {c.c, c.fortran}) {
                EXPECT_EQ(call(nullptr), RSK_ERROR_NULL_PTR);
                EXPECT_EQ(reported.take(), c.report);
                EXPECT_EQ(call(dead), RSK_ERROR_BAD_STREAM);
                EXPECT_EQ(reported.take(), c.report);
            }
        }
        EXPECT_EQ(std::string(reinterpret_cast<char *>(&dead.object()), 24), before);
    }
    dead.object().marker = vox::rng::live;
    EXPECT_EQ(rskDeleteStream(nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(reported.take(), "rskDeleteStream 1;");
}

TEST(Streams, OnlyNegativeIdentifiersAreReported) {
    reports reported;
    rskStream const untouched = reinterpret_cast<rskStream>(&reported);
    const uint32_t seed_word = 1;
    for (int id :
         std::vector<int>{-1, INT32_MIN, RSK_BRNG_IABSTRACT, RSK_BRNG_DABSTRACT, RSK_BRNG_SABSTRACT,
                          279, 280, 281, 0xFFFFF, RSK_BRNG_MCG31M1 + 1, RSK_BRNG_WH + 273,
                          RSK_BRNG_MT2203 + 6024, 0x1FFFFFFF, INT32_MAX}) {
        rskStream s = untouched;
        EXPECT_EQ(rskNewStream(&s, id, 1), RSK_ERROR_INVALID_BRNG) << id;
        EXPECT_EQ(rskNewStreamEx(&s, id, 0, nullptr), RSK_ERROR_INVALID_BRNG) << id;
        EXPECT_EQ(rsknewstream_(&s, &id, &seed_word), RSK_ERROR_INVALID_BRNG) << id;
        EXPECT_EQ(s, untouched);
        EXPECT_EQ(reported.take(), id < 0 ? "rskNewStream 2;rskNewStreamEx 2;rskNewStream 2;" : "");
    }
}

// A live stream whose identifier has been overwritten.
TEST(Streams, OfNoGenerator) {
    reports reported;
    generator s(RSK_BRNG_MCG31M1), good(RSK_BRNG_MCG31M1), copy;
    for (int id : {-1, 279, 0x7FF00000}) {
        s.object().id = id;
        EXPECT_EQ(rskGetStreamStateBrng(s), id);
        EXPECT_EQ(s.leapfrog(0, 1), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(s.skip(1), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskCopyStream(&copy, s), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskCopyStreamState(s, good), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskCopyStreamState(good, s), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskGetStreamSize(s), RSK_ERROR_INVALID_BRNG);
    }
    EXPECT_EQ(reported.take(), "");
    EXPECT_EQ(rskStream(copy), nullptr);
}

TEST(Streams, KeepTheIdentifierThatTheyWereMadeWith) {
    std::vector<int> ids(279); // of the older numbering, and some of the newer one
    std::iota(ids.begin(), ids.end(), 0);
    ids.insert(ids.end(),
               {RSK_BRNG_WH + 272, RSK_BRNG_MT2203 + 6023, RSK_BRNG_SOBOL, RSK_BRNG_PHILOX4X32X10});
    for (int id : ids) {
        generator s;
        EXPECT_NE(rskNewStream(&s, id, 1), RSK_ERROR_INVALID_BRNG) << id;
        EXPECT_EQ(rskGetStreamStateBrng(s), id);
    }
}

TEST(Streams, NullPointersThatAreNotReported) {
    reports reported;
    generator s(RSK_BRNG_MCG31M1);
    EXPECT_EQ(rskNewStream(nullptr, RSK_BRNG_MCG31M1, 1), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(rskNewStream(nullptr, RSK_BRNG_IABSTRACT, 1), RSK_ERROR_INVALID_BRNG);
    EXPECT_EQ(rskCopyStream(nullptr, s), RSK_ERROR_NULL_PTR);
    rskStream out;
    EXPECT_EQ(rskNewStreamEx(&out, RSK_BRNG_MCG31M1, 2, nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(reported.take(), "");
    for (int n : {0, -1}) {
        generator by_default;
        EXPECT_EQ(rskNewStreamEx(&by_default, RSK_BRNG_MCG31M1, n, nullptr), 0);
        EXPECT_EQ(by_default.integers(5), generator(RSK_BRNG_MCG31M1, {1}).integers(5));
    }
}

TEST(Streams, SplitsReachTheGeneratorWithAllTheirBits) {
    static numbers seen;
    vox::rng::brng_properties row = walker_properties;
    row.init = [](int method, vox::rng::stream *, int n, const uint32_t *params) {
        seen = {uint32_t(method), uint32_t(n)};
        seen.insert(seen.end(), params, params + (method == vox::rng::skip ? 2 : 1));
        return -77;
    };
    const int id = vox::rng::rskRegisterBrng(&row);
    generator s;
    EXPECT_EQ(rskNewStream(&s, id, 0xFEDCBA98), -77);
    EXPECT_EQ(seen, (numbers{0, 1, 0xFEDCBA98}));
    ASSERT_NE(rskStream(s), nullptr)
        << "a failing initialisation leaves the stream with the caller";
    EXPECT_EQ(s.leapfrog(1, -1), RSK_ERROR_NSTREAMS);
    EXPECT_EQ(s.leapfrog(-5, 7), -77);
    EXPECT_EQ(seen, (numbers{1, 7, uint32_t(-5)}));
    EXPECT_EQ(s.skip(0x123456789ABCDEF0), -77);
    EXPECT_EQ(seen, (numbers{2, 2, 0x9ABCDEF0, 0x12345678}));
}

TEST(Streams, FortranFormsDoTheSame) {
    const vox_int id = RSK_BRNG_MCG31M1, n = 1, k = 2, nstreams = 5;
    const uint64_t skipped = 0x123456789;
    const uint32_t seven = 7;
    generator c(id, {7}), fortran, upper, copy;
    ASSERT_EQ(c.leapfrog(k, nstreams), 0);
    ASSERT_EQ(c.skip(skipped), 0);
    ASSERT_EQ(rsknewstream_(&fortran, &id, &seven), 0);
    ASSERT_EQ(rskleapfrogstream_(&fortran, &k, &nstreams), 0);
    ASSERT_EQ(rskskipaheadstream_(&fortran, &skipped), 0);
    ASSERT_EQ(RSKNEWSTREAMEX_(&upper, &id, &n, &seven), 0);
    ASSERT_EQ(rskcopystreamstate_(&upper, &fortran), 0);
    ASSERT_EQ(rskcopystream_(&copy, &fortran), 0);
    EXPECT_EQ(rskgetstreamstatebrng_(&copy), id);
    const numbers expected = c.integers(50);
    EXPECT_EQ(fortran.integers(50), expected);
    EXPECT_EQ(upper.integers(50), expected);
    EXPECT_EQ(copy.integers(50), expected);
    EXPECT_EQ(rskdeletestream_(&copy), 0);
    EXPECT_EQ(rskStream(copy), nullptr);
}

TEST(Streams, CopiesContinueAlikeAndApart) {
    for (generator &s : one_of_each()) {
        SCOPED_TRACE(rskGetStreamStateBrng(s));
        generator copy, other(rskGetStreamStateBrng(s), {77, private_chunk});
        ASSERT_EQ(rskCopyStream(&copy, s), 0);
        EXPECT_EQ(rskGetStreamStateBrng(copy), rskGetStreamStateBrng(s));
        other.integers(3);
        ASSERT_EQ(rskCopyStreamState(other, s), 0);
        const numbers expected = s.integers(2500);
        EXPECT_EQ(copy.integers(2500), expected);
        EXPECT_EQ(other.integers(2500), expected);
        EXPECT_EQ(rskCopyStreamState(s, s), 0);
        EXPECT_EQ(s.integers(100), copy.integers(100));
    }
}

TEST(Streams, ALeapfroggedStreamIsCopiedWithItsStep) {
    generator s(RSK_BRNG_MCG31M1), t(RSK_BRNG_MCG31M1, {9}), old(0, {9});
    ASSERT_EQ(s.leapfrog(2, 5), 0);
    ASSERT_EQ(rskCopyStreamState(t, s), 0);
    ASSERT_EQ(rskCopyStreamState(old, s), 0); // the same generator by another number
    EXPECT_EQ(rskGetStreamStateBrng(old), 0);
    const numbers expected = s.integers(100);
    EXPECT_EQ(t.integers(100), expected);
    EXPECT_EQ(old.integers(100), expected);
}

// Between generators: words of state, in the size of the smaller, and only what the destination can use.
TEST(Streams, StatesOfOtherGenerators) {
    vox::rng::brng_properties row = walker_properties;
    row.init = [](int method, vox::rng::stream *s, int, const uint32_t *params) {
        if (method == vox::rng::seed)
            memset(s + 1, int(params[0]), 100);
        return method == vox::rng::seed ? 0 : -2;
    };
    row.stream_size = 116;
    const auto make = [&row](int word_size, int seed_words) {
        row.word_size = word_size;
        row.seed_words = seed_words;
        return vox::rng::rskRegisterBrng(&row);
    };
    const auto state_of = [](const generator &s) {
        return std::string(reinterpret_cast<const char *>(&s.object() + 1), 100);
    };
    const int three_words = make(8, 3), many_words = make(16, 1000);
    generator few(three_words, {'f'}), many(many_words, {'m'});
    generator to_few(three_words, {'x'}), to_many(many_words, {'x'});
    ASSERT_EQ(rskCopyStreamState(to_many, few), 0);
    EXPECT_EQ(state_of(to_many), std::string(24, 'f') + std::string(76, 'x'));
    ASSERT_EQ(rskCopyStreamState(to_few, many), 0);
    EXPECT_EQ(state_of(to_few), std::string(100, 'm'));
    EXPECT_EQ(rskGetStreamStateBrng(to_few), three_words);

    generator picky(walker(), {1, standard_chunk}), same(walker(), {1, standard_chunk});
    EXPECT_EQ(rskCopyStreamState(picky, many), RSK_ERROR_BAD_STATE);
    EXPECT_EQ(picky.integers(100), same.integers(100));
    generator with_chunk(walker(), {1, standard_chunk}), taker(three_words, {'t'});
    EXPECT_EQ(rskCopyStreamState(taker, with_chunk), 0);
    EXPECT_NE(taker.object().chunks, nullptr);
    EXPECT_EQ(rskCopyStreamState(taker, few), 0);
    EXPECT_EQ(taker.object().chunks, nullptr);
}

TEST(Streams, OutliveTheirThreadAndAreDeletedByAnother) {
    const int64_t before = vox_mem_stat(nullptr);
    generator s;
    std::thread([&] { rskNewStream(&s, walker(), 3); }).join();
    EXPECT_EQ(s.integers(1000), generator(walker(), {3}).integers(1000));
    std::thread([&] { EXPECT_EQ(rskDeleteStream(&s), 0); }).join();
    EXPECT_EQ(rskStream(s), nullptr);
    EXPECT_EQ(vox_mem_stat(nullptr), before);
}

TEST(Streams, EveryAllocationMayFail) {
    const int64_t before = vox_mem_stat(nullptr);
    for (uint32_t kind : {private_chunk, standard_chunk, chunk_of_copies}) {
        generator source(walker(), {3, kind}), destination(walker(), {8, private_chunk});
        refuse_in_turn([&] {
            generator copy;
            const int status = rskCopyStream(&copy, source);
            EXPECT_EQ(rskStream(copy) == nullptr, status != 0);
            return status;
        });
        refuse_in_turn([&] {
            const int status = rskCopyStreamState(destination, source);
            if (status) {
                EXPECT_EQ(destination.integers(64), generator(walker(), {8}).integers(64));
            }
            return status;
        });
        refuse_in_turn([&] { return generator(walker(), {3, kind}).status; });
    }
    EXPECT_EQ(vox_mem_stat(nullptr), before);
    EXPECT_EQ(vox::rng::shared_chunks(), 0);
}

} // namespace
