// shape.hpp - the blocks in which a nest of loops is moved.
//
// A block is as much of a few loops as fits the innermost cache. It grows along both orders of memory in turn, so
// that what is read and what is written are long runs of elements that lie side by side. Where reading and writing
// begin with different loops a block is transposed: rows are what is contiguous in the destination, columns what is
// contiguous in the source.
#pragma once

#include "dnn/nest.hpp"

namespace vox::dnn {

constexpr int block_bytes = 16 * 1024;
constexpr int most_lines = 256;      // rows or columns of a block
constexpr int long_row_bytes = 2048; // what is worth a copy of its own

// Some of a nest's loops.
struct loops {
    int count = 0;
    int at[most_loops];
    void add(int l);
};

struct shape {
    enum {
        rows,       // long runs, one after the other
        units,      // short runs that are contiguous on both sides
        transposed, // contiguous on either side along different loops
        scattered   // anything else, element by element
    } way;
    index_t extent[most_loops]; // of each loop in a block
    index_t room; // places of a run of loop 0 in the destination, zeros beyond its count
    int run;      // loops 0 .. run-1 are contiguous in the destination
    loops row, column,
        other; // transposed: loops of rows and columns, and those left; otherwise other alone
    index_t blocks;

    // room is the first loop's count, or more if a long row's bytes hold it.
    shape(const nest &n, index_t elem_size, index_t room);
    // Blocks that a loop is cut into.
    index_t pieces(const nest &n, int l) const;
    // Elements of a block in the destination, and of the rows or columns.
    index_t size(const nest &n) const;
    index_t product(const loops &some) const;

  private:
    void grow(const nest &n, const loops &chain, index_t bytes, index_t elem_size);
};

} // namespace vox::dnn
