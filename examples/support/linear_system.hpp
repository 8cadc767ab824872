// linear_system.hpp - solves A X = B for dense A, and measures how good the answer is.
//
// A matrix equal to its conjugate transpose, with a positive diagonal, is tried with Cholesky's method; others,
// and those that turn out not to be positive definite, are solved by LU with partial pivoting.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <string>
#include <type_traits>
#include <vector>

#define vox_complex_double std::complex<double>
#include <vox/lapacke.h>
#include <vox/service.h>

#include "text_file.hpp"

// The routines for an element type.
template <class T>
struct lapack;
#define LAPACK(T, t)                                                                               \
    template <>                                                                                    \
    struct lapack<T> {                                                                             \
        static constexpr auto *lange = LAPACKE_##t##lange;                                         \
        static constexpr auto *potrf = LAPACKE_##t##potrf;                                         \
        static constexpr auto *potrs = LAPACKE_##t##potrs;                                         \
        static constexpr auto *pocon = LAPACKE_##t##pocon;                                         \
        static constexpr auto *getrf = LAPACKE_##t##getrf;                                         \
        static constexpr auto *getrs = LAPACKE_##t##getrs;                                         \
        static constexpr auto *gecon = LAPACKE_##t##gecon;                                         \
    };
LAPACK(double, d)
LAPACK(std::complex<double>, z)
#undef LAPACK

// Matrices by columns. B has as many rows as A.
template <class T>
struct linear_system {
    int n, columns; // of A, of B
    std::vector<T> A, B;
    double norm;               // of A: the largest sum of a row
    bool symmetric, hermitian; // A is its transpose, its conjugate transpose
};

template <class T>
struct answer {
    std::string method;
    std::vector<T> X;
    double seconds, flops;
    double rcond; // 1 / condition number, an estimate
};

// For sums that must not add rounding errors of their own.
template <class T>
using wide_of =
    std::conditional_t<std::is_same_v<T, double>, long double, std::complex<long double>>;

template <class T>
std::vector<T> times_ones(size_t n, const std::vector<T> &A) {
    std::vector<wide_of<T>> sums(n);
    for (size_t j = 0; j < n; ++j)
        for (size_t i = 0; i < n; ++i)
            sums[i] += A[i + j * n];
    return std::vector<T>(sums.begin(), sums.end());
}

// Sets norm, symmetric and hermitian.
template <class T>
void examine(linear_system<T> &s) {
    const size_t n = s.n;
    s.norm = lapack<T>::lange(LAPACK_COL_MAJOR, 'I', s.n, s.n, s.A.data(), s.n);
    s.symmetric = s.hermitian = true;
    for (size_t j = 0; j < n && (s.symmetric || s.hermitian); ++j)
        for (size_t i = 0; i <= j; ++i) {
            const T upper = s.A[i + j * n], lower = s.A[j + i * n];
            s.symmetric &= upper == lower;
            s.hermitian &= upper == std::conj(lower);
        }
}

template <class T>
bool positive_diagonal(const linear_system<T> &s) {
    for (size_t j = 0; j < size_t(s.n); ++j)
        if (!(std::real(s.A[j + j * s.n]) > 0))
            return false;
    return true;
}

// Floating-point operations: a complex multiplication and addition counts as four real ones of each.
template <class T>
double flops(double cube, const linear_system<T> &s) {
    const double n = s.n, of_reals = cube * n * n * n + 2 * n * n * s.columns;
    return std::is_same_v<T, double> ? of_reals : 4 * of_reals;
}

inline constexpr char out_of_range[] = "no solution in the range of double precision";

// Negative results of LAPACK's C forms, other than for wrong arguments.
inline void check(vox_int info) {
    if (info == LAPACK_WORK_MEMORY_ERROR || info == LAPACK_TRANSPOSE_MEMORY_ERROR)
        throw std::bad_alloc();
    if (info < 0) // NaN in the factors
        throw input_error(out_of_range);
}

