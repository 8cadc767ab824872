// distribution_shapes_test.cpp - variates of real generators in large numbers against their distributions, by
// Kolmogorov and Smirnov's test and by chi-square. Seeds are fixed, so the outcome is always the same: a right
// distribution fails a test at this level once in ten thousand seeds.
#include <algorithm>
#include <cmath>
#include <gsl/gsl_cdf.h>
#include <gsl/gsl_randist.h>

#include "tests/rng/distributions.hpp"

namespace {

using namespace test;

constexpr size_t n = 400000;
constexpr double level = 1e-4;
constexpr int generators[] = {RSK_BRNG_MCG31M1, RSK_BRNG_MCG59, RSK_BRNG_MT19937};

// The distance between n numbers and their distribution is as likely as the level says, by the limit of its
// distribution.
template <class R, class Distribution>
void expect_shape(std::vector<R> x, const Distribution &f) {
    std::sort(x.begin(), x.end());
    double distance = 0, probability = 0, sign = 2;
    for (size_t i = 0; i < n; ++i)
        distance = std::max(
            {distance, f(double(x[i])) - double(i) / n, double(i + 1) / n - f(double(x[i]))});
    const double scaled = distance * (std::sqrt(n) + 0.12 + 0.11 / std::sqrt(n));
    for (int k = 1; k <= 100; ++k, sign = -sign)
        probability += sign * std::exp(-2 * k * k * scaled * scaled);
    EXPECT_GT(probability, level);
}

TEST(DistributionShapes, ContinuousOnesFollowTheirFunctions) {
    const auto uniform = [](double x) { return gsl_cdf_flat_P(x, -1, 3); };
    const auto exponential = [](double x) { return gsl_cdf_exponential_P(x - 1, 2); };
    const auto normal = [](double x) { return gsl_cdf_gaussian_P(x - 1, 2); };
    for (const int id : generators) {
        SCOPED_TRACE(id);
        const generator s(id, {20261});
        expect_shape(variates(vsRngUniform, 0, s, n, -1, 3), uniform);
        expect_shape(variates(vdRngUniform, 0, s, n, -1, 3), uniform);
        expect_shape(variates(vsRngExponential, 0, s, n, 1, 2), exponential);
        expect_shape(variates(vdRngExponential, 0, s, n, 1, 2), exponential);
        for (int method = 0; method < 3; ++method) {
            expect_shape(variates(vsRngGaussian, method, s, n, 1, 2), normal);
            expect_shape(variates(vdRngGaussian, method, s, n, 1, 2), normal);
        }
    }
}

// Counts of first, first + 1, ... in classes of at least 20 expected ones.
template <class Probability>
void expect_counts(const std::vector<vox_int> &r, int first, int values, const Probability &p) {
    std::vector<double> counts(static_cast<size_t>(values));
    for (const vox_int x : r)
        ++counts[size_t(std::clamp(x - first, 0, values - 1))];
    double sum = 0, seen = 0, expected = 0, rest = n;
    int classes = 0;
    for (int i = 0; i < values; ++i) {
        seen += counts[size_t(i)];
        expected += p(first + i) * n;
        rest -= p(first + i) * n;
        if ((expected >= 20 && rest >= 20) || i + 1 == values) {
            sum += (seen - expected) * (seen - expected) / expected;
            seen = expected = 0;
            ++classes;
        }
    }
    EXPECT_GT(gsl_cdf_chisq_Q(sum, classes - 1), level);
}

TEST(DistributionShapes, DiscreteOnesComeAsOftenAsTheyShould) {
    for (const int id : generators) {
        SCOPED_TRACE(id);
        const generator s(id, {20262});
        expect_counts(variates(viRngUniform, 0, s, n, -3, 97), -3, 100, [](int) { return 0.01; });
        for (const double p : {0.001, 0.3, 0.5, 0.97})
            expect_counts(variates(viRngBernoulli, 0, s, n, p), 0, 2,
                          [=](int k) { return k ? p : 1 - p; });
        for (const double mean : {0.01, 0.7, 4.0, 30.0, 99.0, 100.0, 1000.0, 1e5, 1e6}) {
            const double reach = 8 * std::sqrt(mean) + 10;
            const int first = int(std::max(0.0, mean - reach)), last = int(mean + reach);
            expect_counts(variates(viRngPoisson, 0, s, n, mean), first, last - first + 1,
                          [=](int k) { return gsl_ran_poisson_pdf(unsigned(k), mean); });
        }
    }
}

} // namespace
