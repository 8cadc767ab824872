// cholesky.cpp - factorisation in halves (Gustavson, Recursion Leads to Automatic Variable Blocking,
// IBM Journal of Research and Development 41, 1997), and what is made of the factor.
#include "lapack/drivers/cholesky.hpp"

#include "lapack/blas.hpp"
#include "lapack/drivers/triangular.hpp"
#include "lapack/triangle_leaf.hpp"
#include "serv/dispatch.hpp"

#define DISPATCH(p, P, T)                                                                          \
    VOX_DISPATCH_NAMED(lapack, p##potrf_leaf, p##potrf_leaf, vox::index_t,                         \
                       VOX_POTRF_LEAF_PARAMETERS(T), (upper, n, a, lda))
VOX_PRECISIONS(DISPATCH)

namespace vox::lapack {
namespace {

using namespace blas;

#define LEAF(p, P, T)                                                                              \
    index_t leaf(bool upper, index_t n, T *a, index_t lda) {                                       \
        return p##potrf_leaf(upper, n, a, lda);                                                    \
    }
VOX_PRECISIONS(LEAF)

} // namespace

template <class T>
index_t potrf(char uplo, index_t n, T *a, index_t lda) {
    if (n <= 0)
        return 0;
    const bool upper = uplo == 'U';
    if (n <= triangle_leaf<T>)
        return leaf(upper, n, a, lda);
    const index_t n1 = first_part(n), n2 = n - n1;
    if (const index_t info = potrf(uplo, n1, a, lda))
        return info;
    T *const a22 = a + n1 + n1 * lda;
    if (upper) {
        T *const a12 = a + n1 * lda;
        trsm('L', 'U', 'C', 'N', n1, n2, one<T>, a, lda, a12, lda);
        herk('U', 'C', n2, n1, -1, a12, lda, 1, a22, lda);
    } else {
        T *const a21 = a + n1;
        trsm('R', 'L', 'C', 'N', n2, n1, one<T>, a, lda, a21, lda);
        herk('L', 'N', n2, n1, -1, a21, lda, 1, a22, lda);
    }
    const index_t info = potrf(uplo, n2, a22, lda);
    return info ? n1 + info : 0;
}

template <class T>
index_t potrs(char uplo, index_t n, index_t nrhs, const T *a, index_t lda, T *b, index_t ldb) {
    const bool upper = uplo == 'U';
    solve_triangle(uplo, upper ? 'C' : 'N', 'N', n, nrhs, a, lda, b, ldb);
    solve_triangle(uplo, upper ? 'N' : 'C', 'N', n, nrhs, a, lda, b, ldb);
    return 0;
}

template <class T>
index_t potri(char uplo, index_t n, T *a, index_t lda) {
    const index_t info = trtri(uplo, 'N', n, a, lda);
    return info ? info : lauum(uplo, n, a, lda);
}

template <class T>
index_t posv(char uplo, index_t n, index_t nrhs, T *a, index_t lda, T *b, index_t ldb) {
    const index_t info = potrf(uplo, n, a, lda);
    return info ? info : potrs(uplo, n, nrhs, a, lda, b, ldb);
}

#define INSTANCES(p, P, T)                                                                         \
    template index_t potrf<T>(char, index_t, T *, index_t);                                        \
    template index_t potrs<T>(char, index_t, index_t, const T *, index_t, T *, index_t);           \
    template index_t potri<T>(char, index_t, T *, index_t);                                        \
    template index_t posv<T>(char, index_t, index_t, T *, index_t, T *, index_t);
VOX_PRECISIONS(INSTANCES)

} // namespace vox::lapack
