// abstract_test.cpp - streams on numbers of the user's: when the callback is asked for what, and what becomes
// of its answers.
#include "tests/rng/streams.hpp"

#include <cmath>
#include <limits>
#include <type_traits>

namespace {

using namespace test;

// A callback that counts 1, 2, 3, ... into the buffer, as many as `answer` says.
struct asked {
    int n, nmin, nmax, idx;
    bool operator==(const asked &) const = default;
    friend std::ostream &operator<<(std::ostream &out, const asked &a) {
        return out << a.n << ' ' << a.nmin << ' ' << a.nmax << ' ' << a.idx;
    }
};
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
    void SetUp() override {
        questions.clear();
        last = 0;
        answer = everything;
    }
};

std::vector<uint32_t> counted(uint32_t from, int n) {
    std::vector<uint32_t> v;
    for (int i = 0; i < n; ++i)
        v.push_back(from + uint32_t(i));
    return v;
}

TEST_F(Abstract, AsksWhenAllHasBeenUsed) {
    uint32_t buffer[10];
    owned_stream s;
    ASSERT_EQ(rskiNewAbstractStream(&s, 10, buffer, count_on<uint32_t>), 0);
    EXPECT_EQ(rskGetStreamStateBrng(s), RSK_BRNG_IABSTRACT);
    EXPECT_TRUE(questions.empty());
    EXPECT_EQ(draw(s, 3).words, counted(1, 3));
    EXPECT_EQ(draw(s, 0).words, counted(1, 0));
    EXPECT_EQ(draw(s, 7).words, counted(4, 7));
    EXPECT_EQ(draw(s, 25).words, counted(11, 25));
    EXPECT_EQ(questions, (std::vector<asked>{
                             {10, 3, 10, 0}, {10, 10, 10, 0}, {10, 10, 10, 0}, {10, 5, 10, 0}}));
}

TEST_F(Abstract, TheBufferIsCircular) {
    for (answers a : {least, nothing_said}) {
        SetUp();
        answer = a;
        uint32_t buffer[10];
        owned_stream s;
        ASSERT_EQ(rskiNewAbstractStream(&s, 10, buffer, count_on<uint32_t>), 0);
        EXPECT_EQ(draw(s, 7).words, counted(1, 7));
        EXPECT_EQ(draw(s, 8).words, counted(8, 8));
        EXPECT_EQ(draw(s, 11).words, counted(16, 11));
        EXPECT_EQ(questions, (std::vector<asked>{
                                 {10, 7, 10, 0}, {10, 8, 10, 7}, {10, 10, 10, 5}, {10, 1, 10, 5}}));
    }
}

TEST_F(Abstract, AsksAgainAfterTooFewAndBelievesNoMoreThanThereIs) {
    uint32_t buffer[4];
    owned_stream s;
    ASSERT_EQ(rskiNewAbstractStream(&s, 4, buffer, count_on<uint32_t>), 0);
    answer = one_only;
    EXPECT_EQ(draw(s, 6).words, counted(1, 6));
    EXPECT_EQ(questions.size(), 6u);
    answer = too_many;
    EXPECT_EQ(draw(s, 11).words, counted(7, 11));
    EXPECT_EQ(questions.size(), 9u);
}

TEST_F(Abstract, ARefusalEndsTheRequest) {
    uint32_t buffer[4];
    owned_stream s;
    ASSERT_EQ(rskiNewAbstractStream(&s, 4, buffer, count_on<uint32_t>), 0);
    EXPECT_EQ(draw(s, 2).words, counted(1, 2));
    answer = refused;
    const drawn d = draw(s, 5);
    EXPECT_EQ(d.status, RSK_ERROR_CALLBACK);
    EXPECT_EQ(d.words, (std::vector<uint32_t>{3, 4, 0, 0, 0}));
    answer = everything;
    EXPECT_EQ(draw(s, 5).words, counted(5, 5));
}

