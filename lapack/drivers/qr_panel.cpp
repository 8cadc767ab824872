// qr_panel.cpp - a panel of columns by halves (Elmroth and Gustavson, IBM J. Res. Develop. 44(4),
// 2000).
#include "lapack/drivers/qr_panel.hpp"

#include "lapack/drivers/block_reflector.hpp"
#include "lapack/drivers/reflections.hpp"

namespace vox::lapack {
namespace {

// The upper triangle of the first n rows moves to R; ones and zeros take its place.
template <class T>
void take_r(index_t n, T *a, index_t lda, T *r, index_t ldr) {
    for (index_t j = 0; j < n; ++j)
        for (index_t i = 0; i <= j; ++i) {
            r[i + j * ldr] = a[i + j * lda];
            a[i + j * lda] = i == j ? one<T> : T{};
        }
}

} // namespace

template <class T>
void factor_panel(index_t m, index_t n, T *a, index_t lda, T *r, index_t ldr, T *tau, T *t,
                  index_t ldt, T *w) {
    if (n <= few_reflectors) {
        factor_columns(m, n, a, lda, tau, w, t, ldt);
        return take_r(n, a, lda, r, ldr);
    }
    const index_t n1 = (n / 2 + few_reflectors - 1) / few_reflectors * few_reflectors, n2 = n - n1;
    T *const right = a + n1 * lda, *const v2 = right + n1;
    T *const t2 = t + n1 + n1 * ldt, *const corner = t + n1 * ldt;
    factor_panel(m, n1, a, lda, r, ldr, tau, t, ldt, w);
    plain_reflectors(m, n1, a, lda, t, ldt).apply_left(true, n2, right, lda, w);
    for (index_t j = 0; j < n2; ++j)
        for (index_t i = 0; i < n1; ++i) {
            r[i + (n1 + j) * ldr] = right[i + j * lda];
            right[i + j * lda] = T{};
        }
    factor_panel(m - n1, n2, v2, lda, r + n1 + n1 * ldr, ldr, tau + n1, t2, ldt, w);
    blas::gemm('C', 'N', n1, n2, m - n1, -one<T>, a + n1, lda, v2, lda, T{}, corner, ldt);
    blas::trmm('L', 'U', 'N', 'N', n1, n2, one<T>, t, ldt, corner, ldt);
    blas::trmm('R', 'U', 'N', 'N', n1, n2, one<T>, t2, ldt, corner, ldt);
}

#define INSTANCES(p, P, T)                                                                         \
    template void factor_panel<T>(index_t, index_t, T *, index_t, T *, index_t, T *, T *, index_t, \
                                  T *);
VOX_PRECISIONS(INSTANCES)
#undef INSTANCES

} // namespace vox::lapack
