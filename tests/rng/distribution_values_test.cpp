// distribution_values_test.cpp - variates as functions of their uniforms: within some units of the last place
// of the exact ones, which long double gives.
#include <cmath>

#include "tests/rng/distributions.hpp"

namespace {

using namespace test;

constexpr long double pi = 3.14159265358979323846264338327950288L;

// Uniforms everywhere: even steps, both ends down to the last bit, borders of approximations.
void fill_script() {
    std::vector<double> &u = script::uniforms;
    u.clear();
    for (int i = 0; i < 40000; ++i)
        u.push_back((i + 0.37) / 40000);
    for (int e = 1; e <= 59; ++e)
        for (const double m : {1.0, 1.234567, 1.41421356, 1.7654321}) {
            const double p = std::ldexp(m, -e); // below 1
            u.push_back(p);
            u.push_back(e <= 52 ? 1 - p : 0.5);
        }
    for (const double border : {0.05, 0.95, 0.25, 0.75, 0.5, 1 - M_SQRT1_2, 0.125})
        for (const double step : {-1e-9, -0x1p-54, 0.0, 0x1p-53, 1e-9})
            u.push_back(border + step);
    u.push_back(1 - 0x1p-53);
    if (u.size() % 2)
        u.push_back(0.5);
}

// The distance from the exact value, in units of the last place.
double ulps(double x, long double exact) {
    int exponent;
    std::frexp(double(exact), &exponent);
    return std::fabs(double((x - exact) / std::ldexp(1.0L, exponent - 53)));
}

// How far a result may be off is what docs/rng.md promises.
TEST(DistributionValues, ExponentialIsTheLogarithm) {
    fill_script();
    const std::vector<double> &u = script::uniforms,
                              r = scripted(vdRngExponential, 0, u.size(), 0, 1);
    double worst = 0;
    for (size_t i = 0; i < r.size(); ++i)
        worst = std::max(worst, ulps(r[i], -std::log1p(-(long double)(u[i]))));
    EXPECT_LT(worst, 3);
}

TEST(DistributionValues, BoxMullerIsItsFormula) {
    fill_script();
    std::vector<double> &u = script::uniforms;
    for (size_t i = 0; i < u.size(); i += 2) // pairs that have nothing to do with each other
        std::swap(u[i], u[(i * 7919) % u.size() & ~size_t(1)]);
    const std::vector<double> pairs =
                                  scripted(vdRngGaussian, RSK_GAUSSIAN_BOXMULLER2, u.size(), 0, 1),
                              singles = scripted(vdRngGaussian, RSK_GAUSSIAN_BOXMULLER,
                                                 u.size() / 2, 0, 1);
    double worst = 0;
    for (size_t i = 0; i < u.size(); i += 2) {
        const long double radius = std::sqrt(-2 * std::log1p(-(long double)(u[i])));
        // reduced by hand, since the argument's error would be the result's near zeros
        const long double turns = u[i + 1];
        const long double half = turns < 0.25L ? turns : turns < 0.75L ? 0.5L - turns : turns - 1;
        const long double quarter = turns < 0.5L ? 0.25L - turns : turns - 0.75L;
        worst = std::max(worst, ulps(pairs[i], radius * std::sin(2 * pi * half)));
        worst = std::max(worst, ulps(pairs[i + 1], radius * std::sin(2 * pi * quarter)));
        EXPECT_EQ(pairs[i], singles[i / 2]);
    }
    EXPECT_LT(worst, 5);
}

// z is off by the error of its distribution function over the density.
TEST(DistributionValues, TheNormalInverse) {
    fill_script();
    const std::vector<double> &u = script::uniforms;
    const std::vector<double> z = scripted(vdRngGaussian, RSK_GAUSSIAN_INVERSE, u.size(), 0, 1);
    double worst = 0;
    for (size_t i = 0; i < u.size(); ++i) {
        const long double x = std::fabs((long double)(z[i]));
        const long double p = u[i] < 0.5 ? u[i] : 1 - (long double)(u[i]);
        const long double density = std::exp(-x * x / 2) / std::sqrt(2 * pi);
        const long double error = (std::erfc(x / std::sqrt(2.0L)) / 2 - p) / density;
        worst = std::max(worst, ulps(double(x), x + error));
        if (z[i] != 0) {
            EXPECT_EQ(std::signbit(z[i]), u[i] < 0.5);
        }
    }
    EXPECT_LT(worst, 6);
}

TEST(DistributionValues, AZeroIsHalfTheSmallestOf32Bits) {
    script::uniforms = {0, 0x1p-33, 0, 0x1p-33};
    const std::vector<double> z = scripted(vdRngGaussian, RSK_GAUSSIAN_INVERSE, 2, 0, 1);
    EXPECT_EQ(z[0], z[1]);
    EXPECT_EQ(scripted(vdRngExponential, 0, 1, 3, 2)[0], 3);
}

// Mean, scale and precision come after.
template <class S, class D>
void expect_applied(const S &single, const D &wide, int method, size_t uniforms_each) {
    const size_t n = script::uniforms.size() / uniforms_each;
    const std::vector<double> standard = scripted(wide, method, n, 0, 1),
                              moved = scripted(wide, method, n, 0.3, 1.7),
                              other = scripted(wide, method, n, 0.5, 1.75);
    const std::vector<float> narrow = scripted(single, method, n, 0.5, 1.75);
    for (size_t i = 0; i < n; ++i) {
        ASSERT_EQ(moved[i], 0.3 + 1.7 * standard[i]) << method;
        ASSERT_EQ(narrow[i], float(other[i])) << method;
    }
}
TEST(DistributionValues, ParametersAreAppliedToTheStandardForm) {
    fill_script();
    expect_applied(vsRngExponential, vdRngExponential, 0, 1);
    for (int method = 0; method < 3; ++method)
        expect_applied(vsRngGaussian, vdRngGaussian, method,
                       method == RSK_GAUSSIAN_BOXMULLER ? 2 : 1);
}

TEST(DistributionValues, IntegersAreTheWholePart) {
    fill_script();
    const std::vector<double> &u = script::uniforms;
    const vox_int least = INT32_MIN, most = INT32_MAX;
    const vox_int ranges[][2] = {{0, 1}, {-3, 4}, {5, 1005}, {least, most}, {least, 0}, {-1, most}};
    for (const auto &[a, b] : ranges) {
        const std::vector<vox_int> r = scripted(viRngUniform, 0, u.size(), a, b);
        for (size_t i = 0; i < u.size(); ++i)
            ASSERT_EQ(r[i], vox_int(a + std::floor((double(b) - a) * u[i]))) << a << ' ' << u[i];
    }
}

// Poisson's probabilities around the mean, and their sums from either side, each from its small end.
struct poisson {
    int first;
    std::vector<long double> p, up_to, above;

