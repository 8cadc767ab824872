// dot.cpp - ddot from n = 1 to memory size, warm operands.
#include "bench/peers/peers.hpp"

#include <cstdlib>

namespace {

using ddot_function = double(const int *, const double *, const int *, const double *, const int *);

double *operand(long n, double value) {
    auto *p =
        static_cast<double *>(std::aligned_alloc(64, (size_t(n) * sizeof(double) + 63) / 64 * 64));
    std::fill(p, p + n, value);
    return p;
}

} // namespace

int main(int argc, char **argv) {
    const peers::options options = peers::parse_options(argc, argv);
    const std::vector<peers::library> libraries = peers::open_libraries(options);
    std::vector<ddot_function *> ddot;
    for (const peers::library &l : libraries)
        ddot.push_back(l.function<ddot_function>("ddot_"));
    const double *const x = operand(options.max_n, 1.0), *const y = operand(options.max_n, 0.5);
    const int one = 1;

    std::printf("ddot, %d thread(s), path %s; plain read loop over 160 MB: %.1f GB/s\n",
                options.threads, options.path.c_str(),
                peers::read_bandwidth(160000000, options.threads) * 1e-9);
    peers::print_header(libraries, "GB/s");
    volatile double sink = 0;
    for (long n : {1,     2,      3,      4,      5,       7,       8,       10,      15,
                   16,    20,     32,     50,     64,      100,     128,     200,     300,
                   500,   1000,   2000,   3000,   4000,    5000,    8000,    10000,   20000,
                   50000, 100000, 200000, 500000, 1000000, 2000000, 5000000, 10000000}) {
        if (n > options.max_n)
            break;
        const int size = int(n);
        const auto times = peers::best_times(
            ddot.size(), [&](size_t c) { sink = ddot[c](&size, x, &one, y, &one); });
        peers::print_line(n, times, 16.0 * double(n));
    }
}
