// gemm_integer.cpp - gemm_s8u8s32 and gemm_s16s16s32 in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/integer.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level3.hpp"
#include "serv/dispatch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

VOX_DISPATCH(blas, gemm_integer, void, (const vox::integer_product *job), (job))

namespace {

using namespace vox;

bool bad_offset(const char *c) {
    return !errchk::is(c, 'f') && !errchk::is(c, 'c') && !errchk::is(c, 'r');
}
constexpr auto check = [](auto transa, auto transb, auto offsetc, auto m, auto n, auto k, auto,
                          auto, auto lda, auto, auto, auto ldb, auto, auto, auto, auto ldc, auto) {
    return errchk::gemm_integer(
        errchk::bad_trans(transa), errchk::bad_trans(transb), bad_offset(offsetc), *m, *n, *k, *lda,
        errchk::is(transa, 'n') ? *m : *k, *ldb, errchk::is(transb, 'n') ? *k : *n, *ldc, *m);
};

template <class S>
constexpr integer_type type_of = sizeof(S) == 2        ? integer_type::s16
                                 : std::is_signed_v<S> ? integer_type::s8
                                                       : integer_type::u8;

// A product's arguments as a Fortran form has them; I: the type of its integers.
template <class A, class B, class I>
struct integer_call {
    const char *transa, *transb, *offsetc;
    const I *m, *n, *k;
    const float *alpha;
    const A *a;
    const I *lda;
    const A *ao;
    const B *b;
    const I *ldb;
    const B *bo;
    const float *beta;
    int32_t *c;
    const I *ldc;
    const int32_t *co;

    template <class S>
    static integer_factor factor_of(const char *trans, const S *data, index_t ld, S offset) {
        return {data, ld, !errchk::is(trans, 'n'), type_of<S>, offset};
    }
    void compute() const {
        integer::multiply(xgemm_integer, {*m, *n, *k, *alpha, factor_of(transa, a, *lda, *ao),
                                          factor_of(transb, b, *ldb, *bo), *beta, c, *ldc, co,
                                          errchk::is(offsetc, 'f')   ? integer_product::fixed
                                          : errchk::is(offsetc, 'c') ? integer_product::column
                                                                     : integer_product::row});
    }
    // In verbose lines arrays are addresses, whatever they hold.
    void compute_logged(const char *routine) const {
        const auto driver = [this](auto...) { compute(); };
        const auto at = [](const void *array) { return array; };
        logged(routine, driver, driver, transa, transb, offsetc, m, n, k, alpha, at(a), lda, at(ao),
               at(b), ldb, at(bo), beta, at(c), ldc, at(co));
    }
};

// The transpose of a row-major C is op(B)^T op(A)^T. Where A and B differ in type, no Fortran routine
// takes them in that order.
template <class A, class B, class Fortran>
void c_gemm(const char *name, const char *fortran_name, Fortran *fortran, CBLAS_LAYOUT layout,
            CBLAS_TRANSPOSE trans_a, CBLAS_TRANSPOSE trans_b, CBLAS_OFFSET offset, const vox_int m,
            const vox_int n, const vox_int k, float alpha, const A *a, const vox_int lda, A ao,
            const B *b, const vox_int ldb, B bo, float beta, int32_t *c, const vox_int ldc,
            const int32_t *co) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const bool row_major = call.row_major();
    const char transa = call.factor_trans(trans_a, 2), transb = call.factor_trans(trans_b, 3);
    const char offsetc = call.offset(offset, 4);
    const vox_int rows_a = (transa == 'N') != row_major ? m : k;
    const vox_int rows_b = (transb == 'N') != row_major ? k : n;
    if (!call.good(errchk::gemm_integer(false, false, false, m, n, k, lda, rows_a, ldb, rows_b, ldc,
                                        row_major ? n : m)) ||
        m == 0 || n == 0)
        return;
    if (!row_major)
        fortran(&transa, &transb, &offsetc, &m, &n, &k, &alpha, a, &lda, &ao, b, &ldb, &bo, &beta,
                c, &ldc, co);
    else if constexpr (std::is_same_v<A, B>)
        fortran(&transb, &transa, &offsetc, &n, &m, &k, &alpha, b, &ldb, &bo, a, &lda, &ao, &beta,
                c, &ldc, co);
    else
        integer_call<B, A, vox_int>{&transb, &transa, &offsetc, &n,  &m,    &k, &alpha, b, &ldb,
                                    &bo,     a,       &lda,     &ao, &beta, c,  &ldc,   co}
            .compute_logged(fortran_name);
}

} // namespace

#define FIELDS                                                                                     \
    { transa, transb, offsetc, m, n, k, alpha, a, lda, ao, b, ldb, bo, beta, c, ldc, co }
#define INTEGER(A, B, lower, UPPER)                                                                \
    extern "C" void vox_blas_##lower VOX_GEMM_INTEGER_PARAMETERS(A, B, vox::index_t) {             \
        integer_call<A, B, vox::index_t> FIELDS.compute();                                         \
    }                                                                                              \
    extern "C" int vox_blas_errchk_##lower VOX_GEMM_INTEGER_PARAMETERS(A, B, vox_int) {            \
        return vox::errchk::report(#UPPER, check VOX_GEMM_INTEGER_ARGUMENTS);                      \
    }                                                                                              \
    extern "C" void lower##_ VOX_GEMM_INTEGER_PARAMETERS(A, B, vox_int) {                          \
        if (vox::errchk::report(#UPPER, check VOX_GEMM_INTEGER_ARGUMENTS) == 0)                    \
            integer_call<A, B, vox_int> FIELDS.compute_logged(#UPPER);                             \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, UPPER);                                                             \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_TRANSPOSE transa,                     \
                                  CBLAS_TRANSPOSE transb, CBLAS_OFFSET offsetc, const vox_int m,   \
                                  const vox_int n, const vox_int k, float alpha, const A *a,       \
                                  const vox_int lda, A ao, const B *b, const vox_int ldb, B bo,    \
                                  float beta, int32_t *c, const vox_int ldc, const int32_t *co) {  \
        c_gemm<A, B>("cblas_" #lower, #UPPER, lower, layout, transa, transb, offsetc, m, n, k,     \
                     alpha, a, lda, ao, b, ldb, bo, beta, c, ldc, co);                             \
    }
INTEGER(int8_t, uint8_t, gemm_s8u8s32, GEMM_S8U8S32)
INTEGER(int16_t, int16_t, gemm_s16s16s32, GEMM_S16S16S32)