    explicit poisson(double mean) {
        const double reach = 12 * std::sqrt(mean) + 60;
        first = int(std::max(0.0, std::floor(mean - reach)));
        p.resize(size_t(std::min(mean + reach, 2147483646.0)) - size_t(first) + 1);
        const size_t mode = size_t(mean) - size_t(first);
        p[mode] = 1;
        for (size_t i = mode; i > 0; --i)
            p[i - 1] = p[i] * (long double)(size_t(first) + i) / mean;
        for (size_t i = mode + 1; i < p.size(); ++i)
            p[i] = p[i - 1] * mean / (long double)(size_t(first) + i);
        up_to = above = p;
        for (size_t i = 1; i < p.size(); ++i)
            up_to[i] += up_to[i - 1];
        for (size_t i = p.size() - 1; i-- > 0;)
            above[i] += above[i + 1];
        const long double all = up_to.back();
        for (auto *list : {&p, &up_to, &above})
            for (long double &x : *list)
                x /= all;
        above.erase(above.begin());
        above.push_back(0);
    }
};

// u lies between the distribution function below the count and at it. With a mean of 100 and more the count
// may be the neighbour's where that is 1e-5 of the count's probability away.
TEST(DistributionValues, PoissonIsTheInverse) {
    fill_script();
    const std::vector<double> &u = script::uniforms;
    for (const double mean : {1e-300, 1e-3, 0.5, 1.0, 7.3, 42.0, 99.99, 100.0, 101.5, 317.0, 1e4,
                              1234567.8, 1e8, 2e9}) {
        const poisson exact(mean);
        const std::vector<vox_int> r = scripted(viRngPoisson, 0, u.size(), mean);
        for (size_t i = 0; i < u.size(); ++i) {
            const size_t k = size_t(r[i] - exact.first);
            ASSERT_LT(k, exact.p.size()) << mean << ' ' << u[i];
            const long double slack = 1e-16 + exact.p[k] * (mean < 100 ? 1e-13L : 1e-5L);
            const bool lower = u[i] < 0.5;
            const auto below = [&](size_t count) { // by how much u is below the function there
                return lower ? exact.up_to[count] - u[i] : 1 - u[i] - exact.above[count];
            };
            ASSERT_GT(below(k), -slack) << mean << ' ' << u[i] << ' ' << r[i];
            if (k > 0) {
                ASSERT_LE(below(k - 1), slack) << mean << ' ' << u[i] << ' ' << r[i];
            }
        }
    }
}

} // namespace
