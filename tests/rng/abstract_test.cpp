// abstract_test.cpp - streams on numbers of the user's: when the callback is asked for what, and what becomes
// of its answers.
#include "tests/rng/streams.hpp"

#include <array>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

using namespace test;

// A callback that counts 1, 2, 3, ... into the buffer, as many as `answer` says.
using asked = std::array<vox_int, 4>; // n, nmin, nmax, idx
std::vector<asked> questions;
uint32_t last;
enum answers { everything, least, nothing_said, one_only, too_many, refused } answer;

template <class T>
int count_on(rskStream, vox_int *n, T *buffer, vox_int *nmin, vox_int *nmax, vox_int *idx) {
    questions.push_back({*n, *nmin, *nmax, *idx});
    const int written = answer == one_only                          ? 1
                        : answer == least || answer == nothing_said ? *nmin
                                                                    : *nmax;
    if (answer == refused)
        return -9;
    for (int i = 0; i < written; ++i)
        buffer[(*idx + i) % *n] = T(++last);
    const int size = *n;
    *n = *nmin = *nmax = *idx = -1; // what is made of the arguments does not matter
    return answer == nothing_said ? 0 : answer == too_many ? size + 5 : written;
}

struct Abstract : ::testing::Test {
    uint32_t buffer[10];
    void SetUp() override {
        questions.clear();
        last = 0;
        answer = everything;
    }
    // On so many words of the buffer.
    generator counting(int words) {
        generator g;
        EXPECT_EQ(rskiNewAbstractStream(&g, words, buffer, count_on<uint32_t>), 0);
        return g;
    }
};

numbers counted(uint32_t from, int n) {
    numbers v(static_cast<size_t>(n));
    std::iota(v.begin(), v.end(), from);
    return v;
}

TEST_F(Abstract, AsksWhenAllHasBeenUsed) {
    generator s = counting(10);
    EXPECT_EQ(rskGetStreamStateBrng(s), RSK_BRNG_IABSTRACT);
    EXPECT_TRUE(questions.empty());
    EXPECT_EQ(s.integers(3), counted(1, 3));
    EXPECT_EQ(s.integers(0), counted(1, 0));
    EXPECT_EQ(s.integers(7), counted(4, 7));
    EXPECT_EQ(s.integers(25), counted(11, 25));
    EXPECT_EQ(questions, (std::vector<asked>{
                             {10, 3, 10, 0}, {10, 10, 10, 0}, {10, 10, 10, 0}, {10, 5, 10, 0}}));
}

TEST_F(Abstract, TheBufferIsCircular) {
    for (answers a : {least, nothing_said}) {
        SetUp();
        answer = a;
        generator s = counting(10);
        EXPECT_EQ(s.integers(7), counted(1, 7));
        EXPECT_EQ(s.integers(8), counted(8, 8));
        EXPECT_EQ(s.integers(11), counted(16, 11));
        EXPECT_EQ(questions, (std::vector<asked>{
                                 {10, 7, 10, 0}, {10, 8, 10, 7}, {10, 10, 10, 5}, {10, 1, 10, 5}}));
    }
}

TEST_F(Abstract, AsksAgainAfterTooFewAndBelievesNoMoreThanThereIs) {
    generator s = counting(4);
    answer = one_only;
    EXPECT_EQ(s.integers(6), counted(1, 6));
    EXPECT_EQ(questions.size(), 6u);
    answer = too_many;
    EXPECT_EQ(s.integers(11), counted(7, 11));
    EXPECT_EQ(questions.size(), 9u);
}

TEST_F(Abstract, ARefusalEndsTheRequest) {
    generator s = counting(4);
    EXPECT_EQ(s.integers(2), counted(1, 2));
    answer = refused;
    numbers r(5);
    EXPECT_EQ(s.fill(r.data(), 5), RSK_ERROR_CALLBACK);
    EXPECT_EQ(r, (numbers{3, 4, 0, 0, 0}));
    answer = everything;
    EXPECT_EQ(s.integers(5), counted(5, 5));
}

// The numbers 1, 2, ... of [0, 16) as u = 1/16, 2/16, ...
template <class T, class Make>
void check_floating(int id, Make *make) {
    T buffer[4];
    generator s, copy;
    ASSERT_EQ(make(&s, 4, buffer, 0, 16, count_on<T>), 0);
    EXPECT_EQ(rskGetStreamStateBrng(s), id);
    EXPECT_EQ(s.uniforms<double>(3, -4, 12), (std::vector<double>{-3, -2, -1}));
    EXPECT_EQ(s.uniforms<float>(3, -4, 12), (std::vector<float>{0, 1, 2}));
    EXPECT_EQ(s.integers(1), numbers{7u << 28});
    ASSERT_EQ(rskCopyStream(&copy, s), 0); // at its place in the same buffer
    EXPECT_EQ(copy.integers(1), numbers{8u << 28});
    EXPECT_EQ(s.integers(1), numbers{8u << 28});
}
TEST_F(Abstract, FloatingNumbersAreMappedFromTheirInterval) {
    check_floating<double>(RSK_BRNG_DABSTRACT, rskdNewAbstractStream);
    SetUp();
    check_floating<float>(RSK_BRNG_SABSTRACT, rsksNewAbstractStream);
}

