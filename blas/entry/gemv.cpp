// gemv.cpp - ?gemv and ?gbmv in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/product.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level2.hpp"
#include "serv/dispatch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

constexpr auto check_gemv = [](auto trans, auto m, auto n, auto, auto, auto lda, auto, auto incx,
                               auto, auto, auto incy) VOX_INLINED {
    return errchk::gemv(errchk::bad_trans(trans), *m, *n, *lda, *m, *incx, *incy);
};
constexpr auto check_gbmv = [](auto trans, auto m, auto n, auto kl, auto ku, auto, auto, auto lda,
                               auto, auto incx, auto, auto, auto incy) VOX_INLINED {
    return errchk::gbmv(errchk::bad_trans(trans), *m, *n, *kl, *ku, *lda, *incx, *incy);
};

template <class T>
bool nothing_to_do(index_t m, index_t n, const T *alpha, const T *beta) {
    return m == 0 || n == 0 || (is_zero(*alpha) && *beta == one<T>);
}

// Operation 'R' is the conjugate without transposition.
template <class T, class Kernel>
[[gnu::always_inline]] inline void
multiply(Kernel kernel, const char *trans, columns<const T> a, index_t m, index_t n, index_t stored,
         const T *alpha, const T *x, index_t incx, const T *beta, T *y, index_t incy) {
    if (nothing_to_do(m, n, alpha, beta))
        return;
    const bool transposed = errchk::is(trans, 't') || errchk::is(trans, 'c');
    const bool conjugate = errchk::is(trans, 'c') || errchk::is(trans, 'r');
    product_job<T> job = {a, transposed, conjugate, 0, m, 0, n, *alpha, *beta};
    product::run<T>(kernel, job, {x, transposed ? m : n, incx}, {y, transposed ? n : m, incy},
                    stored);
}

constexpr auto gemv = [](auto kernel, const char *trans, index_t m, index_t n, auto alpha, auto a,
                         index_t lda, auto x, index_t incx, auto beta, auto y,
                         index_t incy) VOX_INLINED {
    multiply(kernel, trans, columns<std::remove_pointer_t<decltype(a)>>{a, lda}, m, n, m * n, alpha,
             x, incx, beta, y, incy);
};
constexpr auto gbmv = [](auto kernel, const char *trans, index_t m, index_t n, index_t kl,
                         index_t ku, auto alpha, auto a, index_t lda, auto x, index_t incx,
                         auto beta, auto y, index_t incy) VOX_INLINED {
    const index_t width = kl + ku + 1;
    multiply(kernel, trans, band(a, lda, kl, ku), m, n, n * (width < m ? width : m), alpha, x, incx,
             beta, y, incy);
};

template <class T, class Target>
void c_gemv(const char *name, const Target &target, CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans_a,
            const vox_int m, const vox_int n, const T *alpha, const T *a, const vox_int lda,
            const T *x, const vox_int incx, const T *beta, T *y, const vox_int incy) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char trans = call.trans<T>(trans_a, 2);
    const bool row_major = call.row_major();
    if (!call.good(errchk::gemv(false, m, n, lda, row_major ? n : m, incx, incy)) ||
        nothing_to_do(m, n, alpha, beta))
        return;
    target(trans != 'R', &trans, row_major ? &n : &m, row_major ? &m : &n, alpha, a, &lda, x, &incx,
           beta, y, &incy);
}
template <class T, class Target>
void c_gbmv(const char *name, const Target &target, CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans_a,
            const vox_int m, const vox_int n, const vox_int kl, const vox_int ku, const T *alpha,
            const T *a, const vox_int lda, const T *x, const vox_int incx, const T *beta, T *y,
            const vox_int incy) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char trans = call.trans<T>(trans_a, 2);
    const bool row_major = call.row_major();
    if (!call.good(errchk::gbmv(false, m, n, kl, ku, lda, incx, incy)) ||
        nothing_to_do(m, n, alpha, beta))
        return;
    target(trans != 'R', &trans, row_major ? &n : &m, row_major ? &m : &n, row_major ? &ku : &kl,
           row_major ? &kl : &ku, alpha, a, &lda, x, &incx, beta, y, &incy);
}

} // namespace

#define GEMV(p, P, T)                                                                              \
    VOX_DISPATCH(blas, p##gemv, void, (const vox::product_job<T> *job), (job))                     \
    static constexpr auto p##gemv_driver = [](auto... a) VOX_INLINED { gemv(x##p##gemv, a...); };  \
    static constexpr auto p##gbmv_driver = [](auto... a) VOX_INLINED { gbmv(x##p##gemv, a...); };  \
    VOX_BLAS_CHECKED_ROUTINE(p##gemv, P##GEMV, VOX_GEMV_PARAMETERS(T, vox_int),                    \
                             VOX_GEMV_PARAMETERS(T, vox::index_t), VOX_GEMV_ARGUMENTS, check_gemv, \
                             p##gemv_driver)                                                       \
    VOX_BLAS_CHECKED_ROUTINE(p##gbmv, P##GBMV, VOX_GBMV_PARAMETERS(T, vox_int),                    \
                             VOX_GBMV_PARAMETERS(T, vox::index_t), VOX_GBMV_ARGUMENTS, check_gbmv, \
                             p##gbmv_driver)                                                       \
    extern "C" void cblas_##p##gemv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, const vox_int m,   \
                                    const vox_int n, vox::c_scalar<T> alpha, vox::c_in<T> a,       \
                                    const vox_int lda, vox::c_in<T> x, const vox_int incx,         \
                                    vox::c_scalar<T> beta, vox::c_out<T> y, const vox_int incy) {  \
        c_gemv<T>("cblas_" #p "gemv", vox::c_target{#P "GEMV", p##gemv, p##gemv_driver}, layout,   \
                  trans, m, n, vox::scalar<T>(alpha), vox::in<T>(a), lda, vox::in<T>(x), incx,     \
                  vox::scalar<T>(beta), vox::out<T>(y), incy);                                     \
    }                                                                                              \
    extern "C" void cblas_##p##gbmv(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans, const vox_int m,   \
                                    const vox_int n, const vox_int kl, const vox_int ku,           \
                                    vox::c_scalar<T> alpha, vox::c_in<T> a, const vox_int lda,     \
                                    vox::c_in<T> x, const vox_int incx, vox::c_scalar<T> beta,     \
                                    vox::c_out<T> y, const vox_int incy) {                         \
        c_gbmv<T>("cblas_" #p "gbmv", vox::c_target{#P "GBMV", p##gbmv, p##gbmv_driver}, layout,   \
                  trans, m, n, kl, ku, vox::scalar<T>(alpha), vox::in<T>(a), lda, vox::in<T>(x),   \
                  incx, vox::scalar<T>(beta), vox::out<T>(y), incy);                               \
    }
VOX_PRECISIONS(GEMV)
