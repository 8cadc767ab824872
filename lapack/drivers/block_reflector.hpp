// block_reflector.hpp - products of reflectors in compact WY form, H = I - V T V^H with a triangular
// T (Schreiber and Van Loan, SIAM J. Sci. Stat. Comput. 10(1), 1989), and how they are applied.
#pragma once

#include "lapack/blas.hpp"
#include "lapack/extremes.hpp"

namespace vox::lapack {

template <class T>
factor<T> adjoint(factor<T> f) {
    f.transposed = !f.transposed;
    f.conjugated = !f.conjugated;
    return f;
}
template <class T>
factor<T> adjoint_if(bool wanted, const factor<T> &f) {
    return wanted ? adjoint(f) : f;
}

// Element (i, j) of what a factor stands for.
template <class T>
const T *place(const factor<T> &f, index_t i, index_t j) {
    return f.transposed ? f.data + j + i * f.ld : f.data + i + j * f.ld;
}
template <class T>
factor<T> part_of(factor<T> f, index_t i, index_t j) {
    f.data = place(f, i, j);
    return f;
}

// C := alpha A B + beta C. A factor that is conjugated but not transposed has no letter.
template <class T>
inline void product_of(index_t m, index_t n, index_t k, T alpha, const factor<T> &a,
                       const factor<T> &b, T beta, T *c, index_t ldc) {
    const auto letter = [](const factor<T> &f) {
        return !f.transposed ? 'N' : f.conjugated ? 'C' : 'T';
    };
    if (is_complex<T> && ((a.conjugated && !a.transposed) || (b.conjugated && !b.transposed)))
        return multiply<T>({m, n, k, alpha, a, b, beta, c, ldc});
    gemm(letter(a), letter(b), m, n, k, alpha, a.data, a.ld, b.data, b.ld, beta, c, ldc);
}

// V has k columns. Its part `tip`, k x k and unit triangular, stands in rows `tip_row` on; `rest`
// has the other rows, which are below or above. Without a tip, V is `rest` with all that it says.
template <class T>
struct block_reflector {
    index_t k;
    factor<T> tip;
    index_t tip_row;
    factor<T> rest;
    index_t rest_row, rest_rows;
    factor<T> t;

    // C := H C or H^H C, C having n columns; w: C^H V, n x k.
    void apply_left(bool adjoined, index_t n, T *c, index_t ldc, T *w, index_t ldw) const {
        T *const at_tip = c + tip_row, *const at_rest = c + rest_row;
        const T minus = -one<T>;
        if (tip.data) {
            for (index_t i = 0; i < k; ++i)
                for (index_t j = 0; j < n; ++j)
                    w[j + i * ldw] = conj_if(true, at_tip[i + j * ldc]);
            triangle_multiply<T>({false, n, k, one<T>, tip, w, ldw});
        }
        if (rest_rows || !tip.data)
            product_of(n, k, rest_rows, one<T>, adjoint<T>({at_rest, ldc}), rest,
                       tip.data ? one<T> : T{}, w, ldw);
        triangle_multiply<T>({false, n, k, one<T>, adjoint_if(!adjoined, t), w, ldw});
        product_of(rest_rows, n, k, minus, rest, adjoint<T>({w, ldw}), one<T>, at_rest, ldc);
        if (tip.data) {
            triangle_multiply<T>({false, n, k, one<T>, adjoint(tip), w, ldw});
            for (index_t i = 0; i < k; ++i)
                for (index_t j = 0; j < n; ++j)
                    at_tip[i + j * ldc] -= conj_if(true, w[j + i * ldw]);
        }
    }

    // C := C H or C H^H, C having m rows; w: C V, m x k.
    void apply_right(bool adjoined, index_t m, T *c, index_t ldc, T *w, index_t ldw) const {
        T *const at_tip = c + tip_row * ldc, *const at_rest = c + rest_row * ldc;
        const T minus = -one<T>;
        if (tip.data) {
            for (index_t j = 0; j < k; ++j)
                for (index_t i = 0; i < m; ++i)
                    w[i + j * ldw] = at_tip[i + j * ldc];
            triangle_multiply<T>({false, m, k, one<T>, tip, w, ldw});
        }
        if (rest_rows || !tip.data)
            product_of(m, k, rest_rows, one<T>, {at_rest, ldc}, rest, tip.data ? one<T> : T{}, w,
                       ldw);
        triangle_multiply<T>({false, m, k, one<T>, adjoint_if(adjoined, t), w, ldw});
        product_of(m, rest_rows, k, minus, {w, ldw}, adjoint(rest), one<T>, at_rest, ldc);
        if (tip.data) {
            triangle_multiply<T>({false, m, k, one<T>, adjoint(tip), w, ldw});
            for (index_t j = 0; j < k; ++j)
                for (index_t i = 0; i < m; ++i)
                    at_tip[i + j * ldc] -= w[i + j * ldw];
        }
    }
    void apply_left(bool adjoined, index_t n, T *c, index_t ldc, T *w) const {
        apply_left(adjoined, n, c, ldc, w, n);
    }
    void apply_right(bool adjoined, index_t m, T *c, index_t ldc, T *w) const {
        apply_right(adjoined, m, c, ldc, w, m);
    }

    // C is m x n; w has n rows from the left and m from the right.
    void apply(bool left, bool adjoined, index_t m, index_t n, T *c, index_t ldc, T *w,
               index_t ldw) const {
        if (left)
            apply_left(adjoined, n, c, ldc, w, ldw);
        else
            apply_right(adjoined, m, c, ldc, w, ldw);
    }
    void apply(bool left, bool adjoined, index_t m, index_t n, T *c, index_t ldc, T *w) const {
        apply(left, adjoined, m, n, c, ldc, w, left ? n : m);
    }
};

// k reflectors of order m in columns ('C') or rows ('R') of an array; forward, their tips on the
// first rows of V, backward on the last. Rows hold V^H.
template <class T>
block_reflector<T> stored_reflectors(bool forward, bool by_columns, index_t m, index_t k,
                                     const T *v, index_t ldv, const T *t, index_t ldt) {
    factor<T> all = {v, ldv, !by_columns, !by_columns};
    const index_t tip_row = forward ? 0 : m - k, rest_row = forward ? k : 0;
    factor<T> tip = part_of(all, tip_row, 0);
    tip.kind = structure::triangular;
    tip.upper = forward != by_columns;
    tip.unit = true;
    return {k,
            tip,
            tip_row,
            part_of(all, rest_row, 0),
            rest_row,
            m - k,
            blas::triangle(forward ? 'U' : 'L', 'N', 'N', t, ldt)};
}

// V is an array of its own, with its ones and zeros.
template <class T>
block_reflector<T> plain_reflectors(index_t m, index_t k, const T *v, index_t ldv, const T *t,
                                    index_t ldt) {
    return {k, {}, 0, {v, ldv}, 0, m, blas::triangle('U', 'N', 'N', t, ldt)};
}

} // namespace vox::lapack
