// symv.cpp - ?symv, ?sbmv, ?spmv, ?hemv, ?hbmv, ?hpmv in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/symmetric.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level2.hpp"
#include "serv/dispatch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

constexpr auto check_symv =
    [](auto uplo, auto n, auto, auto, auto lda, auto, auto incx, auto, auto, auto incy)
        VOX_INLINED { return errchk::symv(errchk::bad_uplo(uplo), *n, *lda, *incx, *incy); };
constexpr auto check_sbmv =
    [](auto uplo, auto n, auto k, auto, auto, auto lda, auto, auto incx, auto, auto, auto incy)
        VOX_INLINED { return errchk::sbmv(errchk::bad_uplo(uplo), *n, *k, *lda, *incx, *incy); };
constexpr auto check_spmv =
    [](auto uplo, auto n, auto, auto, auto, auto incx, auto, auto, auto incy)
        VOX_INLINED { return errchk::spmv(errchk::bad_uplo(uplo), *n, *incx, *incy); };

template <class T>
bool nothing_to_do(index_t n, const T *alpha, const T *beta) {
    return n == 0 || (is_zero(*alpha) && *beta == one<T>);
}

// What a routine does with the triangle that is stored: mirror it, mirror its conjugate, or, for the
// C forms of Hermitian routines on row-major matrices, the latter for the conjugate matrix.
enum class mirror { plain, hermitian, hermitian_conjugate };

template <class T, class Kernel>
[[gnu::always_inline]] inline void
multiply(Kernel kernel, mirror kind, bool upper, columns<const T> a, index_t n, index_t stored,
         const T *alpha, const T *x, index_t incx, const T *beta, T *y, index_t incy) {
    if (nothing_to_do(n, alpha, beta))
        return;
    const symmetric::options options = {upper, kind != mirror::plain,
                                        kind == mirror::hermitian_conjugate};
    symmetric::run<T>(kernel, options, a, n, stored, *alpha, {x, n, incx}, *beta, {y, n, incy});
}

template <mirror kind, class Kernel>
constexpr auto symv = [](auto uplo, index_t n, auto alpha, auto a, index_t lda, auto x,
                         index_t incx, auto beta, auto y, index_t incy) VOX_INLINED {
    const bool upper = errchk::is(uplo, 'u');
    multiply(Kernel(), kind, upper, full_triangle(upper, a, lda), n, n * n / 2, alpha, x, incx,
             beta, y, incy);
};
template <mirror kind, class Kernel>
constexpr auto sbmv = [](auto uplo, index_t n, index_t k, auto alpha, auto a, index_t lda, auto x,
                         index_t incx, auto beta, auto y, index_t incy) VOX_INLINED {
    const bool upper = errchk::is(uplo, 'u');
    multiply(Kernel(), kind, upper, band_triangle(upper, a, lda, k), n, n * (k < n ? k : n), alpha,
             x, incx, beta, y, incy);
};
template <mirror kind, class Kernel>
constexpr auto spmv = [](auto uplo, index_t n, auto alpha, auto ap, auto x, index_t incx, auto beta,
                         auto y, index_t incy) VOX_INLINED {
    const bool upper = errchk::is(uplo, 'u');
    multiply(Kernel(), kind, upper, packed_triangle(upper, ap, n), n, n * n / 2, alpha, x, incx,
             beta, y, incy);
};

template <class T, class Target>
void c_symv(const char *name, bool hermitian, const Target &target, CBLAS_LAYOUT layout,
            CBLAS_UPLO stored, const vox_int n, const T *alpha, const T *a, const vox_int lda,
            const T *x, const vox_int incx, const T *beta, T *y, const vox_int incy) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2);
    if (call.good(errchk::symv(false, n, lda, incx, incy)) && !nothing_to_do(n, alpha, beta))
        target(!(hermitian && call.row_major()), &uplo, &n, alpha, a, &lda, x, &incx, beta, y,
               &incy);
}
template <class T, class Target>
void c_sbmv(const char *name, bool hermitian, const Target &target, CBLAS_LAYOUT layout,
            CBLAS_UPLO stored, const vox_int n, const vox_int k, const T *alpha, const T *a,
            const vox_int lda, const T *x, const vox_int incx, const T *beta, T *y,
            const vox_int incy) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2);
    if (call.good(errchk::sbmv(false, n, k, lda, incx, incy)) && !nothing_to_do(n, alpha, beta))
        target(!(hermitian && call.row_major()), &uplo, &n, &k, alpha, a, &lda, x, &incx, beta, y,
               &incy);
}
template <class T, class Target>
void c_spmv(const char *name, bool hermitian, const Target &target, CBLAS_LAYOUT layout,
            CBLAS_UPLO stored, const vox_int n, const T *alpha, const T *ap, const T *x,
            const vox_int incx, const T *beta, T *y, const vox_int incy) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2);
    if (call.good(errchk::spmv(false, n, incx, incy)) && !nothing_to_do(n, alpha, beta))
        target(!(hermitian && call.row_major()), &uplo, &n, alpha, ap, x, &incx, beta, y, &incy);
}

} // namespace

