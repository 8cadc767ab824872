// pivoted_qr.cpp - QR with column pivoting, half of it in level 3 (Quintana-Orti, Sun, Bischof, SIAM
// J. Sci. Comput. 19(5), 1998). Norms of columns are brought up to date, and computed anew where that
// would lose their digits (Drmac, Bujanovic, ACM TOMS 35(2), 2008).
#include "lapack/drivers/pivoted_qr.hpp"

#include <limits>

#include "lapack/drivers/block_reflector.hpp"
#include "lapack/drivers/householder.hpp"
#include "lapack/drivers/orthogonal.hpp"
#include "lapack/drivers/qr.hpp"
#include "lapack/drivers/reflections.hpp"
#include "lapack/drivers/workspace.hpp"
#include "serv/scratch.hpp"

namespace vox::lapack {
namespace {

// Columns at a time, and as few of them as are not worth it.
constexpr index_t block = 32, crossover = 64;

template <class T>
real_of<T> magnitude(T a) {
    if constexpr (is_complex<T>)
        return real_of<T>(__builtin_hypot(a.real, a.imag));
    else
        return __builtin_fabs(a);
}

// What is left to factor: columns that have been through `done` reflectors, and their norms.
template <class T>
struct remainder {
    using R = real_of<T>;
    index_t m, n; // rows of A, columns that are left
    index_t done;
    T *a; // the first of these columns, from A's first row on
    index_t lda;
    index_t *jpvt;
    T *tau;
    R *norms; // of rows `done` on
    R *exact; // norms when they were last computed

    static constexpr R stale = -1; // in norms: to be computed

    // Tells where the longest column from k on was, which is now column k.
    index_t pivot(index_t k) const {
        const index_t p = k + blas::iamax(n - k, norms + k, 1) - 1;
        if (p != k) {
            blas::swap(m, a + p * lda, 1, a + k * lda, 1);
            const index_t column = jpvt[p];
            jpvt[p] = jpvt[k];
            jpvt[k] = column;
            norms[p] = norms[k];
            exact[p] = exact[k];
        }
        return p;
    }

    // Row `row` is that of R now. False if some norm is to be computed.
    bool update_norms(index_t first, index_t row) const {
        const R tolerance = __builtin_sqrt(std::numeric_limits<R>::epsilon() / 2);
        bool all = true;
        for (index_t j = first; j < n; ++j) {
            if (norms[j] == 0)
                continue;
            const R ratio = magnitude(a[row + j * lda]) / norms[j];
            const R rest = (1 + ratio) * (1 - ratio), left = rest > 0 ? rest : 0;
            const R since = norms[j] / exact[j];
            if (left * since * since <= tolerance) {
                norms[j] = stale;
                all = false;
            } else {
                norms[j] *= R(__builtin_sqrt(left));
            }
        }
        return all;
    }
    void compute_norms(index_t first, index_t row) const {
        for (index_t j = first; j < n; ++j)
            if (norms[j] == stale)
                norms[j] = exact[j] = row < m ? blas::nrm2(m - row, a + row + j * lda, 1) : R(0);
    }

    // One column after the other.
    void factor() const {
        for (index_t k = 0; k < least(m - done, n); ++k) {
            const index_t row = done + k;
            pivot(k);
            T *const x = a + row + k * lda;
            larfg(m - row, x, x + (row + 1 < m), 1, tau + k);
            apply_reflectors(m - row, n - k - 1, 1, x, lda, tau + k, true, true, x + lda, lda);
            if (!update_norms(k + 1, row))
                compute_norms(k + 1, row + 1);
        }
    }

