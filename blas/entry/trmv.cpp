// trmv.cpp - ?trmv, ?tbmv, ?tpmv and ?trsv, ?tbsv, ?tpsv in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/triangular.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level2.hpp"
#include "serv/dispatch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

constexpr auto check_full = [](auto uplo, auto trans, auto diag, auto n, auto, auto lda, auto,
                               auto incx) VOX_INLINED {
    return errchk::trmv(errchk::bad_uplo(uplo), errchk::bad_trans(trans), errchk::bad_diag(diag),
                        *n, *lda, *incx);
};
constexpr auto check_band = [](auto uplo, auto trans, auto diag, auto n, auto k, auto, auto lda,
                               auto, auto incx) VOX_INLINED {
    return errchk::tbmv(errchk::bad_uplo(uplo), errchk::bad_trans(trans), errchk::bad_diag(diag),
                        *n, *k, *lda, *incx);
};
constexpr auto check_packed = [](auto uplo, auto trans, auto diag, auto n, auto, auto,
                                 auto incx) VOX_INLINED {
    return errchk::tpmv(errchk::bad_uplo(uplo), errchk::bad_trans(trans), errchk::bad_diag(diag),
                        *n, *incx);
};

// Operation 'R' is the conjugate without transposition.
[[gnu::always_inline]] inline triangular::options options_of(const char *uplo, const char *trans,
                                                             const char *diag) {
    return {errchk::is(uplo, 'u'), errchk::is(trans, 't') || errchk::is(trans, 'c'),
            errchk::is(trans, 'c') || errchk::is(trans, 'r'), errchk::is(diag, 'u')};
}

// Kernel: of the operation on a triangle; Product: of the product with what lies beside it.
template <bool solve, class Kernel, class Product>
constexpr auto full = [](auto uplo, auto trans, auto diag, index_t n, auto a, index_t lda, auto x,
                         index_t incx) VOX_INLINED {
    const triangular::options o = options_of(uplo, trans, diag);
    if (n > 0)
        triangular::run(Kernel(), Product(), solve, o, full_triangle(o.upper, a, lda), n, x, incx);
};
template <bool solve, class Kernel, class Product>
constexpr auto banded = [](auto uplo, auto trans, auto diag, index_t n, index_t k, auto a,
                           index_t lda, auto x, index_t incx) VOX_INLINED {
    const triangular::options o = options_of(uplo, trans, diag);
    if (n > 0)
        triangular::run(Kernel(), Product(), solve, o, band_triangle(o.upper, a, lda, k), n, x,
                        incx);
};
template <bool solve, class Kernel, class Product>
constexpr auto packed = [](auto uplo, auto trans, auto diag, index_t n, auto ap, auto x,
                           index_t incx) VOX_INLINED {
    const triangular::options o = options_of(uplo, trans, diag);
    if (n > 0)
        triangular::run(Kernel(), Product(), solve, o, packed_triangle(o.upper, ap, n), n, x, incx);
};

template <class T, class Target>
void c_full(const char *name, const Target &target, CBLAS_LAYOUT layout, CBLAS_UPLO stored,
            CBLAS_TRANSPOSE trans_a, CBLAS_DIAG unit, const vox_int n, const T *a,
            const vox_int lda, T *x, const vox_int incx) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2), trans = call.trans<T>(trans_a, 3);
    const char diag = call.diag(unit, 4);
    if (call.good(errchk::trmv(false, false, false, n, lda, incx)) && n > 0)
        target(trans != 'R', &uplo, &trans, &diag, &n, a, &lda, x, &incx);
}
template <class T, class Target>
void c_banded(const char *name, const Target &target, CBLAS_LAYOUT layout, CBLAS_UPLO stored,
              CBLAS_TRANSPOSE trans_a, CBLAS_DIAG unit, const vox_int n, const vox_int k,
              const T *a, const vox_int lda, T *x, const vox_int incx) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2), trans = call.trans<T>(trans_a, 3);
    const char diag = call.diag(unit, 4);
    if (call.good(errchk::tbmv(false, false, false, n, k, lda, incx)) && n > 0)
        target(trans != 'R', &uplo, &trans, &diag, &n, &k, a, &lda, x, &incx);
}
template <class T, class Target>
void c_packed(const char *name, const Target &target, CBLAS_LAYOUT layout, CBLAS_UPLO stored,
              CBLAS_TRANSPOSE trans_a, CBLAS_DIAG unit, const vox_int n, const T *ap, T *x,
              const vox_int incx) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2), trans = call.trans<T>(trans_a, 3);
    const char diag = call.diag(unit, 4);
    if (call.good(errchk::tpmv(false, false, false, n, incx)) && n > 0)
        target(trans != 'R', &uplo, &trans, &diag, &n, ap, x, &incx);
}

} // namespace

