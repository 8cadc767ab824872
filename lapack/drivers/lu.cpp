// lu.cpp - LU factorisation with partial pivoting by recursion on the columns, and solutions from it.
//
// The left half is factored, its interchanges are made in the right half, which becomes L^-1 times
// itself above and less a product below, and what remains is factored. So all but panels of a few
// columns is a product, or the solution with a triangle, of matrices as square as they come: Toledo,
// "Locality of reference in LU decomposition with partial pivoting", SIAM J. Matrix Anal. Appl. 18(4),
// 1997; Gustavson, IBM J. Res. Dev. 41(6), 1997.
#include "lapack/drivers/lu.hpp"

#include "lapack/blas.hpp"
#include "lapack/drivers/laswp.hpp"
#include "lapack/drivers/one_thread.hpp"
#include "lapack/drivers/triangular.hpp"
#include "lapack/panel.hpp"
#include "serv/dispatch.hpp"

#define GETF2(p, P, T)                                                                             \
    VOX_DISPATCH(lapack, p##getf2, vox::index_t,                                                   \
                 (vox::index_t m, vox::index_t n, T * a, vox::index_t lda, vox::index_t * ipiv),   \
                 (m, n, a, lda, ipiv))                                                             \
    static inline vox::index_t factor_panel(vox::index_t m, vox::index_t n, T *a,                  \
                                            vox::index_t lda, vox::index_t *ipiv) {                \
        return x##p##getf2(m, n, a, lda, ipiv);                                                    \
    }
VOX_PRECISIONS(GETF2)

namespace vox::lapack {
namespace {

// The columns on the left: whole panels, about half.
index_t left_columns(index_t n) {
    return n <= 2 * panel_width ? (n + 1) / 2
                                : (n / 2 + panel_width - 1) / panel_width * panel_width;
}

// Small real matrices are single panels; complex ones of that order are faster in halves.
template <class T>
constexpr index_t whole_order = is_complex<T> ? panel_width : widest_panel;

template <class T>
index_t factor_columns(index_t m, index_t n, T *a, index_t lda, index_t *ipiv) {
    const index_t steps = m < n ? m : n;
    if (n <= panel_width || (m <= whole_order<T> && n <= whole_order<T>))
        return factor_panel(m, n, a, lda, ipiv);
    const index_t left = steps <= panel_width ? steps : left_columns(steps), right = n - left;
    T *const above = a + left * lda, *const below = above + left;
    const index_t info = factor_columns(m, left, a, lda, ipiv);
    laswp(right, above, lda, 1, left, ipiv, 1);
    blas::trsm('L', 'L', 'N', 'U', left, right, one<T>, a, lda, above, lda);
    if (left == steps)
        return info;
    blas::gemm('N', 'N', m - left, right, left, -one<T>, a + left, lda, above, lda, one<T>, below,
               lda);
    const index_t rest = factor_columns(m - left, right, below, lda, ipiv + left);
    for (index_t i = left; i < steps; ++i)
        ipiv[i] += left;
    laswp(left, a, lda, left + 1, steps, ipiv, 1);
    return info ? info : rest ? rest + left : 0;
}

} // namespace

template <class T>
index_t getrf(index_t m, index_t n, T *a, index_t lda, index_t *ipiv) {
    if (m <= 0 || n <= 0)
        return 0;
    const one_thread scope(worth_one_thread(2.0 * double(m) * double(n) * double(m < n ? m : n)));
    return factor_columns(m, n, a, lda, ipiv);
}

template <class T>
index_t getrs(char trans, index_t n, index_t nrhs, const T *a, index_t lda, const index_t *ipiv,
              T *b, index_t ldb) {
    if (n <= 0 || nrhs <= 0)
        return 0;
    const auto solve = [&](char uplo, char diag) {
        solve_triangle(uplo, trans, diag, n, nrhs, a, lda, b, ldb);
    };
    if (trans == 'N') {
        laswp(nrhs, b, ldb, 1, n, ipiv, 1);
        solve('L', 'U');
        solve('U', 'N');
    } else {
        solve('U', 'N');
        solve('L', 'U');
        laswp(nrhs, b, ldb, 1, n, ipiv, -1);
    }
    return 0;
}

template <class T>
index_t gesv(index_t n, index_t nrhs, T *a, index_t lda, index_t *ipiv, T *b, index_t ldb) {
    const index_t info = getrf(n, n, a, lda, ipiv);
    return info ? info : getrs('N', n, nrhs, a, lda, ipiv, b, ldb);
}

#define INSTANCES(p, P, T)                                                                         \
    template index_t getrf<T>(index_t, index_t, T *, index_t, index_t *);                          \
    template index_t getrs<T>(char, index_t, index_t, const T *, index_t, const index_t *, T *,    \
                              index_t);                                                            \
    template index_t gesv<T>(index_t, index_t, T *, index_t, index_t *, T *, index_t);
VOX_PRECISIONS(INSTANCES)

} // namespace vox::lapack