    // At most nb columns, until a norm has to be computed, which takes the columns themselves: these
    // are left as they were, and the products with reflectors that they lack gathered in F. Tells how
    // many. f: n x nb elements, w: nb.
    index_t factor_block(index_t nb, T *f, T *w) const {
        const index_t ldf = n, last_row = least(m, n + done) - 1;
        bool current = true;
        index_t k = 0;
        for (; k < nb && current; ++k) {
            const index_t row = done + k, below = m - row, right = n - k - 1;
            if (const index_t p = pivot(k); p != k)
                blas::swap(k, f + p, ldf, f + k, ldf);
            T *const x = a + row + k * lda, *const from = a + row; // column k, and all, from `row`
            const T minus = -one<T>;
            if (k > 0)
                blas::gemm('N', 'C', below, 1, k, minus, from, lda, f + k, ldf, one<T>, x, lda);
            larfg(below, x, x + (below > 1), 1, tau + k);
            const T beta = *x;
            *x = one<T>;
            T *const fk = f + k * ldf;
            if (right > 0)
                blas::gemv('C', below, right, tau[k], x + lda, lda, x, 1, T{}, fk + k + 1, 1);
            for (index_t j = 0; j <= k; ++j)
                fk[j] = T{};
            if (k > 0) {
                blas::gemv('C', below, k, -tau[k], from, lda, x, 1, T{}, w, 1);
                blas::gemv('N', n, k, one<T>, f, ldf, w, 1, one<T>, fk, 1);
            }
            if (right > 0)
                blas::gemm('N', 'C', 1, right, k + 1, minus, from, lda, f + k + 1, ldf, one<T>,
                           x + lda, lda);
            if (row < last_row)
                current = update_norms(k + 1, row);
            *x = beta;
        }
        const index_t row = done + k;
        if (k < least(n, m - done))
            blas::gemm('N', 'C', m - row, n - k, k, -one<T>, a + row, lda, f + k, ldf, one<T>,
                       a + row + k * lda, lda);
        if (!current)
            compute_norms(k, row);
        return k;
    }

    void skip(index_t k) {
        n -= k, done += k;
        a += k * lda, jpvt += k, tau += k, norms += k, exact += k;
    }
};

// Columns that are to stand in front go there; tells how many.
template <class T>
index_t place_fixed(index_t m, index_t n, T *a, index_t lda, index_t *jpvt) {
    index_t fixed = 0;
    for (index_t j = 0; j < n; ++j) {
        const bool front = jpvt[j] != 0;
        jpvt[j] = j + 1;
        if (!front)
            continue;
        if (j != fixed) {
            blas::swap(m, a + j * lda, 1, a + fixed * lda, 1);
            jpvt[j] = jpvt[fixed];
            jpvt[fixed] = j + 1;
        }
        ++fixed;
    }
    return fixed;
}

} // namespace

template <class T>
index_t geqp3(index_t m, index_t n, T *a, index_t lda, index_t *jpvt, T *tau, T *work,
              index_t lwork, real_of<T> *rwork) {
    const index_t k = least(m, n);
    const T optimum = work_size<T>((is_complex<T> ? 0 : 2 * n) + (n + 1) * block);
    if (lwork != -1) {
        const index_t fixed = place_fixed(m, n, a, lda, jpvt);
        const index_t front = least(m, fixed);
        if (front > 0) {
            geqrf(m, front, a, lda, tau, work, lwork);
            if (front < n)
                ormqr('L', 'C', m, n - front, front, a, lda, tau, a + front * lda, lda, work,
                      lwork);
        }
        if (fixed < k) {
            if constexpr (!is_complex<T>)
                rwork = work;
            remainder<T> rest = {m,
                                 n - fixed,
                                 fixed,
                                 a + fixed * lda,
                                 lda,
                                 jpvt + fixed,
                                 tau + fixed,
                                 rwork + fixed,
                                 rwork + n + fixed};
            for (index_t j = 0; j < rest.n; ++j)
                rest.norms[j] = rest.stale;
            rest.compute_norms(0, fixed);
            const scratch<T> memory(k - fixed > crossover ? (rest.n + 1) * block : 0);
            if (!memory.empty())
                while (k - rest.done > crossover)
                    rest.skip(
                        rest.factor_block(block, memory.data(), memory.data() + rest.n * block));
            rest.factor();
        }
    }
    *work = optimum;
    return 0;
}

#define INSTANCES(p, P, T)                                                                         \
    template index_t geqp3<T>(index_t, index_t, T *, index_t, index_t *, T *, T *, index_t,        \
                              real_of<T> *);
VOX_PRECISIONS(INSTANCES)
#undef INSTANCES

} // namespace vox::lapack
