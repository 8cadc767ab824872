// symm.cpp - ?symm and ?hemm in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/level3.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level3.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

constexpr auto check_symm = [](auto side, auto uplo, auto m, auto n, auto, auto, auto lda, auto,
                               auto ldb, auto, auto, auto ldc) VOX_INLINED {
    return errchk::symm(errchk::bad_side(side), errchk::bad_uplo(uplo), *m, *n, *lda,
                        errchk::is(side, 'l') ? *m : *n, *ldb, *ldc, *m);
};

template <structure kind>
constexpr auto symm = [](auto side, auto uplo, index_t m, index_t n, auto alpha, auto a,
                         index_t lda, auto b, index_t ldb, auto beta, auto c,
                         index_t ldc) VOX_INLINED {
    using T = std::remove_pointer_t<decltype(c)>;
    const bool left = errchk::is(side, 'l');
    const factor<T> stored = {a, lda, false, false, kind, errchk::is(uplo, 'u')};
    const factor<T> other = {b, ldb};
    multiply<T>(
        {m, n, left ? m : n, *alpha, left ? stored : other, left ? other : stored, *beta, c, ldc});
};

// The transpose of a row-major C is B^T A on the other side, A^T being what is stored.
template <class T, class Fortran>
void c_symm(const char *name, Fortran *fortran, CBLAS_LAYOUT layout, CBLAS_SIDE side_a,
            CBLAS_UPLO stored, const vox_int m, const vox_int n, const T *alpha, const T *a,
            const vox_int lda, const T *b, const vox_int ldb, const T *beta, T *c,
            const vox_int ldc) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char side = call.side(side_a, 2), uplo = call.uplo(stored, 3);
    const vox_int &rows = call.row_major() ? n : m, &columns = call.row_major() ? m : n;
    if (!call.good(
            errchk::symm(false, false, m, n, lda, side == 'L' ? rows : columns, ldb, ldc, rows)) ||
        m == 0 || n == 0 || (is_zero(*alpha) && *beta == one<T>))
        return;
    fortran(&side, &uplo, &rows, &columns, alpha, a, &lda, b, &ldb, beta, c, &ldc);
}

} // namespace

#define ROUTINE(T, lower, UPPER, kind)                                                             \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_SYMM_PARAMETERS(T, vox_int),                        \
                             VOX_SYMM_PARAMETERS(T, vox::index_t), VOX_SYMM_ARGUMENTS, check_symm, \
                             symm<structure::kind>)                                                \
    extern "C" void cblas_##lower(                                                                 \
        CBLAS_LAYOUT layout, CBLAS_SIDE side, CBLAS_UPLO uplo, const vox_int m, const vox_int n,   \
        vox::c_scalar<T> alpha, vox::c_in<T> a, const vox_int lda, vox::c_in<T> b,                 \
        const vox_int ldb, vox::c_scalar<T> beta, vox::c_out<T> c, const vox_int ldc) {            \
        c_symm<T>("cblas_" #lower, lower, layout, side, uplo, m, n, vox::scalar<T>(alpha),         \
                  vox::in<T>(a), lda, vox::in<T>(b), ldb, vox::scalar<T>(beta), vox::out<T>(c),    \
                  ldc);                                                                            \
    }
#define SYMM(p, P, T) ROUTINE(T, p##symm, P##SYMM, symmetric)
#define HEMM(p, P, T) ROUTINE(T, p##hemm, P##HEMM, hermitian)
VOX_PRECISIONS(SYMM)
VOX_COMPLEX_PRECISIONS(HEMM)
