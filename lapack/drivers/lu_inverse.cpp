// lu_inverse.cpp - the inverse from the factors: X L = U^-1, then the columns of X change places.
//
// L lies where X comes to be, so its columns move to the workspace a block at a time, from the right;
// a block of X is U^-1's less what the columns on the right have a part in, divided by the block's
// own triangle. Small inverses are a kernel's.
#include "blas/drivers/team.hpp"
#include "lapack/blas.hpp"
#include "lapack/block_sizes.hpp"
#include "lapack/drivers/lu.hpp"
#include "lapack/drivers/one_thread.hpp"
#include "lapack/drivers/triangular.hpp"
#include "lapack/panel.hpp"
#include "serv/dispatch.hpp"
#include "serv/scratch.hpp"

#define GETRI(p, P, T)                                                                             \
    VOX_DISPATCH(lapack, p##getri, void,                                                           \
                 (vox::index_t n, T * a, vox::index_t lda, const vox::index_t *ipiv),              \
                 (n, a, lda, ipiv))                                                                \
    static inline void finish_inverse(vox::index_t n, T *a, vox::index_t lda,                      \
                                      const vox::index_t *ipiv) {                                  \
        x##p##getri(n, a, lda, ipiv);                                                              \
    }
VOX_PRECISIONS(GETRI)

namespace vox::lapack {
namespace {

// The columns of a block. A matrix beyond all caches is read from there once for each block, so its
// blocks are wider than a program can be asked to bring room for.
template <class T>
index_t best_block(index_t n, index_t told) {
    constexpr index_t far_bytes = 4 * 1024 * 1024, far_block = 512;
    if (n * n * index_t(sizeof(T)) < far_bytes)
        return n < told ? n : told;
    const index_t blocks = (n + far_block - 1) / far_block;
    return (n + blocks - 1) / blocks;
}

// Columns j .. j + count - 1 of L leave a for `to`, whose rows are a's; zeros are left.
template <class T>
void take_lower(index_t n, index_t j, index_t count, T *a, index_t lda, T *to, index_t ldt) {
    for (index_t c = 0; c < count; ++c)
        for (index_t i = j + c + 1; i < n; ++i) {
            to[i + c * ldt] = a[i + (j + c) * lda];
            a[i + (j + c) * lda] = T{};
        }
}

// Interchanges of columns, the last first, on so many rows at a time as keep all columns in cache.
template <class T>
void exchange_columns(index_t n, T *a, index_t lda, const index_t *ipiv) {
    constexpr index_t rows = 512 / index_t(sizeof(T));
    const index_t threads = team_for(n * n * index_t(sizeof(T)));
    for_parts(threads, [&](index_t part) {
        const range mine = even_part(part, threads, {0, n}, rows);
        for (index_t i = mine.first; i < mine.end; i += rows) {
            const index_t count = mine.end - i < rows ? mine.end - i : rows;
            for (index_t j = n - 2; j >= 0; --j)
                if (ipiv[j] != j + 1)
                    blas::swap(count, a + i + j * lda, 1, a + i + (ipiv[j] - 1) * lda, 1);
        }
    });
}

template <class T>
void divide_by_lower(index_t n, T *a, index_t lda, index_t block, T *work) {
    for (index_t end = n, j; end > 0; end = j) {
        j = (end - 1) / block * block;
        const index_t count = end - j;
        take_lower(n, j, count, a, lda, work, n);
        T *const x = a + j * lda;
        if (end < n)
            blas::gemm('N', 'N', n, count, n - end, -one<T>, a + end * lda, lda, work + end, n,
                       one<T>, x, lda);
        blas::trsm('R', 'L', 'N', 'U', n, count, one<T>, work + j, n, x, lda);
    }
}

} // namespace

template <class T>
index_t getri(index_t n, T *a, index_t lda, const index_t *ipiv, T *work, index_t lwork) {
    const index_t told = block_size<T>(algorithm::inverse, n, n);
    const auto size = make<T>(real_of<T>(n > 1 ? n * told : 1));
    work[0] = size;
    if (lwork == -1 || n <= 0)
        return 0;
    const one_thread scope(worth_one_thread(2.0 * double(n) * double(n) * double(n)));
    if (const index_t info = trtri('U', 'N', n, a, lda))
        return info;
    if (n <= small_inverse) {
        finish_inverse(n, a, lda, ipiv);
        return 0;
    }
    // A caller's small workspace is not a reason to be slow.
    const index_t block = best_block<T>(n, told), room = lwork / n;
    const scratch<T> own(room < block ? n * block : 0);
    if (own.empty())
        divide_by_lower(n, a, lda, room < block ? room : block, work);
    else
        divide_by_lower(n, a, lda, block, own.data());
    exchange_columns(n, a, lda, ipiv);
    work[0] = size;
    return 0;
}

#define INSTANCES(p, P, T)                                                                         \
    template index_t getri<T>(index_t, T *, index_t, const index_t *, T *, index_t);
VOX_PRECISIONS(INSTANCES)

} // namespace vox::lapack
