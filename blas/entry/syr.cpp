// syr.cpp - ?syr, ?spr, ?syr2, ?spr2 and ?her, ?hpr, ?her2, ?hpr2 in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/update.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level2.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

constexpr auto check_syr =
    [](auto uplo, auto n, auto, auto, auto incx, auto, auto lda)
        VOX_INLINED { return errchk::syr(errchk::bad_uplo(uplo), *n, *incx, *lda); };
constexpr auto check_spr = [](auto uplo, auto n, auto, auto, auto incx, auto) VOX_INLINED {
    return errchk::spr(errchk::bad_uplo(uplo), *n, *incx);
};
constexpr auto check_syr2 =
    [](auto uplo, auto n, auto, auto, auto incx, auto, auto incy, auto, auto lda)
        VOX_INLINED { return errchk::syr2(errchk::bad_uplo(uplo), *n, *incx, *incy, *lda); };
constexpr auto check_spr2 =
    [](auto uplo, auto n, auto, auto, auto incx, auto, auto incy, auto)
        VOX_INLINED { return errchk::spr2(errchk::bad_uplo(uplo), *n, *incx, *incy); };

// Symmetric, Hermitian, or Hermitian with the vectors conjugated, which the C forms need for
// row-major matrices.
enum class kind { symmetric, hermitian, row_major };

// The alpha of a Hermitian update of rank one, which is real, as an element.
template <class T, class S>
T complete(const T *, S alpha) {
    return make<T>(real(alpha), imag(alpha));
}

// Of rank one with x for y. With conjugated vectors, conj(y) conj(x)^H is the transpose of x y^H.
template <kind k, class T, class Kernel>
[[gnu::always_inline]] inline void update_triangle(Kernel kernel, bool upper, columns<T> a,
                                                   index_t n, T alpha, int rank, const T *x,
                                                   index_t incx, const T *y, index_t incy) {
    if (n == 0 || is_zero(alpha))
        return;
    constexpr bool conjugate = k == kind::row_major;
    update_job<T> job = {a,
                         upper ? update_job<T>::upper : update_job<T>::lower,
                         k != kind::symmetric,
                         rank == 2,
                         0,
                         n,
                         0,
                         n,
                         alpha};
    const strided<const T> v(x, n, incx, conjugate), w(y, n, incy, conjugate);
    update::run<T>(kernel, job, conjugate ? update::vectors<T>{w, v} : update::vectors<T>{v, w},
                   n * n / 2);
}

template <kind k, class Kernel>
constexpr auto syr =
    [](auto uplo, index_t n, auto alpha, auto x, index_t incx, auto a, index_t lda) VOX_INLINED {
        const bool upper = errchk::is(uplo, 'u');
        update_triangle<k>(Kernel(), upper, full_triangle(upper, a, lda), n, complete(x, *alpha), 1,
                           x, incx, x, incx);
    };
template <kind k, class Kernel>
constexpr auto spr =
    [](auto uplo, index_t n, auto alpha, auto x, index_t incx, auto ap) VOX_INLINED {
        const bool upper = errchk::is(uplo, 'u');
        update_triangle<k>(Kernel(), upper, packed_triangle(upper, ap, n), n, complete(x, *alpha),
                           1, x, incx, x, incx);
    };
template <kind k, class Kernel>
constexpr auto syr2 = [](auto uplo, index_t n, auto alpha, auto x, index_t incx, auto y,
                         index_t incy, auto a, index_t lda) VOX_INLINED {
    const bool upper = errchk::is(uplo, 'u');
    update_triangle<k>(Kernel(), upper, full_triangle(upper, a, lda), n, *alpha, 2, x, incx, y,
                       incy);
};
template <kind k, class Kernel>
constexpr auto spr2 = [](auto uplo, index_t n, auto alpha, auto x, index_t incx, auto y,
                         index_t incy, auto ap) VOX_INLINED {
    const bool upper = errchk::is(uplo, 'u');
    update_triangle<k>(Kernel(), upper, packed_triangle(upper, ap, n), n, *alpha, 2, x, incx, y,
                       incy);
};

// The C forms differ in their arguments after n; `rule` gives the first bad one of the whole call.
template <class T, class Target, class... A>
void c_update(const char *name, bool hermitian, const Target &target, CBLAS_LAYOUT layout,
              CBLAS_UPLO stored, int rule, const vox_int *n, bool nothing, A... arguments) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2);
    if (call.good(rule) && *n > 0 && !nothing)
        target(!(hermitian && call.row_major()), &uplo, n, arguments...);
}

} // namespace

