// streams_test.cpp - operations on streams: what they report, what they leave alone, what copies do.
#include "tests/rng/streams.hpp"

#include <functional>
#include <thread>

#include "tests/support/failing_memory.hpp"

namespace {

using namespace test;

constexpr uint32_t seed_word = 1;

// A function's answers to a bad stream: the argument that is reported, in C and in Fortran.
struct bad_stream_case {
    const char *report;
    std::function<int(rskStream)> c, fortran;
};
const std::vector<bad_stream_case> &stream_arguments() {
    static rskStream out, good;
    static const vox_int one = 1;
    static const uint64_t many = 1;
    static owned_stream source(RSK_BRNG_MCG31M1);
    good = source;
    static const std::vector<bad_stream_case> all = {
        {"rskDeleteStream 1;", [](rskStream s) { return rskDeleteStream(&s); },
         [](rskStream s) { return rskdeletestream_(&s); }},
        {"rskCopyStream 2;", [](rskStream s) { return rskCopyStream(&out, s); },
         [](rskStream s) { return RSKCOPYSTREAM_(&out, &s); }},
        {"rskCopyStreamState 1;", [](rskStream s) { return rskCopyStreamState(s, good); },
         [](rskStream s) { return rskcopystreamstate_(&s, &good); }},
        {"rskCopyStreamState 2;", [](rskStream s) { return rskCopyStreamState(good, s); },
         [](rskStream s) { return RSKCOPYSTREAMSTATE_(&good, &s); }},
        {"rskCopyStreamState 1;", [](rskStream s) { return rskCopyStreamState(s, s); },
         [](rskStream s) { return rskcopystreamstate_(&s, &s); }},
        {"rskLeapfrogStream 1;", [](rskStream s) { return rskLeapfrogStream(s, 0, -1); },
         [](rskStream s) { return rskleapfrogstream_(&s, &one, &one); }},
        {"rskSkipAheadStream 1;", [](rskStream s) { return rskSkipAheadStream(s, 1); },
         [](rskStream s) { return rskskipaheadstream_(&s, &many); }},
        {"rskGetStreamStateBrng 1;", [](rskStream s) { return rskGetStreamStateBrng(s); },
         [](rskStream s) { return RSKGETSTREAMSTATEBRNG_(&s); }},
        {"rskGetStreamSize 1;", [](rskStream s) { return rskGetStreamSize(s); },
         [](rskStream s) { return rskgetstreamsize_(&s); }},
        {"rskSaveStreamM 1;", [](rskStream s) { return rskSaveStreamM(s, nullptr); },
         [](rskStream s) { return rsksavestreamm_(&s, nullptr); }},
        {"rskSaveStream 1;", [](rskStream s) { return rskSaveStream(s, "/dev/null"); },
         [](rskStream s) { return rsksavestream_(&s, "/dev/null", 9); }},
    };
    return all;
}

TEST(Streams, NullAndDeadStreamsAreReportedAndLeftAlone) {
    reports reported;
    owned_stream dead(RSK_BRNG_MCG31M1);
    for (uint8_t marker : {0, 2, 255}) {
        dead.object().marker = marker;
        const std::string before(reinterpret_cast<char *>(dead.s), 24);
        for (const bad_stream_case &c : stream_arguments()) {
            SCOPED_TRACE(c.report);
            for (const auto &call : {c.c, c.fortran}) {
                EXPECT_EQ(call(nullptr), RSK_ERROR_NULL_PTR);
                EXPECT_EQ(reported.take(), c.report);
                EXPECT_EQ(call(dead), RSK_ERROR_BAD_STREAM);
                EXPECT_EQ(reported.take(), c.report);
            }
        }
        EXPECT_EQ(std::string(reinterpret_cast<char *>(dead.s), 24), before);
    }
    dead.object().marker = vox::rng::live;
    EXPECT_EQ(rskDeleteStream(nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(reported.take(), "rskDeleteStream 1;");
}

TEST(Streams, OnlyNegativeIdentifiersAreReported) {
    reports reported;
    rskStream const untouched = reinterpret_cast<rskStream>(&reported);
    const auto refused = [&](int id) {
        rskStream s = untouched;
        EXPECT_EQ(rskNewStream(&s, id, 1), RSK_ERROR_INVALID_BRNG) << id;
        EXPECT_EQ(rskNewStreamEx(&s, id, 1, &seed_word), RSK_ERROR_INVALID_BRNG) << id;
        EXPECT_EQ(rsknewstream_(&s, &id, &seed_word), RSK_ERROR_INVALID_BRNG) << id;
        EXPECT_EQ(s, untouched);
        return reported.take();
    };
    EXPECT_EQ(refused(-1), "rskNewStream 2;rskNewStreamEx 2;rskNewStream 2;");
    EXPECT_EQ(refused(INT32_MIN), "rskNewStream 2;rskNewStreamEx 2;rskNewStream 2;");
    for (int id : std::vector<int>{RSK_BRNG_IABSTRACT, RSK_BRNG_DABSTRACT, RSK_BRNG_SABSTRACT, 279,
                                   280, 281, 0xFFFFF, RSK_BRNG_MCG31M1 + 1, RSK_BRNG_WH + 273,
                                   RSK_BRNG_MT2203 + 6024, 0x1FFFFFFF, INT32_MAX})
        EXPECT_EQ(refused(id), "") << id;
}

// A live stream whose identifier has been overwritten.
TEST(Streams, OfNoGenerator) {
    reports reported;
    owned_stream s(RSK_BRNG_MCG31M1), good(RSK_BRNG_MCG31M1), copy;
    for (int id : {-1, 279, 0x7FF00000}) {
        s.object().id = id;
        EXPECT_EQ(rskGetStreamStateBrng(s), id);
        EXPECT_EQ(rskLeapfrogStream(s, 0, 1), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskSkipAheadStream(s, 1), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskCopyStream(&copy, s), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskCopyStreamState(s, good), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskCopyStreamState(good, s), RSK_ERROR_INVALID_BRNG);
        EXPECT_EQ(rskGetStreamSize(s), RSK_ERROR_INVALID_BRNG);
    }
    EXPECT_EQ(reported.take(), "");
    EXPECT_EQ(copy.s, nullptr);
}

TEST(Streams, KeepTheIdentifierThatTheyWereMadeWith) {
    std::vector<int> ids = {RSK_BRNG_WH + 272, RSK_BRNG_MT2203 + 6023, RSK_BRNG_SOBOL,
                            RSK_BRNG_PHILOX4X32X10};
    for (int legacy = 0; legacy <= 278; ++legacy)
        ids.push_back(legacy);
    for (int id : ids) {
        owned_stream s;
        EXPECT_NE(rskNewStream(&s, id, 1), RSK_ERROR_INVALID_BRNG) << id;
        EXPECT_EQ(rskGetStreamStateBrng(s), id);
    }
}

TEST(Streams, NullPointersThatAreNotReported) {
    reports reported;
    owned_stream s(RSK_BRNG_MCG31M1);
    EXPECT_EQ(rskNewStream(nullptr, RSK_BRNG_MCG31M1, 1), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(rskNewStream(nullptr, RSK_BRNG_IABSTRACT, 1), RSK_ERROR_INVALID_BRNG);
    EXPECT_EQ(rskCopyStream(nullptr, s), RSK_ERROR_NULL_PTR);
    rskStream out;
    EXPECT_EQ(rskNewStreamEx(&out, RSK_BRNG_MCG31M1, 2, nullptr), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(reported.take(), "");
    for (int n : {0, -1}) {
        owned_stream by_default;
        EXPECT_EQ(rskNewStreamEx(&by_default, RSK_BRNG_MCG31M1, n, nullptr), 0);
        EXPECT_EQ(draw(by_default, 5), draw(owned_stream(RSK_BRNG_MCG31M1), 5));
    }
}

TEST(Streams, UnsupportedAndBadSplitsChangeNothing) {
    reports reported;
    owned_stream s(walker(), {3, private_chunk}), same(walker(), {3, private_chunk});
    EXPECT_EQ(rskLeapfrogStream(s, 1, -1), RSK_ERROR_NSTREAMS);
    EXPECT_EQ(rskLeapfrogStream(s, 1, 2), RSK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(rskSkipAheadStream(s, 3), RSK_ERROR_NO_SKIPAHEAD);
    EXPECT_EQ(reported.take(), "");
    EXPECT_EQ(draw(s, 10), draw(same, 10));
}

TEST(Streams, SplitsReachTheGeneratorWithAllTheirBits) {
    static std::vector<uint32_t> seen;
    vox::rng::brng_properties row = walker_properties;
    row.init = [](int method, vox::rng::stream *, int n, const uint32_t *params) {
        seen = {uint32_t(method), uint32_t(n), params[0]};
        if (n == 2)
            seen.push_back(params[1]);
        return -77;
    };
    const int id = vox::rng::rskRegisterBrng(&row);
    using words = std::vector<uint32_t>;
    owned_stream s;
    EXPECT_EQ(rskNewStream(&s, id, 0xFEDCBA98), -77);
    EXPECT_EQ(seen, (words{0, 1, 0xFEDCBA98}));
    ASSERT_NE(s.s, nullptr) << "a failing initialisation leaves the stream with the caller";
    EXPECT_EQ(rskLeapfrogStream(s, -5, 7), -77);
    EXPECT_EQ(seen, (words{1, 7, uint32_t(-5)}));
    EXPECT_EQ(rskSkipAheadStream(s, 0x123456789ABCDEF0), -77);
    EXPECT_EQ(seen, (words{2, 2, 0x9ABCDEF0, 0x12345678}));
}

TEST(Streams, FortranFormsDoTheSame) {
    const vox_int id = RSK_BRNG_MCG31M1, n = 1, k = 2, nstreams = 5;
    const uint64_t skipped = 0x123456789;
    const uint32_t seven = 7;
    owned_stream c(id, {7}), fortran, upper, copy;
    ASSERT_EQ(rskLeapfrogStream(c, k, nstreams), 0);
    ASSERT_EQ(rskSkipAheadStream(c, skipped), 0);
    ASSERT_EQ(rsknewstream_(&fortran, &id, &seven), 0);
    ASSERT_EQ(rskleapfrogstream_(&fortran.s, &k, &nstreams), 0);
    ASSERT_EQ(rskskipaheadstream_(&fortran.s, &skipped), 0);
    ASSERT_EQ(RSKNEWSTREAMEX_(&upper, &id, &n, &seven), 0);
    ASSERT_EQ(rskcopystreamstate_(&upper.s, &fortran.s), 0);
    ASSERT_EQ(rskcopystream_(&copy, &fortran.s), 0);
    EXPECT_EQ(rskgetstreamstatebrng_(&copy.s), id);
    const drawn expected = draw(c, 50);
    for (rskStream s : {fortran.s, upper.s, copy.s})
        EXPECT_EQ(draw(s, 50), expected);
    EXPECT_EQ(rskdeletestream_(&copy), 0);
    EXPECT_EQ(copy.s, nullptr);
}

TEST(Streams, CopiesContinueAlikeAndApart) {
    for (owned_stream &s : one_of_each()) {
        SCOPED_TRACE(rskGetStreamStateBrng(s));
        owned_stream copy, other(rskGetStreamStateBrng(s), {77, private_chunk});
        ASSERT_EQ(rskCopyStream(&copy, s), 0);
        EXPECT_EQ(rskGetStreamStateBrng(copy), rskGetStreamStateBrng(s));
        EXPECT_EQ(draw(other, 3).status, 0);
        ASSERT_EQ(rskCopyStreamState(other, s), 0);
        const drawn expected = draw(s, 2500);
        EXPECT_EQ(expected.status, 0);
        EXPECT_EQ(draw(copy, 2500), expected);
        EXPECT_EQ(draw(other, 2500), expected);
        EXPECT_EQ(rskCopyStreamState(s, s), 0);
        EXPECT_EQ(draw(s, 100), draw(copy, 100));
    }
}

TEST(Streams, ALeapfroggedStreamIsCopiedWithItsStep) {
    owned_stream s(RSK_BRNG_MCG31M1), t(RSK_BRNG_MCG31M1, {9}), old(0, {9});
    ASSERT_EQ(rskLeapfrogStream(s, 2, 5), 0);
    ASSERT_EQ(rskCopyStreamState(t, s), 0);
    ASSERT_EQ(rskCopyStreamState(old, s), 0); // the same generator by another number
    EXPECT_EQ(rskGetStreamStateBrng(old), 0);
    const drawn expected = draw(s, 100);
    EXPECT_EQ(draw(t, 100), expected);
    EXPECT_EQ(draw(old, 100), expected);
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
    const auto state_of = [](const owned_stream &s) {
        return std::string(reinterpret_cast<const char *>(&s.object() + 1), 100);
    };
    const int three_words = make(8, 3), many_words = make(16, 1000);
    owned_stream few(three_words, {'f'}), many(many_words, {'m'});
    owned_stream to_few(three_words, {'x'}), to_many(many_words, {'x'});
    ASSERT_EQ(rskCopyStreamState(to_many, few), 0);
    EXPECT_EQ(state_of(to_many), std::string(24, 'f') + std::string(76, 'x'));
    ASSERT_EQ(rskCopyStreamState(to_few, many), 0);
    EXPECT_EQ(state_of(to_few), std::string(100, 'm'));
    EXPECT_EQ(rskGetStreamStateBrng(to_few), three_words);

    owned_stream picky(walker(), {1, standard_chunk}), same(walker(), {1, standard_chunk});
    EXPECT_EQ(rskCopyStreamState(picky, many), RSK_ERROR_BAD_STATE);
    EXPECT_EQ(draw(picky, 100), draw(same, 100));
    owned_stream with_chunk(walker(), {1, standard_chunk}), taker(three_words, {'t'});
    EXPECT_EQ(rskCopyStreamState(taker, with_chunk), 0);
    EXPECT_NE(taker.object().chunks, nullptr);
    EXPECT_EQ(rskCopyStreamState(taker, few), 0);
    EXPECT_EQ(taker.object().chunks, nullptr);
}

TEST(Streams, OutliveTheirThreadAndAreDeletedByAnother) {
    int64_t before = vox_mem_stat(nullptr);
    rskStream s = nullptr;
    std::thread([&] { rskNewStream(&s, walker(), 3); }).join();
    const drawn expected = draw(owned_stream(walker(), {3}), 1000);
    EXPECT_EQ(draw(s, 1000), expected);
    std::thread([&] { EXPECT_EQ(rskDeleteStream(&s), 0); }).join();
    EXPECT_EQ(s, nullptr);
    EXPECT_EQ(vox_mem_stat(nullptr), before);
}

TEST(Streams, EveryAllocationMayFail) {
    const int64_t before = vox_mem_stat(nullptr);
    for (uint32_t kind : {private_chunk, standard_chunk, chunk_of_copies}) {
        owned_stream source(walker(), {3, kind}), destination(walker(), {8, private_chunk});
        const auto succeeds_at_last = [](const auto &attempt) {
            for (int refused = 1;; ++refused) {
                ASSERT_LT(refused, 20);
                refused_request = memory_requests + refused;
                const int status = attempt();
                const bool used = memory_requests >= refused_request;
                refused_request = 0;
                EXPECT_EQ(status, used ? RSK_ERROR_NO_MEMORY : 0);
                if (!used)
                    return;
            }
        };
        succeeds_at_last([&] {
            owned_stream copy;
            const int status = rskCopyStream(&copy, source);
            EXPECT_EQ(copy.s == nullptr, status != 0);
            return status;
        });
        succeeds_at_last([&] {
            const int status = rskCopyStreamState(destination, source);
            if (status) {
                EXPECT_EQ(draw(destination, 64), draw(owned_stream(walker(), {8}), 64));
            }
            return status;
        });
        succeeds_at_last([&] {
            owned_stream s;
            const uint32_t words[] = {3, kind};
            return rskNewStreamEx(&s, walker(), 2, words);
        });
    }
    EXPECT_EQ(vox_mem_stat(nullptr), before);
    EXPECT_EQ(vox::rng::shared_chunks(), 0);
}

} // namespace