#define DISPATCH(p, P, T)                                                                          \
    VOX_DISPATCH(blas, p##symv, void, (const vox::symmetric_job<T> *job), (job))
VOX_PRECISIONS(DISPATCH)

// full, banded, packed: the routines' names without the precision; kind: of their mirror image.
#define FORTRAN_FULL(p, T, lower, UPPER, kind)                                                     \
    static constexpr auto lower##_driver = symv<mirror::kind, x##p##symv_dispatch>;                \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_SYMV_PARAMETERS(T, vox_int),                        \
                             VOX_SYMV_PARAMETERS(T, vox::index_t), VOX_SYMV_ARGUMENTS, check_symv, \
                             lower##_driver)
#define FORTRAN_BAND(p, T, lower, UPPER, kind)                                                     \
    static constexpr auto lower##_driver = sbmv<mirror::kind, x##p##symv_dispatch>;                \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_SBMV_PARAMETERS(T, vox_int),                        \
                             VOX_SBMV_PARAMETERS(T, vox::index_t), VOX_SBMV_ARGUMENTS, check_sbmv, \
                             lower##_driver)
#define FORTRAN_PACKED(p, T, lower, UPPER, kind)                                                   \
    static constexpr auto lower##_driver = spmv<mirror::kind, x##p##symv_dispatch>;                \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_SPMV_PARAMETERS(T, vox_int),                        \
                             VOX_SPMV_PARAMETERS(T, vox::index_t), VOX_SPMV_ARGUMENTS, check_spmv, \
                             lower##_driver)

// beyond: the driver of a row-major call, where that is another one.
#define C_FULL(T, lower, UPPER, hermitian, beyond)                                                 \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, const vox_int n,           \
                                  vox::c_scalar<T> alpha, vox::c_in<T> a, const vox_int lda,       \
                                  vox::c_in<T> x, const vox_int incx, vox::c_scalar<T> beta,       \
                                  vox::c_out<T> y, const vox_int incy) {                           \
        c_symv<T>("cblas_" #lower, hermitian, vox::c_target{#UPPER, lower, beyond}, layout, uplo,  \
                  n, vox::scalar<T>(alpha), vox::in<T>(a), lda, vox::in<T>(x), incx,               \
                  vox::scalar<T>(beta), vox::out<T>(y), incy);                                     \
    }
#define C_BAND(T, lower, UPPER, hermitian, beyond)                                                 \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, const vox_int n,           \
                                  const vox_int k, vox::c_scalar<T> alpha, vox::c_in<T> a,         \
                                  const vox_int lda, vox::c_in<T> x, const vox_int incx,           \
                                  vox::c_scalar<T> beta, vox::c_out<T> y, const vox_int incy) {    \
        c_sbmv<T>("cblas_" #lower, hermitian, vox::c_target{#UPPER, lower, beyond}, layout, uplo,  \
                  n, k, vox::scalar<T>(alpha), vox::in<T>(a), lda, vox::in<T>(x), incx,            \
                  vox::scalar<T>(beta), vox::out<T>(y), incy);                                     \
    }
#define C_PACKED(T, lower, UPPER, hermitian, beyond)                                               \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, const vox_int n,           \
                                  vox::c_scalar<T> alpha, vox::c_in<T> ap, vox::c_in<T> x,         \
                                  const vox_int incx, vox::c_scalar<T> beta, vox::c_out<T> y,      \
                                  const vox_int incy) {                                            \
        c_spmv<T>("cblas_" #lower, hermitian, vox::c_target{#UPPER, lower, beyond}, layout, uplo,  \
                  n, vox::scalar<T>(alpha), vox::in<T>(ap), vox::in<T>(x), incx,                   \
                  vox::scalar<T>(beta), vox::out<T>(y), incy);                                     \
    }

#define REAL(p, P, T)                                                                              \
    FORTRAN_FULL(p, T, p##symv, P##SYMV, plain)                                                    \
    FORTRAN_BAND(p, T, p##sbmv, P##SBMV, plain)                                                    \
    FORTRAN_PACKED(p, T, p##spmv, P##SPMV, plain)                                                  \
    C_FULL(T, p##symv, P##SYMV, false, p##symv_driver)                                             \
    C_BAND(T, p##sbmv, P##SBMV, false, p##sbmv_driver)                                             \
    C_PACKED(T, p##spmv, P##SPMV, false, p##spmv_driver)
VOX_REAL_PRECISIONS(REAL)

#define ROW_MAJOR(p, form) form<mirror::hermitian_conjugate, x##p##symv_dispatch>
#define COMPLEX(p, P, T)                                                                           \
    FORTRAN_FULL(p, T, p##symv, P##SYMV, plain)                                                    \
    FORTRAN_PACKED(p, T, p##spmv, P##SPMV, plain)                                                  \
    FORTRAN_FULL(p, T, p##hemv, P##HEMV, hermitian)                                                \
    FORTRAN_BAND(p, T, p##hbmv, P##HBMV, hermitian)                                                \
    FORTRAN_PACKED(p, T, p##hpmv, P##HPMV, hermitian)                                              \
    C_FULL(T, p##hemv, P##HEMV, true, (ROW_MAJOR(p, symv)))                                        \
    C_BAND(T, p##hbmv, P##HBMV, true, (ROW_MAJOR(p, sbmv)))                                        \
    C_PACKED(T, p##hpmv, P##HPMV, true, (ROW_MAJOR(p, spmv)))
VOX_COMPLEX_PRECISIONS(COMPLEX)
