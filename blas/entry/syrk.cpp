// syrk.cpp - ?syrk, ?syr2k and ?herk, ?her2k in all their forms.
#include "blas/blas.hpp"
#include "blas/drivers/level3.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level3.hpp"
#include "serv/scratch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

template <class T, bool hermitian>
constexpr auto check_syrk = [](auto uplo, auto trans, auto n, auto k, auto, auto, auto lda, auto,
                               auto, auto ldc) VOX_INLINED {
    return errchk::syrk(errchk::bad_uplo(uplo),
                        errchk::bad_update_trans(trans, is_complex<T>, hermitian), *n, *k, *lda,
                        errchk::is(trans, 'n') ? *n : *k, *ldc);
};
template <class T, bool hermitian>
constexpr auto check_syr2k = [](auto uplo, auto trans, auto n, auto k, auto, auto, auto lda, auto,
                                auto ldb, auto, auto, auto ldc) VOX_INLINED {
    return errchk::syr2k(errchk::bad_uplo(uplo),
                         errchk::bad_update_trans(trans, is_complex<T>, hermitian), *n, *k, *lda,
                         *ldb, errchk::is(trans, 'n') ? *n : *k, *ldc);
};

template <class T, class A, class B>
bool nothing_to_do(index_t n, index_t k, const A *alpha, const B *beta) {
    return n == 0 || ((k == 0 || is_zero(*alpha)) && *beta == one<B>);
}

// C, one triangle of it, in turn of alpha op(A) op(B)' and conj(alpha) op(B) op(A)', the second for
// updates of rank 2k; ' is ^T, or ^H where hermitian.
template <class T, bool hermitian>
class update {
  public:
    update(const char *uplo, const char *trans, index_t n, index_t k, T *c, index_t ldc)
        : part_(errchk::is(uplo, 'u') ? region::upper : region::lower),
          transposed_(!errchk::is(trans, 'n')), n_(n), k_(k), c_(c), ldc_(ldc) {}

    // What C has on its diagonal counts as real, even where the imaginary part is not a number.
    void forget_imaginary_diagonal() const {
        if constexpr (hermitian)
            for (index_t i = 0; i < n_; ++i)
                c_[i + i * ldc_] = make<T>(real(c_[i + i * ldc_]));
    }
    void add(T alpha, const T *a, index_t lda, const T *b, index_t ldb, T beta) const {
        multiply<T>({n_, n_, k_, alpha, operand(a, lda, transposed_), operand(b, ldb, !transposed_),
                     beta, c_, ldc_, part_, hermitian});
    }

    // S + S' for S = alpha op(A) op(B)', which is computed whole. False if S is large or there is no
    // memory for it.
    bool add_both(T alpha, const T *a, index_t lda, const T *b, index_t ldb, T beta) const {
        if (n_ > most_whole || n_ * n_ * index_t(sizeof(T)) > most_bytes)
            return false;
        const scratch<T> memory(n_ * n_, 64);
        if (memory.empty())
            return false;
        T *const s = memory.data();
        multiply<T>({n_, n_, k_, alpha, operand(a, lda, transposed_), operand(b, ldb, !transposed_),
                     T{}, s, n_});
        const bool overwrite = is_zero(beta);
        for (index_t j = 0; j < n_; ++j) {
            const index_t from = part_ == region::lower ? j : 0;
            const index_t end = part_ == region::upper ? j + 1 : n_;
            T *const c = c_ + j * ldc_;
            for (index_t i = from; i < end; ++i) {
                const T sum = s[i + j * n_] + conj_if(hermitian, s[j + i * n_]);
                c[i] = overwrite ? sum : sum + beta * c[i];
            }
            if constexpr (hermitian) // even where the sum is not a number
                c[j] = make<T>(real(c[j]));
        }
        return true;
    }

  private:
    static constexpr index_t most_whole = 1024, most_bytes = 1 << 20;

    static factor<T> operand(const T *data, index_t ld, bool transposed) {
        return {data, ld, transposed, hermitian && transposed};
    }

    region part_;
    bool transposed_;
    index_t n_, k_;
    T *c_;
    index_t ldc_;
};

// A real alpha or beta as an element.
template <class T, class S>
T complete(S scalar) {
    return make<T>(real(scalar), imag(scalar));
}

template <bool hermitian>
constexpr auto syrk = [](auto uplo, auto trans, index_t n, index_t k, auto alpha, auto a,
                         index_t lda, auto beta, auto c, index_t ldc) VOX_INLINED {
    using T = std::remove_pointer_t<decltype(c)>;
    if (nothing_to_do<T>(n, k, alpha, beta))
        return;
    const update<T, hermitian> to_c(uplo, trans, n, k, c, ldc);
    to_c.forget_imaginary_diagonal();
    to_c.add(complete<T>(*alpha), a, lda, a, lda, complete<T>(*beta));
};
template <bool hermitian>
constexpr auto syr2k = [](auto uplo, auto trans, index_t n, index_t k, auto alpha, auto a,
                          index_t lda, auto b, index_t ldb, auto beta, auto c,
                          index_t ldc) VOX_INLINED {
    using T = std::remove_pointer_t<decltype(c)>;
    if (nothing_to_do<T>(n, k, alpha, beta))
        return;
    const update<T, hermitian> to_c(uplo, trans, n, k, c, ldc);
    to_c.forget_imaginary_diagonal();
    if (k > 0 && !is_zero(*alpha) && to_c.add_both(*alpha, a, lda, b, ldb, complete<T>(*beta)))
        return;
    to_c.add(*alpha, a, lda, b, ldb, complete<T>(*beta));
    if (k > 0 && !is_zero(*alpha))
        to_c.add(conj_if(hermitian, *alpha), b, ldb, a, lda, one<T>);
};

