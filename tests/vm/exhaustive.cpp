// exhaustive.cpp - every float through every single-precision function of one argument: the largest errors.
//
//   exhaustive [--sets 2,7,9] [--slice k/n] [--threads n] [function...]
//
// prints a table in Markdown, one row per function and accuracy and one column per kernel set: errors of TQM_HA and
// TQM_LA in ulp, correct bits of TQM_EP. All sets that the processor runs, all functions, and all processors if
// nothing else is said; a slice is every n-th part of the arguments. Ends with 1 if a bound is exceeded. A function
// takes some minutes per set.
//
// The exact values are those of the C library in double precision, which is compared on the way: of one argument in
// 509 it is 2^-20 ulp or less away from the value in extended precision. Functions that round correctly are
// compared with the processor's operation.
#include <atomic>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "serv/cpu.hpp"
#include "serv/kernel_sets.hpp"
#include "tests/vm/accuracy.hpp"
#include "tests/vm/functions.hpp"
#include "vm/frame.hpp"

namespace {

using namespace test;
using function = vector_function<float>;
using kernel = vox::vm::kernel_1i_1o<float>;

constexpr size_t block = 1 << 12, blocks = (uint64_t(1) << 32) / block;
constexpr int accuracies[] = {TQM_HA, TQM_LA, TQM_EP};
constexpr const char *accuracy_names[] = {"HA", "LA", "EP"};
constexpr double bounds[] = {1, 4, 0x1p-11};

struct options {
    std::vector<int> sets;
    size_t slice = 0, slices = 1;
    unsigned threads = std::thread::hardware_concurrency();
    std::vector<std::string> functions;
};

struct worst {
    double error = 0;
    float a = 0, r = 0;
    void join(const worst &other) {
        if (other.error > error)
            *this = other;
    }
};

// One block's arguments and exact values.
struct block_values {
    explicit block_values(const function &which)
        : f(which), a(block), y(block), inverse_ulp(block), inverse_y(block), rounded(block) {}

    void compute(size_t number) {
        double low = 0, inverse = 0; // of the binade that values are in for a while
        for (size_t i = 0; i < block; ++i) {
            const float x = a[i] = std::bit_cast<float>(uint32_t(number * block + i));
            double value = f.in_double(x, 0);
            // Values that a double cannot hold are its last ones: poles and zeros are at 0, 1 and -1 alone.
            if (std::isfinite(x) && x != 0 && std::fabs(x) != 1 && f.ha == rounding::near) {
                if (std::isinf(value))
                    value = std::copysign(limits<double>::max(), value);
                if (value == 0)
                    value = std::copysign(limits<double>::denorm_min(), value);
            }
            y[i] = value;
            if (f.ha == rounding::exact)
                rounded[i] = f.rounded(x, 0);
            const double magnitude = std::fabs(value);
            const bool plain = std::isfinite(value) && value != 0;
            if (plain && !(low <= magnitude && magnitude < 2 * low)) {
                low = std::exp2(std::ilogb(magnitude));
                inverse = double(1 / ulp_of<float>(magnitude));
            }
            inverse_ulp[i] = plain ? inverse : limits<double>::quiet_NaN();
            inverse_y[i] = plain && magnitude >= double(limits<float>::min())
                               ? 1 / magnitude
                               : limits<double>::quiet_NaN();
            if (plain && i % 509 == 0 && std::fabs(value) < double(beyond<float>())) {
                const auto off = double(std::fabs(f.wide(x, 0) - value)) * inverse_ulp[i];
                if (off > deviation || std::isnan(off))
                    deviation = off;
            }
        }
    }

