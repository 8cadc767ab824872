// regression.cpp - linear least squares on data with certified answers, in two ways: by QR factorisation
// (LAPACKE_dgels), and through the normal equations A^T A x = A^T y, to show why not.
//
//   regression [FILE]     FILE: a study as support/study.hpp describes it, examples/data/longley.csv by default
//
// The error of the normal equations grows with the square of A's condition number, that of QR hardly more than with
// the condition number if the residual is small. QR must stay within this bound: what it computes is the exact
// solution for data whose columns a_j and y have changed by at most e |a_j| and e |y|, e = c m n u (Higham,
// Accuracy and Stability of Numerical Algorithms, 2002, theorem 20.3). c is a small constant; 1 is taken for it, as
// roundings do not all go one way. With G = (A^T A)^-1 and the residual r that moves x_i, to first order, by at most
//     e (|r| sum_j |G_ij| |a_j| + sqrt(G_ii) (|y| + sum_j |a_j| |x_j|)).
// Exit status: 0; 1 if QR misses the bound or the file is bad; 2 for wrong arguments.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>
#include <vox/vox.h>

#include "support/code_path.hpp"
#include "support/study.hpp"
#include "support/text_file.hpp"

namespace {

constexpr double u = 0x1p-53;
constexpr double certified_digits = 15;

struct fit {
    std::vector<double> x;
    double deviation; // residual standard deviation: |y - A x| / sqrt(m - n)
};

double norm(size_t n, const double *x, vox_int step = 1) {
    return cblas_dnrm2(vox_int(n), x, step);
}

// R receives the triangle of A = Q R.
fit by_qr(const study &s, std::vector<double> &R) {
    R = s.A;
    std::vector<double> b = s.y;
    const vox_int info =
        LAPACKE_dgels(LAPACK_ROW_MAJOR, 'N', s.m, s.n, 1, R.data(), s.n, b.data(), 1);
    if (info > 0)
        throw input_error(s.file + ": the columns depend on one another");
    // Behind the solution, dgels leaves what the columns of A cannot express of y.
    const double r = norm(s.m - s.n, &b[s.n]);
    b.resize(s.n);
    if (info < 0 || !std::isfinite(r + norm(s.n, b.data())))
        throw input_error(s.file + ": no solution in the range of double precision");
    return {b, r / std::sqrt(s.m - s.n)};
}

// No coefficients when A^T A, as computed, is not positive definite.
fit by_normal_equations(const study &s) {
    const vox_int m = s.m, n = s.n;
    std::vector<double> C(size_t(n) * n), x(n), r = s.y;
    cblas_dsyrk(CblasRowMajor, CblasUpper, CblasTrans, n, m, 1, s.A.data(), n, 0, C.data(), n);
    cblas_dgemv(CblasRowMajor, CblasTrans, m, n, 1, s.A.data(), n, s.y.data(), 1, 0, x.data(), 1);
    if (LAPACKE_dpotrf(LAPACK_ROW_MAJOR, 'U', n, C.data(), n) != 0)
        return {{}, unknown};
    LAPACKE_dpotrs(LAPACK_ROW_MAJOR, 'U', n, 1, C.data(), n, x.data(), 1);
    cblas_dgemv(CblasRowMajor, CblasNoTrans, m, n, -1, s.A.data(), n, x.data(), 1, 1, r.data(), 1);
    return {x, norm(m, r.data()) / std::sqrt(m - n)};
}

struct error_bounds {
    std::vector<double> x;
    double deviation;
    double condition; // of A with columns scaled to length 1, in the Frobenius norm
};

// G holds R in its upper triangle.
error_bounds bounds_of_qr(const study &s, const fit &f, std::vector<double> G) {
    const size_t m = s.m, n = s.n;
    LAPACKE_dpotri(LAPACK_ROW_MAJOR, 'U', s.n, G.data(), s.n); // from R to (R^T R)^-1
    std::vector<double> length(n);
    double data = norm(m, s.y.data()), scaled_inverse = 0;
    for (size_t j = 0; j < n; ++j) {
        length[j] = norm(m, &s.A[j], s.n);
        data += length[j] * std::abs(f.x[j]);
        scaled_inverse += G[j * n + j] * length[j] * length[j];
    }
    const double e = m * u * n, r = f.deviation * std::sqrt(m - n);
    error_bounds result{{}, e * data / std::sqrt(m - n), std::sqrt(n * scaled_inverse)};
    for (size_t i = 0; i < n; ++i) {
        double sum = 0;
        for (size_t j = 0; j < n; ++j)
            sum += std::abs(G[std::min(i, j) * n + std::max(i, j)]) * length[j];
        result.x.push_back(e * (r * sum + std::sqrt(G[i * n + i]) * data));
    }
    return result;
}

// Correct decimal digits of a value with this error; as many as are certified at the most.
double digits(double error, double value) {
    return std::clamp(-std::log10(std::abs(error / value)), 0.0, certified_digits);
}

// Prints a row; false if QR's error is above its bound.
bool print_row(const char *name, double certified, double qr, double bound, double normal) {
    auto cell = [](double value, int width, const char *format) {
        char text[40] = "-";
        if (!std::isnan(value))
            std::snprintf(text, sizeof text, format, value);
        std::printf(" %*s", width, text);
    };
    std::printf("%-10.10s", name);
    cell(certified, 19, "%.15g");
    cell(qr, 19, "%.15g");
    cell(digits(qr - certified, certified), 6, "%.1f");
    cell(digits(bound, qr), 5, "%.1f");
    cell(normal, 19, "%.15g");
    cell(digits(normal - certified, certified), 6, "%.1f");
    std::printf("\n");
    const double rounding = std::abs(certified) * std::pow(10, 1 - certified_digits) / 2;
    return std::isnan(certified) || std::abs(qr - certified) <= bound + rounding;
}

bool report(const study &s) {
    std::vector<double> R;
    const fit qr = by_qr(s, R), normal = by_normal_equations(s);
    const error_bounds bounds = bounds_of_qr(s, qr, R);

    std::printf("%d observations of %s, %d coefficients\n\n", s.m, s.names[0].c_str(), s.n);
    std::printf("%-10s %19s %19s %6s %5s %19s %6s\n", "", "certified", "QR", "digits", "sure",
                "normal equations", "digits");
    bool within = true;
    for (vox_int j = 0; j < s.n; ++j)
        within &= print_row(j == 0 ? "constant" : s.names[j].c_str(), s.certified[j], qr.x[j],
                            bounds.x[j], normal.x.empty() ? unknown : normal.x[j]);
    within &= print_row("deviation", s.certified_deviation, qr.deviation, bounds.deviation,
                        normal.deviation);
    if (normal.x.empty())
        std::printf("The normal equations have no solution: A^T A, as computed, is not positive "
                    "definite.\n");
    std::printf(
        "\nsure:      digits that the bound on QR's error guarantees\n"
        "condition: %.1e (columns of length 1); the normal equations have its square, %.1e\n"
        "code path: %s\n",
        bounds.condition, bounds.condition * bounds.condition, code_path().c_str());
    return within;
}

} // namespace

int main(int argc, char **argv) {
    if (argc > 2 || (argc == 2 && argv[1][0] == '-')) {
        std::fprintf(stderr, "usage: regression [FILE]\n");
        return 2;
    }
    const std::string file = argc == 2 ? argv[1] : EXAMPLES_DATA "/longley.csv";
    try {
        if (report(read_study(file)))
            return 0;
        std::fprintf(stderr, "regression: QR is less accurate than its error bound\n");
    } catch (const std::bad_alloc &) {
        std::fprintf(stderr, "regression: out of memory\n");
    } catch (const std::exception &e) {
        std::fprintf(stderr, "regression: %s\n", e.what());
    }
    return 1;
}
