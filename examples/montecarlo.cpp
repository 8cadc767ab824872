// montecarlo.cpp - prices options on several threads by simulation, to the same bits for any number of them.
//
// The work is cut into parts, whose number does not depend on the threads. Each part has a stream of its own,
// and sums are added in the order of the parts; so who computes a part does not matter. Streams are parts of
// one sequence (blocks by skipping ahead, or every so manieth number by leapfrogging), or members of a family
// of generators.
//
// Exit status: 0; 1 if a price is more than four standard errors away from its formula, or a stream cannot be
// made; 2 for wrong arguments.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <getopt.h>
#include <string>
#include <thread>
#include <vector>

#include "vox/rsk.h"

namespace {

constexpr char usage[] =
    "usage: montecarlo [--split skip|leapfrog|family] [--paths N] [--steps M] [--threads T]\n"
    "                  [--seed S]\n"
    "Prices call options on a share: European, and on the geometric and the arithmetic mean of "
    "its\n"
    "price at M times. The first two have formulas to compare with. Results do not depend on T.\n"
    "By default 200000 paths of 16 steps, split by skipping ahead, on one thread, with seed 1.\n";

constexpr int parts = 64;

enum class split { skip, leapfrog, family };

struct settings {
    split how = split::skip;
    int paths = 200000, steps = 16, threads = 1;
    uint32_t seed = 1;
};

// The market: price today, strike, interest and volatility a year, years.
constexpr double price = 100, strike = 105, interest = 0.03, volatility = 0.25, years = 1;

double normal_distribution(double x) { return std::erfc(-x / std::sqrt(2.0)) / 2; }

// Black and Scholes's formula for a price at the end whose logarithm has this mean and standard deviation.
double formula(double mean, double deviation) {
    const double d = (mean - std::log(strike)) / deviation;
    return std::exp(-interest * years) *
           (std::exp(mean + deviation * deviation / 2) * normal_distribution(d + deviation) -
            strike * normal_distribution(d));
}
double european_formula() {
    return formula(std::log(price) + (interest - volatility * volatility / 2) * years,
                   volatility * std::sqrt(years));
}
double geometric_formula(int steps) {
    const double m = steps;
    return formula(std::log(price) +
                       (interest - volatility * volatility / 2) * years * (m + 1) / (2 * m),
                   volatility * std::sqrt(years * (m + 1) * (2 * m + 1) / (6 * m * m)));
}

// Discounted payoffs, and products of those whose covariance matters.
struct sums {
    double european = 0, european2 = 0, geometric = 0, geometric2 = 0, arithmetic = 0,
           arithmetic2 = 0, product = 0;

