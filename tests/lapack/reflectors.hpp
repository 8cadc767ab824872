// reflectors.hpp - QR's routines for every element type, called by value, and products of reflectors
// in higher precision.
#pragma once

#include "tests/lapack/support.hpp"
#include "vox/lapack.h"

namespace test {

// The Fortran forms. Q is or in real names, un in complex ones.
template <class T>
struct fortran;
#define FORTRAN(T, p, q)                                                                           \
    template <>                                                                                    \
    struct fortran<T> {                                                                            \
        static constexpr auto geqrf = p##geqrf_;                                                   \
        static constexpr auto geqr2 = p##geqr2_, gelq2 = p##gelq2_;                                \
        static constexpr auto gelqf = p##gelqf_;                                                   \
        static constexpr auto geqp3 = p##geqp3_;                                                   \
        static constexpr auto orgqr = p##q##gqr_, orglq = p##q##glq_;                              \
        static constexpr auto org2r = p##q##g2r_, orgl2 = p##q##gl2_;                              \
        static constexpr auto ormqr = p##q##mqr_, ormlq = p##q##mlq_;                              \
        static constexpr auto orm2r = p##q##m2r_, orml2 = p##q##ml2_;                              \
        static constexpr auto larfg = p##larfg_;                                                   \
        static constexpr auto larf = p##larf_;                                                     \
        static constexpr auto larft = p##larft_;                                                   \
        static constexpr auto larfb = p##larfb_;                                                   \
        static constexpr auto gels = p##gels_;                                                     \
    };
FORTRAN(float, s, or)
FORTRAN(double, d, or)
FORTRAN(vox_complex_float, c, un)
FORTRAN(vox_complex_double, z, un)
#undef FORTRAN

template <class X>
X *address(X *p) {
    return p;
}
template <class X>
requires(!std::is_pointer_v<X>) const X *address(const X &x) { return &x; }
template <class Routine, class... X>
void call_quiet(Routine *routine, const X &...x) {
    routine(address(x)...);
}
template <class Routine, class... X>
vox_int call(Routine *routine, const X &...x) {
    vox_int info = -99;
    routine(address(x)..., &info);
    return info;
}
// The same for what takes work and lwork last: the size is asked for first.
template <class T, class Routine, class... X>
vox_int call_with_work(Routine *routine, const X &...x) {
    T best{};
    if (const vox_int info = call(routine, x..., &best, -1))
        return info;
    std::vector<T> work(size_t(vox::real(best)));
    return call(routine, x..., work.data(), vox_int(work.size()));
}

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
