// level3.hpp - the rules of level 3, as level2.hpp has those of level 2. rows_x: the rows of X as it
// is stored, before its operation; in the C forms of row-major calls the columns.
#pragma once

#include "blas/errchk/options.hpp"

namespace vox::errchk {

#define VOX_RULE [[gnu::always_inline]] inline int

VOX_RULE gemm(bool transa, bool transb, index_t m, index_t n, index_t k, index_t lda,
              index_t rows_a, index_t ldb, index_t rows_b, index_t ldc, index_t rows_c) {
    return transa                 ? 1
           : transb               ? 2
           : m < 0                ? 3
           : n < 0                ? 4
           : k < 0                ? 5
           : bad_lda(lda, rows_a) ? 8
           : bad_lda(ldb, rows_b) ? 10
           : bad_lda(ldc, rows_c) ? 13
                                  : 0;
}
VOX_RULE gemmt(bool uplo, bool transa, bool transb, index_t n, index_t k, index_t lda,
               index_t rows_a, index_t ldb, index_t rows_b, index_t ldc) {
    return uplo                   ? 1
           : transa               ? 2
           : transb               ? 3
           : n < 0                ? 4
           : k < 0                ? 5
           : bad_lda(lda, rows_a) ? 8
           : bad_lda(ldb, rows_b) ? 10
           : bad_lda(ldc, n)      ? 13
                                  : 0;
}
// order: of the symmetric matrix; rows: of the two others.
VOX_RULE symm(bool side, bool uplo, index_t m, index_t n, index_t lda, index_t order, index_t ldb,
              index_t ldc, index_t rows) {
    return side                  ? 1
           : uplo                ? 2
           : m < 0               ? 3
           : n < 0               ? 4
           : bad_lda(lda, order) ? 7
           : bad_lda(ldb, rows)  ? 9
           : bad_lda(ldc, rows)  ? 12
                                 : 0;
}
VOX_RULE syrk(bool uplo, bool trans, index_t n, index_t k, index_t lda, index_t rows, index_t ldc) {
    return uplo                 ? 1
           : trans              ? 2
           : n < 0              ? 3
           : k < 0              ? 4
           : bad_lda(lda, rows) ? 7
           : bad_lda(ldc, n)    ? 10
                                : 0;
}
VOX_RULE syr2k(bool uplo, bool trans, index_t n, index_t k, index_t lda, index_t ldb, index_t rows,
               index_t ldc) {
    return uplo                 ? 1
           : trans              ? 2
           : n < 0              ? 3
           : k < 0              ? 4
           : bad_lda(lda, rows) ? 7
           : bad_lda(ldb, rows) ? 9
           : bad_lda(ldc, n)    ? 12
                                : 0;
}
VOX_RULE trmm(bool side, bool uplo, bool trans, bool diag, index_t m, index_t n, index_t lda,
              index_t order, index_t ldb, index_t rows) {
    return side                  ? 1
           : uplo                ? 2
           : trans               ? 3
           : diag                ? 4
           : m < 0               ? 5
           : n < 0               ? 6
           : bad_lda(lda, order) ? 9
           : bad_lda(ldb, rows)  ? 11
                                 : 0;
}

#undef VOX_RULE

} // namespace vox::errchk