// The six routines of a precision: p and P its letters, op and OP the end of their names, solve
// whether they do.
#define ROUTINES(p, P, T, op, OP, solve)                                                           \
    static constexpr auto p##tr##op##_driver = full<solve, x##p##tr##op##_dispatch, p##product>;   \
    static constexpr auto p##tb##op##_driver = banded<solve, x##p##tr##op##_dispatch, p##product>; \
    static constexpr auto p##tp##op##_driver = packed<solve, x##p##tr##op##_dispatch, p##product>; \
    VOX_BLAS_CHECKED_ROUTINE(p##tr##op, P##TR##OP, VOX_TRMV_PARAMETERS(T, vox_int),                \
                             VOX_TRMV_PARAMETERS(T, vox::index_t), VOX_TRMV_ARGUMENTS, check_full, \
                             p##tr##op##_driver)                                                   \
    VOX_BLAS_CHECKED_ROUTINE(p##tb##op, P##TB##OP, VOX_TBMV_PARAMETERS(T, vox_int),                \
                             VOX_TBMV_PARAMETERS(T, vox::index_t), VOX_TBMV_ARGUMENTS, check_band, \
                             p##tb##op##_driver)                                                   \
    VOX_BLAS_CHECKED_ROUTINE(p##tp##op, P##TP##OP, VOX_TPMV_PARAMETERS(T, vox_int),                \
                             VOX_TPMV_PARAMETERS(T, vox::index_t), VOX_TPMV_ARGUMENTS,             \
                             check_packed, p##tp##op##_driver)                                     \
    extern "C" void cblas_##p##tr##op(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, \
                                      CBLAS_DIAG diag, const vox_int n, vox::c_in<T> a,            \
                                      const vox_int lda, vox::c_out<T> x, const vox_int incx) {    \
        c_full<T>("cblas_" #p "tr" #op, vox::c_target{#P "TR" #OP, p##tr##op, p##tr##op##_driver}, \
                  layout, uplo, trans, diag, n, vox::in<T>(a), lda, vox::out<T>(x), incx);         \
    }                                                                                              \
    extern "C" void cblas_##p##tb##op(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, \
                                      CBLAS_DIAG diag, const vox_int n, const vox_int k,           \
                                      vox::c_in<T> a, const vox_int lda, vox::c_out<T> x,          \
                                      const vox_int incx) {                                        \
        c_banded<T>("cblas_" #p "tb" #op,                                                          \
                    vox::c_target{#P "TB" #OP, p##tb##op, p##tb##op##_driver}, layout, uplo,       \
                    trans, diag, n, k, vox::in<T>(a), lda, vox::out<T>(x), incx);                  \
    }                                                                                              \
    extern "C" void cblas_##p##tp##op(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans, \
                                      CBLAS_DIAG diag, const vox_int n, vox::c_in<T> ap,           \
                                      vox::c_out<T> x, const vox_int incx) {                       \
        c_packed<T>("cblas_" #p "tp" #op,                                                          \
                    vox::c_target{#P "TP" #OP, p##tp##op, p##tp##op##_driver}, layout, uplo,       \
                    trans, diag, n, vox::in<T>(ap), vox::out<T>(x), incx);                         \
    }

#define TRIANGULAR(p, P, T)                                                                        \
    VOX_DISPATCH(blas, p##trmv, void, (const vox::triangular_job<T> *job), (job))                  \
    VOX_DISPATCH(blas, p##trsv, void, (const vox::triangular_job<T> *job), (job))                  \
    namespace {                                                                                    \
    struct p##product {                                                                            \
        void operator()(const vox::product_job<T> *job) const { vox_blas_x##p##gemv(job); }        \
    };                                                                                             \
    }                                                                                              \
    ROUTINES(p, P, T, mv, MV, false)                                                               \
    ROUTINES(p, P, T, sv, SV, true)
VOX_PRECISIONS(TRIANGULAR)
