// lu.cpp - the forms of LU factorisation and what is done with it.
#include "lapack/drivers/lu.hpp"
#include "lapack/drivers/laswp.hpp"
#include "lapack/entry/forms.hpp"

namespace vox::lapack {

namespace {

// What ?laswp reads of its pivots, and the rows that it touches.
index_t pivots_read(index_t k1, index_t k2, index_t incx) {
    return incx == 0 || k2 < k1 ? 0 : k1 + (k2 - k1) * most(incx, -incx);
}
index_t rows_exchanged(index_t k1, index_t k2, const vox_int *ipiv, index_t incx) {
    index_t rows = most(k2, 0);
    for (index_t i = k1 - 1, end = pivots_read(k1, k2, incx); i < end; i += most(incx, -incx))
        rows = most(rows, ipiv[i]);
    return rows;
}

} // namespace

} // namespace vox::lapack

VOX_LAPACK(ALL, getrf, getrf, GETRF, size(m), size(n), inout(a, lda, m, n),
           pivots_out(ipiv, least(m, n)))
VOX_LAPACK(ALL, getrf, getf2, GETF2, size(m), size(n), inout(a, lda, m, n),
           pivots_out(ipiv, least(m, n)))
VOX_LAPACK(ALL, getrf, getrf2, GETRF2, size(m), size(n), inout(a, lda, m, n),
           pivots_out(ipiv, least(m, n)))
VOX_LAPACK(ALL, getrs, getrs, GETRS, option(trans, "NTC"), size(n), size(nrhs), in(a, lda, n, n),
           pivots_in(ipiv, n), inout(b, ldb, n, nrhs))
VOX_LAPACK(ALL, gesv, gesv, GESV, size(n), size(nrhs), inout(a, lda, n, n), pivots_out(ipiv, n),
           inout(b, ldb, n, nrhs))
VOX_LAPACK(ALL, getri, getri, GETRI, size(n), inout(a, lda, n, n), pivots_in(ipiv, n),
           queried(work, lwork, most(1, n)))
VOX_LAPACK_QUIET(ALL, laswp, laswp, LASWP, integer_in(n),
                 inout(a, lda, rows_exchanged(k1, k2, ipiv, incx), n), integer_in(k1),
                 integer_in(k2), pivots_in(ipiv, pivots_read(k1, k2, incx)), integer_in(incx))
