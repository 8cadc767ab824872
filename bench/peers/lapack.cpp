// lapack.cpp - factorisations and solvers beside their peers' (OpenBLAS's LAPACK).
//
//   peers_lapack [options]
//     --routine getrf,gesv  only these; a name without its number of right-hand sides means all of them
//     --types sd            only these types
//     --n 10,100            these orders instead of the usual ones
//     --max-n N             none of the usual orders beyond N
//     --rows R              R n rows instead of n, for getrf, geqrf and gels alone
//     --path best           code path of VOX and instructions of its peers, as peers_blas has it
//     --threads N           of every library
//     --compare-threads     VOX with N threads (2 if not said) against VOX with one; needs a machine
//                           with nothing else to do
//     --quick               a quarter of the usual effort, up to n = 1000
//     --summary             only the tables of means and shares, and what is far below
//     --below R             what is far below: 0.95 if not said
//
// Random matrices, for potrf and potri positive definite, lower triangles; leading dimensions as
// small as can be; calls go through the Fortran names, with the workspace that the library asks for.
// Each call gets fresh operands, copied outside the measured time and still in the cache where they
// fit. "peak%" is the share that VOX reaches of the processor's own peak, with the operations of the
// textbook (getrf 2/3 n^3, potrf 1/3 n^3, geqrf 4/3 n^3; complex four times as many).
// PEERS_VOX=file measures another build of libvox.so.
// Ends with status 1 if VOX lacks a routine or a result is wrong: times decide nothing.
#include "bench/peers/peak.hpp"
#include "bench/peers/peers.hpp"
#include "bench/peers/report.hpp"
#include "bench/peers/solvers.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const std::vector<int> orders = {10, 16, 20, 32, 50, 64, 100, 200, 300, 500, 1000, 2000, 3000};
constexpr int large = 1000; // the least order whose share of the peak is summed up

// A result is right if its residual is below this many units of rounding, the customary bound.
constexpr double right = 30;

struct options {
    std::vector<std::string> names;
    std::string types = peers::type_letters, path = "best";
    std::vector<int> orders;
    int max_n = 3000, rows = 1, threads = 1;
    double below = 0.95;
    bool compare_threads = false, quick = false, summary = false;
};

[[noreturn]] void usage() {
    std::fprintf(stderr, "see the first lines of bench/peers/lapack.cpp for the options\n");
    std::exit(2);
}

bool names(const std::string &wanted, const peers::solver &s) {
    const std::string name = s.name;
    return wanted == name || wanted == name.substr(0, name.find('_'));
}

bool chosen(const options &o, const peers::solver &s) {
    if (o.rows != 1 && s.square)
        return false;
    return o.names.empty() || std::any_of(o.names.begin(), o.names.end(),
                                          [&](const auto &wanted) { return names(wanted, s); });
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
                o.orders.push_back(std::max(1, std::atoi(n.c_str())));
        else if (name == "--max-n")
            o.max_n = std::atoi(value().c_str());
        else if (name == "--rows")
            o.rows = std::atoi(value().c_str());
        else if (name == "--path")
            o.path = value();
        else if (name == "--threads")
            o.threads = std::atoi(value().c_str());
        else if (name == "--below")
            o.below = std::atof(value().c_str());
        else if (name == "--compare-threads")
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
    if (o.quick)
        o.max_n = std::min(o.max_n, 1000);
    if (o.orders.empty())
        std::copy_if(orders.begin(), orders.end(), std::back_inserter(o.orders),
                     [&](int n) { return n <= o.max_n; });
    if (o.threads < 1 || o.rows < 1 ||
        o.types.find_first_not_of(peers::type_letters) != std::string::npos)
        usage();
    for (const std::string &name : o.names)
        if (std::none_of(peers::solvers().begin(), peers::solvers().end(),
                         [&](const auto &s) { return names(name, s); }))
            usage();
    return o;
}

peers::measured measure(const peers::solver &s, const peers::problem_shape &shape,
                        const std::vector<peers::library> &libraries, const options &o) {
    const peers::effort effort = o.quick ? peers::effort{0.015, 0.1} : peers::effort{0.06, 0.5};
    std::vector<void *> functions;
    for (const peers::library &l : libraries)
        functions.push_back(l.find(s.symbol_in(shape.type) + "_"));
    const auto peak = [&] {
        return o.threads * peers::peak_flops(peers::path_of(libraries[0]), shape.type % 2 == 1);
    };
    const double peak_before = peak();
    const std::vector<double> times = s.seconds(shape, functions, libraries.back(), effort);
    const double peak_now = std::max(peak_before, peak());
    const double rate = s.operations(shape.m, shape.n) * (shape.type < 2 ? 1 : 4) / times[0];
    return {s.name,
            peers::type_letters[shape.type] + std::string(s.name),
            shape.type,
            std::to_string(shape.n),
            rate * 1e-9,
            times,
            100 * rate / peak_now,
            shape.n >= large};
}

} // namespace

int main(int argc, char **argv) {
    const options o = parse(argc, argv);
    const std::vector<peers::library> opened = o.compare_threads
                                                   ? peers::open_thread_counts(o.path, o.threads)
                                                   : peers::open_libraries(o.path, o.threads);
    double load = 0;
    getloadavg(&load, 1);
    std::printf("path %s, %d thread(s), load of the machine before: %.1f\n", o.path.c_str(),
                o.threads, load);

    std::vector<peers::measured> all;
    int failures = 0;
    const auto fail = [&](const std::string &what, const std::string &why) {
        std::printf("FAILED: %s: %s\n", what.c_str(), why.c_str());
        ++failures;
    };
    for (const peers::solver &s : peers::solvers())
        for (size_t type = 0; type < 4; ++type) {
            if (!chosen(o, s) || o.types.find(peers::type_letters[type]) == std::string::npos)
                continue;
            const std::string name = peers::type_letters[type] + std::string(s.name);
            const std::string symbol = s.symbol_in(type) + "_";
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
                peers::print_header(name, libraries, "Gflop/s", true);
            for (int n : o.orders) {
                const peers::problem_shape shape = {type, o.rows * n, n};
                for (const peers::library &l : libraries)
                    if (const double residual = s.residual(shape, l.find(symbol), libraries.back());
                        !(residual < right))
                        fail(name + ", n = " + std::to_string(n),
                             l.name + "'s residual is " + std::to_string(residual));
                all.push_back(measure(s, shape, libraries, o));
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
