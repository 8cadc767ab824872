// laswp.cpp - row interchanges, all of them on a few columns at a time: these stay in cache while the
// list of pivots passes, and threads take columns of their own.
#include "lapack/drivers/laswp.hpp"

#include "blas/drivers/team.hpp"
#include "serv/scalar.hpp"

namespace vox::lapack {
namespace {

struct interchanges {
    index_t first, last, step; // rows, from 0; last is the one after
    const index_t *pivots;
    index_t pivot_step;
};

// Ahead: so many columns further on, what will be exchanged there is fetched meanwhile.
template <int Columns, int Ahead, class T>
void exchange(const interchanges &all, T *a, index_t lda) {
    const index_t *pivot = all.pivots;
    for (index_t i = all.first; i != all.last; i += all.step, pivot += all.pivot_step) {
        T *const x = a + i, *const y = a + *pivot - 1;
        if (Ahead > 0)
            for (int c = 0; c < Columns; ++c)
                __builtin_prefetch(y + (c + Ahead) * lda, 0, 2);
        if (x != y)
            for (int c = 0; c < Columns; ++c) {
                const T kept = x[c * lda];
                x[c * lda] = y[c * lda];
                y[c * lda] = kept;
            }
    }
}

// Beyond the second-level cache columns are fetched ahead.
constexpr index_t far_bytes = 512 * 1024;

template <class T>
void exchange(const interchanges &all, index_t n, T *a, index_t lda) {
    const index_t rows = (all.last - all.first) * all.step;
    if (rows * n * index_t(sizeof(T)) >= far_bytes)
        for (; n >= 6; n -= 2, a += 2 * lda)
            exchange<2, 4>(all, a, lda);
    for (; n >= 4; n -= 4, a += 4 * lda)
        exchange<4, 0>(all, a, lda);
    for (; n > 0; --n, a += lda)
        exchange<1, 0>(all, a, lda);
}

} // namespace

template <class T>
void laswp(index_t n, T *a, index_t lda, index_t k1, index_t k2, const index_t *ipiv,
           index_t incx) {
    if (incx == 0 || n <= 0 || k2 < k1)
        return;
    const interchanges all =
        incx > 0 ? interchanges{k1 - 1, k2, 1, ipiv + k1 - 1, incx}
                 : interchanges{k2 - 1, k1 - 2, -1, ipiv + k1 - 1 + (k1 - k2) * incx, incx};
    const index_t threads = team_for((k2 - k1 + 1) * n * 4 * index_t(sizeof(T)));
    if (VOX_LIKELY(threads == 1))
        return exchange(all, n, a, lda);
    for_parts(threads, [&](index_t part) {
        const range mine = even_part(part, threads, {0, n}, 4);
        exchange(all, mine.end - mine.first, a + mine.first * lda, lda);
    });
}

#define INSTANCES(p, P, T)                                                                         \
    template void laswp<T>(index_t, T *, index_t, index_t, index_t, const index_t *, index_t);
VOX_PRECISIONS(INSTANCES)

} // namespace vox::lapack
