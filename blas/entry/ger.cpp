// ger.cpp - ?ger, ?geru, ?gerc in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/update.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level2.hpp"
#include "serv/dispatch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

constexpr auto check_ger =
    [](auto m, auto n, auto, auto, auto incx, auto, auto incy, auto, auto lda)
        VOX_INLINED { return errchk::ger(*m, *n, *incx, *incy, *lda, *m); };

template <class T>
bool nothing_to_do(index_t m, index_t n, const T *alpha) {
    return m == 0 || n == 0 || is_zero(*alpha);
}

// Which of the vectors is conjugated: x only in the C form of gerc on row-major matrices.
enum class conjugated { none, x, y };

template <conjugated which, class Kernel>
constexpr auto ger = [](index_t m, index_t n, auto alpha, auto x, index_t incx, auto y,
                        index_t incy, auto a, index_t lda) VOX_INLINED {
    using T = std::remove_pointer_t<decltype(a)>;
    if (nothing_to_do(m, n, alpha))
        return;
    update_job<T> job = {
        {a, lda}, update_job<T>::rectangle, which == conjugated::y, false, 0, m, 0, n, *alpha};
    const update::vectors<T> vectors = {{x, m, incx, which == conjugated::x}, {y, n, incy}};
    update::run<T>(Kernel(), job, vectors, m * n);
};

// The transpose of a row-major matrix gets y x^T.
template <class T, class Target>
void c_ger(const char *name, bool conjugate, const Target &target, CBLAS_LAYOUT layout,
           const vox_int m, const vox_int n, const T *alpha, const T *x, const vox_int incx,
           const T *y, const vox_int incy, T *a, const vox_int lda) {
    c_call call(name, layout);
    const bool row_major = call.row_major();
    if (!call.known() || !call.good(errchk::ger(m, n, incx, incy, lda, row_major ? n : m)) ||
        nothing_to_do(m, n, alpha))
        return;
    if (row_major)
        target(!conjugate, &n, &m, alpha, y, &incy, x, &incx, a, &lda);
    else
        target(true, &m, &n, alpha, x, &incx, y, &incy, a, &lda);
}

} // namespace

#define ROUTINE(p, T, lower, UPPER, which, row_major_which)                                        \
    static constexpr auto lower##_driver = ger<conjugated::which, x##p##ger_dispatch>;             \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_GER_PARAMETERS(T, vox_int),                         \
                             VOX_GER_PARAMETERS(T, vox::index_t), VOX_GER_ARGUMENTS, check_ger,    \
                             lower##_driver)                                                       \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, const vox_int m, const vox_int n,           \
                                  vox::c_scalar<T> alpha, vox::c_in<T> x, const vox_int incx,      \
                                  vox::c_in<T> y, const vox_int incy, vox::c_out<T> a,             \
                                  const vox_int lda) {                                             \
        constexpr auto row_major = ger<conjugated::row_major_which, x##p##ger_dispatch>;           \
        c_ger<T>("cblas_" #lower, conjugated::which != conjugated::none,                           \
                 vox::c_target{#UPPER, lower, row_major}, layout, m, n, vox::scalar<T>(alpha),     \
                 vox::in<T>(x), incx, vox::in<T>(y), incy, vox::out<T>(a), lda);                   \
    }
#define REAL(p, P, T)                                                                              \
    VOX_DISPATCH(blas, p##ger, void, (const vox::update_job<T> *job), (job))                       \
    ROUTINE(p, T, p##ger, P##GER, none, none)
#define COMPLEX(p, P, T)                                                                           \
    VOX_DISPATCH(blas, p##ger, void, (const vox::update_job<T> *job), (job))                       \
    ROUTINE(p, T, p##geru, P##GERU, none, none)                                                    \
    ROUTINE(p, T, p##gerc, P##GERC, y, x)
VOX_REAL_PRECISIONS(REAL)
VOX_COMPLEX_PRECISIONS(COMPLEX)
