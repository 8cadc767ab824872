// matrices.hpp - column-major matrices without gaps, and what residuals are computed with.
#pragma once

#include "bench/peers/types.hpp"

#include <cmath>
#include <vector>

namespace peers {

template <class T>
using wide = std::conditional_t<is_complex<T>, std::complex<double>, double>;

template <class T>
using wide_vector = std::vector<wide<T>>;

template <class T>
T conjugate(T x) {
    if constexpr (is_complex<T>)
        return std::conj(x);
    else
        return x;
}

template <class T>
T random_element(uint64_t i) {
    return make<T>(2 * fraction(2 * i) - 1, 2 * fraction(2 * i + 1) - 1);
}

template <class T>
std::vector<T> random_matrix(int m, int n, uint64_t first) {
    std::vector<T> a(size_t(m) * size_t(n));
    for (size_t i = 0; i < a.size(); ++i)
        a[i] = random_element<T>(first + i);
    return a;
}

// Positive definite: of random elements, the eigenvalues lie within 1.64 sqrt(n) of the diagonal.
template <class T>
std::vector<T> definite_matrix(int n) {
    std::vector<T> a = random_matrix<T>(n, n, 0);
    for (int j = 0; j < n; ++j) {
        for (int i = 0; i < j; ++i)
            a[size_t(j) * size_t(n) + size_t(i)] = conjugate(a[size_t(i) * size_t(n) + size_t(j)]);
        a[size_t(j) * size_t(n) + size_t(j)] = T(real_of<T>(1 + 2 * std::sqrt(double(n))));
    }
    return a;
}

template <class V>
double norm(const std::vector<V> &x) {
    double sum = 0;
    for (const V &e : x)
        sum += std::norm(std::complex<double>(e));
    return std::sqrt(sum);
}

template <class T>
wide_vector<T> signs(int n) {
    wide_vector<T> x(static_cast<size_t>(n));
    for (size_t i = 0; i < x.size(); ++i)
        x[i] = fraction(7919 + i) < 0.5 ? -1 : 1;
    return x;
}

template <class V>
std::vector<V> minus(std::vector<V> x, const std::vector<V> &y) {
    for (size_t i = 0; i < x.size(); ++i)
        x[i] -= y[i];
    return x;
}

// The product of x with the m by n matrix that has these elements.
template <class T, class Element>
wide_vector<T> product(int m, int n, const wide_vector<T> &x, const Element &element) {
    wide_vector<T> y(static_cast<size_t>(m));
    for (int j = 0; j < n; ++j)
        for (int i = 0; i < m; ++i)
            y[size_t(i)] += wide<T>(element(i, j)) * x[size_t(j)];
    return y;
}

template <class T>
wide_vector<T> product(int m, int n, const T *a, const wide_vector<T> &x) {
    return product<T>(m, n, x, [=](int i, int j) { return a[size_t(j) * size_t(m) + size_t(i)]; });
}

// With the conjugate transpose of an m by n matrix.
template <class T>
wide_vector<T> adjoint_product(int m, int n, const T *a, const wide_vector<T> &x) {
    return product<T>(
        n, m, x, [=](int i, int j) { return conjugate(a[size_t(i) * size_t(m) + size_t(j)]); });
}

// With a Hermitian matrix of which the lower triangle is stored.
template <class T>
wide_vector<T> hermitian_product(int n, const T *a, const wide_vector<T> &x) {
    return product<T>(n, n, x, [=](int i, int j) {
        return i >= j ? a[size_t(j) * size_t(n) + size_t(i)]
                      : conjugate(a[size_t(i) * size_t(n) + size_t(j)]);
    });
}

} // namespace peers
