// solve.cpp - solves A X = B for matrices from files, and says how good the answer is.
//
// Exit status: 0; 1 if a file is bad or the matrix singular; 2 for wrong arguments.
#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <exception>
#include <getopt.h>
#include <string>
#include <utility>
#include <vector>

#include "support/code_path.hpp"
#include "support/linear_system.hpp"
#include "support/matrix_file.hpp"

namespace {

constexpr char usage[] =
    "usage: solve [--output FILE] MATRIX [RHS]\n"
    "Solves A X = B for the matrix A in file MATRIX and the right-hand sides B in file RHS, by\n"
    "default A times ones, whose solution is known. Files are in Matrix Market format or\n"
    "comma-separated values. --output writes X to a file, as a Matrix Market array.\n";

constexpr double u = 0x1p-53;

// Takes the elements out of what has been read.
template <class T>
std::vector<T> take_elements(matrix_file &m) {
    std::vector<double> real = std::move(m.real), imaginary = std::move(m.imaginary);
    if constexpr (std::is_same_v<T, double>) {
        return real;
    } else {
        std::vector<T> result(real.begin(), real.end());
        for (size_t k = 0; k < imaginary.size(); ++k)
            result[k].imag(imaginary[k]);
        return result;
    }
}

// The first run also starts the library's threads; a small system is solved again to see its own time.
template <class T>
int repeat(const linear_system<T> &s, answer<T> &a) {
    int runs = 1;
    for (double spent = a.seconds; spent < 0.5 && runs < 10; ++runs) {
        const double seconds = solve(s).seconds;
        spent += seconds;
        a.seconds = std::min(a.seconds, seconds);
    }
    return runs;
}

template <class T>
void report(const linear_system<T> &s, const answer<T> &a, int runs, bool ones) {
    const errors e = errors_of(s, a.X);
    std::printf("method:         %s\n", a.method.c_str());
    std::printf("condition:      %.1e%s\n", 1 / a.rcond,
                a.rcond < u ? ", singular to working precision" : "");
    std::printf("residual:       %.1e\n", e.residual);
    std::printf("backward error: %.1e normwise, %.1e componentwise\n", e.normwise, e.componentwise);
    std::printf("forward error:  ");
    if (ones) {
        double forward = 0;
        for (const T x : a.X)
            forward = std::max(forward, std::abs(x - 1.0));
        std::printf("%.1e, ", forward);
    }
    // To first order; A times ones has been rounded.
    const double bound = 2 * (e.normwise + (ones ? u : 0)) / a.rcond;
    if (bound < 1)
        std::printf("estimated to be at most %.1e\n", bound);
    else
        std::printf("no digit is certain\n");
    const bool short_time = a.seconds < 1e-3;
    std::printf("time:           %.3g %s, %.3g Gflop/s (best of %d)\n",
                a.seconds * (short_time ? 1e6 : 1e3), short_time ? "us" : "ms",
                a.flops / a.seconds / 1e9, runs);
    std::printf("code path:      %s\n", code_path().c_str());
}

template <class T>
void run(matrix_file &matrix, matrix_file *rhs, const char *output) {
    const char *const numbers = matrix.is_complex() ? "complex" : "real";
    linear_system<T> s;
    s.n = matrix.rows;
    s.columns = rhs ? rhs->columns : 1;
    s.A = take_elements<T>(matrix);
    s.B = rhs ? take_elements<T>(*rhs) : times_ones(s.n, s.A);
    examine(s);
    std::printf("A: %s, %d x %d, %s, %s\nB: ", matrix.name.c_str(), s.n, s.n, numbers,
                s.symmetric   ? "symmetric"
                : s.hermitian ? "Hermitian"
                              : "not symmetric");
    if (rhs)
        std::printf("%s, %d x %d\n\n", rhs->name.c_str(), s.n, s.columns);
    else
        std::printf("A times ones\n\n");

    answer<T> a;
    try {
        a = solve(s);
    } catch (const input_error &e) {
        throw input_error(matrix.name + ": " + e.what());
    }
    const int runs = repeat(s, a);
    report(s, a, runs, !rhs);
    if (output)
        write_matrix(output, s.n, s.columns, a.X);
}

void solve_files(const char *matrix_name, const char *rhs_name, const char *output) {
    matrix_file matrix = read_matrix(matrix_name);
    if (matrix.rows != matrix.columns)
        throw input_error(matrix.name + ':' + std::to_string(matrix.size_line) +
                          ": the matrix has " + std::to_string(matrix.rows) + " rows and " +
                          std::to_string(matrix.columns) + " columns, a square one is needed");
    matrix_file rhs;
    if (rhs_name) {
        rhs = read_matrix(rhs_name);
        if (rhs.rows != matrix.rows)
            throw input_error(rhs.name + ':' + std::to_string(rhs.size_line) + ": " +
                              std::to_string(rhs.rows) + " rows for a matrix of " +
                              std::to_string(matrix.rows));
    }
    (matrix.is_complex() || rhs.is_complex()
         ? run<std::complex<double>>
         : run<double>)(matrix, rhs_name ? &rhs : nullptr, output);
}

} // namespace

int main(int argc, char **argv) {
    const char *output = nullptr;
    const option options[] = {
        {"help", no_argument, nullptr, 'h'}, {"output", required_argument, nullptr, 'o'}, {}};
    for (int c; (c = getopt_long(argc, argv, "ho:", options, nullptr)) != -1;) {
        if (c == 'h') {
            std::printf("%s", usage);
            return 0;
        }
        if (c != 'o')
            return 2; // getopt_long has said why
        output = optarg;
    }
    const int files = argc - optind;
    if (files < 1 || files > 2) {
        std::fprintf(stderr, "solve: one file with a matrix and perhaps one with right-hand sides "
                             "are needed (solve --help)\n");
        return 2;
    }
    try {
        solve_files(argv[optind], files == 2 ? argv[optind + 1] : nullptr, output);
        return 0;
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "solve: out of memory\n");
    } catch (const std::exception &e) {
        std::fprintf(stderr, "solve: %s\n", e.what());
    }
    return 1;
}
