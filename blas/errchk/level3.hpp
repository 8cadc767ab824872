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
VOX_RULE gemm_alloc(bool identifier, index_t m, index_t n, index_t k) {
    return identifier ? 1 : m < 0 ? 2 : n < 0 ? 3 : k < 0 ? 4 : 0;
}
// buffer: it was not made for this operand.
VOX_RULE gemm_pack(bool identifier, bool trans, index_t m, index_t n, index_t k, index_t ld,
                   index_t rows, bool buffer) {
    return identifier          ? 1
           : trans             ? 2
           : m < 0             ? 3
           : n < 0             ? 4
           : k < 0             ? 5
           : bad_lda(ld, rows) ? 8
           : buffer            ? 9
                               : 0;
}
// buffer_x: X is packed, but not this operand; a packed one has no leading dimension to be looked at.
VOX_RULE gemm_compute(bool transa, bool transb, index_t m, index_t n, index_t k, bool buffer_a,
                      index_t lda, index_t rows_a, bool buffer_b, index_t ldb, index_t rows_b,
                      index_t ldc, index_t rows_c) {
    return transa                 ? 1
           : transb               ? 2
           : m < 0                ? 3
           : n < 0                ? 4
           : k < 0                ? 5
           : buffer_a             ? 6
           : bad_lda(lda, rows_a) ? 7
           : buffer_b             ? 8
           : bad_lda(ldb, rows_b) ? 9
           : bad_lda(ldc, rows_c) ? 12
                                  : 0;
}
// The products of integers; offset: which elements the offset of the result has.
VOX_RULE gemm_integer(bool transa, bool transb, bool offset, index_t m, index_t n, index_t k,
                      index_t lda, index_t rows_a, index_t ldb, index_t rows_b, index_t ldc,
                      index_t rows_c) {
    return transa                 ? 1
           : transb               ? 2
           : offset               ? 3
           : m < 0                ? 4
           : n < 0                ? 5
           : k < 0                ? 6
           : bad_lda(lda, rows_a) ? 9
           : bad_lda(ldb, rows_b) ? 12
           : bad_lda(ldc, rows_c) ? 16
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
