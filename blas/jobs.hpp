// jobs.hpp - what the kernels of level 2 are asked to do.
//
// Full, band and packed matrices are all columns; vectors are contiguous; and a job may be a part of
// the whole, so that drivers can cut a call into pieces for threads or for strided vectors. Rows and
// columns keep their numbers in the whole matrix, and vectors are addressed by them: x[j] belongs to
// column j even when only columns from first_column on are asked for, and exist.
#pragma once

#include "blas/columns.hpp"

namespace vox {

// y := beta y + alpha op(A) x, op: A or its transpose, each perhaps conjugated.
template <class T>
struct product_job {
    columns<const T> a;
    bool transposed;
    bool conjugate;
    index_t first_row, end_row, first_column, end_column;
    T alpha, beta;
    const T *x = nullptr;
    T *y = nullptr;
};

// y_rows += alpha A x_columns and y_columns += alpha B x_rows, where A is a block of the stored
// triangle and B its mirror image: the whole of it, or a rectangle beside the diagonal. In a block
// on the diagonal, rows and columns are the same vectors.
template <class T>
struct symmetric_job {
    columns<const T> a;
    bool upper;
    bool hermitian; // the mirror image is conjugated, and the diagonal taken as real
    bool conjugate; // conj(A) and conj(B) instead
    bool on_diagonal;
    index_t first_row, end_row, first_column, end_column;
    T alpha;
    const T *x_rows, *x_columns;
    T *y_rows, *y_columns;
};

// x := op(A) x, or x := the solution y of op(A) y = x, for rows and columns first .. end - 1.
template <class T>
struct triangular_job {
    columns<const T> a;
    bool upper;
    bool transposed;
    bool conjugate;
    bool unit_diagonal;
    index_t first, end;
    T *x;
};

// A += alpha x op(y) + conj(alpha) y op(x), the second term only in updates of rank two; op and the
// conjugate only where conjugated. In the triangle, or in the rectangle.
template <class T>
struct update_job {
    columns<T> a;
    enum shape : char { rectangle, upper, lower } where;
    bool conjugated; // in a triangle this makes the diagonal real, too
    bool rank_two;
    index_t first_row, end_row, first_column, end_column;
    T alpha;
    // Rank one: x_rows and y_columns.
    const T *x_rows = nullptr, *y_rows = nullptr, *x_columns = nullptr, *y_columns = nullptr;
};

} // namespace vox
