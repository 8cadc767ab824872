// triangular.cpp - triangles in halves: what is below level 3 are the leaves alone.
//
// Inversion divides the rectangle by both halves before they are inverted, since a division leaves
// a small residual on either side where multiplication by an inverse does not: Du Croz and Higham,
// Stability of Methods for Matrix Inversion, IMA Journal of Numerical Analysis 12 (1992).
#include "lapack/drivers/triangular.hpp"

#include "lapack/blas.hpp"
#include "lapack/triangle_leaf.hpp"
#include "serv/dispatch.hpp"

#define DISPATCH(p, P, T)                                                                          \
    VOX_DISPATCH_NAMED(lapack, p##trtri_leaf, p##trtri_leaf, void, VOX_TRTRI_LEAF_PARAMETERS(T),   \
                       (upper, unit, n, a, lda))                                                   \
    VOX_DISPATCH_NAMED(lapack, p##lauum_leaf, p##lauum_leaf, void, VOX_LAUUM_LEAF_PARAMETERS(T),   \
                       (upper, n, a, lda))
VOX_PRECISIONS(DISPATCH)

namespace vox::lapack {
namespace {

using namespace blas;

template <class T>
struct leaves;
#define LEAVES(p, P, T)                                                                            \
    template <>                                                                                    \
    struct leaves<T> {                                                                             \
        static constexpr p##trtri_leaf_dispatch trtri = {};                                        \
        static constexpr p##lauum_leaf_dispatch lauum = {};                                        \
    };
VOX_PRECISIONS(LEAVES)

template <class T>
index_t first_zero(char diag, index_t n, const T *a, index_t lda) {
    for (index_t i = 0; i < n && diag == 'N'; ++i)
        if (is_zero(a[i + i * lda]))
            return i + 1;
    return 0;
}

} // namespace

template <class T>
index_t trti2(char uplo, char diag, index_t n, T *a, index_t lda) {
    if (n <= 0)
        return 0;
    const bool upper = uplo == 'U';
    if (n <= triangle_leaf<T>) {
        leaves<T>::trtri(upper, diag == 'U', n, a, lda);
        return 0;
    }
    const index_t n1 = first_part(n), n2 = n - n1;
    T *const a22 = a + n1 + n1 * lda;
    if (upper) {
        T *const a12 = a + n1 * lda;
        trsm('L', 'U', 'N', diag, n1, n2, make<T>(-1), a, lda, a12, lda);
        trsm('R', 'U', 'N', diag, n1, n2, one<T>, a22, lda, a12, lda);
    } else {
        T *const a21 = a + n1;
        trsm('L', 'L', 'N', diag, n2, n1, make<T>(-1), a22, lda, a21, lda);
        trsm('R', 'L', 'N', diag, n2, n1, one<T>, a, lda, a21, lda);
    }
    trti2(uplo, diag, n1, a, lda);
    return trti2(uplo, diag, n2, a22, lda);
}

template <class T>
index_t trtri(char uplo, char diag, index_t n, T *a, index_t lda) {
    const index_t info = first_zero(diag, n, a, lda);
    return info ? info : trti2(uplo, diag, n, a, lda);
}

template <class T>
void solve_triangle(char uplo, char trans, char diag, index_t n, index_t nrhs, const T *a,
                    index_t lda, T *b, index_t ldb) {
    if (n <= 0 || nrhs <= 0)
        return;
    const index_t few = n < 64 ? 3 : 5; // level 3 takes its time for tiles that it does not fill
    if (nrhs <= few)
        for (index_t j = 0; j < nrhs; ++j)
            trsv(uplo, trans, diag, n, a, lda, b + j * ldb, 1);
    else
        trsm('L', uplo, trans, diag, n, nrhs, one<T>, a, lda, b, ldb);
}

template <class T>
index_t trtrs(char uplo, char trans, char diag, index_t n, index_t nrhs, const T *a, index_t lda,
              T *b, index_t ldb) {
    const index_t info = first_zero(diag, n, a, lda);
    if (!info)
        solve_triangle(uplo, trans, diag, n, nrhs, a, lda, b, ldb);
    return info;
}

template <class T>
index_t lauum(char uplo, index_t n, T *a, index_t lda) {
    if (n <= 0)
        return 0;
    const bool upper = uplo == 'U';
    if (n <= triangle_leaf<T>) {
        leaves<T>::lauum(upper, n, a, lda);
        return 0;
    }
    const index_t n1 = first_part(n), n2 = n - n1;
    T *const a22 = a + n1 + n1 * lda;
    lauum(uplo, n1, a, lda);
    if (upper) {
        T *const a12 = a + n1 * lda;
        herk('U', 'N', n1, n2, 1, a12, lda, 1, a, lda);
        trmm('R', 'U', 'C', 'N', n1, n2, one<T>, a22, lda, a12, lda);
    } else {
        T *const a21 = a + n1;
        herk('L', 'C', n1, n2, 1, a21, lda, 1, a, lda);
        trmm('L', 'L', 'C', 'N', n2, n1, one<T>, a22, lda, a21, lda);
    }
    return lauum(uplo, n2, a22, lda);
}

#define INSTANCES(p, P, T)                                                                         \
    template index_t trtri<T>(char, char, index_t, T *, index_t);                                  \
    template index_t trti2<T>(char, char, index_t, T *, index_t);                                  \
    template index_t trtrs<T>(char, char, char, index_t, index_t, const T *, index_t, T *,         \
                              index_t);                                                            \
    template void solve_triangle<T>(char, char, char, index_t, index_t, const T *, index_t, T *,   \
                                    index_t);                                                      \
    template index_t lauum<T>(char, index_t, T *, index_t);
VOX_PRECISIONS(INSTANCES)

} // namespace vox::lapack
