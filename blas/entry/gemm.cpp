// gemm.cpp - ?gemm, ?gemm3m and ?gemmt in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/level3.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level3.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

constexpr auto check_gemm = [](auto transa, auto transb, auto m, auto n, auto k, auto, auto,
                               auto lda, auto, auto ldb, auto, auto, auto ldc) VOX_INLINED {
    return errchk::gemm(errchk::bad_trans(transa), errchk::bad_trans(transb), *m, *n, *k, *lda,
                        errchk::is(transa, 'n') ? *m : *k, *ldb, errchk::is(transb, 'n') ? *k : *n,
                        *ldc, *m);
};
constexpr auto check_gemmt = [](auto uplo, auto transa, auto transb, auto n, auto k, auto, auto,
                                auto lda, auto, auto ldb, auto, auto, auto ldc) VOX_INLINED {
    return errchk::gemmt(errchk::bad_uplo(uplo), errchk::bad_trans(transa),
                         errchk::bad_trans(transb), *n, *k, *lda, errchk::is(transa, 'n') ? *n : *k,
                         *ldb, errchk::is(transb, 'n') ? *k : *n, *ldc);
};

constexpr auto gemm_driver = [](auto transa, auto transb, index_t m, index_t n, index_t k,
                                auto alpha, auto a, index_t lda, auto b, index_t ldb, auto beta,
                                auto c, index_t ldc) VOX_INLINED {
    vox::gemm(*transa, *transb, m, n, k, *alpha, a, lda, b, ldb, *beta, c, ldc);
};
template <class T>
factor<T> operand(const char *trans, const T *data, index_t ld) {
    return {data, ld, !errchk::is(trans, 'n'), errchk::is(trans, 'c')};
}
constexpr auto gemmt_driver = [](auto uplo, auto transa, auto transb, index_t n, index_t k,
                                 auto alpha, auto a, index_t lda, auto b, index_t ldb, auto beta,
                                 auto c, index_t ldc) VOX_INLINED {
    using T = std::remove_pointer_t<decltype(c)>;
    multiply<T>({n, n, k, *alpha, operand(transa, a, lda), operand(transb, b, ldb), *beta, c, ldc,
                 errchk::is(uplo, 'u') ? region::upper : region::lower});
};

template <class T>
bool nothing_to_do(index_t m, index_t n, index_t k, const T *alpha, const T *beta) {
    return m == 0 || n == 0 || ((k == 0 || is_zero(*alpha)) && *beta == one<T>);
}

// The transpose of a row-major C is op(B)^T op(A)^T.
template <class T, class Fortran>
void c_gemm(const char *name, Fortran *fortran, CBLAS_LAYOUT layout, CBLAS_TRANSPOSE trans_a,
            CBLAS_TRANSPOSE trans_b, const vox_int m, const vox_int n, const vox_int k,
            const T *alpha, const T *a, const vox_int lda, const T *b, const vox_int ldb,
            const T *beta, T *c, const vox_int ldc) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const bool row_major = call.row_major();
    const char transa = call.factor_trans(trans_a, 2), transb = call.factor_trans(trans_b, 3);
    const vox_int rows_a = (transa == 'N') != row_major ? m : k;
    const vox_int rows_b = (transb == 'N') != row_major ? k : n;
    if (!call.good(errchk::gemm(false, false, m, n, k, lda, rows_a, ldb, rows_b, ldc,
                                row_major ? n : m)) ||
        nothing_to_do(m, n, k, alpha, beta))
        return;
    if (row_major)
        fortran(&transb, &transa, &n, &m, &k, alpha, b, &ldb, a, &lda, beta, c, &ldc);
    else
        fortran(&transa, &transb, &m, &n, &k, alpha, a, &lda, b, &ldb, beta, c, &ldc);
}
template <class T, class Fortran>
void c_gemmt(const char *name, Fortran *fortran, CBLAS_LAYOUT layout, CBLAS_UPLO stored,
             CBLAS_TRANSPOSE trans_a, CBLAS_TRANSPOSE trans_b, const vox_int n, const vox_int k,
             const T *alpha, const T *a, const vox_int lda, const T *b, const vox_int ldb,
             const T *beta, T *c, const vox_int ldc) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const bool row_major = call.row_major();
    const char uplo = call.uplo(stored, 2);
    const char transa = call.factor_trans(trans_a, 3), transb = call.factor_trans(trans_b, 4);
    const vox_int rows_a = (transa == 'N') != row_major ? n : k;
    const vox_int rows_b = (transb == 'N') != row_major ? k : n;
    if (!call.good(errchk::gemmt(false, false, false, n, k, lda, rows_a, ldb, rows_b, ldc)) ||
        nothing_to_do(n, n, k, alpha, beta))
        return;
    if (row_major)
        fortran(&uplo, &transb, &transa, &n, &k, alpha, b, &ldb, a, &lda, beta, c, &ldc);
    else
        fortran(&uplo, &transa, &transb, &n, &k, alpha, a, &lda, b, &ldb, beta, c, &ldc);
}

} // namespace

#define FULL(T, lower, UPPER)                                                                      \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_GEMM_PARAMETERS(T, vox_int),                        \
                             VOX_GEMM_PARAMETERS(T, vox::index_t), VOX_GEMM_ARGUMENTS, check_gemm, \
                             gemm_driver)                                                          \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa,                     \
                                  CBLAS_TRANSPOSE transb, const vox_int m, const vox_int n,        \
                                  const vox_int k, vox::c_scalar<T> alpha, vox::c_in<T> a,         \
                                  const vox_int lda, vox::c_in<T> b, const vox_int ldb,            \
                                  vox::c_scalar<T> beta, vox::c_out<T> c, const vox_int ldc) {     \
        c_gemm<T>("cblas_" #lower, lower, layout, transa, transb, m, n, k, vox::scalar<T>(alpha),  \
                  vox::in<T>(a), lda, vox::in<T>(b), ldb, vox::scalar<T>(beta), vox::out<T>(c),    \
                  ldc);                                                                            \
    }
#define TRIANGLE(T, lower, UPPER)                                                                  \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_GEMMT_PARAMETERS(T, vox_int),                       \
                             VOX_GEMMT_PARAMETERS(T, vox::index_t), VOX_GEMMT_ARGUMENTS,           \
                             check_gemmt, gemmt_driver)                                            \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE transa,    \
                                  CBLAS_TRANSPOSE transb, const vox_int n, const vox_int k,        \
                                  vox::c_scalar<T> alpha, vox::c_in<T> a, const vox_int lda,       \
                                  vox::c_in<T> b, const vox_int ldb, vox::c_scalar<T> beta,        \
                                  vox::c_out<T> c, const vox_int ldc) {                            \
        c_gemmt<T>("cblas_" #lower, lower, layout, uplo, transa, transb, n, k,                     \
                   vox::scalar<T>(alpha), vox::in<T>(a), lda, vox::in<T>(b), ldb,                  \
                   vox::scalar<T>(beta), vox::out<T>(c), ldc);                                     \
    }

#define GEMM(p, P, T)                                                                              \
    FULL(T, p##gemm, P##GEMM)                                                                      \
    TRIANGLE(T, p##gemmt, P##GEMMT)
VOX_PRECISIONS(GEMM)
#define GEMM3M(p, P, T) FULL(T, p##gemm3m, P##GEMM3M)
VOX_COMPLEX_PRECISIONS(GEMM3M)