// The four routines of a precision: ?xy r, ?xp r, ... with x either sy and sp, or he and hp. S: the
// type of alpha in updates of rank one.
#define ROUTINES(p, T, S, syr_, SYR_, spr_, SPR_, kind_)                                           \
    static constexpr auto syr_##_driver = syr<kind::kind_, p##kernel>;                             \
    static constexpr auto spr_##_driver = spr<kind::kind_, p##kernel>;                             \
    VOX_BLAS_CHECKED_ROUTINE(syr_, SYR_, VOX_SYR_PARAMETERS(T, S, vox_int),                        \
                             VOX_SYR_PARAMETERS(T, S, vox::index_t), VOX_SYR_ARGUMENTS, check_syr, \
                             syr_##_driver)                                                        \
    VOX_BLAS_CHECKED_ROUTINE(spr_, SPR_, VOX_SPR_PARAMETERS(T, S, vox_int),                        \
                             VOX_SPR_PARAMETERS(T, S, vox::index_t), VOX_SPR_ARGUMENTS, check_spr, \
                             spr_##_driver)
#define ROUTINES_2(p, T, syr2_, SYR2_, spr2_, SPR2_, kind_)                                        \
    static constexpr auto syr2_##_driver = syr2<kind::kind_, p##kernel>;                           \
    static constexpr auto spr2_##_driver = spr2<kind::kind_, p##kernel>;                           \
    VOX_BLAS_CHECKED_ROUTINE(syr2_, SYR2_, VOX_SYR2_PARAMETERS(T, vox_int),                        \
                             VOX_SYR2_PARAMETERS(T, vox::index_t), VOX_SYR2_ARGUMENTS, check_syr2, \
                             syr2_##_driver)                                                       \
    VOX_BLAS_CHECKED_ROUTINE(spr2_, SPR2_, VOX_SPR2_PARAMETERS(T, vox_int),                        \
                             VOX_SPR2_PARAMETERS(T, vox::index_t), VOX_SPR2_ARGUMENTS, check_spr2, \
                             spr2_##_driver)

#define C_SYR(T, S, lower, UPPER, hermitian, beyond)                                               \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, const vox_int n, S alpha,  \
                                  vox::c_in<T> x, const vox_int incx, vox::c_out<T> a,             \
                                  const vox_int lda) {                                             \
        c_update<T>("cblas_" #lower, hermitian, vox::c_target{#UPPER, lower, beyond}, layout,      \
                    uplo, vox::errchk::syr(false, n, incx, lda), &n, alpha == 0, &alpha,           \
                    vox::in<T>(x), &incx, vox::out<T>(a), &lda);                                   \
    }
#define C_SPR(T, S, lower, UPPER, hermitian, beyond)                                               \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, const vox_int n, S alpha,  \
                                  vox::c_in<T> x, const vox_int incx, vox::c_out<T> ap) {          \
        c_update<T>("cblas_" #lower, hermitian, vox::c_target{#UPPER, lower, beyond}, layout,      \
                    uplo, vox::errchk::spr(false, n, incx), &n, alpha == 0, &alpha, vox::in<T>(x), \
                    &incx, vox::out<T>(ap));                                                       \
    }
#define C_SYR2(T, lower, UPPER, hermitian, beyond)                                                 \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, const vox_int n,           \
                                  vox::c_scalar<T> alpha, vox::c_in<T> x, const vox_int incx,      \
                                  vox::c_in<T> y, const vox_int incy, vox::c_out<T> a,             \
                                  const vox_int lda) {                                             \
        const T *const factor = vox::scalar<T>(alpha);                                             \
        c_update<T>("cblas_" #lower, hermitian, vox::c_target{#UPPER, lower, beyond}, layout,      \
                    uplo, vox::errchk::syr2(false, n, incx, incy, lda), &n,                        \
                    n > 0 && vox::is_zero(*factor), factor, vox::in<T>(x), &incx, vox::in<T>(y),   \
                    &incy, vox::out<T>(a), &lda);                                                  \
    }
#define C_SPR2(T, lower, UPPER, hermitian, beyond)                                                 \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, const vox_int n,           \
                                  vox::c_scalar<T> alpha, vox::c_in<T> x, const vox_int incx,      \
                                  vox::c_in<T> y, const vox_int incy, vox::c_out<T> ap) {          \
        const T *const factor = vox::scalar<T>(alpha);                                             \
        c_update<T>("cblas_" #lower, hermitian, vox::c_target{#UPPER, lower, beyond}, layout,      \
                    uplo, vox::errchk::spr2(false, n, incx, incy), &n,                             \
                    n > 0 && vox::is_zero(*factor), factor, vox::in<T>(x), &incx, vox::in<T>(y),   \
                    &incy, vox::out<T>(ap));                                                       \
    }

#define KERNEL(p, P, T)                                                                            \
    namespace {                                                                                    \
    struct p##kernel {                                                                             \
        void operator()(const vox::update_job<T> *job) const { vox_blas_x##p##ger(job); }          \
    };                                                                                             \
    }
VOX_PRECISIONS(KERNEL)

#define REAL(p, P, T)                                                                              \
    ROUTINES(p, T, T, p##syr, P##SYR, p##spr, P##SPR, symmetric)                                   \
    ROUTINES_2(p, T, p##syr2, P##SYR2, p##spr2, P##SPR2, symmetric)                                \
    C_SYR(T, T, p##syr, P##SYR, false, p##syr_driver)                                              \
    C_SPR(T, T, p##spr, P##SPR, false, p##spr_driver)                                              \
    C_SYR2(T, p##syr2, P##SYR2, false, p##syr2_driver)                                             \
    C_SPR2(T, p##spr2, P##SPR2, false, p##spr2_driver)
VOX_REAL_PRECISIONS(REAL)

#define COMPLEX(p, P, T)                                                                           \
    ROUTINES(p, T, T, p##syr, P##SYR, p##spr, P##SPR, symmetric)                                   \
    ROUTINES(p, T, vox::real_of<T>, p##her, P##HER, p##hpr, P##HPR, hermitian)                     \
    ROUTINES_2(p, T, p##her2, P##HER2, p##hpr2, P##HPR2, hermitian)                                \
    C_SYR(T, vox::real_of<T>, p##her, P##HER, true, (syr<kind::row_major, p##kernel>))             \
    C_SPR(T, vox::real_of<T>, p##hpr, P##HPR, true, (spr<kind::row_major, p##kernel>))             \
    C_SYR2(T, p##her2, P##HER2, true, (syr2<kind::row_major, p##kernel>))                          \
    C_SPR2(T, p##hpr2, P##HPR2, true, (spr2<kind::row_major, p##kernel>))
VOX_COMPLEX_PRECISIONS(COMPLEX)
