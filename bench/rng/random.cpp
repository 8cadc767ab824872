// random.cpp - random streams beside other generators: nanoseconds per number of every generator and distribution
// in one thread, in blocks of 10,000 numbers, and the ratios to peers in the same run.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>

#include "bench/peers/peers.hpp"
#include "bench/rng/peers.hpp"
#include "vox/rsk.h"

namespace {

using namespace random_peers;

alignas(64) double doubles[count];
alignas(64) float singles[count];
alignas(64) uint32_t words[4 * count]; // up to four for each number

[[noreturn]] void fail(const std::string &message) {
    std::fprintf(stderr, "random_peers: %s\n", message.c_str());
    std::exit(1);
}

void *library;
template <class Function>
Function *find(const char *symbol) {
    return reinterpret_cast<Function *>(dlsym(library, symbol));
}

// Null where the machine lacks what the generator needs.
rskStream new_stream(int id, uint32_t seed) {
    rskStream s = nullptr;
    auto *const make = find<int(rskStream *, vox_int, uint32_t)>("rskNewStream");
    return make(&s, id, seed) == RSK_STATUS_OK ? s : nullptr;
}

// What is measured: a name, or a generator with what is asked of it.
struct task {
    std::string name;
    std::function<void()> fill;
    double nanoseconds = 0; // per number
};

std::vector<task> tasks;

void add(const std::string &name, const std::function<int()> &fill) {
    if (const int status = fill())
        fail(name + ": status " + std::to_string(status));
    tasks.push_back({name, fill});
}

template <class T, class... Parameters>
void add_distribution(const std::string &name, const char *symbol, int method, int id,
                      uint32_t seed, T *r, Parameters... parameters) {
    auto *const fill = find<int(vox_int, rskStream, vox_int, T *, Parameters...)>(symbol);
    const rskStream s = new_stream(id, seed);
    if (!fill || !s)
        return;
    add(name, [=] { return fill(method, s, count, r, parameters...); });
}

struct generator {
    const char *name;
    int id;
    uint32_t seed;
    const char *peer, *words_peer;
};

const generator generators[] = {
    {"MCG31M1", RSK_BRNG_MCG31M1, 1, nullptr, nullptr},
    {"R250", RSK_BRNG_R250, 1, nullptr, nullptr},
    {"MRG32K3A", RSK_BRNG_MRG32K3A, 1, nullptr, nullptr},
    {"MCG59", RSK_BRNG_MCG59, 1, nullptr, nullptr},
    {"WH", RSK_BRNG_WH, 1, nullptr, nullptr},
    {"SOBOL", RSK_BRNG_SOBOL, dimensions, gsl_sobol, nullptr},
    {"NIEDERR", RSK_BRNG_NIEDERR, dimensions, nullptr, nullptr},
    {"MT19937", RSK_BRNG_MT19937, 1, gsl_mt19937, nullptr},
    {"MT2203", RSK_BRNG_MT2203, 1, nullptr, nullptr},
    {"SFMT19937", RSK_BRNG_SFMT19937, 1, gsl_mt19937, nullptr},
    {"NONDETERM", RSK_BRNG_NONDETERM, 1, nullptr, nullptr},
    {"ARS5", RSK_BRNG_ARS5, 1, nullptr, random123_ars},
    {"PHILOX4X32X10", RSK_BRNG_PHILOX4X32X10, 1, nullptr, random123_philox},
};

struct distribution {
    const char *name, *peer;
};

const distribution distributions[] = {
    {"Gaussian, Box-Muller", std_normal}, {"Gaussian, Box-Muller in pairs", std_normal},
    {"Gaussian, inverse", std_normal},    {"Gaussian, inverse, single", std_normal},
    {"Exponential", std_exponential},     {"Exponential, single", std_exponential},
    {"Poisson of 20", std_poisson},
};

void add_tasks() {
    for (const peer &p : all_peers())
        tasks.push_back({p.name, p.fill});
    for (const generator &g : generators) {
        const std::string name = g.name;
        add_distribution(name + " doubles", "vdRngUniform", 0, g.id, g.seed, doubles, 0.0, 1.0);
        add_distribution(name + " singles", "vsRngUniform", 0, g.id, g.seed, singles, 0.0F, 1.0F);
        add_distribution(name + " words", "viRngUniformBits", 0, g.id, g.seed, words);
    }
    constexpr int id = RSK_BRNG_MT19937;
    for (int method = 0; method < 3; ++method)
        add_distribution(distributions[method].name, "vdRngGaussian", method, id, 1, doubles, 0.0,
                         1.0);
    add_distribution(distributions[3].name, "vsRngGaussian", 2, id, 1, singles, 0.0F, 1.0F);
    add_distribution(distributions[4].name, "vdRngExponential", 0, id, 1, doubles, 0.0, 1.0);
    add_distribution(distributions[5].name, "vsRngExponential", 0, id, 1, singles, 0.0F, 1.0F);
    add_distribution(distributions[6].name, "viRngPoisson", 0, id, 1,
                     reinterpret_cast<vox_int *>(words), poisson_mean);
}

void measure() {
    std::vector<long> calls;
    for (const task &t : tasks) {
        long n = 1;
        while (peers::seconds_per_call(n, t.fill) * double(n) < 5e-4)
            n *= 2;
        calls.push_back(n);
    }
    const std::vector<double> seconds =
        peers::best_rounds(tasks.size(), {2, 10}, [&](long, size_t i) {
            return peers::seconds_per_call(calls[i], tasks[i].fill);
        });
    for (size_t i = 0; i < tasks.size(); ++i)
        tasks[i].nanoseconds = seconds[i] / count * 1e9;
}

// Nanoseconds per number; 0 for what there is not.
double time_of(const std::string &name) {
    for (const task &t : tasks)
        if (t.name == name)
            return t.nanoseconds;
    return 0;
}

std::string decimal(double x, const char *format) {
    if (x == 0)
        return "-";
    char text[32];
    std::snprintf(text, sizeof text, format, x);
    return text;
}

// How many times faster `name` is than a peer.
std::string times_faster(const std::string &name, const char *peer) {
    const double time = time_of(name);
    return peer && time > 0 ? decimal(time_of(peer) / time, "%.1f") : "-";
}

void print() {
    std::printf("nanoseconds per number\n");
    for (const peer &p : all_peers())
        std::printf("  %-45s%8.3f\n", p.name.c_str(), time_of(p.name));
    std::printf("\n%-15s%9s%9s%9s%14s%14s%12s%12s\n", "", "doubles", "singles", "words",
                "of memset, %", "x std::mt_64", "x its peer", "words, x");
    for (const generator &g : generators) {
        const std::string name = g.name, uniform = name + " doubles";
        const double time = time_of(uniform);
        std::printf("%-15s%9s%9s%9s%14s%14s%12s%12s\n", g.name, decimal(time, "%.3f").c_str(),
                    decimal(time_of(name + " singles"), "%.3f").c_str(),
                    decimal(time_of(name + " words"), "%.3f").c_str(),
                    decimal(time > 0 ? 100 * time_of(memory) / time : 0, "%.1f").c_str(),
                    times_faster(uniform, std_uniform).c_str(),
                    times_faster(uniform, g.peer).c_str(),
                    times_faster(name + " words", g.words_peer).c_str());
    }
    std::printf("\n%-35s%9s%14s\n", "from MT19937", "", "x its peer");
    for (const distribution &d : distributions)
        std::printf("%-35s%9s%14s\n", d.name, decimal(time_of(d.name), "%.3f").c_str(),
                    times_faster(d.name, d.peer).c_str());
}

} // namespace

int main(int argc, char **argv) {
    if (argc > 1)
        fail(std::string("takes no arguments, not ") + argv[1]);
    setenv("VOX_CPU_VENDOR", "ANY", 1);
    const char *const file = std::getenv("PEERS_VOX");
    library = dlopen(file ? file : VOX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (!library)
        fail(dlerror());
    if (!dlsym(library, "rskNewStream") || !dlsym(library, "vdRngUniform"))
        fail("the library has no random streams");
    add_tasks();
    measure();
    print();
}
