// columns.hpp - a matrix as a list of columns: one description for full, band and packed storage.
//
// Column j, counted from row 0 of the matrix, starts at a + j lda + bend j (j - 1) / 2, and holds
// the rows j - above .. j + below. So A(i, j) is at column(j)[i] in every storage, and the routines
// for full, band and packed matrices share their kernels and drivers.
#pragma once

#include <type_traits>

#include "serv/base.hpp"

namespace vox {

constexpr index_t all_rows = index_t(1) << 60;

template <class T>
struct columns {
    T *a;
    index_t lda;
    index_t bend = 0;
    index_t above = all_rows;
    index_t below = all_rows;

    [[gnu::always_inline]] T *operator()(index_t j) const {
        return a + j * lda + bend * (j * (j - 1) / 2);
    }
    // The rows of column j are first(j) <= i < end(j), as far as the matrix goes.
    [[gnu::always_inline]] index_t first(index_t j) const { return j - above; }
    [[gnu::always_inline]] index_t end(index_t j) const { return j + below + 1; }
};

// Only the triangle is stored: A(i, j) with i <= j (upper) or i >= j, at most `band` off the
// diagonal.
template <class T>
[[gnu::always_inline]] inline columns<T> triangle(bool upper, T *a, index_t lda, index_t bend,
                                                  index_t band) {
    return {a, lda, bend, upper ? band : 0, upper ? 0 : band};
}
template <class T>
[[gnu::always_inline]] inline columns<T> full_triangle(bool upper, T *a, index_t lda) {
    return triangle(upper, a, lda, 0, all_rows);
}
// ab[k + i - j + j lda] (upper), ab[i - j + j lda] (lower).
template <class T>
[[gnu::always_inline]] inline columns<T> band_triangle(bool upper, T *ab, index_t lda, index_t k) {
    return triangle(upper, upper ? ab + k : ab, lda - 1, 0, k);
}
// ap[i + j (j + 1) / 2] (upper), ap[i + j (2 n - j - 1) / 2] (lower).
template <class T>
[[gnu::always_inline]] inline columns<T> packed_triangle(bool upper, T *ap, index_t n) {
    return triangle(upper, ap, upper ? 1 : n - 1, upper ? 1 : -1, all_rows);
}
// ab[ku + i - j + j lda].
template <class T>
[[gnu::always_inline]] inline columns<T> band(T *ab, index_t lda, index_t kl, index_t ku) {
    return {ab + ku, lda - 1, 0, ku, kl};
}

} // namespace vox
