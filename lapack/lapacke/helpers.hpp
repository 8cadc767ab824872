// helpers.hpp - what every LAPACKE form needs for its matrices: the test for NaN and the copy into the
// other layout.
//
// Layouts are 101 (row major) and 102 (column major). Letters in either case. A null pointer, an unknown
// layout or an unknown letter: nothing is found, nothing is copied. A leading dimension that is too small is
// taken as the length of a line, since it is judged only afterwards.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapacke {

constexpr int row_major = 101, column_major = 102;

// Results when there is no memory: for a work array, for a copy in the other layout.
constexpr vox_int no_work_memory = -1010, no_transpose_memory = -1011;

// Whether an element is NaN, in either part; what a triangle leaves out, and a unit diagonal, is not read.
template <class T>
bool has_nan_ge(int layout, index_t m, index_t n, const T *a, index_t lda);
template <class T>
bool has_nan_tr(int layout, char uplo, char diag, index_t n, const T *a, index_t lda);
// n elements, |incx| apart; incx = 0: the one.
template <class T>
bool has_nan(index_t n, const T *x, index_t incx);

// out := in, which is m x n and lies as layout says, in the other layout; conjugated where asked for.
template <class T>
void transpose_ge(int layout, index_t m, index_t n, const T *in, index_t ldin, T *out,
                  index_t ldout, bool conjugate = false);
// The same for a triangle of order n; nothing but the triangle is read or written, and a unit diagonal
// neither.
template <class T>
void transpose_tr(int layout, char uplo, char diag, index_t n, const T *in, index_t ldin, T *out,
                  index_t ldout);

// A triangle of order n as it lies in memory, line by line: line j holds places [first(j), end(j)).
struct stored_triangle {
    bool valid, upper; // upper: of the column-major matrix that has these lines as columns
    index_t unit, n;

    stored_triangle(int layout, char uplo, char diag, index_t order) : n(order) {
        const char half = folded(uplo), diagonal = folded(diag);
        valid = (layout == row_major || layout == column_major) && (half == 'U' || half == 'L') &&
                (diagonal == 'U' || diagonal == 'N');
        upper = (half == 'U') == (layout == column_major);
        unit = diagonal == 'U';
    }
    index_t first(index_t j) const { return upper ? 0 : j + unit; }
    index_t end(index_t j) const { return upper ? j + 1 - unit : n; }

  private:
    static char folded(char c) { return c >= 'a' && c <= 'z' ? char(c - 'a' + 'A') : c; }
};

} // namespace vox::lapacke
