// blas.cpp - the BLAS beside its peers, from tiny operands to memory size.
//
//   peers_blas [options]
//     --routine gemv,ger   only these; a name without its variant means all of them, also those that
//                          are not among the usual ones: gemm_nt, gemm_tt, symm_r, syrk_t...
//     --level 3            only this level
//     --types sd           only these types
//     --n 4,100            these sizes instead of the usual ones
//     --max-n N            none of the usual sizes beyond N
//     --shapes 9x4x7,...   level 3 alone, gemm if nothing is named, with these m, n and k (of which other
//                          routines have two); "default": tall, wide, deep and odd ones; squares only
//                          with --n
//     --beta B             of level 3, 1 if not said
//     --path best          code path of VOX: best, def, ssse3, sse42, avx, avx2, avx512; on all but the
//                          first OpenBLAS is held to the same instructions, and Eigen left out
//     --threads N          of every library
//     --form LN            triangle and transposition of symv, trmv, trsv, syr, gbmv and tpsv; triangle
//                          of gemmt, symm, hemm, syrk, herk, syr2k and her2k
//     --compare-threads    VOX with N threads (2 if not said) against VOX with one; needs a machine with
//                          nothing else to do, for a thread that waits for its processor costs 40 us
//     --quick              a quarter of the usual effort; in level 3 few sizes
//     --summary            only the means, as a markdown table, and what is far below
//     --below R            what is far below: 0.9 if not said, 0.95 with --compare-threads
//
// Operands are warm and aligned to 64 bytes, increments 1, leading dimensions as small as can be;
// calls go through the Fortran names. A peer without a routine is left out there, Eigen has gemm up to
// n = 64 only. In level 3 "peak%" is the share that VOX reaches of the processor's own peak, measured
// before and after each case, with its arithmetic as written (complex products as four real ones).
// Ends with status 1 if VOX lacks a routine or results differ: times decide nothing.
#include "bench/peers/operands.hpp"
#include "bench/peers/peak.hpp"
#include "bench/peers/peers.hpp"
#include "bench/peers/report.hpp"
#include "bench/peers/routines.hpp"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const std::vector<long> vector_sizes = {4,    8,    16,    32,    64,     100,     256,
                                        1000, 4000, 10000, 50000, 200000, 1000000, 10000000};
const std::vector<long> matrix_sizes = {4,   8,   12,  16,  25,  32,   50,   64,  100,
                                        128, 200, 256, 400, 512, 1000, 2000, 4000};
const std::vector<long> product_sizes = {1,  2,  3,   4,   5,   6,   7,   8,    10,
                                         12, 13, 16,  17,  20,  24,  25,  32,   48,
                                         50, 64, 100, 128, 200, 256, 500, 1000, 2000};
const std::vector<long> quick_product_sizes = {8, 24, 64, 256};
const char *const default_shapes =
    "4000x64x64,64x4000x64,64x64x4000,1000x1000x16,16x1000x1000,1000x16x1000,1009x509x253";
constexpr size_t element_sizes[] = {4, 8, 8, 16};

struct options {
    std::vector<std::string> names;
    std::string types = peers::type_letters, path = "best";
    std::vector<long> sizes;
    std::vector<peers::extents> shapes;
    long max_n = 10000000;
    int threads = 1, level = 0;
    double beta = 1, below = 0;
    peers::form shape;
    bool compare_threads = false, quick = false, summary = false;
};

[[noreturn]] void usage() {
    std::fprintf(stderr, "see the first lines of bench/peers/blas.cpp for the options\n");
    std::exit(2);
}

bool chosen(const options &o, const peers::routine &r) {
    if (o.level && r.level() != o.level)
        return false;
    if (o.names.empty())
        return !r.on_request;
    const std::string name = r.name;
    return std::any_of(o.names.begin(), o.names.end(), [&](const auto &wanted) {
        return name == wanted || name.substr(0, name.find('_')) == wanted;
    });
}

peers::extents shape_of(const std::string &text) {
    peers::extents shape;
    if (std::sscanf(text.c_str(), "%ldx%ldx%ld", &shape.m, &shape.n, &shape.k) != 3 ||
        std::min({shape.m, shape.n, shape.k}) < 1)
        usage();
    return shape;
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
            o.names = peers::split(value());
        else if (name == "--types")
            o.types = value();
        else if (name == "--n")
            for (const std::string &n : peers::split(value()))
                o.sizes.push_back(std::max(1L, std::atol(n.c_str())));
        else if (name == "--shapes") {
            const std::string list = value();
            for (const std::string &shape : peers::split(list == "default" ? default_shapes : list))
                o.shapes.push_back(shape_of(shape));
            o.level = 3;
        } else if (name == "--level")
            o.level = std::atoi(value().c_str());
        else if (name == "--beta")
            o.beta = std::atof(value().c_str());
        else if (name == "--below")
            o.below = std::atof(value().c_str());
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
    if (!o.shapes.empty() && o.names.empty())
        o.names = {"gemm_nn", "gemm_tn"};
    if (o.below == 0)
        o.below = o.compare_threads ? 0.95 : 0.9;
    if (o.threads < 1 || o.level < 0 || o.level > 3 ||
        o.types.find_first_not_of(peers::type_letters) != std::string::npos)
        usage();
    for (const std::string &name : o.names)
        if (std::none_of(peers::routines().begin(), peers::routines().end(), [&](const auto &r) {
                return name == std::string(r.name).substr(0, name.size());
            }))
            usage();
    return o;
}

