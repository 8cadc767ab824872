// blas.cpp - the BLAS of levels 1 and 2 beside its peers, from tiny operands to memory size.
//
//   peers_blas [options]
//     --routine gemv,ger   only these; a name without its variant means all of them
//     --types sd           only these types
//     --n 4,100            these sizes instead of the usual ones
//     --max-n N            none of the usual sizes beyond N
//     --path best          code path of VOX: best, def, ssse3, sse42, avx, avx2, avx512; on all but the
//                          first OpenBLAS is held to the same instructions
//     --threads N          of every library
//     --form LN            triangle and transposition of symv, trmv, trsv, syr, gbmv and tpsv
//     --compare-threads    VOX with N threads (2 if not said) against VOX with one; needs a machine with
//                          nothing else to do, for a thread that waits for its processor costs 40 us
//     --quick              a quarter of the usual effort
//     --summary            only the means, as a markdown table, and what is far below
//
// Operands are warm and aligned to 64 bytes, increments 1, leading dimensions n; calls go through the
// Fortran names. Ends with status 1 if a routine is missing or results differ: times decide nothing.
#include "bench/peers/operands.hpp"
#include "bench/peers/peers.hpp"
#include "bench/peers/routines.hpp"
#include "bench/peers/summary.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sstream>

namespace {

const std::vector<long> vector_sizes = {4,    8,    16,    32,    64,     100,     256,
                                        1000, 4000, 10000, 50000, 200000, 1000000, 10000000};
const std::vector<long> matrix_sizes = {4,   8,   12,  16,  25,  32,   50,   64,  100,
                                        128, 200, 256, 400, 512, 1000, 2000, 4000};
constexpr size_t element_sizes[] = {4, 8, 8, 16};

struct options {
    std::vector<std::string> names;
    std::string types = peers::type_letters, path = "best";
    std::vector<long> sizes;
    long max_n = 10000000;
    int threads = 1;
    peers::form shape;
    bool compare_threads = false, quick = false, summary = false;
};

[[noreturn]] void usage() {
    std::fprintf(stderr, "see the first lines of bench/peers/blas.cpp for the options\n");
    std::exit(2);
}

std::vector<std::string> split(const std::string &list) {
    std::vector<std::string> words;
    std::istringstream text(list);
    for (std::string word; std::getline(text, word, ',');)
        words.push_back(word);
    return words;
}

bool chosen(const options &o, const peers::routine &r) {
    const std::string name = r.name;
    return o.names.empty() || std::any_of(o.names.begin(), o.names.end(), [&](const auto &wanted) {
               return name == wanted || name.substr(0, name.find('_')) == wanted;
           });
}

options parse(int argc, char **argv) {
    options o;
    for (int i = 1; i < argc; ++i) {
        const std::string name = argv[i];
        const auto value = [&]() -> std::string {
            if (++i == argc)
                usage();
            return argv[i];
        };
        if (name == "--routine")
            o.names = split(value());
        else if (name == "--types")
            o.types = value();
        else if (name == "--n")
            for (const std::string &n : split(value()))
                o.sizes.push_back(std::max(1L, std::atol(n.c_str())));
        else if (name == "--max-n")
            o.max_n = std::atol(value().c_str());
        else if (name == "--path")
            o.path = value();
        else if (name == "--threads")
            o.threads = std::atoi(value().c_str());
        else if (name == "--form") {
            const std::string form = value();
            if (form.size() != 2 || !std::strchr("UL", form[0]) || !std::strchr("NTC", form[1]))
                usage();
            o.shape = {form[0], form[1]};
        } else if (name == "--compare-threads")
            o.compare_threads = true;
        else if (name == "--quick")
            o.quick = true;
        else if (name == "--summary")
            o.summary = true;
        else
            usage();
    }
    if (o.compare_threads && o.threads == 1)
        o.threads = 2;
    if (o.threads < 1 || o.types.find_first_not_of(peers::type_letters) != std::string::npos)
        usage();
    for (const std::string &name : o.names)
        if (std::none_of(peers::routines().begin(), peers::routines().end(), [&](const auto &r) {
                return name == std::string(r.name).substr(0, name.size());
            }))
            usage();
    return o;
}

std::vector<long> sizes_of(const options &o, const peers::routine &r) {
    std::vector<long> sizes = o.sizes;
    if (sizes.empty()) {
        sizes = r.is_level1() ? vector_sizes : matrix_sizes;
        std::erase_if(sizes, [&](long n) { return n > o.max_n; });
    }
    return sizes;
}

// The chosen routines in the chosen types at their sizes, one group per routine and type.
std::vector<std::vector<peers::test_case>> cases_of(const options &o) {
    std::vector<std::vector<peers::test_case>> groups;
    for (const peers::routine &r : peers::routines())
        for (size_t type = 0; type < 4; ++type) {
            if (!chosen(o, r) || !r.symbols[type] ||
                o.types.find(peers::type_letters[type]) == std::string::npos)
                continue;
            std::vector<peers::test_case> group;
            for (long n : sizes_of(o, r))
                group.push_back({&r, type, n, o.shape});
            groups.push_back(group);
        }
    return groups;
}

peers::memory memory_for(const std::vector<std::vector<peers::test_case>> &groups) {
    size_t vector_bytes = 0, matrix_bytes = 0;
    for (const auto &group : groups)
        for (const peers::test_case &c : group) {
            const size_t n = size_t(c.n), size = element_sizes[c.type];
            vector_bytes = std::max(vector_bytes, n * size);
            if (!c.what->is_level1())
                matrix_bytes = std::max(matrix_bytes, n * std::max(n, size_t(33)) * size);
        }
    return {vector_bytes, matrix_bytes};
}

std::string symbol_of(const peers::test_case &c) {
    return c.what->symbols[c.type] + std::string("_");
}

void print_header(const peers::test_case &c, const std::vector<peers::library> &libraries) {
    std::printf("\n%-10s", peers::case_name(*c.what, c.type).c_str());
    for (const peers::library &l : libraries)
        std::printf("%21s", l.name.c_str());
    std::printf("%10s%8s   times in ns\n", "GB/s", "ratio");
}

void print_line(const peers::test_case &c, const std::vector<double> &times, double ratio) {
    std::printf("%10ld", c.n);
    for (double t : times)
        std::printf("%21.1f", t * 1e9);
    std::printf("%10.1f%8.2f\n",
                peers::traffic(*c.what, c.n) * double(element_sizes[c.type]) / times[0] * 1e-9,
                ratio);
    std::fflush(stdout);
}

// Peers have errors too: this library's result stands if it is that of any other one. Otherwise
// says how it differs from each.
std::string disagreement(const peers::test_case &c, const std::vector<peers::library> &libraries,
                         const std::vector<peers::library> &reference,
                         peers::memory *const memories[2]) {
    const std::string symbol = symbol_of(c);
    std::string differences;
    const auto agrees = [&](const peers::library &other) {
        void *const pair[] = {libraries[0].find(symbol), other.find(symbol)};
        std::string difference;
        if (peers::agree(c, pair, memories, difference))
            return true;
        differences += (differences.empty() ? "" : ", ") + other.name + ": " + difference;
        return false;
    };
    if (std::any_of(libraries.begin() + 1, libraries.end(), agrees) ||
        std::any_of(reference.begin(), reference.end(), agrees))
        return "";
    return differences;
}

} // namespace