// The numbers 1, 2, ... of [0, 16) as u = 1/16, 2/16, ...
template <class T>
void check_floating(int id, int (*make)(rskStream *, vox_int, T *, T, T,
                                        int (*)(rskStream, vox_int *, T *, vox_int *, vox_int *,
                                                vox_int *))) {
    T buffer[4];
    owned_stream s, copy;
    ASSERT_EQ(make(&s, 4, buffer, 0, 16, count_on<T>), 0);
    EXPECT_EQ(rskGetStreamStateBrng(s), id);
    const vox::rng::brng_properties row = properties_of(id);
    double d[3];
    float f[3];
    ASSERT_EQ(row.doubles(&s.object(), 3, d, -4, 12), 0);
    EXPECT_EQ(std::vector<double>(d, d + 3), (std::vector<double>{-3, -2, -1}));
    ASSERT_EQ(row.singles(&s.object(), 3, f, -4, 12), 0);
    EXPECT_EQ(std::vector<float>(f, f + 3), (std::vector<float>{0, 1, 2}));
    EXPECT_EQ(draw(s, 1).words, std::vector<uint32_t>{7u << 28});
    ASSERT_EQ(rskCopyStream(&copy, s), 0); // at its place in the same buffer
    EXPECT_EQ(draw(copy, 1).words, std::vector<uint32_t>{8u << 28});
    EXPECT_EQ(draw(s, 1).words, std::vector<uint32_t>{8u << 28});
}
TEST_F(Abstract, DoublesAreMappedFromTheirInterval) {
    check_floating<double>(RSK_BRNG_DABSTRACT, rskdNewAbstractStream);
}
TEST_F(Abstract, FloatsAreMappedFromTheirInterval) {
    check_floating<float>(RSK_BRNG_SABSTRACT, rsksNewAbstractStream);
}

template <class T>
std::vector<T> given; // what the next callbacks hand out
template <class T>
int hand_out(rskStream, vox_int *, T *buffer, vox_int *nmin, vox_int *, vox_int *idx) {
    EXPECT_LE(size_t(*idx + *nmin), given<T>.size());
    for (size_t i = 0; i < given<T>.size(); ++i)
        buffer[i] = given<T>[i];
    return *nmin;
}

TEST_F(Abstract, UniformsStayBelowOne) {
    constexpr double big = std::numeric_limits<double>::max(), d1 = 1 - 0x1p-53;
    constexpr float f1 = 1 - 0x1p-24f;
    const double nan = std::nan("");
    const struct {
        double a, b, value, u;
    } cases[] = {
        {0, 1, 0.1, 0.1},     {0, 1, -0.5, 0},      {0, 1, 1, d1},        {0, 1, 5, d1},
        {0, 1, nan, 0},       {-big, big, 0, 0.5},  {-big, big, big, d1}, {-1e30, 1, 0.5, d1},
        {0, 1, INFINITY, d1}, {0, 1, -INFINITY, 0},
    };
    const vox::rng::brng_properties row = properties_of(RSK_BRNG_DABSTRACT);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.value);
        given<double>.assign(3, c.value);
        double buffer[3], d;
        float f;
        owned_stream s;
        ASSERT_EQ(rskdNewAbstractStream(&s, 3, buffer, c.a, c.b, hand_out<double>), 0);
        ASSERT_EQ(row.doubles(&s.object(), 1, &d, 0, 1), 0);
        ASSERT_EQ(row.singles(&s.object(), 1, &f, 0, 1), 0);
        EXPECT_EQ(d, c.u);
        EXPECT_EQ(f, std::fmin(float(c.u), f1));
        EXPECT_EQ(draw(s, 1).words[0], uint32_t(c.u * 0x1p32));
    }
    given<uint32_t>.assign(2, 0xFFFFFFFF);
    const vox::rng::brng_properties words = properties_of(RSK_BRNG_IABSTRACT);
    uint32_t buffer[2];
    owned_stream s;
    double d;
    float f;
    ASSERT_EQ(rskiNewAbstractStream(&s, 2, buffer, hand_out<uint32_t>), 0);
    ASSERT_EQ(words.doubles(&s.object(), 1, &d, 0, 1), 0);
    ASSERT_EQ(words.singles(&s.object(), 1, &f, 0, 1), 0);
    EXPECT_EQ(d, 1 - 0x1p-32);
    EXPECT_EQ(f, f1);
}

