// gemm.cpp - the driver of the general product: shapes that are less than a product of matrices, and how
// many threads share the work.
#include "blas/blas.hpp"
#include "blas/drivers/gemm_threads.hpp"
#include "blas/drivers/level3.hpp"
#include "blas/drivers/team.hpp"
#include "blas/kernel_api.hpp"
#include "serv/dispatch.hpp"
#include "serv/scratch.hpp"

#define GEMM_PARAMETERS(T) VOX_GEMM_PARAMETERS(T, vox::index_t)
#define DISPATCH(p, P, T)                                                                          \
    VOX_DISPATCH(blas, p##gemm, void, GEMM_PARAMETERS(T), VOX_GEMM_ARGUMENTS)                      \
    VOX_DISPATCH(blas, p##gemmger, void, GEMM_PARAMETERS(T), VOX_GEMM_ARGUMENTS)
VOX_PRECISIONS(DISPATCH)
#define DECLARE(p, P, T) extern "C" void vox_blas_##p##gemv VOX_GEMV_PARAMETERS(T, vox::index_t);
VOX_PRECISIONS(DECLARE)

namespace vox {
namespace {

// What a product of each precision is made of.
template <class T>
struct entries;
#define ENTRIES(p, P, T)                                                                           \
    template <>                                                                                    \
    struct entries<T> {                                                                            \
        static constexpr x##p##gemm_dispatch gemm = {};                                            \
        static constexpr x##p##gemmger_dispatch gemmger = {};                                      \
        static constexpr auto *gemv = vox_blas_##p##gemv;                                          \
        static constexpr auto *copy = vox_blas_##p##copy;                                          \
        static constexpr auto *omp_driver = vox_blas_##p##gemm_omp_driver_v1;                      \
    };
VOX_PRECISIONS(ENTRIES)

// One call's operands, op(A) and op(B) with their rows and columns.
template <class T>
struct gemm_call {
    char transa, transb; // upper case
    index_t m, n, k;
    const T *alpha;
    const T *a;
    index_t lda;
    const T *b;
    index_t ldb;
    const T *beta;
    T *c;
    index_t ldc;

    bool a_plain() const { return transa == 'N'; }
    bool b_plain() const { return transb == 'N'; }
    const T *a_row(index_t i) const { return a + (a_plain() ? i : i * lda); }
    const T *b_column(index_t j) const { return b + (b_plain() ? j * ldb : j); }
    index_t a_row_step() const { return a_plain() ? lda : 1; }    // along a row of op(A)
    index_t b_column_step() const { return b_plain() ? 1 : ldb; } // along a column of op(B)

    product<T> job() const {
        return {m,
                n,
                k,
                *alpha,
                {a, lda, !a_plain(), transa == 'C'},
                {b, ldb, !b_plain(), transb == 'C'},
                *beta,
                c,
                ldc};
    }
    // The product of rows i0 .. and columns j0 .., serially.
    void serial(index_t i0, index_t rows, index_t j0, index_t columns) const {
        entries<T>::gemm(&transa, &transb, &rows, &columns, &k, alpha, a_row(i0), &lda,
                         b_column(j0), &ldb, beta, c + i0 + j0 * ldc, &ldc);
    }
    // A row of C is a product with op(B), whose own conjugate gemv knows as 'R' where it is not
    // transposed.
    void one_row(index_t i) const {
        const char trans = b_plain() ? 'T' : transb == 'C' && is_complex<T> ? 'R' : 'N';
        const index_t step = a_row_step();
        entries<T>::gemv(&trans, b_plain() ? &k : &n, b_plain() ? &n : &k, alpha, b, &ldb, a_row(i),
                         &step, beta, c + i, &ldc);
    }
    void one_column() const {
        const index_t step = b_column_step(), one = 1;
        entries<T>::gemv(&transa, a_plain() ? &m : &k, a_plain() ? &k : &m, alpha, a, &lda, b,
                         &step, beta, c, &one);
    }
    void update_of_rank_one() const {
        // A strided column pays for being made contiguous, if there is memory.
        const bool kept = !(is_complex<T> && transa == 'C');
        if (!a_plain() && lda != 1 && m > 64 && kept && !is_zero(*alpha)) {
            scratch<T> column(m, 128);
            if (vox_serv_check_ptr_and_warn(column.data(), "DGEMM") == 0) {
                const index_t one = 1;
                entries<T>::copy(&m, a, &lda, column.data(), &one);
                gemm_call plain = *this;
                plain.transa = 'N', plain.a = column.data(), plain.lda = m;
                return plain.update_of_rank_one();
            }
        }
        // The update goes at the speed of C's memory.
        const index_t parts = team_for(m * n * index_t(sizeof(T)));
        for_parts(parts, [&](index_t part) {
            const range columns = even_part(part, parts, {0, n}, 4);
            const index_t count = columns.end - columns.first;
            if (count > 0)
                entries<T>::gemmger(&transa, &transb, &m, &count, &k, alpha, a, &lda,
                                    b_column(columns.first), &ldb, beta, c + columns.first * ldc,
                                    &ldc);
        });
    }
};

index_t chunk_of(index_t n, index_t parts) { return ((n + parts - 1) / parts + 7) / 8 * 8; }

// A rectangle of C for each thread: `stripes` stripes of rows, so many groups of columns as threads are
// left for.
template <class T>
void in_stripes(const gemm_call<T> &call, index_t stripes) {
    const index_t threads = vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS);
    const index_t p = stripes < threads ? stripes : threads;
    const index_t q = threads / stripes > 1 ? threads / stripes : 1;
    const index_t rows = chunk_of(call.m, p), columns = chunk_of(call.n, q);
    parallel(int(threads), [&](int thread, int team) {
        for (index_t t = thread; t < threads; t += team) {
            const index_t i = t % p * rows, j = t / p * columns;
            if (i < call.m && j < call.n)
                call.serial(i, call.m - i < rows ? call.m - i : rows, j,
                            call.n - j < columns ? call.n - j : columns);
        }
    });
}

// Few columns of a transposed A: rows are all that there is to share.
template <class T>
bool is_skinny(const gemm_call<T> &call, int path) {
    if (path < VOX_CPU_AVX512_ZEL || call.a_plain() || !call.b_plain())
        return false;
    return call.n == 2 || call.n == 3 ||
           (path == VOX_CPU_AVX512 && call.n < 16 &&
            (call.lda % 256 == 0 || call.ldb % 256 == 0 || call.ldc % 256 == 0));
}
template <class T>
void by_rows(const gemm_call<T> &call, index_t threads) {
    const index_t chunk = (call.m + threads - 1) / threads, chunks = (call.m + chunk - 1) / chunk;
    parallel(int(chunks), [&](int thread, int team) {
        for (index_t i = thread * chunk; i < call.m; i += team * chunk)
            call.serial(i, call.m - i < chunk ? call.m - i : chunk, 0, call.n);
    });
}

template <class T>
void run(const gemm_call<T> &call) {
    const auto &[transa, transb, m, n, k, alpha, a, lda, b, ldb, beta, c, ldc] = call;
    if (m <= 0 || n <= 0)
        return;
    // A vector operand cannot be conjugated on the fly.
    const bool conjugate_a = is_complex<T> && transa == 'C';
    const bool conjugate_b = is_complex<T> && transb == 'C';
    if (k > 0) {
        if (m == 1 && n == 1 && k == 1)
            return call.serial(0, 1, 0, 1);
        if (m == 1 && !conjugate_a)
            return call.one_row(0);
        if (m < 8 && call.b_plain() && !conjugate_a && (lda < 8 || lda % 256 == 0) && ldc < 8 &&
            ldb % 256 == 0 && vox_serv_cpu_detect() == VOX_CPU_AVX512_ZEL) {
            for (index_t i = 0; i < m; ++i)
                call.one_row(i);
            return;
        }
        if (n == 1 && !conjugate_b)
            return call.one_column();
        if (k == 1)
            return call.update_of_rank_one();
    }
    if (const index_t stripes = vox_serv_get_num_stripes(); VOX_UNLIKELY(stripes > 0))
        return in_stripes(call, stripes);
    if (vox_blas_get_kernel_api_version() == 2) {
        const product<T> job = call.job();
        return entries<T>::omp_driver(&job);
    }
    if (VOX_LIKELY(surely_serial<T>(m, n, k)))
        return call.serial(0, m, 0, n);
    const int path = vox_serv_cpu_detect();
    const int threads = gemm_threads(path, gemm_weights_of<T>, m, n, k, [] {
        return vox_serv_domain_get_max_threads(VOX_DOMAIN_BLAS);
    });
    if (threads == 1)
        return call.serial(0, m, 0, n);
    if (is_skinny(call, path))
        return by_rows(call, threads);
    multiply_in_parallel(call.job(), threads);
}

} // namespace

template <class T>
void gemm(char transa, char transb, index_t m, index_t n, index_t k, T alpha, const T *a,
          index_t lda, const T *b, index_t ldb, T beta, T *c, index_t ldc) {
    run<T>({char(transa & ~0x20), char(transb & ~0x20), m, n, k, &alpha, a, lda, b, ldb, &beta, c,
            ldc});
}

} // namespace vox

#define INSTANCES(p, P, T)                                                                         \
    template void vox::gemm<T>(char, char, index_t, index_t, index_t, T, const T *, index_t,       \
                               const T *, index_t, T, T *, index_t);
VOX_PRECISIONS(INSTANCES)
