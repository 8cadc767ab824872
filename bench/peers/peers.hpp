// peers.hpp - the same call, in the same run, in this library and in the other installed ones.
//
// Libraries read most of their settings once per process. So each is opened as a copy of its file,
// locally, with symbols and settings of its own: one library can stand beside itself under other
// settings.
#pragma once

#include <algorithm>
#include <chrono>
#include <climits>
#include <string>
#include <vector>

namespace peers {

class library {
  public:
    library(std::string library_name, void *library_handle, long largest = LONG_MAX)
        : name(std::move(library_name)), max_n(largest), handle_(library_handle) {}

    // Null if the library does not have it.
    void *find(const std::string &symbol) const;

    std::string name;
    long max_n; // the largest size that it is compared at

  private:
    void *handle_;
};

// The letters that begin the names of routines in single, double, complex and double complex.
constexpr char type_letters[] = "sdcz";

// This library first, on the named code path ("best": the machine's), as it was built here or as the
// environment variable PEERS_VOX names its file; then each peer that is
// installed, held to the same instructions. Ends the process with a message if that cannot be had.
std::vector<library> open_libraries(const std::string &path, int threads);

// The code path that this library has chosen, as vox_get_cpu_type numbers them.
int path_of(const library &vox);

// This library with so many threads, and with one.
std::vector<library> open_thread_counts(const std::string &path, int threads);

// The reference implementation, if it is installed: not to be raced, but to ask when results differ.
std::vector<library> open_reference();

// The words of a list with commas.
std::vector<std::string> split(const std::string &list);

// Seconds spent on one case: at least `enough`; then until each candidate has come three times
// within 2% of its best, at most `limit`. At least five rounds, or two if they take more than four
// times the limit.
struct effort {
    double enough, limit;
};

template <class Body>
double seconds_per_call(long count, const Body &body) {
    using clock = std::chrono::steady_clock;
    const auto start = clock::now();
    for (long i = 0; i < count; ++i)
        body();
    return std::chrono::duration<double>(clock::now() - start).count() / double(count);
}

// The three shortest times of a candidate.
struct shortest {
    double times[3] = {1e300, 1e300, 1e300};

    void add(double time) {
        for (double &t : times)
            if (time < t)
                std::swap(time, t);
    }
    bool settled() const { return times[2] <= 1.02 * times[0]; }
};

// Best seconds per call of each candidate; timed(count, c) makes count calls of candidate c and gives
// the seconds per call. The machine may be shared and noisy: the candidates take turns, round after
// round, and each one's best round counts, for noise only ever adds time.
template <class Timed>
std::vector<double> best_rounds(size_t candidates, effort allowed, const Timed &timed) {
    using clock = std::chrono::steady_clock;
    const auto start = clock::now();
    long count = 1;
    while (timed(count, 0) * double(count) < 2e-4)
        count *= 2;
    std::vector<shortest> found(candidates);
    for (size_t round = 0;; ++round) {
        for (size_t turn = 0; turn < candidates; ++turn) {
            const size_t c = (round + turn) % candidates;
            found[c].add(timed(count, c));
        }
        const double spent = std::chrono::duration<double>(clock::now() - start).count();
        const bool settled =
            std::all_of(found.begin(), found.end(), [](const shortest &s) { return s.settled(); });
        if (round >= 4 ? spent >= (settled ? allowed.enough : allowed.limit)
                       : round >= 1 && spent >= 4 * allowed.limit)
            break;
    }
    std::vector<double> best;
    for (const shortest &s : found)
        best.push_back(s.times[0]);
    return best;
}

// The same of call(c), which may be repeated on its own results.
template <class Call>
std::vector<double> best_times(size_t candidates, effort allowed, const Call &call) {
    return best_rounds(candidates, allowed, [&](long count, size_t c) {
        return seconds_per_call(count, [&] { call(c); });
    });
}

// Bytes per second of a loop that only reads, over a block of this size, by so many threads.
double read_bandwidth(size_t bytes, int threads);

} // namespace peers
