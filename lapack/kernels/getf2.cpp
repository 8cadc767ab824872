// getf2.cpp - the LU factorisation of a panel of a few columns, the bottom of the recursive one.
#include "lapack/kernels/long_panel.hpp"
#include "lapack/kernels/short_panel.hpp"

namespace {

template <class T>
VOX_INLINE index_t factor(index_t m, index_t n, T *a, index_t lda, index_t *ipiv) {
    constexpr int third = short_vectors / 3;
    constexpr index_t rows = third * lanes<real_of<T>> / parts<T>;
    if (m <= rows)
        return factor_short<third>(m, n, a, lda, ipiv);
    if (m <= 2 * rows)
        return factor_short<2 * third>(m, n, a, lda, ipiv);
    if (m <= 3 * rows)
        return factor_short<3 * third>(m, n, a, lda, ipiv);
    return factor_long(m, n, a, lda, ipiv);
}

} // namespace

#define GETF2(p, P, T)                                                                             \
    extern "C" index_t VOX_KERNEL(lapack, p##getf2)(index_t m, index_t n, T * a, index_t lda,      \
                                                    index_t * ipiv) {                              \
        return factor(m, n, a, lda, ipiv);                                                         \
    }
VOX_PRECISIONS(GETF2)
