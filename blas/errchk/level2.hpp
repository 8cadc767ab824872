// level2.hpp - the rules of level 2: the Fortran number of the first bad argument, or 0. The C
// interface uses the same ones; its numbers are larger by one, since the layout comes first.
#pragma once

#include "blas/errchk/options.hpp"

namespace vox::errchk {

#define VOX_RULE [[gnu::always_inline]] inline int

VOX_RULE gemv(bool trans, index_t m, index_t n, index_t lda, index_t rows, index_t incx,
              index_t incy) {
    return trans                ? 1
           : m < 0              ? 2
           : n < 0              ? 3
           : bad_lda(lda, rows) ? 6
           : incx == 0          ? 8
           : incy == 0          ? 11
                                : 0;
}
VOX_RULE gbmv(bool trans, index_t m, index_t n, index_t kl, index_t ku, index_t lda, index_t incx,
              index_t incy) {
    return trans               ? 1
           : m < 0             ? 2
           : n < 0             ? 3
           : kl < 0            ? 4
           : ku < 0            ? 5
           : lda < kl + ku + 1 ? 8
           : incx == 0         ? 10
           : incy == 0         ? 13
                               : 0;
}
VOX_RULE symv(bool uplo, index_t n, index_t lda, index_t incx, index_t incy) {
    return uplo ? 1 : n < 0 ? 2 : bad_lda(lda, n) ? 5 : incx == 0 ? 7 : incy == 0 ? 10 : 0;
}
VOX_RULE sbmv(bool uplo, index_t n, index_t k, index_t lda, index_t incx, index_t incy) {
    return uplo ? 1 : n < 0 ? 2 : k < 0 ? 3 : lda < k + 1 ? 6 : incx == 0 ? 8 : incy == 0 ? 11 : 0;
}
VOX_RULE spmv(bool uplo, index_t n, index_t incx, index_t incy) {
    return uplo ? 1 : n < 0 ? 2 : incx == 0 ? 6 : incy == 0 ? 9 : 0;
}
VOX_RULE trmv(bool uplo, bool trans, bool diag, index_t n, index_t lda, index_t incx) {
    return uplo ? 1 : trans ? 2 : diag ? 3 : n < 0 ? 4 : bad_lda(lda, n) ? 6 : incx == 0 ? 8 : 0;
}
VOX_RULE tbmv(bool uplo, bool trans, bool diag, index_t n, index_t k, index_t lda, index_t incx) {
    return uplo          ? 1
           : trans       ? 2
           : diag        ? 3
           : n < 0       ? 4
           : k < 0       ? 5
           : lda < k + 1 ? 7
           : incx == 0   ? 9
                         : 0;
}
VOX_RULE tpmv(bool uplo, bool trans, bool diag, index_t n, index_t incx) {
    return uplo ? 1 : trans ? 2 : diag ? 3 : n < 0 ? 4 : incx == 0 ? 7 : 0;
}
VOX_RULE ger(index_t m, index_t n, index_t incx, index_t incy, index_t lda, index_t rows) {
    return m < 0 ? 1 : n < 0 ? 2 : incx == 0 ? 5 : incy == 0 ? 7 : bad_lda(lda, rows) ? 9 : 0;
}
VOX_RULE syr(bool uplo, index_t n, index_t incx, index_t lda) {
    return uplo ? 1 : n < 0 ? 2 : incx == 0 ? 5 : bad_lda(lda, n) ? 7 : 0;
}
VOX_RULE spr(bool uplo, index_t n, index_t incx) {
    return uplo ? 1 : n < 0 ? 2 : incx == 0 ? 5 : 0;
}
VOX_RULE syr2(bool uplo, index_t n, index_t incx, index_t incy, index_t lda) {
    return uplo ? 1 : n < 0 ? 2 : incx == 0 ? 5 : incy == 0 ? 7 : bad_lda(lda, n) ? 9 : 0;
}
VOX_RULE spr2(bool uplo, index_t n, index_t incx, index_t incy) {
    return uplo ? 1 : n < 0 ? 2 : incx == 0 ? 5 : incy == 0 ? 7 : 0;
}

#undef VOX_RULE

} // namespace vox::errchk
