// distributions_test.cpp - calls of distributions: checks, forms, requests that are split, generators that
// fail, the same bits everywhere.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string_view>

#include "tests/rng/distributions.hpp"
#include "tests/rng/streams.hpp"
#include "tests/support/child.hpp"
#include "tests/support/numbers.hpp"

namespace {

using namespace test;

// Numbers for every distribution: words and uniforms with no pattern.
void fill_script(int n) {
    script::words.clear();
    script::uniforms.clear();
    random_bits bits(1);
    for (int i = 0; i < n; ++i) {
        script::words.push_back(uint32_t(bits()));
        script::uniforms.push_back(double(bits() >> 11) * 0x1p-53);
    }
}

// Arguments of which some are wrong, and what is reported: the first in the order of the checks.
TEST(Distributions, WrongArgumentsAreReportedInOrderAndNothingIsWritten) {
    fill_script(100);
    const generator good = script::stream();
    generator dead = script::stream();
    dead.object().marker = 0;
    reports reported;
    for (const distribution &d : distributions())
        for (const form f : {form::c, form::lower, form::upper}) {
            std::vector<char> r(10 * d.element, 'x');
            const auto untouched = r;
            const std::vector<double> none(2, std::nan(""));
            const std::vector<double> &bad = d.bad.empty() ? none : d.bad[0].first;
            const struct {
                int method;
                rskStream s;
                int n;
                void *r;
                const double *parameters;
                int status, position;
            } calls[] = {
                {-1, nullptr, -1, nullptr, bad.data(), -3, 1},
                {d.methods, nullptr, -1, nullptr, bad.data(), -5, 2},
                {d.methods, dead, -1, nullptr, bad.data(), -1006, 2},
                {d.methods, good, -1, nullptr, bad.data(), -3, 3},
                {d.methods, good, 0, nullptr, bad.data(), 0, 0},
                {d.methods, good, 10, nullptr, bad.data(), -3, 4},
                {d.methods, good, 10, r.data(), bad.data(), -3, 1},
                {0x20000000, good, 10, r.data(), d.parameters.data(), -3, 1},
            };
            const auto expect = [&](int status, int expected_status, int position) {
                EXPECT_EQ(status, expected_status) << d.name << ' ' << position;
                const std::string report =
                    std::string(d.name) + ' ' + std::to_string(position) + ';';
                EXPECT_EQ(reported.take(), position ? report : "");
            };
            for (const auto &c : calls)
                expect(d.call(f, c.method, c.s, c.n, c.r, c.parameters), c.status, c.position);
            for (const auto &[parameters, position] : d.bad)
                expect(d.call(f, 0, good, 10, r.data(), parameters.data()), -3, position);
            EXPECT_EQ(r, untouched) << d.name;
            if (d.name[1] == 'i' && d.parameters.size() == 2)
                continue; // integers are always numbers
            expect(d.call(f, 0, script::stream(), 10, r.data(), none.data()), 0, 0);
        }
    dead.object().marker = vox::rng::live;
}

// Sizes around vectors and blocks, asked for by all forms. Pairs are split at even places.
TEST(Distributions, SplitRequestsGiveTheSameNumbers) {
    constexpr int n = 8000;
    fill_script(2 * n);
    for (const distribution &d : distributions())
        for (int method = 0; method < d.methods; ++method) {
            const bool pairs = d.methods == 3 && method == RSK_GAUSSIAN_BOXMULLER2;
            std::vector<char> whole(n * d.element), parts(whole.size());
            EXPECT_EQ(d.draw(method, script::stream(), n, whole.data()), 0);
            const generator s = script::stream();
            const int sizes[] = {1, 3, 7, 8, 17, 64, 1000, 1025, 511, 2};
            for (int at = 0, i = 0; at < n; ++i) {
                const int m = std::min(n - at, sizes[i % 10] * (pairs ? 2 : 1));
                EXPECT_EQ(d.call(form(i % 3), method, s, m, parts.data() + size_t(at) * d.element,
                                 d.parameters.data()),
                          0);
                at += m;
            }
            EXPECT_EQ(whole, parts) << d.name << ' ' << method;
        }
}

TEST(Distributions, AnOddRequestOfPairsLosesTheOther) {
    fill_script(10);
    const generator s = script::stream();
    const auto pairs = [](rskStream from, size_t n) {
        return variates(vdRngGaussian, RSK_GAUSSIAN_BOXMULLER2, from, n, 0, 1);
    };
    const std::vector<double> whole = pairs(script::stream(), 10), odd = pairs(s, 3),
                              next = pairs(s, 2);
    EXPECT_TRUE(std::equal(odd.begin(), odd.end(), whole.begin()));
    EXPECT_TRUE(std::equal(next.begin(), next.end(), whole.begin() + 4));
}

// The generator's error comes back, and the elements that it has not made are as they were.
TEST(Distributions, AFailingGeneratorEndsTheRequest) {
    fill_script(6000);
    for (const distribution &d : distributions())
        for (int method = 0; method < d.methods; ++method) {
            std::vector<char> r(8000 * d.element, 'x');
            EXPECT_EQ(d.draw(method, script::stream(), 8000, r.data()), RSK_ERROR_CALLBACK)
                << d.name;
            const auto made = r.begin() + long(6000 * d.element);
            EXPECT_EQ(std::count(made, r.end(), 'x'), r.end() - made) << d.name;
        }
}

// Words of 32 bits that are uniform, or the upper bits of larger ones; two of the former, the lower one first.
TEST(UniformBits, ComeFromWordsThatHaveThem) {
    constexpr int none = RSK_ERROR_NO_UNIFORM_BITS;
    const struct {
        int id, status32, status64;
    } cases[] = {{RSK_BRNG_MCG31M1, none, none},  {RSK_BRNG_R250, 0, 0},
                 {RSK_BRNG_MRG32K3A, none, none}, {RSK_BRNG_MCG59, 0, none},
                 {RSK_BRNG_WH, none, none},       {RSK_BRNG_MT19937, 0, 0},
                 {RSK_BRNG_MT2203, 0, 0},         {RSK_BRNG_SFMT19937, 0, 0},
                 {RSK_BRNG_PHILOX4X32X10, 0, 0},  {RSK_BRNG_SOBOL, 0, 0}};
    constexpr int n = 1300; // more than a block
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.id);
        const numbers all = generator(c.id).integers(n);
        numbers same(all.size()), words(n);
        std::vector<uint64_t> wide(n / 2);
        EXPECT_EQ(viRngUniformBits(0, generator(c.id), n, same.data()), 0);
        EXPECT_EQ(same, all);
        EXPECT_EQ(viRngUniformBits32(0, generator(c.id), n, words.data()), c.status32);
        EXPECT_EQ(viRngUniformBits64(0, generator(c.id), n / 2, wide.data()), c.status64);
        for (size_t i = 0; i < n && c.status32 == 0; ++i)
            ASSERT_EQ(words[i],
                      c.id == RSK_BRNG_MCG59 ? all[2 * i] >> 27 | all[2 * i + 1] << 5 : all[i]);
        for (size_t i = 0; i < n / 2 && c.status64 == 0; ++i)
            ASSERT_EQ(wide[i], all[2 * i] | uint64_t(all[2 * i + 1]) << 32);
    }
}

