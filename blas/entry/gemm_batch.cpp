// gemm_batch.cpp - ?gemm_batch and ?gemm3m_batch in all their forms.
//
// A batch of little work, or of one product, is a loop over ?gemm, which may use threads of its own.
// Otherwise threads take products one after another, and each product stays on its thread, so that
// results do not depend on who computed them.
#include <atomic>

#include "blas/blas.hpp"
#include "blas/drivers/level3.hpp"
#include "blas/entry/c_call.hpp"
#include "blas/entry/forms.hpp"
#include "blas/errchk/level3.hpp"
#include "serv/parallel.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

namespace {

using namespace vox;

// Real multiplications and additions that pay for the start of threads.
constexpr double least_parallel_work = 1e6;

inline char letter(char op) { return op; }
inline char letter(CBLAS_TRANSPOSE op) {
    return op == CblasNoTrans ? 'N' : op == CblasTrans ? 'T' : op == CblasConjTrans ? 'C' : ' ';
}

// The arguments of a batch by their names; Op: letters or C options, In, Out: as the form has them.
template <class T, class Op, class In, class Out>
struct batch {
    const Op *transa, *transb;
    const vox_int *m, *n, *k;
    const T *alpha;
    const In *a;
    const vox_int *lda;
    const In *b;
    const vox_int *ldb;
    const T *beta;
    const Out *c;
    const vox_int *ldc;
    index_t groups;
    const vox_int *size;

    // The transposes of row-major matrices, by columns.
    batch exchanged() const {
        return {transb, transa, n, m, k, alpha, b, ldb, a, lda, beta, c, ldc, groups, size};
    }

    // The number of the first bad argument; row_major: leading dimensions count columns.
    int first_bad(bool row_major) const {
        if (groups < 0)
            return 14;
        for (index_t g = 0; g < groups; ++g) {
            const char op_a = letter(transa[g]), op_b = letter(transb[g]);
            const bool by_rows_a = errchk::is(&op_a, 'n') != row_major;
            const bool by_rows_b = errchk::is(&op_b, 'n') != row_major;
            const int bad = errchk::gemm(errchk::bad_trans(&op_a), errchk::bad_trans(&op_b), m[g],
                                         n[g], k[g], lda[g], by_rows_a ? m[g] : k[g], ldb[g],
                                         by_rows_b ? k[g] : n[g], ldc[g], row_major ? n[g] : m[g]);
            if (bad || size[g] < 0)
                return bad ? bad : 15;
        }
        return 0;
    }

    index_t products() const {
        index_t sum = 0;
        for (index_t g = 0; g < groups; ++g)
            sum += size[g];
        return sum;
    }
    double work() const {
        double sum = 0;
        for (index_t g = 0; g < groups; ++g)
            sum += 2.0 * m[g] * n[g] * k[g] * size[g];
        return is_complex<T> ? 4 * sum : sum;
    }
    void compute(index_t g, index_t p) const {
        gemm<T>(letter(transa[g]), letter(transb[g]), m[g], n[g], k[g], alpha[g],
                static_cast<const T *>(a[p]), lda[g], static_cast<const T *>(b[p]), ldb[g], beta[g],
                static_cast<T *>(c[p]), ldc[g]);
    }
};

// The groups of products that are asked for in ascending order.
template <class Batch>
class group_walk {
  public:
    explicit group_walk(const Batch &all) : size_(all.size) {}
    index_t group_of(index_t p) {
        while (p >= end_)
            end_ += size_[++group_];
        return group_;
    }

