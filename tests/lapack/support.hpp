// support.hpp - what tests of LAPACK share: matrices, their norms, and products in higher precision.
#pragma once

#include <algorithm>
#include <complex>
#include <cstring>
#include <limits>
#include <vector>

#include "tests/support/element_types.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/wide.hpp"

namespace test {

// By columns, which may be further apart than they are long. What is between them starts as NaN.
template <class T>
class matrix {
  public:
    matrix(int rows, int columns, int between = 0)
        : rows_(rows), columns_(columns), ld_(std::max(1, rows + between)),
          values_(size_t(ld_) * columns, filler()) {
        for (int j = 0; j < columns; ++j)
            std::fill_n(column(j), rows, T{});
    }

    int rows() const { return rows_; }
    int columns() const { return columns_; }
    const int &ld() const { return ld_; }
    T *data() { return values_.data(); }
    const T *data() const { return values_.data(); }
    T *column(int j) { return data() + size_t(j) * ld_; }
    const T *column(int j) const { return data() + size_t(j) * ld_; }
    T &operator()(int i, int j) { return column(j)[i]; }
    const T &operator()(int i, int j) const { return column(j)[i]; }

    bool nothing_between_was_touched() const {
        const T f = filler();
        for (int j = 0; j < columns_; ++j)
            for (int i = rows_; i < ld_; ++i)
                if (std::memcmp(column(j) + i, &f, sizeof(T)) != 0)
                    return false;
        return true;
    }
    bool same_bits(const matrix &other) const {
        for (int j = 0; j < columns_; ++j)
            if (rows_ && std::memcmp(column(j), other.column(j), rows_ * sizeof(T)) != 0)
                return false;
        return true;
    }

  private:
    static T filler() {
        using R = vox::real_of<T>;
        T f{};
        if constexpr (vox::is_complex<T>)
            f.real = f.imag = std::numeric_limits<R>::quiet_NaN();
        else if constexpr (std::is_floating_point_v<T>)
            f = std::numeric_limits<T>::quiet_NaN();
        return f;
    }

    int rows_, columns_, ld_;
    std::vector<T> values_;
};

// Parts uniform in (-1, 1).
template <class T>
matrix<T> random_matrix(int rows, int columns, unsigned seed, int between = 0) {
    using R = vox::real_of<T>;
    constexpr int parts = vox::is_complex<T> ? 2 : 1;
    const std::vector<R> numbers = random_vector<R>(size_t(rows) * columns * parts, seed);
    matrix<T> a(rows, columns, between);
    const R *next = numbers.data();
    for (int j = 0; j < columns; ++j)
        for (int i = 0; i < rows; ++i, next += parts)
            a(i, j) = vox::make<T>(next[0], next[parts - 1]);
    return a;
}

// Sums of float's products need no more than double; double's are in extended precision.
template <class T>
using exact_part = std::conditional_t<sizeof(vox::real_of<T>) == 4, double, long double>;
template <class T>
using exact = std::conditional_t<vox::is_complex<T>, std::complex<exact_part<T>>, exact_part<T>>;
template <class T>
exact<T> to_exact(T a) {
    if constexpr (vox::is_complex<T>)
        return {a.real, a.imag};
    else
        return a;
}

// sum += a b, without the repair of infinities that std::complex takes its time for.
template <class R>
void add_product(R &sum, R a, R b) {
    sum += a * b;
}
template <class R>
void add_product(std::complex<R> &sum, std::complex<R> a, std::complex<R> b) {
    sum += std::complex<R>(a.real() * b.real() - a.imag() * b.imag(),
                           a.real() * b.imag() + a.imag() * b.real());
}

// op(A), 'N', 'T' or 'C', in higher precision.
template <class T>
matrix<exact<T>> exactly(const matrix<T> &a, char op = 'N') {
    const bool plain = op == 'N';
    matrix<exact<T>> e(plain ? a.rows() : a.columns(), plain ? a.columns() : a.rows());
    for (int j = 0; j < a.columns(); ++j)
        for (int i = 0; i < a.rows(); ++i)
            (plain ? e(i, j) : e(j, i)) = to_exact(vox::conj_if(op == 'C', a(i, j)));
    return e;
}

// C - A B. Zeros of B cost nothing.
template <class E>
matrix<E> minus_product(matrix<E> c, const matrix<E> &a, const matrix<E> &b) {
    for (int j = 0; j < b.columns(); ++j)
        for (int k = 0; k < b.rows(); ++k)
            if (const E factor = -b(k, j); factor != E{})
                for (int i = 0; i < c.rows(); ++i)
                    add_product(c(i, j), a(i, k), factor);
    return c;
}

template <class E>
matrix<E> identity(int n) {
    matrix<E> e(n, n);
    for (int i = 0; i < n; ++i)
        e(i, i) = E(1);
    return e;
}

// The largest sum of a column's magnitudes; NaN if one of them is.
template <class E>
long double one_norm(const matrix<E> &a) {
    long double norm = 0;
    for (int j = 0; j < a.columns(); ++j) {
        long double sum = 0;
        for (int i = 0; i < a.rows(); ++i)
            sum += std::abs(a(i, j));
        norm = sum > norm || sum != sum ? sum : norm;
    }
    return norm;
}

// residual / (n scale u), and what the reference testers hold such numbers to. 0 / 0 is 0.
constexpr long double threshold = 30;
template <class T>
long double scaled(long double residual, int n, long double scale) {
    return residual == 0 ? 0 : residual / (std::max(1, n) * unit_roundoff<vox::real_of<T>>) / scale;
}
// |B - A X| / (n |A| |X| u), and the same for A's inverse.
template <class T>
long double solution_error(const matrix<exact<T>> &a, const matrix<T> &x, const matrix<T> &b) {
    return scaled<T>(one_norm(minus_product(exactly(b), a, exactly(x))), a.rows(),
                     one_norm(a) * one_norm(exactly(x)));
}
template <class T>
long double inverse_error(const matrix<T> &a, const matrix<T> &inverse) {
    const auto wide_a = exactly(a), wide_inverse = exactly(inverse);
    return scaled<T>(one_norm(minus_product(identity<exact<T>>(a.rows()), wide_a, wide_inverse)),
                     a.rows(), one_norm(wide_a) * one_norm(wide_inverse));
}

} // namespace test
