// distribution_shapes_test.cpp - variates in large numbers against their distributions: Kolmogorov and Smirnov's
// test, chi-square, moments and tails.
//
// Seeds are fixed, so the outcome is always the same. A test at a level of 1e-4 is what a right distribution
// fails once in ten thousand seeds; moments and counts in tails may be off by four standard errors.
#include <algorithm>
#include <cmath>
#include <functional>
#include <gsl/gsl_cdf.h>

#include "tests/rng/distributions.hpp"

namespace {

using test::a_stream;

constexpr int n = 400000;
constexpr double level = 1e-4;
constexpr int generators[] = {RSK_BRNG_MCG31M1, RSK_BRNG_MCG59, RSK_BRNG_MT19937};

// The probability of a distance of D or more between n numbers and their distribution, by its limit.
double kolmogorov(double d, int numbers) {
    const double x = d * (std::sqrt(numbers) + 0.12 + 0.11 / std::sqrt(numbers));
    double sum = 0, sign = 2;
    for (int k = 1; k <= 100; ++k, sign = -sign)
        sum += sign * std::exp(-2 * k * k * x * x);
    return std::min(1.0, sum);
}

double distance(std::vector<double> x, const std::function<double(double)> &distribution) {
    std::sort(x.begin(), x.end());
    double d = 0;
    for (size_t i = 0; i < x.size(); ++i) {
        const double f = distribution(x[i]), size = double(x.size());
        d = std::max({d, f - double(i) / size, double(i + 1) / size - f});
    }
    return d;
}

struct shape {
    const char *name;
    std::function<void(rskStream, double *)> draw;
    std::function<double(double)> distribution;
    double mean, variance;
    double kurtosis; // fourth central moment over squared variance
};

template <class R, class Draw>
auto widened(const Draw &draw) {
    return [=](rskStream s, double *x) {
        std::vector<R> r(n);
        EXPECT_EQ(draw(s, r.data()), 0);
        std::copy(r.begin(), r.end(), x);
    };
}

std::vector<shape> shapes() {
    const auto normal = [](double x) {
        return std::erfc((1 - x) / 2 / M_SQRT2) / 2;
    }; // a 1, sigma 2
    const auto exponential = [](double x) { return x < 1 ? 0 : -std::expm1((1 - x) / 2); };
    const auto uniform = [](double x) { return std::clamp((x + 1) / 4, 0.0, 1.0); };
    std::vector<shape> all = {
        {"vsRngUniform",
         widened<float>([](rskStream s, float *r) { return vsRngUniform(0, s, n, r, -1, 3); }),
         uniform, 1, 16 / 12.0, 1.8},
        {"vdRngUniform",
         widened<double>([](rskStream s, double *r) { return vdRngUniform(0, s, n, r, -1, 3); }),
         uniform, 1, 16 / 12.0, 1.8},
        {"vsRngExponential",
         widened<float>([](rskStream s, float *r) { return vsRngExponential(0, s, n, r, 1, 2); }),
         exponential, 3, 4, 9},
        {"vdRngExponential",
         widened<double>([](rskStream s, double *r) { return vdRngExponential(0, s, n, r, 1, 2); }),
         exponential, 3, 4, 9},
    };
    for (int method = 0; method < 3; ++method) {
        all.push_back({"vsRngGaussian", widened<float>([=](rskStream s, float *r) {
                           return vsRngGaussian(method, s, n, r, 1, 2);
                       }),
                       normal, 1, 4, 3});
        all.push_back({"vdRngGaussian", widened<double>([=](rskStream s, double *r) {
                           return vdRngGaussian(method, s, n, r, 1, 2);
                       }),
                       normal, 1, 4, 3});
    }
    return all;
}

TEST(DistributionShapes, ContinuousOnesFollowTheirFunctions) {
    for (const int id : generators)
        for (const shape &d : shapes()) {
            const a_stream s(id, 20261);
            std::vector<double> x(n);
            d.draw(s, x.data());
            EXPECT_GT(kolmogorov(distance(x, d.distribution), n), level) << d.name;

            double mean = 0, variance = 0;
            for (const double v : x)
                mean += v / n;
            for (const double v : x)
                variance += (v - d.mean) * (v - d.mean) / n;
            EXPECT_LT(std::fabs(mean - d.mean), 4 * std::sqrt(d.variance / n)) << d.name;
            EXPECT_LT(std::fabs(variance - d.variance),
                      4 * d.variance * std::sqrt((d.kurtosis - 1) / n))
                << d.name;

            // neighbours have nothing to do with each other
            double product = 0;
            for (int i = 0; i + 1 < n; ++i)
                product += (x[size_t(i)] - d.mean) * (x[size_t(i) + 1] - d.mean) / n;
            EXPECT_LT(std::fabs(product), 4 * d.variance / std::sqrt(n)) << d.name;

            // as many as there should be beyond where one of ten, ..., of ten thousand is
            for (const double tail : {1e-1, 1e-2, 1e-3, 1e-4})
                for (const bool upper : {false, true}) {
                    const auto beyond = std::count_if(x.begin(), x.end(), [&](double v) {
                        const double f = d.distribution(v);
                        return upper ? f > 1 - tail : f < tail;
                    });
                    EXPECT_LT(std::fabs(double(beyond) - n * tail), 4 * std::sqrt(n * tail))
                        << d.name << ' ' << tail << upper;
                }
        }
}

// Counts of each value, in classes of at least 20 expected ones.
double chi_square_level(const std::vector<vox_int> &r, int first, const std::vector<double> &p) {
    std::vector<double> counts(p.size());
    for (const vox_int x : r)
        ++counts[size_t(std::clamp(x - first, 0, int(p.size()) - 1))];
    double sum = 0, seen = 0, expected = 0;
    int classes = 0;
    double rest = double(r.size());
    for (size_t i = 0; i < p.size(); ++i) {
        seen += counts[i];
        expected += p[i] * double(r.size());
        rest -= p[i] * double(r.size());
        if ((expected >= 20 && rest >= 20) || i + 1 == p.size()) {
            sum += (seen - expected) * (seen - expected) / expected;
            seen = expected = 0;
            ++classes;
        }
    }
    return gsl_cdf_chisq_Q(sum, classes - 1);
}

TEST(DistributionShapes, IntegersComeAsOftenAsTheyShould) {
    std::vector<vox_int> r(n);
    for (const int id : generators) {
        const a_stream s(id, 20262);
        EXPECT_EQ(viRngUniform(0, s, n, r.data(), -3, 97), 0);
        EXPECT_GT(chi_square_level(r, -3, std::vector<double>(100, 0.01)), level);
        for (const double p : {0.001, 0.3, 0.5, 0.97}) {
            EXPECT_EQ(viRngBernoulli(0, s, n, r.data(), p), 0);
            EXPECT_GT(chi_square_level(r, 0, {1 - p, p}), level) << p;
        }
    }
}

TEST(DistributionShapes, PoissonComesAsOftenAsItShould) {
    std::vector<vox_int> r(n);
    for (const int id : generators) {
        const a_stream s(id, 20263);
        for (const double mean : {0.01, 0.7, 4.0, 30.0, 99.0, 100.0, 1000.0, 1e5, 1e6}) {
            EXPECT_EQ(viRngPoisson(0, s, n, r.data(), mean), 0);
            const double reach = 8 * std::sqrt(mean) + 10;
            const int first = int(std::max(0.0, mean - reach)), last = int(mean + reach);
            std::vector<double> p;
            for (int k = first; k <= last; ++k)
                p.push_back(std::exp(k * std::log(mean) - mean - std::lgamma(k + 1.0)));
            EXPECT_GT(chi_square_level(r, first, p), level) << mean;
            double sum = 0, squares = 0;
            for (const vox_int x : r) {
                sum += x - mean;
                squares += (x - mean) * (x - mean);
            }
            EXPECT_LT(std::fabs(sum / n), 4 * std::sqrt(mean / n)) << mean;
            EXPECT_LT(std::fabs(squares / n - mean), 4 * std::sqrt((mean + 2 * mean * mean) / n))
                << mean;
        }
    }
}

} // namespace
