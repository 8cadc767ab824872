// gemm_packed.cpp - ?gemm_alloc, ?gemm_pack, ?gemm_compute and ?gemm_free in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/packed.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level3.hpp"
#include "serv/dispatch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

#define DISPATCH(p, P, T)                                                                          \
    VOX_DISPATCH(blas, p##gemm_lay_out, vox::index_t, (vox::packed_head * head), (head))           \
    VOX_DISPATCH(blas, p##gemm_pack, void,                                                         \
                 (const vox::packing_job<T> *job, vox::index_t part, vox::index_t parts),          \
                 (job, part, parts))
VOX_REAL_PRECISIONS(DISPATCH)

namespace {

using namespace vox;

template <class T>
struct entries;
#define ENTRIES(p, P, T)                                                                           \
    template <>                                                                                    \
    struct entries<T> {                                                                            \
        static constexpr x##p##gemm_lay_out_dispatch lay_out = {};                                 \
        static constexpr x##p##gemm_pack_dispatch pack = {};                                       \
    };
VOX_REAL_PRECISIONS(ENTRIES)

bool is_a(const char *identifier) { return errchk::is(identifier, 'a'); }
bool bad_identifier(const char *c) { return !is_a(c) && !errchk::is(c, 'b'); }
bool is_packed(const char *trans) { return errchk::is(trans, 'p'); }

constexpr auto check_alloc = [](auto identifier, auto m, auto n, auto k) VOX_INLINED {
    return errchk::gemm_alloc(bad_identifier(identifier), *m, *n, *k);
};
template <class T>
constexpr auto alloc_driver = [](auto identifier, index_t m, index_t n, index_t k) {
    return packed::allocate<T>(entries<T>::lay_out, is_a(identifier) ? m : n, k);
};

// The rows of a factor op(X) as it is stored by columns.
index_t stored_rows(const char *identifier, const char *trans, index_t m, index_t n, index_t k) {
    return is_a(identifier) == errchk::is(trans, 'n') ? (is_a(identifier) ? m : n) : k;
}
constexpr auto check_pack = [](auto identifier, auto trans, auto m, auto n, auto k, auto, auto,
                               auto ld, auto dest) {
    return errchk::gemm_pack(bad_identifier(identifier), errchk::bad_trans(trans), *m, *n, *k, *ld,
                             stored_rows(identifier, trans, *m, *n, *k),
                             !packed::fits(dest, is_a(identifier) ? *m : *n, *k));
};
constexpr auto pack_driver = [](auto identifier, auto trans, index_t, index_t, index_t, auto alpha,
                                auto src, index_t ld, auto dest) {
    using T = std::remove_pointer_t<decltype(dest)>;
    const packed_side side = is_a(identifier) ? packed_side::left : packed_side::right;
    packed::pack<T>(entries<T>::lay_out, entries<T>::pack, packed::head_of(dest), side,
                    {src, ld, !errchk::is(trans, 'n')}, *alpha);
};

// Row-major factors are sides of the transposed product.
template <class T>
int bad_compute(bool row_major, const char *transa, const char *transb, index_t m, index_t n,
                index_t k, const T *a, index_t lda, const T *b, index_t ldb, index_t ldc) {
    const bool kept_a = is_packed(transa), kept_b = is_packed(transb);
    const packed_side sides[] = {packed_side::left, packed_side::right};
    const index_t rows_a = errchk::is(transa, 'n') != row_major ? m : k;
    const index_t rows_b = errchk::is(transb, 'n') != row_major ? k : n;
    return errchk::gemm_compute(
        !kept_a && errchk::bad_trans(transa), !kept_b && errchk::bad_trans(transb), m, n, k,
        kept_a && !packed::holds(a, sides[row_major], m, k), kept_a ? 1 : lda, kept_a ? 1 : rows_a,
        kept_b && !packed::holds(b, sides[!row_major], n, k), kept_b ? 1 : ldb, kept_b ? 1 : rows_b,
        ldc, row_major ? n : m);
}
constexpr auto check_compute = [](auto transa, auto transb, auto m, auto n, auto k, auto a,
                                  auto lda, auto b, auto ldb, auto, auto, auto ldc) {
    return bad_compute(false, transa, transb, *m, *n, *k, a, *lda, b, *ldb, *ldc);
};
constexpr auto compute_driver = [](auto transa, auto transb, index_t m, index_t n, index_t k,
                                   auto a, index_t lda, auto b, index_t ldb, auto beta, auto c,
                                   index_t ldc) {
    using T = std::remove_pointer_t<decltype(c)>;
    T alpha = one<T>;
    if (!is_packed(transa) && !is_packed(transb))
        return gemm<T>(*transa, *transb, m, n, k, alpha, a, lda, b, ldb, *beta, c, ldc);
    const auto factor_of = [&](const char *trans, const T *data, index_t ld) {
        return is_packed(trans) ? packed::kept_factor(data, alpha)
                                : factor<T>{data, ld, !errchk::is(trans, 'n')};
    };
    const factor<T> left = factor_of(transa, a, lda), right = factor_of(transb, b, ldb);
    multiply<T>({m, n, k, alpha, left, right, *beta, c, ldc});
};

template <class T>
constexpr auto free_driver = [](T *dest) { packed::release(dest); };

template <class T, class Fortran>
T *c_alloc(const char *name, Fortran *fortran, CBLAS_IDENTIFIER identifier, const vox_int m,
           const vox_int n, const vox_int k) {
    const char letter = identifier == CblasAMatrix ? 'A' : identifier == CblasBMatrix ? 'B' : ' ';
    const int bad = check_alloc(&letter, &m, &n, &k);
    if (bad)
        return cblas_xerbla(name, bad), nullptr;
    return fortran(&letter, &m, &n, &k);
}
template <class T, class Fortran>
void c_pack(const char *name, Fortran *fortran, CBLAS_LAYOUT layout, CBLAS_IDENTIFIER factor,
            CBLAS_TRANSPOSE trans_x, const vox_int m, const vox_int n, const vox_int k,
            const T *alpha, const T *src, const vox_int ld, T *dest) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char identifier = call.identifier(factor, 2), trans = call.factor_trans(trans_x, 3);
    const vox_int rows = call.row_major() ? n : m, columns = call.row_major() ? m : n;
    if (call.good(errchk::gemm_pack(false, false, m, n, k, ld,
                                    stored_rows(&identifier, &trans, rows, columns, k),
                                    !packed::fits(dest, is_a(&identifier) ? rows : columns, k))))
        fortran(&identifier, &trans, &rows, &columns, &k, alpha, src, &ld, dest);
}
template <class T, class Fortran>
void c_compute(const char *name, Fortran *fortran, CBLAS_LAYOUT layout, vox_int trans_a,
               vox_int trans_b, const vox_int m, const vox_int n, const vox_int k, const T *a,
               const vox_int lda, const T *b, const vox_int ldb, const T *beta, T *c,
               const vox_int ldc) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const bool row_major = call.row_major();
    const char transa = call.packed_trans(trans_a, 2), transb = call.packed_trans(trans_b, 3);
    if (!call.good(bad_compute(row_major, &transa, &transb, m, n, k, a, lda, b, ldb, ldc)) ||
        m == 0 || n == 0 || (k == 0 && *beta == one<T>))
        return;
    if (row_major)
        fortran(&transb, &transa, &n, &m, &k, b, &ldb, a, &lda, beta, c, &ldc);
    else
        fortran(&transa, &transb, &m, &n, &k, a, &lda, b, &ldb, beta, c, &ldc);
}

} // namespace

