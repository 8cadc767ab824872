// block_sizes.hpp - how wide the blocks of LAPACK's algorithms are: one table, for the drivers and for
// programs that ask (ilaenv).
//
// A block is as many columns (rows of an LQ) as are done by an unblocked or a recursive way before the
// rest of the matrix is updated by products. How the sizes were found: for each algorithm and element type,
// square matrices of order 100 to 3000 were timed with blocks of 8 to 256, one thread on the paths avx2
// and avx512; a size stands here if no other was faster by more than the scatter. A recursive algorithm's
// block is where a program's blocks should begin to pay.
#pragma once

#include "serv/base.hpp"

namespace vox::lapack {

enum class algorithm {
    lu,               // getrf
    inverse,          // getri
    cholesky,         // potrf
    triangle_inverse, // trtri
    triangle_square,  // lauum
    qr,               // geqrf, gelqf
    make_q,           // orgqr, orglq
    apply_q,          // ormqr, ormlq
    none              // unblocked
};

struct blocking {
    index_t narrow, wide, wide_from; // the wide ones from this order on
    index_t minimum;                 // with less, because memory is short, unblocked is faster
    index_t crossover;               // up to this order unblocked is faster
};

constexpr blocking blocking_of(algorithm which) {
    constexpr blocking table[] = {
        {64, 64, 0, 2, 0},    // lu
        {64, 64, 0, 2, 0},    // inverse
        {64, 64, 0, 2, 0},    // cholesky
        {64, 64, 0, 2, 0},    // triangle_inverse
        {64, 64, 0, 2, 0},    // triangle_square
        {16, 32, 400, 2, 72}, // qr
        {32, 32, 0, 2, 0},    // make_q
        {32, 32, 0, 2, 0},    // apply_q
        {1, 1, 0, 2, 0},      // none
    };
    return table[int(which)];
}

// For an m x n operand; negative: not known.
constexpr index_t block_size(algorithm which, index_t m = -1, index_t n = -1) {
    const blocking b = blocking_of(which);
    const index_t order = m < n ? m : n;
    return order >= 0 && order < b.wide_from ? b.narrow : b.wide;
}

} // namespace vox::lapack

// What ilaenv answers, of Fortran's arguments: `name` is a routine's, blanks after it or not, letters in
// either case; -1 for an `ispec` that asks nothing.
extern "C" vox::index_t vox_lapack_ilaenv(const vox::index_t *ispec, const char *name,
                                          const char *opts, const vox::index_t *n1,
                                          const vox::index_t *n2, const vox::index_t *n3,
                                          const vox::index_t *n4, size_t name_length,
                                          size_t opts_length);