TEST_F(Abstract, BadArgumentsAreNotReported) {
    reports reported;
    rskStream const untouched = reinterpret_cast<rskStream>(&reported);
    rskStream s = untouched;
    uint32_t words[4];
    double doubles[4];
    float floats[4];
    const auto refused_by_all = [&](bool with_buffer, vox_int n, double a, double b, bool asked) {
        uint32_t *const w = with_buffer ? words : nullptr;
        double *const d = with_buffer ? doubles : nullptr;
        float *const f = with_buffer ? floats : nullptr;
        const auto i_callback = asked ? count_on<uint32_t> : nullptr;
        const auto d_callback = asked ? count_on<double> : nullptr;
        const auto s_callback = asked ? count_on<float> : nullptr;
        const float sa = float(a), sb = float(b);
        if (a < b) {
            EXPECT_EQ(rskiNewAbstractStream(&s, n, w, i_callback), RSK_ERROR_BAD_ARGS);
            EXPECT_EQ(rskinewabstractstream_(&s, &n, w, i_callback), RSK_ERROR_BAD_ARGS);
        }
        EXPECT_EQ(rskdNewAbstractStream(&s, n, d, a, b, d_callback), RSK_ERROR_BAD_ARGS);
        EXPECT_EQ(RSKDNEWABSTRACTSTREAM_(&s, &n, d, &a, &b, d_callback), RSK_ERROR_BAD_ARGS);
        EXPECT_EQ(rsksNewAbstractStream(&s, n, f, sa, sb, s_callback), RSK_ERROR_BAD_ARGS);
        EXPECT_EQ(rsksnewabstractstream_(&s, &n, f, &sa, &sb, s_callback), RSK_ERROR_BAD_ARGS);
    };
    refused_by_all(true, 0, 0, 1, true);
    refused_by_all(true, -3, 0, 1, true);
    refused_by_all(false, 4, 0, 1, true);
    refused_by_all(true, 4, 0, 1, false);
    refused_by_all(true, 4, 1, 1, true);
    refused_by_all(true, 4, 2, 1, true);
    refused_by_all(true, 4, std::nan(""), 1, true);
    refused_by_all(true, 4, 0, std::nan(""), true);
    EXPECT_EQ(rskdNewAbstractStream(&s, 4, doubles, -INFINITY, 1, count_on<double>),
              RSK_ERROR_BAD_ARGS);
    EXPECT_EQ(rsksNewAbstractStream(&s, 4, floats, 0, INFINITY, count_on<float>),
              RSK_ERROR_BAD_ARGS);
    EXPECT_EQ(s, untouched);
    EXPECT_EQ(rskiNewAbstractStream(nullptr, 4, words, count_on<uint32_t>), RSK_ERROR_NULL_PTR);
    EXPECT_EQ(reported.take(), "");
}

TEST_F(Abstract, NeitherSplitNorSaveNorTakeStates) {
    uint32_t buffer[4], other_buffer[4];
    owned_stream s, other, mcg(RSK_BRNG_MCG31M1);
    ASSERT_EQ(rskiNewAbstractStream(&s, 4, buffer, count_on<uint32_t>), 0);
    ASSERT_EQ(rskiNewAbstractStream(&other, 4, other_buffer, count_on<uint32_t>), 0);
    const std::string before(reinterpret_cast<char *>(s.s), 48);
    char image[64];
    EXPECT_EQ(rskLeapfrogStream(s, 0, 2), RSK_ERROR_NO_LEAPFROG);
    EXPECT_EQ(rskLeapfrogStream(s, 0, -2), RSK_ERROR_NSTREAMS);
    EXPECT_EQ(rskSkipAheadStream(s, 2), RSK_ERROR_NO_SKIPAHEAD);
    EXPECT_EQ(rskGetStreamSize(s), RSK_ERROR_NOT_SAVABLE);
    EXPECT_EQ(rskSaveStreamM(s, image), RSK_ERROR_NOT_SAVABLE);
    EXPECT_EQ(rskCopyStreamState(s, other), 0);
    EXPECT_EQ(rskCopyStreamState(s, mcg), RSK_ERROR_BAD_STATE);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(s.s), 48), before);
}

TEST_F(Abstract, WithoutABuffer) {
    uint32_t buffer[4];
    owned_stream s;
    ASSERT_EQ(rskiNewAbstractStream(&s, 4, buffer, count_on<uint32_t>), 0);
    memset(reinterpret_cast<char *>(s.s) + 32, 0, sizeof(void *)); // behind the three counts
    EXPECT_EQ(draw(s, 3).status, RSK_ERROR_NULL_PTR);
    EXPECT_TRUE(questions.empty());
}

} // namespace
