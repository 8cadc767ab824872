// reflectors.hpp - products of reflectors in higher precision.
#pragma once

#include "tests/lapack/fortran.hpp"
#include "tests/lapack/support.hpp"

namespace test {

// k reflectors of order n, whose ones lie on the diagonal that begins in the first row or, backward,
// ends in the last; v is what a factorisation leaves, columns or rows.
template <class T>
struct reflectors {
    using E = exact<T>;
    bool by_columns, forward;
    int order, k;
    const matrix<T> &v;
    const std::vector<T> &tau;

    E element(int row, int i) const {
        const int head = forward ? i : order - k + i;
        if (row == head)
            return E(1);
        if (forward ? row < head : row > head)
            return E(0);
        return to_exact(by_columns ? v(row, i) : vox::conj_if(true, v(i, row)));
    }
    // C := P C or P^H C, P = H(1) .. H(k), backward H(k) .. H(1).
    void apply_left(bool adjoined, matrix<E> &c) const {
        for (int s = 0; s < k; ++s) {
            const int i = adjoined == forward ? s : k - 1 - s;
            const E factor = to_exact(vox::conj_if(adjoined, tau[size_t(i)]));
            std::vector<E> x;
            for (int row = 0; row < order; ++row)
                x.push_back(element(row, i));
            for (int j = 0; j < c.columns(); ++j) {
                E sum{};
                for (int row = 0; row < order; ++row)
                    add_product(sum, conjugated(x[size_t(row)]), c(row, j));
                E minus{};
                add_product(minus, factor, -sum);
                for (int row = 0; row < order; ++row)
                    add_product(c(row, j), x[size_t(row)], minus);
            }
        }
    }
    // P, or its adjoint.
    matrix<E> product(bool adjoined) const {
        matrix<E> p = identity<E>(order);
        apply_left(adjoined, p);
        return p;
    }
    static E conjugated(E x) {
        if constexpr (vox::is_complex<T>)
            return std::conj(x);
        else
            return x;
    }
};

template <class E>
matrix<E> times(const matrix<E> &a, const matrix<E> &b) {
    matrix<E> c = minus_product(matrix<E>(a.rows(), b.columns()), a, b);
    for (int j = 0; j < c.columns(); ++j)
        for (int i = 0; i < c.rows(); ++i)
            c(i, j) = -c(i, j);
    return c;
}
template <class E>
matrix<E> minus(matrix<E> a, const matrix<E> &b) {
    for (int j = 0; j < a.columns(); ++j)
        for (int i = 0; i < a.rows(); ++i)
            a(i, j) -= b(i, j);
    return a;
}
template <class E>
matrix<E> adjoint(const matrix<E> &a) {
    matrix<E> b(a.columns(), a.rows());
    for (int j = 0; j < a.columns(); ++j)
        for (int i = 0; i < a.rows(); ++i) {
            b(j, i) = a(i, j);
            if constexpr (!std::is_floating_point_v<E>)
                b(j, i) = std::conj(b(j, i));
        }
    return b;
}

} // namespace test