    void add(double e, double g, double a) {
        european += e;
        european2 += e * e;
        geometric += g;
        geometric2 += g * g;
        arithmetic += a;
        arithmetic2 += a * a;
        product += g * a;
    }
    void add(const sums &s) {
        european += s.european;
        european2 += s.european2;
        geometric += s.geometric;
        geometric2 += s.geometric2;
        arithmetic += s.arithmetic;
        arithmetic2 += s.arithmetic2;
        product += s.product;
    }
};

// Paths are dealt out to parts as evenly as they go.
int first_path(const settings &s, int part) { return int(int64_t(s.paths) * part / parts); }

// The stream of a part, or the status that says why there is none.
int open_stream(const settings &s, int part, rskStream *stream) {
    int status = 0;
    switch (s.how) {
    case split::skip: // where the numbers of the parts before end
        status = rskNewStream(stream, RSK_BRNG_MRG32K3A, s.seed);
        return status
                   ? status
                   : rskSkipAheadStream(*stream, uint64_t(first_path(s, part)) * unsigned(s.steps));
    case split::leapfrog: // every 64th number of the sequence
        status = rskNewStream(stream, RSK_BRNG_MCG59, s.seed);
        return status ? status : rskLeapfrogStream(*stream, part, parts);
    case split::family: // a generator of its own
        return rskNewStream(stream, RSK_BRNG_MT2203 + part, s.seed);
    }
    return status;
}

// Simulates the paths of a part. The inverse takes one uniform for each number, so that numbers have the same
// places in the sequence however they are asked for.
int simulate(const settings &s, int part, sums &result) {
    rskStream stream = nullptr;
    int status = open_stream(s, part, &stream);
    const double step = years / s.steps, discount = std::exp(-interest * years);
    const double drift = (interest - volatility * volatility / 2) * step;
    constexpr int at_once = 256;
    std::vector<double> changes(size_t(at_once) * size_t(s.steps));
    for (int left = first_path(s, part + 1) - first_path(s, part), n; !status && left > 0;
         left -= n) {
        n = std::min(left, at_once);
        status = vdRngGaussian(RSK_GAUSSIAN_INVERSE, stream, n * s.steps, changes.data(), drift,
                               volatility * std::sqrt(step));
        for (int path = 0; !status && path < n; ++path) {
            double logarithm = std::log(price), logarithms = 0, prices = 0;
            for (int i = 0; i < s.steps; ++i) {
                logarithm += changes[size_t(path * s.steps + i)];
                logarithms += logarithm;
                prices += std::exp(logarithm);
            }
            result.add(discount * std::max(0.0, std::exp(logarithm) - strike),
                       discount * std::max(0.0, std::exp(logarithms / s.steps) - strike),
                       discount * std::max(0.0, prices / s.steps - strike));
        }
    }
    if (stream)
        rskDeleteStream(&stream);
    return status;
}

struct estimate {
    double value, error;
};
estimate mean_of(double sum, double squares, double n) {
    const double mean = sum / n;
    return {mean, std::sqrt(std::max(0.0, squares / n - mean * mean) / n)};
}

// Whether the estimate agrees with what is known.
bool print(const char *name, estimate e, double known) {
    std::printf("%-12s %.5f +- %.5f, formula %.5f\n", name, e.value, e.error, known);
    return std::fabs(e.value - known) <= 4 * e.error;
}

int report(const settings &s, const sums &all) {
    const double n = s.paths;
    bool good = print("european", mean_of(all.european, all.european2, n), european_formula());
    const estimate geometric = mean_of(all.geometric, all.geometric2, n);
    const double known = geometric_formula(s.steps);
    good = print("geometric", geometric, known) && good;
    const estimate arithmetic = mean_of(all.arithmetic, all.arithmetic2, n);
    std::printf("%-12s %.5f +- %.5f\n", "arithmetic", arithmetic.value, arithmetic.error);
    // The geometric mean's option as control variate: its error is known, and goes along with the other's.
    const double variance = all.geometric2 / n - geometric.value * geometric.value;
    const double covariance = all.product / n - geometric.value * arithmetic.value;
    const double slope = variance > 0 ? covariance / variance : 0;
    const double left = arithmetic.error * arithmetic.error * n - slope * covariance;
    std::printf("%-12s %.17g +- %.5f\n", "controlled",
                arithmetic.value - slope * (geometric.value - known),
                std::sqrt(std::max(0.0, left) / n));
    if (!good)
        std::fprintf(stderr, "montecarlo: a price is more than four standard errors off\n");
    return good ? 0 : 1;
}

int run(const settings &s) {
    std::vector<sums> of_part(parts);
    std::vector<int> status(parts);
    std::vector<std::thread> threads;
    for (int t = 0; t < s.threads; ++t)
        threads.emplace_back([&, t] {
            for (int part = t; part < parts; part += s.threads)
                status[size_t(part)] = simulate(s, part, of_part[size_t(part)]);
        });
    for (std::thread &t : threads)
        t.join();
    sums all;
    for (int part = 0; part < parts; ++part) {
        if (status[size_t(part)]) {
            std::fprintf(stderr, "montecarlo: part %d ended with status %d\n", part,
                         status[size_t(part)]);
            return 1;
        }
        all.add(of_part[size_t(part)]);
    }
    return report(s, all);
}

[[noreturn]] void refuse(const std::string &text) {
    std::fprintf(stderr, "montecarlo: %s\n", text.c_str());
    std::exit(2);
}

uint32_t number(const char *option, const char *text, uint32_t least, uint32_t most) {
    char *end;
    errno = 0;
    const unsigned long long value = std::strtoull(text, &end, 10);
    if (*text < '0' || *text > '9' || *end || errno || value < least || value > most)
        refuse(std::string("--") + option + " takes a number from " + std::to_string(least) +
               " to " + std::to_string(most) + ", not " + text);
    return uint32_t(value);
}

split split_of(const std::string &name) {
    if (name == "skip")
        return split::skip;
    if (name == "leapfrog")
        return split::leapfrog;
    if (name != "family")
        refuse("--split takes skip, leapfrog or family, not " + name);
    return split::family;
}

} // namespace

int main(int argc, char **argv) {
    const option options[] = {
        {"split", required_argument, nullptr, 'x'},
        {"paths", required_argument, nullptr, 'p'},
        {"steps", required_argument, nullptr, 's'},
        {"threads", required_argument, nullptr, 't'},
        {"seed", required_argument, nullptr, 'r'},
        {"help", no_argument, nullptr, 'h'},
        {nullptr, 0, nullptr, 0},
    };
    settings s;
    for (int c; (c = getopt_long(argc, argv, "", options, nullptr)) != -1;) {
        switch (c) {
        case 'x':
            s.how = split_of(optarg);
            break;
        case 'p':
            s.paths = int(number("paths", optarg, 1, 1000000000));
            break;
        case 's':
            s.steps = int(number("steps", optarg, 1, 10000));
            break;
        case 't':
            s.threads = int(number("threads", optarg, 1, parts));
            break;
        case 'r':
            s.seed = number("seed", optarg, 0, UINT32_MAX);
            break;
        case 'h':
            std::fputs(usage, stdout);
            return 0;
        default:
            return 2; // getopt has said why
        }
    }
    if (optind < argc)
        refuse(std::string("unexpected argument ") + argv[optind]);
    return run(s);
}