  private:
    const vox_int *size_;
    index_t group_ = -1, end_ = 0;
};

template <class Batch>
void compute_all(const Batch &all) {
    const index_t products = all.products();
    index_t threads = 1;
    if (products > 1 && all.work() >= least_parallel_work)
        threads = vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS);
    threads = threads < products ? threads : products;
    // As many at a time as leave the last thread to finish little to wait for.
    const index_t some = threads < 2 ? products : 1 + products / (32 * threads);
    std::atomic<index_t> taken{0};
    parallel(int(threads), [&](int, int) {
        group_walk groups(all);
        for (index_t p; (p = taken.fetch_add(some, std::memory_order_relaxed)) < products;)
            for (index_t end = p + some; p < end && p < products; ++p)
                all.compute(groups.group_of(p), p);
    });
}

// In verbose lines arrays are addresses, whatever they hold.
template <class Batch>
void compute_logged(const char *routine, const Batch &all) {
    const auto driver = [&all](auto...) { compute_all(all); };
    const auto log = [&](const vox_int &groups, auto... arrays) {
        logged(routine, driver, driver, static_cast<const void *>(arrays)..., &groups,
               static_cast<const void *>(all.size));
    };
    log(vox_int(all.groups), all.transa, all.transb, all.m, all.n, all.k, all.alpha, all.a, all.lda,
        all.b, all.ldb, all.beta, all.c, all.ldc);
}

template <class T>
using fortran_batch = batch<T, char, const T *, T *>;
template <class T>
using c_batch = batch<T, CBLAS_TRANSPOSE, c_in<T>, c_out<T>>;

// The C forms do not call Fortran, which has letters where they have options.
template <class Batch>
void compute_for_c(const char *name, const char *logged_name, CBLAS_LAYOUT layout,
                   const Batch &all) {
    c_call call(name, layout);
    if (call.known() && call.good(all.first_bad(call.row_major())))
        compute_logged(logged_name, call.row_major() ? all.exchanged() : all);
}

} // namespace

#define BATCH(T, lower, UPPER)                                                                     \
    extern "C" void vox_blas_##lower VOX_GEMM_BATCH_PARAMETERS(T, vox::index_t) {                  \
        compute_all(fortran_batch<T> FIELDS(*group_count));                                        \
    }                                                                                              \
    extern "C" int vox_blas_errchk_##lower VOX_GEMM_BATCH_PARAMETERS(T, vox_int) {                 \
        const fortran_batch<T> all FIELDS(*group_count);                                           \
        return vox::errchk::report(#UPPER, all.first_bad(false));                                  \
    }                                                                                              \
    extern "C" void lower##_ VOX_GEMM_BATCH_PARAMETERS(T, vox_int) {                               \
        const fortran_batch<T> all FIELDS(*group_count);                                           \
        if (vox::errchk::report(#UPPER, all.first_bad(false)) == 0)                                \
            compute_logged(#UPPER, all);                                                           \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, UPPER);                                                             \
    extern "C" void cblas_##lower(                                                                 \
        CBLAS_LAYOUT layout, const CBLAS_TRANSPOSE *transa, const CBLAS_TRANSPOSE *transb,         \
        const vox_int *m, const vox_int *n, const vox_int *k, vox::c_in<T> alpha_array,            \
        const vox::c_in<T> *a, const vox_int *lda, const vox::c_in<T> *b, const vox_int *ldb,      \
        vox::c_in<T> beta_array, const vox::c_out<T> *c, const vox_int *ldc,                       \
        const vox_int group_count, const vox_int *group_size) {                                    \
        const T *const alpha = vox::in<T>(alpha_array), *const beta = vox::in<T>(beta_array);      \
        const c_batch<T> all FIELDS(group_count);                                                  \
        compute_for_c("cblas_" #lower, #UPPER, layout, all);                                       \
    }
#define FIELDS(groups)                                                                             \
    { transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc, groups, group_size }
#define GEMM_BATCH(p, P, T) BATCH(T, p##gemm_batch, P##GEMM_BATCH)
#define GEMM3M_BATCH(p, P, T) BATCH(T, p##gemm3m_batch, P##GEMM3M_BATCH)
VOX_PRECISIONS(GEMM_BATCH)
VOX_COMPLEX_PRECISIONS(GEMM3M_BATCH)