int main(int argc, char **argv) {
    const options o = parse(argc, argv);
    const std::vector<peers::library> libraries = o.compare_threads
                                                      ? peers::open_thread_counts(o.path, o.threads)
                                                      : peers::open_libraries(o.path, o.threads);
    const auto groups = cases_of(o);
    const std::vector<peers::library> reference = peers::open_reference();
    peers::memory operands = memory_for(groups), others = memory_for(groups);
    peers::memory *const memories[] = {&operands, &others};
    const peers::effort effort = o.quick ? peers::effort{0.015, 0.1} : peers::effort{0.06, 0.5};
    double load = 0;
    getloadavg(&load, 1);
    std::printf("path %s, %d thread(s), load of the machine before: %.1f\n", o.path.c_str(),
                o.threads, load);
    if (!o.summary)
        std::printf("a loop that only reads 160 MB: %.1f GB/s\n",
                    peers::read_bandwidth(160000000, o.threads) * 1e-9);

    std::vector<peers::measured> all;
    int failures = 0;
    const auto fail = [&](const peers::test_case &c, const std::string &why) {
        std::printf("FAILED: %s, n = %ld: %s\n", peers::case_name(*c.what, c.type).c_str(), c.n,
                    why.c_str());
        ++failures;
    };
    for (const auto &group : groups) {
        if (group.empty())
            continue;
        const std::string symbol = symbol_of(group[0]);
        std::vector<void *> functions;
        for (const peers::library &l : libraries)
            functions.push_back(l.find(symbol));
        const auto missing = std::find(functions.begin(), functions.end(), nullptr);
        if (missing != functions.end()) {
            fail(group[0],
                 libraries[size_t(missing - functions.begin())].name + " has no " + symbol);
            continue;
        }
        if (!o.summary)
            print_header(group[0], libraries);
        for (const peers::test_case &c : group) {
            if (const std::string why = disagreement(c, libraries, reference, memories);
                !why.empty())
                fail(c, why);
            const std::vector<double> times = peers::seconds(c, functions, operands, effort);
            const double ratio = *std::min_element(times.begin() + 1, times.end()) / times[0];
            all.push_back({c.what, c.type, c.n, ratio});
            if (!o.summary)
                print_line(c, times, ratio);
        }
    }
    if (!all.empty()) {
        std::printf("\n");
        peers::print_summary(all, stdout);
        peers::print_below(o.compare_threads ? 0.95 : 0.9, all, stdout);
    }
    return failures ? 1 : 0;
}