// Returns 0, or the row in which the matrix is found not to be positive definite.
template <class T>
vox_int by_cholesky(const linear_system<T> &s, answer<T> &a) {
    std::vector<T> L = s.A;
    a.X = s.B;
    a.seconds = -dsecnd();
    const vox_int info = lapack<T>::potrf(LAPACK_COL_MAJOR, 'L', s.n, L.data(), s.n);
    check(info);
    if (info > 0)
        return info;
    check(lapack<T>::potrs(LAPACK_COL_MAJOR, 'L', s.n, s.columns, L.data(), s.n, a.X.data(), s.n));
    a.seconds += dsecnd();
    a.flops = flops(1.0 / 3, s);
    check(lapack<T>::pocon(LAPACK_COL_MAJOR, 'L', s.n, L.data(), s.n, s.norm, &a.rcond));
    return 0;
}

template <class T>
void by_lu(const linear_system<T> &s, answer<T> &a) {
    std::vector<T> LU = s.A;
    std::vector<vox_int> pivots(s.n);
    a.X = s.B;
    a.seconds = -dsecnd();
    const vox_int info =
        lapack<T>::getrf(LAPACK_COL_MAJOR, s.n, s.n, LU.data(), s.n, pivots.data());
    check(info);
    if (info > 0)
        throw input_error("the matrix is singular: elimination finds no pivot in column " +
                          std::to_string(info));
    check(lapack<T>::getrs(LAPACK_COL_MAJOR, 'N', s.n, s.columns, LU.data(), s.n, pivots.data(),
                           a.X.data(), s.n));
    a.seconds += dsecnd();
    a.flops = flops(2.0 / 3, s);
    check(lapack<T>::gecon(LAPACK_COL_MAJOR, 'I', s.n, LU.data(), s.n, s.norm, &a.rcond));
}

template <class T>
answer<T> solve(const linear_system<T> &s) {
    answer<T> a{};
    vox_int row = 0; // where Cholesky's method fails
    if (!std::isfinite(s.norm))
        throw input_error("a row's sum is out of the range of double precision");
    if (s.hermitian && positive_diagonal(s) && (row = by_cholesky(s, a)) == 0) {
        a.method = "Cholesky";
    } else {
        by_lu(s, a);
        a.method = row > 0 ? "LU, as Cholesky finds in row " + std::to_string(row) +
                                 " that A is not positive definite"
                   : s.hermitian ? "LU, as the diagonal is not positive"
                                 : "LU";
    }
    for (const T x : a.X)
        if (!std::isfinite(std::abs(x)))
            throw input_error(out_of_range);
    return a;
}

// Backward errors are how much A and B must change for X to be exact, relative to their norms (normwise; Rigal
// and Gaches, J. ACM 14, 1967) or element by element (Oettli and Prager, Numer. Math. 6, 1964). Of several
// right-hand sides the worst counts.
struct errors {
    double residual = 0, normwise = 0, componentwise = 0;
};

template <class T>
errors errors_of(const linear_system<T> &s, const std::vector<T> &X) {
    const size_t n = s.n;
    errors result;
    for (size_t k = 0; k < X.size(); k += n) {
        const T *const b = &s.B[k], *const x = &X[k];
        std::vector<wide_of<T>> r(b, b + n); // b - A x
        std::vector<long double> size(n);    // |A| |x| + |b|
        long double r_norm = 0, b_norm = 0, x_norm = 0;
        for (size_t j = 0; j < n; ++j) {
            size[j] += std::abs(b[j]);
            b_norm = std::max<long double>(b_norm, std::abs(b[j]));
            x_norm = std::max<long double>(x_norm, std::abs(x[j]));
            for (size_t i = 0; i < n; ++i) {
                r[i] -= wide_of<T>(s.A[i + j * n]) * wide_of<T>(x[j]);
                size[i] += (long double)std::abs(s.A[i + j * n]) * std::abs(x[j]);
            }
        }
        for (size_t i = 0; i < n; ++i) {
            const long double r_i = std::abs(r[i]);
            r_norm = std::max(r_norm, r_i);
            if (r_i > 0)
                result.componentwise = std::max(result.componentwise, double(r_i / size[i]));
        }
        result.residual = std::max(result.residual, double(r_norm));
        if (r_norm > 0)
            result.normwise =
                std::max(result.normwise, double(r_norm / (s.norm * x_norm + b_norm)));
    }
    return result;
}