// Of every size that vectors and rests make.
template <class T>
void expect_clamped(int (*draw)(vox_int, rskStream, vox_int, T *, T, T)) {
    const T a = T(-0.9), b = T(0.2); // a + (b - a) is above b
    for (size_t n = 1; n < 40; ++n) {
        EXPECT_GT(scripted(draw, 0, n, a, b).back(), b);
        EXPECT_EQ(scripted(draw, RSK_UNIFORM_CLAMP_BIT, n, a, b), std::vector<T>(n, b));
    }
}
TEST(Uniform, TheClampBitKeepsResultsInside) {
    script::uniforms.assign(100, 1);
    expect_clamped(vsRngUniform);
    expect_clamped(vdRngUniform);
}

// p against the uniforms in single precision, also where r is at no multiple of 16 bytes.
TEST(Bernoulli, ComparesWithTheUniforms) {
    constexpr int n = 300;
    script::uniforms.clear();
    for (int i = 0; i < n; ++i)
        script::uniforms.push_back(i == 0 ? 0.3f : i == 1 ? 0 : i == 2 ? 1 - 0x1p-24 : i / 300.0);
    const std::vector<float> u = scripted(vsRngUniform, 0, n, 0, 1);
    std::vector<vox_int> r(n + 4);
    for (const double p :
         {0.0, -0.0, 0.3, 0.5, 1 - 0x1p-24, 1 - 0x1p-26, 1.0, double(NAN), -double(NAN)})
        for (int offset = 0; offset < 4; ++offset) {
            EXPECT_EQ(viRngBernoulli(0, script::stream(), n, r.data() + offset, p), 0);
            for (int i = 0; i < n; ++i) {
                const bool one = std::isnan(p) ? !std::signbit(p)
                                               : u[size_t(i)] < float(p); // by the bits of a NaN
                ASSERT_EQ(r[size_t(i + offset)], one) << p << ' ' << i << ' ' << offset;
            }
        }
#if !defined(__SANITIZE_ADDRESS__) // at an odd address, which no array of integers has
    std::vector<char> bytes(4 * n + 1);
    vox_int *const odd = reinterpret_cast<vox_int *>(bytes.data() + 1);
    EXPECT_EQ(viRngBernoulli(0, script::stream(), n, odd, 0.5), 0);
    for (int i = 0; i < n; ++i) {
        vox_int x;
        memcpy(&x, bytes.data() + 1 + 4 * i, 4);
        EXPECT_EQ(x, u[size_t(i)] < 0.5f);
    }
#endif
}

// A digest of everything, in a process of its own for each setting.
CHILD(digest) {
    for (const distribution &d : distributions())
        for (int method = 0; method < d.methods; ++method) {
            fill_script(6000);
            std::vector<char> r(3000 * d.element);
            d.draw(method, script::stream(), 3000, r.data());
            std::vector<double> large(d.parameters);
            if (large.size() == 1 && large[0] > 1) { // the other way to Poisson's
                large[0] = 12345.678;
                d.call(form::c, method, script::stream(), 1500, r.data(), large.data());
            }
            std::printf("%s %d %zx\n", d.name, method,
                        std::hash<std::string_view>()({r.data(), r.size()}));
        }
}
TEST(Distributions, AllKernelSetsGiveTheSameBits) {
    const std::string first = run_child(digest, {{"VOX_DEBUG_CPU_TYPE", "0"}}).out;
    EXPECT_GT(first.size(), 400u);
    for (const char *type : {"2", "3", "4", "5", "6", "7"})
        EXPECT_EQ(run_child(digest, {{"VOX_DEBUG_CPU_TYPE", type}}).out, first) << type;
    for (const char *branch : {"COMPATIBLE", "SSE4_1"})
        EXPECT_EQ(run_child(digest, {{"VOX_CBWR", branch}}).out, first) << branch;
}

} // namespace