std::vector<peers::extents> sizes_of(const options &o, const peers::routine &r) {
    std::vector<long> orders = o.sizes;
    if (orders.empty() && o.shapes.empty()) {
        orders = r.level() == 1   ? vector_sizes
                 : r.level() == 2 ? matrix_sizes
                 : o.quick        ? quick_product_sizes
                                  : product_sizes;
        std::erase_if(orders, [&](long n) { return n > o.max_n; });
    }
    std::vector<peers::extents> sizes = o.shapes;
    for (long n : orders)
        sizes.push_back({n, n, n});
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
            for (const peers::extents &size : sizes_of(o, r))
                group.push_back({&r, type, size, o.shape, o.beta});
            if (!group.empty())
                groups.push_back(group);
        }
    return groups;
}

peers::memory memory_for(const std::vector<std::vector<peers::test_case>> &groups) {
    const auto most = [&](peers::arg operand) {
        size_t bytes = 0;
        for (const auto &group : groups)
            for (const peers::test_case &c : group)
                bytes = std::max(bytes, c.what->elements(operand, c.size) * element_sizes[c.type]);
        return bytes;
    };
    return {most(peers::arg::a), most(peers::arg::x), most(peers::arg::y)};
}

std::string symbol_of(const peers::test_case &c) {
    return c.what->symbols[c.type] + std::string("_");
}

bool has(const peers::library &l, const peers::test_case &c) {
    return l.find(symbol_of(c)) && std::max({c.size.m, c.size.n, c.size.k}) <= l.max_n;
}

// Peers have errors too: this library's result stands if it is that of any other one. Otherwise
// says how it differs from each.
std::string disagreement(const peers::test_case &c, const std::vector<peers::library> &libraries,
                         const std::vector<peers::library> &reference,
                         peers::memory *const memories[2]) {
    const std::string symbol = symbol_of(c);
    std::string differences;
    const auto agrees = [&](const peers::library &other) {
        if (!has(other, c))
            return false;
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

peers::measured measure(const peers::test_case &c, const std::vector<peers::library> &libraries,
                        peers::memory &operands, const options &o) {
    const peers::effort effort = o.quick ? peers::effort{0.015, 0.1} : peers::effort{0.06, 0.5};
    const bool arithmetic = c.what->level() == 3;
    std::vector<void *> functions;
    for (const peers::library &l : libraries)
        if (has(l, c))
            functions.push_back(l.find(symbol_of(c)));
    const auto peak = [&] {
        return arithmetic
                   ? o.threads * peers::peak_flops(peers::path_of(libraries[0]), c.type % 2 == 1)
                   : 0.0;
    };
    const double peak_before = peak();
    const std::vector<double> times = peers::seconds(c, functions, operands, effort);
    const double peak_now = std::max(peak_before, peak());
    peers::measured m{
        c.what->name, peers::case_name(*c.what, c.type), c.type, c.size.text(), 0, {}};
    auto next = times.begin();
    for (const peers::library &l : libraries)
        m.times.push_back(has(l, c) ? *next++ : 0);
    const double work = arithmetic
                            ? c.what->flops(c.type, c.size)
                            : peers::traffic(*c.what, c.size) * double(element_sizes[c.type]);
    m.rate = work / m.times[0] * 1e-9;
    if (arithmetic) {
        m.share = 100 * work / m.times[0] / peak_now;
        m.large = c.what->operations(c.size) >= c.what->operations({500, 500, 500});
    }
    return m;
}

} // namespace

int main(int argc, char **argv) {
    const options o = parse(argc, argv);
    const std::vector<peers::library> opened = o.compare_threads
                                                   ? peers::open_thread_counts(o.path, o.threads)
                                                   : peers::open_libraries(o.path, o.threads);
    const auto groups = cases_of(o);
    const std::vector<peers::library> reference = peers::open_reference();
    peers::memory operands = memory_for(groups), others = memory_for(groups);
    peers::memory *const memories[] = {&operands, &others};
    double load = 0;
    getloadavg(&load, 1);
    std::printf("path %s, %d thread(s), load of the machine before: %.1f\n", o.path.c_str(),
                o.threads, load);
    if (!o.summary)
        std::printf("a loop that only reads 160 MB: %.1f GB/s\n",
                    peers::read_bandwidth(160000000, o.threads) * 1e-9);

    std::vector<peers::measured> all;
    int failures = 0;
    const auto fail = [&](const std::string &what, const std::string &why) {
        std::printf("FAILED: %s: %s\n", what.c_str(), why.c_str());
        ++failures;
    };
    for (const auto &group : groups) {
        const std::string name = peers::case_name(*group[0].what, group[0].type);
        const std::string symbol = symbol_of(group[0]);
        std::vector<peers::library> libraries = opened;
        std::erase_if(libraries, [&](const peers::library &l) { return !l.find(symbol); });
        if (!opened[0].find(symbol)) {
            fail(name, opened[0].name + " has no " + symbol);
            continue;
        }
        if (libraries.size() == 1) {
            std::printf("%s: no peer has it\n", name.c_str());
            continue;
        }
        if (!o.summary)
            peers::print_header(name, libraries, group[0].what->level() < 3 ? "GB/s" : "Gflop/s",
                                group[0].what->level() == 3);
        for (const peers::test_case &c : group) {
            if (const std::string why = disagreement(c, libraries, reference, memories);
                !why.empty())
                fail(name + ", n = " + c.size.text(), why);
            all.push_back(measure(c, libraries, operands, o));
            if (!o.summary)
                peers::print_line(all.back());
        }
    }
    if (!all.empty()) {
        std::printf("\n");
        peers::print_summary(all, stdout);
        peers::print_shares(all, stdout);
        peers::print_below(o.below, all, stdout);
    }
    return failures ? 1 : 0;
}
