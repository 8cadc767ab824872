// nancheck.cpp - whether an operand holds a NaN: what every LAPACKE call with the check on pays.
//
// Lines are tested eight vectors at a time. An unordered comparison tests two vectors at once and raises
// no floating-point exception; a sum would, and would have to be looked into wherever infinities cancel.
#include "lapack/extremes.hpp"
#include "lapack/lapacke/helpers.hpp"
#include "lapack/packs.hpp"
#include "vox/lapacke.h"

namespace vox::lapacke {
namespace {

using namespace lapack; // packs

// n real numbers, one after another.
template <class R>
bool line_has_nan(index_t n, const R *x) {
    constexpr index_t k = lanes<R>;
    const auto pair = [&](index_t i) { return unordered(load(x + i), load(x + i + k)); };
    __m128 found = _mm_setzero_ps();
    for (; n >= 8 * k; n -= 8 * k, x += 8 * k)
        found =
            either(found, either(either(pair(0), pair(2 * k)), either(pair(4 * k), pair(6 * k))));
    for (; n >= k; n -= k, x += k)
        found = either(found, unordered(load(x), load(x)));
    bool odd_one = false;
    for (; n > 0; --n, ++x)
        odd_one |= *x != *x;
    return odd_one || any(found);
}

template <class T>
bool elements_have_nan(index_t n, const T *x) {
    using R = real_of<T>;
    return line_has_nan(n * index_t(sizeof(T) / sizeof(R)), reinterpret_cast<const R *>(x));
}

} // namespace

template <class T>
bool has_nan_ge(int layout, index_t m, index_t n, const T *a, index_t lda) {
    if (!a || m <= 0 || n <= 0 || (layout != row_major && layout != column_major))
        return false;
    const index_t length = layout == column_major ? m : n, lines = layout == column_major ? n : m;
    if (length == lda)
        return elements_have_nan(length * lines, a);
    for (index_t j = 0; j < lines; ++j)
        if (elements_have_nan(least(length, lda), a + j * lda))
            return true;
    return false;
}

template <class T>
bool has_nan_tr(int layout, char uplo, char diag, index_t n, const T *a, index_t lda) {
    const stored_triangle shape(layout, uplo, diag, n);
    if (!a || !shape.valid)
        return false;
    for (index_t j = 0; j < n; ++j) {
        const index_t first = shape.first(j);
        if (elements_have_nan(least(shape.end(j), lda) - first, a + j * lda + first))
            return true;
    }
    return false;
}

template <class T>
bool has_nan(index_t n, const T *x, index_t incx) {
    if (!x)
        return false;
    if (incx == 0)
        return elements_have_nan(1, x);
    if (incx == 1 || incx == -1)
        return elements_have_nan(n, x);
    for (index_t i = 0, step = incx < 0 ? -incx : incx; i < n; ++i)
        if (elements_have_nan(1, x + i * step))
            return true;
    return false;
}

#define INSTANTIATE(p, P, T)                                                                       \
    template bool has_nan_ge<T>(int, index_t, index_t, const T *, index_t);                        \
    template bool has_nan_tr<T>(int, char, char, index_t, const T *, index_t);                     \
    template bool has_nan<T>(index_t, const T *, index_t);
VOX_PRECISIONS(INSTANTIATE)

} // namespace vox::lapacke

using namespace vox::lapacke;

#define GENERAL(p, P, T)                                                                           \
    extern "C" vox_int LAPACKE_##p##_nancheck(vox_int n, const T *x, vox_int incx) {               \
        return has_nan<T>(n, x, incx);                                                             \
    }                                                                                              \
    extern "C" vox_int LAPACKE_##p##ge_nancheck(int matrix_layout, vox_int m, vox_int n,           \
                                                const T *a, vox_int lda) {                         \
        return has_nan_ge<T>(matrix_layout, m, n, a, lda);                                         \
    }                                                                                              \
    extern "C" vox_int LAPACKE_##p##tr_nancheck(int matrix_layout, char uplo, char diag,           \
                                                vox_int n, const T *a, vox_int lda) {              \
        return has_nan_tr<T>(matrix_layout, uplo, diag, n, a, lda);                                \
    }
VOX_PRECISIONS(GENERAL)

#define HALF(p, kind, T)                                                                           \
    extern "C" vox_int LAPACKE_##p##kind##_nancheck(int matrix_layout, char uplo, vox_int n,       \
                                                    const T *a, vox_int lda) {                     \
        return has_nan_tr<T>(matrix_layout, uplo, 'N', n, a, lda);                                 \
    }
#define SYMMETRIC(p, P, T) HALF(p, sy, T) HALF(p, po, T)
VOX_PRECISIONS(SYMMETRIC)
#define HERMITIAN(p, P, T) HALF(p, he, T)
VOX_COMPLEX_PRECISIONS(HERMITIAN)
