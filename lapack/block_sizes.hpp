// block_sizes.hpp - how wide the blocks of LAPACK's algorithms are: one table, for the drivers and for
// programs that ask (ilaenv).
//
// A block is as many columns (rows of an LQ) as are done by an unblocked or a recursive way before the
// rest of the matrix is updated by products. Narrow ones are faster while the matrix is in caches, and
// waste less on small matrices; wide ones read a matrix in memory less often. To measure: each algorithm and
// type on square matrices of order 64 to 2000 and on strips of ten squares, blocks of 8 to 128, rounds of all
// sizes in turn, best of each, one thread. These were so on a processor with 1 MB of cache for each core,
// path avx512: no other size was faster in general by more than the scatter of a few percent. Recursive
// algorithms (64 everywhere) have no block; theirs is one for programs that do their own blocking.
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
    index_t narrow, wide;
    index_t minimum;   // with less, because memory is short, unblocked is faster
    index_t crossover; // up to this order unblocked is faster
};

constexpr blocking blocking_of(algorithm which) {
    constexpr blocking table[] = {
        {64, 64, 2, 0},  // lu
        {32, 128, 2, 0}, // inverse
        {64, 64, 2, 0},  // cholesky
        {64, 64, 2, 0},  // triangle_inverse
        {64, 64, 2, 0},  // triangle_square
        {16, 32, 2, 72}, // qr
        {32, 32, 2, 0},  // make_q
        {32, 32, 2, 0},  // apply_q
        {1, 1, 2, 0},    // none
    };
    return table[int(which)];
}

// For an m x n operand of such elements; of unknown size if either is negative.
constexpr index_t block_size(algorithm which, index_t m, index_t n, size_t element_bytes) {
    constexpr index_t in_caches = 2'500'000; // bytes
    const bool small = m >= 0 && n >= 0 && m * n <= in_caches / index_t(element_bytes);
    return small ? blocking_of(which).narrow : blocking_of(which).wide;
}
template <class T>
constexpr index_t block_size(algorithm which, index_t m, index_t n) {
    return block_size(which, m, n, sizeof(T));
}

} // namespace vox::lapack

// What ilaenv answers, of Fortran's arguments: `name` is a routine's, blanks after it or not, letters in
// either case; -1 for an `ispec` that asks nothing.
extern "C" vox::index_t vox_lapack_ilaenv(const vox::index_t *ispec, const char *name,
                                          const char *opts, const vox::index_t *n1,
                                          const vox::index_t *n2, const vox::index_t *n3,
                                          const vox::index_t *n4, size_t name_length,
                                          size_t opts_length);