#define ALLOC(T, lower, UPPER)                                                                     \
    extern "C" T *vox_blas_##lower VOX_GEMM_ALLOC_PARAMETERS(vox::index_t) {                       \
        return vox::by_value(alloc_driver<T>) VOX_GEMM_ALLOC_ARGUMENTS;                            \
    }                                                                                              \
    extern "C" int vox_blas_errchk_##lower VOX_GEMM_ALLOC_PARAMETERS(vox_int) {                    \
        return vox::errchk::report(#UPPER, check_alloc VOX_GEMM_ALLOC_ARGUMENTS);                  \
    }                                                                                              \
    extern "C" T *lower##_ VOX_GEMM_ALLOC_PARAMETERS(vox_int) {                                    \
        if (vox_blas_errchk_##lower VOX_GEMM_ALLOC_ARGUMENTS)                                      \
            return nullptr;                                                                        \
        return vox::logged(#UPPER, alloc_driver<T>, vox::out_of_line(vox_blas_##lower),            \
                           identifier, m, n, k);                                                   \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, UPPER);                                                             \
    extern "C" T *cblas_##lower(CBLAS_IDENTIFIER identifier, const vox_int m, const vox_int n,     \
                                const vox_int k) {                                                 \
        return c_alloc<T>("cblas_" #lower, lower, identifier, m, n, k);                            \
    }
#define PACK(T, lower, UPPER)                                                                      \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_GEMM_PACK_PARAMETERS(T, vox_int),                   \
                             VOX_GEMM_PACK_PARAMETERS(T, vox::index_t), VOX_GEMM_PACK_ARGUMENTS,   \
                             check_pack, pack_driver)                                              \
    extern "C" void cblas_##lower(                                                                 \
        CBLAS_LAYOUT layout, CBLAS_IDENTIFIER identifier, CBLAS_TRANSPOSE trans, const vox_int m,  \
        const vox_int n, const vox_int k, T alpha, const T *src, const vox_int ld, T *dest) {      \
        c_pack<T>("cblas_" #lower, lower, layout, identifier, trans, m, n, k, &alpha, src, ld,     \
                  dest);                                                                           \
    }
#define COMPUTE(T, lower, UPPER)                                                                   \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_GEMM_COMPUTE_PARAMETERS(T, vox_int),                \
                             VOX_GEMM_COMPUTE_PARAMETERS(T, vox::index_t),                         \
                             VOX_GEMM_COMPUTE_ARGUMENTS, check_compute, compute_driver)            \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, vox_int transa, vox_int transb,             \
                                  const vox_int m, const vox_int n, const vox_int k, const T *a,   \
                                  const vox_int lda, const T *b, const vox_int ldb, T beta, T *c,  \
                                  const vox_int ldc) {                                             \
        c_compute<T>("cblas_" #lower, lower, layout, transa, transb, m, n, k, a, lda, b, ldb,      \
                     &beta, c, ldc);                                                               \
    }
#define FREE(T, lower, UPPER)                                                                      \
    extern "C" void vox_blas_##lower(T *dest) { free_driver<T>(dest); }                            \
    extern "C" void lower##_(T *dest) {                                                            \
        if (vox::errchk::report(#UPPER, dest && !vox::packed::head_of(dest) ? 1 : 0) == 0)         \
            vox::logged(#UPPER, free_driver<T>, free_driver<T>, dest);                             \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, UPPER);                                                             \
    extern "C" void cblas_##lower(T *dest) { lower(dest); }
#define PACKED(p, P, T)                                                                            \
    ALLOC(T, p##gemm_alloc, P##GEMM_ALLOC)                                                         \
    PACK(T, p##gemm_pack, P##GEMM_PACK)                                                            \
    COMPUTE(T, p##gemm_compute, P##GEMM_COMPUTE)                                                   \
    FREE(T, p##gemm_free, P##GEMM_FREE)
VOX_REAL_PRECISIONS(PACKED)
