// nest.hpp - a conversion between two layouts as loops over strides, so that no element's place takes a division.
//
// The elements of a tensor have one order, in which the first dimension varies fastest; a layout cuts it into axes:
// dimensions, in blocks where the layout has them. Where the axes of two layouts have common refinements, all
// elements are moved by nested loops with a stride on either side. An axis whose last block is filled in part
// becomes several loops one after the other, so a conversion is one nest or a few.
#pragma once

#include "dnn/layout.hpp"

namespace vox::dnn {

// x = 0 .. count-1 lies x / block outer + x % block inner elements from where the axis begins. An axis without
// blocks is one block.
struct axis {
    index_t count, block, outer, inner;
};

// An image has axes if it has four or five dimensions, and something between its borders.
bool has_axes(const layout &l);

// A layout's axes in the order of elements, and the first one's place.
struct axes {
    int count = 0;
    index_t first = 0;
    axis at[max_dims];

    axes() = default;
    explicit axes(const layout &l);
    void add(uint64_t count, uint64_t block, uint64_t outer, uint64_t inner);
    // Whether no two elements have one place.
    bool distinct() const;
};

struct loop {
    index_t count, from, to; // strides in the source and the destination
};

constexpr int most_loops = 48;

// Loops in ascending order of their strides in the destination, each with a count above 1, and the places of the
// first element. Loops that are one on both sides have been joined.
struct nest {
    index_t from = 0, to = 0;
    int loops = 0;
    loop at[most_loops];

    void add(index_t count, index_t from_stride, index_t to_stride);
    void arrange();
};

// All nests of a conversion between layouts with as many elements.
class nests {
  public:
    nests(const axes &from, const axes &to);
    // Whether there are any: the axes may have no common refinement.
    bool any() const;
    // The next one; false after the last.
    bool next(nest &n);

  private:
    static constexpr int most_pieces = 48, most_nests = 64;
    // A part of a group's elements: loops that move it.
    struct piece {
        index_t from, to;
        int first, loops;
    };
    // Axes of both layouts that cover the same elements: any one of the pieces.
    struct group {
        int first, pieces, now;
    };

    bool find(const axes &from, const axes &to);
    bool cut(const axis &from, const axis &to);
    bool refine(const axis *from, int from_axes, const axis *to, int to_axes);
    bool add_piece(index_t from, index_t to);
    bool add_loop(index_t count, index_t from, index_t to);

    bool any_, done_ = false;
    int groups_ = 0, pieces_ = 0, loops_ = 0;
    group group_[max_dims];
    piece piece_[most_pieces];
    loop loop_[most_loops];
};

} // namespace vox::dnn
