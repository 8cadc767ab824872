// trmm.cpp - ?trmm and ?trsm in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/level3.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level3.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

constexpr auto check_trmm = [](auto side, auto uplo, auto trans, auto diag, auto m, auto n, auto,
                               auto, auto lda, auto, auto ldb) VOX_INLINED {
    return errchk::trmm(errchk::bad_side(side), errchk::bad_uplo(uplo), errchk::bad_trans(trans),
                        errchk::bad_diag(diag), *m, *n, *lda, errchk::is(side, 'l') ? *m : *n, *ldb,
                        *m);
};

template <bool solve>
constexpr auto trmm = [](auto side, auto uplo, auto trans, auto diag, index_t m, index_t n,
                         auto alpha, auto a, index_t lda, auto b, index_t ldb) VOX_INLINED {
    using T = std::remove_pointer_t<decltype(b)>;
    const triangle_product<T> job = {errchk::is(side, 'l'),
                                     m,
                                     n,
                                     *alpha,
                                     {a, lda, !errchk::is(trans, 'n'), errchk::is(trans, 'c'),
                                      structure::triangular, errchk::is(uplo, 'u'),
                                      errchk::is(diag, 'u')},
                                     b,
                                     ldb};
    if constexpr (solve)
        triangle_solve(job);
    else
        triangle_multiply(job);
};

// The transpose of a row-major B is multiplied by op(A)^T = op(A^T) on the other side, A^T being
// what is stored.
template <class T, class Fortran>
void c_trmm(const char *name, Fortran *fortran, CBLAS_LAYOUT layout, CBLAS_SIDE side_a,
            CBLAS_UPLO stored, CBLAS_TRANSPOSE trans_a, CBLAS_DIAG unit, const vox_int m,
            const vox_int n, const T *alpha, const T *a, const vox_int lda, T *b,
            const vox_int ldb) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char side = call.side(side_a, 2), uplo = call.uplo(stored, 3);
    const char trans = call.factor_trans(trans_a, 4), diag = call.diag(unit, 5);
    const vox_int &rows = call.row_major() ? n : m, &columns = call.row_major() ? m : n;
    if (call.good(errchk::trmm(false, false, false, false, m, n, lda, side == 'L' ? rows : columns,
                               ldb, rows)) &&
        m > 0 && n > 0)
        fortran(&side, &uplo, &trans, &diag, &rows, &columns, alpha, a, &lda, b, &ldb);
}

} // namespace

#define ROUTINE(T, lower, UPPER, solve)                                                            \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_TRMM_PARAMETERS(T, vox_int),                        \
                             VOX_TRMM_PARAMETERS(T, vox::index_t), VOX_TRMM_ARGUMENTS, check_trmm, \
                             trmm<solve>)                                                          \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo,           \
                                  CBLAS_TRANSPOSE trans, CBLAS_DIAG diag, const vox_int m,         \
                                  const vox_int n, vox::c_scalar<T> alpha, vox::c_in<T> a,         \
                                  const vox_int lda, vox::c_out<T> b, const vox_int ldb) {         \
        c_trmm<T>("cblas_" #lower, lower, layout, side, uplo, trans, diag, m, n,                   \
                  vox::scalar<T>(alpha), vox::in<T>(a), lda, vox::out<T>(b), ldb);                 \
    }
#define TRIANGULAR(p, P, T)                                                                        \
    ROUTINE(T, p##trmm, P##TRMM, false)                                                            \
    ROUTINE(T, p##trsm, P##TRSM, true)
VOX_PRECISIONS(TRIANGULAR)