template <class T>
T given; // what the next callbacks hand out
template <class T>
int hand_out(rskStream, vox_int *n, T *buffer, vox_int *nmin, vox_int *, vox_int *) {
    std::fill_n(buffer, *n, given<T>);
    return *nmin;
}

TEST_F(Abstract, UniformsStayBelowOne) {
    constexpr double big = std::numeric_limits<double>::max(), d1 = 1 - 0x1p-53;
    constexpr float f1 = 1 - 0x1p-24f;
    const struct {
        double a, b, value, u;
    } cases[] = {
        {0, 1, 0.1, 0.1},     {0, 1, -0.5, 0},      {0, 1, 1, d1},        {0, 1, 5, d1},
        {0, 1, NAN, 0},       {-big, big, 0, 0.5},  {-big, big, big, d1}, {-1e30, 1, 0.5, d1},
        {0, 1, INFINITY, d1}, {0, 1, -INFINITY, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.value);
        given<double> = c.value;
        double room[3];
        generator s;
        ASSERT_EQ(rskdNewAbstractStream(&s, 3, room, c.a, c.b, hand_out<double>), 0);
        EXPECT_EQ(s.uniforms<double>(1)[0], c.u);
        EXPECT_EQ(s.uniforms<float>(1)[0], std::fmin(float(c.u), f1));
        EXPECT_EQ(s.integers(1)[0], uint32_t(c.u * 0x1p32));
    }
    given<uint32_t> = 0xFFFFFFFF;
    generator s;
    ASSERT_EQ(rskiNewAbstractStream(&s, 2, buffer, hand_out<uint32_t>), 0);
    EXPECT_EQ(s.uniforms<double>(1)[0], 1 - 0x1p-32);
    EXPECT_EQ(s.uniforms<float>(1)[0], f1);
}

TEST_F(Abstract, BadArgumentsAreNotReported) {
    reports reported;
    rskStream const untouched = reinterpret_cast<rskStream>(&reported);
    rskStream s = untouched;
    double doubles[4];
    float floats[4];
    const struct {
        bool with_buffer;
        vox_int n;
        double a, b;
        bool with_callback;
    } cases[] = {
        {true, 0, 0, 1, true},        {true, -3, 0, 1, true},  {false, 4, 0, 1, true},
        {true, 4, 0, 1, false},       {true, 4, 1, 1, true},   {true, 4, 2, 1, true},
        {true, 4, NAN, 1, true},      {true, 4, 0, NAN, true}, {true, 4, -INFINITY, 1, true},
        {true, 4, 0, INFINITY, true},
    };
    for (const auto &c : cases) {
        uint32_t *const w = c.with_buffer ? buffer : nullptr;
        double *const d = c.with_buffer ? doubles : nullptr;
        float *const f = c.with_buffer ? floats : nullptr;
        const auto of_words = c.with_callback ? count_on<uint32_t> : nullptr;
        const auto of_doubles = c.with_callback ? count_on<double> : nullptr;
        const auto of_floats = c.with_callback ? count_on<float> : nullptr;
        const float a = float(c.a), b = float(c.b);
        const int bad = RSK_ERROR_BAD_ARGS;
        if (c.a == 0 && c.b == 1) {
            EXPECT_EQ(rskiNewAbstractStream(&s, c.n, w, of_words), bad);
            EXPECT_EQ(rskinewabstractstream_(&s, &c.n, w, of_words), bad);
        }
        EXPECT_EQ(rskdNewAbstractStream(&s, c.n, d, c.a, c.b, of_doubles), bad);
        EXPECT_EQ(RSKDNEWABSTRACTSTREAM_(&s, &c.n, d, &c.a, &c.b, of_doubles), bad);
        EXPECT_EQ(rsksNewAbstractStream(&s, c.n, f, a, b, of_floats), bad);
        EXPECT_EQ(rsksnewabstractstream_(&s, &c.n, f, &a, &b, of_floats), bad);
    }
    EXPECT_EQ(s, untouched);
    EXPECT_EQ(rskiNewAbstractStream(nullptr, 4, buffer, count_on<uint32_t>), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(reported.take(), "");
}

TEST_F(Abstract, NeitherSplitNorSaveNorTakeStates) {
    generator s = counting(4), mcg(RSK_BRNG_MCG31M1);
    const generator other = counting(10);
    const std::string before(reinterpret_cast<char *>(&s.object()), 48);
    char image[64];
    EXPECT_EQ(s.leapfrog(0, 2), RSK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(s.leapfrog(0, -2), RSK_ERROR_NSTREAMS);
    EXPECT_EQ(s.skip(2), RSK_ERROR_NO_SKIPAHEAD);
    EXPECT_EQ(rskGetStreamSize(s), RSK_ERROR_NOT_SAVABLE);
    EXPECT_EQ(rskSaveStreamM(s, image), RSK_ERROR_NOT_SAVABLE);
    EXPECT_EQ(rskCopyStreamState(s, other), 0);
    EXPECT_EQ(rskCopyStreamState(s, mcg), RSK_ERROR_BAD_STATE);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(&s.object()), 48), before);
}

TEST_F(Abstract, WithoutABuffer) {
    generator s = counting(4);
    memset(&s.object() + 2, 0, sizeof(void *)); // behind the three counts
    uint32_t r[3];
    EXPECT_EQ(s.fill(r, 3), RSK_ERROR_NULL_PTR);
    EXPECT_TRUE(questions.empty());
}

} // namespace
