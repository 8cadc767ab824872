// peers.hpp - the same call, in the same run, in this library and in the other installed ones.
//
// The machine may be shared and noisy, so the libraries take turns, round after round, and each
// one's best round counts: noise only ever adds time. A ratio above 1 means that this library is
// faster than the best of its peers. Libraries are opened locally, each with its own symbols;
// settings that they read from the environment are made before they are opened.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace peers {

struct options {
    int threads = 1;
    std::string path = "best"; // of this library: best, or a processor type
    long max_n = 10000000;
};

// --threads N, --path best|def|<type>, --max-n N. Ends the process on anything else.
options parse_options(int argc, char **argv);

class library {
  public:
    library(std::string library_name, void *library_handle)
        : name(std::move(library_name)), handle_(library_handle) {}

    template <class Function>
    Function *function(const char *symbol) const {
        return reinterpret_cast<Function *>(find(symbol));
    }

    std::string name;

  private:
    void *find(const char *symbol) const;
    void *handle_;
};

// This library first, then each peer that is installed.
std::vector<library> open_libraries(const options &settings);

// Seconds of one round of body(count), where count is chosen so that a round takes about a
// millisecond.
template <class Body>
double seconds_per_call(long count, const Body &body) {
    using clock = std::chrono::steady_clock;
    const auto start = clock::now();
    for (long i = 0; i < count; ++i)
        body();
    return std::chrono::duration<double>(clock::now() - start).count() / double(count);
}

// Best seconds per call of each candidate, in turns. call(i) makes one call of candidate i.
template <class Call>
std::vector<double> best_times(size_t candidates, const Call &call, int rounds = 40) {
    long count = 1;
    while (count < 100000000 && seconds_per_call(count, [&] { call(0); }) * double(count) < 5e-4)
        count *= 2;
    std::vector<double> best(candidates, 1e300);
    for (int round = 0; round < rounds; ++round)
        for (size_t c = 0; c < candidates; ++c)
            best[c] = std::min(best[c], seconds_per_call(count, [&] { call(c); }));
    return best;
}

// Prints one line: n, each candidate's time, its rate, and the ratio of the best peer to this
// library.
void print_header(const std::vector<library> &libraries, const char *unit);
void print_line(long n, const std::vector<double> &seconds, double work);

// Bytes per second of a loop that only reads, over a block of this size, by so many threads.
double read_bandwidth(size_t bytes, int threads);

} // namespace peers