// The transpose of a row-major C = A A^T is that of C = A^T A with A^T, which is what is stored; of
// C = A A^H, that of C = A^H A. In updates of rank 2k it exchanges the terms, and with them alpha
// and conj(alpha).
template <class T, class Fortran, class S>
void c_syrk(const char *name, bool hermitian, Fortran *fortran, CBLAS_LAYOUT layout,
            CBLAS_UPLO stored, CBLAS_TRANSPOSE op, const vox_int n, const vox_int k, const S *alpha,
            const T *a, const vox_int lda, const S *beta, T *c, const vox_int ldc) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2), trans = call.update_trans<T>(op, hermitian, 3);
    if (call.good(errchk::syrk(false, false, n, k, lda, trans == 'N' ? n : k, ldc)) &&
        !nothing_to_do<T>(n, k, alpha, beta))
        fortran(&uplo, &trans, &n, &k, alpha, a, &lda, beta, c, &ldc);
}
template <class T, class Fortran, class S>
void c_syr2k(const char *name, bool hermitian, Fortran *fortran, CBLAS_LAYOUT layout,
             CBLAS_UPLO stored, CBLAS_TRANSPOSE op, const vox_int n, const vox_int k,
             const T *alpha, const T *a, const vox_int lda, const T *b, const vox_int ldb,
             const S *beta, T *c, const vox_int ldc) {
    c_call call(name, layout);
    if (!call.known())
        return;
    const char uplo = call.uplo(stored, 2), trans = call.update_trans<T>(op, hermitian, 3);
    if (!call.good(errchk::syr2k(false, false, n, k, lda, ldb, trans == 'N' ? n : k, ldc)) ||
        nothing_to_do<T>(n, k, alpha, beta))
        return;
    const T exchanged = conj_if(hermitian && call.row_major(), *alpha);
    fortran(&uplo, &trans, &n, &k, &exchanged, a, &lda, b, &ldb, beta, c, &ldc);
}

} // namespace

// S: the type of the scalars that are real in Hermitian updates.
#define RANK_K(T, S, lower, UPPER, hermitian)                                                      \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_SYRK_PARAMETERS(T, S, vox_int),                     \
                             VOX_SYRK_PARAMETERS(T, S, vox::index_t), VOX_SYRK_ARGUMENTS,          \
                             (check_syrk<T, hermitian>), syrk<hermitian>)                          \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans,     \
                                  const vox_int n, const vox_int k, vox::c_scalar<S> alpha,        \
                                  vox::c_in<T> a, const vox_int lda, vox::c_scalar<S> beta,        \
                                  vox::c_out<T> c, const vox_int ldc) {                            \
        c_syrk<T>("cblas_" #lower, hermitian, lower, layout, uplo, trans, n, k,                    \
                  vox::scalar<S>(alpha), vox::in<T>(a), lda, vox::scalar<S>(beta), vox::out<T>(c), \
                  ldc);                                                                            \
    }
#define RANK_2K(T, S, lower, UPPER, hermitian)                                                     \
    VOX_BLAS_CHECKED_ROUTINE(lower, UPPER, VOX_SYR2K_PARAMETERS(T, S, vox_int),                    \
                             VOX_SYR2K_PARAMETERS(T, S, vox::index_t), VOX_SYR2K_ARGUMENTS,        \
                             (check_syr2k<T, hermitian>), syr2k<hermitian>)                        \
    extern "C" void cblas_##lower(CBLAS_LAYOUT layout, CBLAS_UPLO uplo, CBLAS_TRANSPOSE trans,     \
                                  const vox_int n, const vox_int k, vox::c_scalar<T> alpha,        \
                                  vox::c_in<T> a, const vox_int lda, vox::c_in<T> b,               \
                                  const vox_int ldb, vox::c_scalar<S> beta, vox::c_out<T> c,       \
                                  const vox_int ldc) {                                             \
        c_syr2k<T>("cblas_" #lower, hermitian, lower, layout, uplo, trans, n, k,                   \
                   vox::scalar<T>(alpha), vox::in<T>(a), lda, vox::in<T>(b), ldb,                  \
                   vox::scalar<S>(beta), vox::out<T>(c), ldc);                                     \
    }

#define SYMMETRIC(p, P, T)                                                                         \
    RANK_K(T, T, p##syrk, P##SYRK, false)                                                          \
    RANK_2K(T, T, p##syr2k, P##SYR2K, false)
#define HERMITIAN(p, P, T)                                                                         \
    RANK_K(T, vox::real_of<T>, p##herk, P##HERK, true)                                             \
    RANK_2K(T, vox::real_of<T>, p##her2k, P##HER2K, true)
VOX_PRECISIONS(SYMMETRIC)
VOX_COMPLEX_PRECISIONS(HERMITIAN)
