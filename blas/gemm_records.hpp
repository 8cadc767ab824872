// gemm_records.hpp - what a general product decides before it starts, as plain data.
#pragma once

#include "serv/base.hpp"

namespace vox {

// How one call is computed on one code path.
struct gemm_info;
struct gemm_strategy {
    int kind; // 0: default; 4: B alone is packed; 16: few rows or columns; 2, 32: parts of a team
    index_t rows, columns; // of a register block
    index_t depth_multiple;
    void (*fill)(const gemm_strategy *strategy, index_t m, index_t n, index_t k, gemm_info *info);
};

// The blocks of a call and where their packed copies are.
struct gemm_info {
    index_t mb, nb, kb; // rows of A and columns of B in a block, and the depth of both
    // 1: A alone; 2: B alone; 3: both; 4, 5: a block of B, or of A, for each thread of a team
    int mode;
    char *a, *b;
    index_t a_offset, b_offset; // bytes behind a page's start
    index_t a_page, b_page;     // bytes
    index_t pitch;              // modes 4 and 5: bytes from one thread's block to the next's
    int (*get)(gemm_info *info, index_t threads); // 1 for an unknown mode, else 0
    void (*release)(gemm_info *info);
    void *memory; // what was allocated; null when there is none
};

// Rules for block sizes, in elements.
struct block_limits {
    index_t whole_depth,
        least_depth;      // up to here in one block, for which buffers have at least so much
    index_t halved_depth; // below this in two blocks
    index_t depth;        // and in blocks of this above
    index_t rows;
    index_t columns, shallow_columns; // the latter below a depth of
    index_t shallow_depth;
};

// When operands are read in place, and when few rows or columns ask for the strategy of kind 16.
struct strategy_limits {
    index_t square_a[2];      // orders of a square A with beta = 0 that are read in place
    index_t shallow_depth;    // below it:
    index_t thin;             //   m n / (m + n) below this is thin
    index_t thin_rows;        //   thin, with fewer rows: in place
    index_t thin_columns;     //   thin, with fewer columns and steps than this: kind 16
    index_t tiny_depth, tiny; // below this depth and these dimensions: in place
    index_t rows, columns;    // A as stored: fewer rows in place; fewer columns kind 16
    index_t transposed_rows, transposed_columns; // the same for its transpose
    index_t small = 0;                           // m, n and k below this: in place
    // A as stored, in place as well: m, n and k below the first; up to so many columns; below a depth up
    // to so many.
    index_t plain_small = 0, plain_columns = 0, plain_depth = 0, plain_shallow_columns = 0;
};

} // namespace vox