    const function &f;
    std::vector<float> a;
    std::vector<double> y, inverse_ulp, inverse_y;
    std::vector<float> rounded;
    double deviation = 0; // of the values from those in extended precision, ulp
};

// The largest error of a kernel's results, if it is above `known`; infinite where one is of another kind.
worst compare(const block_values &v, const float *r, int accuracy, double known) {
    const bool exact = v.f.ha == rounding::exact && accuracy == TQM_HA;
    const double *inverse = accuracy == TQM_EP ? v.inverse_y.data() : v.inverse_ulp.data();
    const double *y = v.y.data();
    double most = 0, sum = 0; // any infinity or NaN is in the sum
#pragma omp simd reduction(max : most) reduction(+ : sum)
    for (size_t i = 0; i < block; ++i) {
        const double e = std::fabs(r[i] - y[i]) * inverse[i];
        sum += e;
        most = e > most ? e : most;
    }
    worst result;
    if (!exact && std::isfinite(sum) && most <= known)
        return result;
    for (size_t i = 0; i < block; ++i) {
        double e = std::fabs(r[i] - y[i]) * inverse[i];
        if (!(e < 8) || r[i] == 0) {
            if (of_another_kind(r[i], y[i]))
                e = limits<double>::infinity();
            else if (r[i] == y[i] || std::isnan(y[i]))
                e = 0;
            else if (e = double(distance(r[i], y[i])) * inverse[i]; std::isnan(e))
                // a subnormal number in TQM_EP
                e = std::fabs(r[i] - y[i]) * v.inverse_ulp[i] < 1 ? 0 : limits<double>::infinity();
        }
        if (exact && r[i] != v.rounded[i] && !(std::isnan(r[i]) && std::isnan(v.rounded[i])))
            e = limits<double>::infinity();
        if (e > result.error)
            result = {e, v.a[i], r[i]};
    }
    return result;
}

// The kernels, which the table has once they have been called.
kernel *kernel_of(const function &f, vox::vm::kernel_table<kernel> &table, int index,
                  int accuracy) {
    vox::vm::known_index = index;
    const float one = 1;
    float r;
    f.vm(1, &one, nullptr, &r, accuracy);
    return table[vox::vm::table_index(index, uint32_t(accuracy))];
}

// Whether all errors are within the bounds.
bool run(const function &f, vox::vm::kernel_table<kernel> &table, const options &wanted) {
    const size_t count = wanted.sets.size() * std::size(accuracies);
    std::vector<kernel *> kernels;
    for (const int accuracy : accuracies)
        for (const int index : wanted.sets)
            kernels.push_back(kernel_of(f, table, index, accuracy));
    std::vector<worst> largest(count);
    double deviation = 0;
    std::mutex lock;
    std::atomic<size_t> next{wanted.slice};
    const auto work = [&] {
        tqmSetMode(TQM_ERRMODE_NOERR);
        block_values values(f);
        std::vector<float> r(block);
        std::vector<worst> mine(count);
        for (size_t number; (number = next.fetch_add(wanted.slices)) < blocks;) {
            values.compute(number);
            for (size_t k = 0; k < count; ++k) {
                kernels[k](block, values.a.data(), r.data(), 0);
                const int accuracy = accuracies[k / wanted.sets.size()];
                mine[k].join(compare(values, r.data(), accuracy, mine[k].error));
            }
        }
        const std::scoped_lock guard(lock);
        for (size_t k = 0; k < count; ++k)
            largest[k].join(mine[k]);
        if (values.deviation > deviation || std::isnan(values.deviation))
            deviation = values.deviation;
    };
    std::vector<std::thread> team;
    for (unsigned t = 0; t < wanted.threads; ++t)
        team.emplace_back(work);
    for (std::thread &thread : team)
        thread.join();

    bool good = deviation <= 0x1p-20;
    if (!good)
        std::fprintf(stderr, "%s: the exact values are %g ulp off\n", f.name, deviation);
    for (size_t row = 0; row < std::size(accuracies); ++row) {
        std::printf("| %s | %s |", f.name, accuracy_names[row]);
        for (size_t s = 0; s < wanted.sets.size(); ++s) {
            const worst &w = largest[row * wanted.sets.size() + s];
            if (accuracies[row] == TQM_EP)
                std::printf(" %.1f |", w.error == 0 ? 24.0 : -std::log2(w.error));
            else
                std::printf(" %.3f |", w.error);
            if (!(w.error < bounds[row])) {
                good = false;
                std::fprintf(stderr, "%s %s index %d: of %a is %a\n", f.name, accuracy_names[row],
                             wanted.sets[s], w.a, w.r);
            }
        }
        std::printf("\n");
    }
    std::fflush(stdout);
    return good;
}

[[noreturn]] void usage() {
    std::fprintf(stderr, "exhaustive [--sets 2,7,9] [--slice k/n] [--threads n] [function...]\n");
    std::exit(2);
}

options read_options(int argc, char **argv) {
    options wanted;
    for (int i = 1; i < argc; ++i) {
        const std::string word = argv[i];
        const char *value = i + 1 < argc ? argv[i + 1] : "";
        if (word == "--sets") {
            for (const char *at = value; at; at = std::strchr(at, ','))
                wanted.sets.push_back(std::atoi(*at == ',' ? ++at : at));
        } else if (word == "--slice") {
            if (std::sscanf(value, "%zu/%zu", &wanted.slice, &wanted.slices) != 2 ||
                wanted.slices == 0)
                usage();
        } else if (word == "--threads") {
            wanted.threads = unsigned(std::atoi(value));
        } else if (word.starts_with("--")) {
            usage();
        } else {
            wanted.functions.push_back(word);
            continue;
        }
        ++i;
    }
    if (wanted.sets.empty())
        for (int index = 2; index < vox::vm::index_count; ++index)
            if (vox::kernel_index_runs(vox::this_cpu(), index))
                wanted.sets.push_back(index);
    for (const int index : wanted.sets)
        if (index < 0 || index >= vox::vm::index_count ||
            !vox::kernel_index_runs(vox::this_cpu(), index)) {
            std::fprintf(stderr, "exhaustive: there is no set %d on this processor\n", index);
            std::exit(2);
        }
    return wanted;
}

} // namespace

// The kernel tables of functions of one argument.
#define DECLARE_one(Name) extern "C" vox::vm::kernel_table<kernel> vox_tqm_kernel_s##Name##_ttab;
#define DECLARE_two(Name)
#define DECLARE_fixed(Name)
#define DECLARE(shape, Name, ...) DECLARE_##shape(Name)
VM_FUNCTIONS(DECLARE)

#define TABLE_one(Name) {"vs" #Name, &vox_tqm_kernel_s##Name##_ttab},
#define TABLE_two(Name)
#define TABLE_fixed(Name)
#define TABLE(shape, Name, ...) TABLE_##shape(Name)

int main(int argc, char **argv) {
    const options wanted = read_options(argc, argv);
    const std::pair<std::string, vox::vm::kernel_table<kernel> *> tables[] = {VM_FUNCTIONS(TABLE)};
    std::printf("| function | accuracy |");
    for (const int index : wanted.sets)
        std::printf(" %d |", index);
    std::printf("\n|---|---|");
    for (size_t s = 0; s < wanted.sets.size(); ++s)
        std::printf("---|");
    std::printf("\n");
    bool good = true;
    for (const auto &[name, table] : tables) {
        bool asked = wanted.functions.empty();
        for (const std::string &other : wanted.functions)
            asked = asked || other == name;
        for (const function &f : vector_functions<float>())
            if (asked && f.name == name)
                good &= run(f, *table, wanted);
    }
    return good ? 0 : 1;
}
