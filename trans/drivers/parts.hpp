// parts.hpp - how the threads of a region divide a matrix among themselves, as a pure function.
#pragma once

#include "trans/trans.hpp"

namespace vox::trans {

// Some rows and columns of a matrix; without any, the thread has nothing to do.
struct part {
    index_t row, col, rows, cols;
    bool empty() const { return rows == 0 || cols == 0; }
};

// Powers of two alone: blocks by halving. Otherwise the longer side (the rows, if none is) in parts of
// nearly equal length, the last threads taking one element more.
inline part part_of(index_t thread, index_t threads, index_t rows, index_t cols) {
    const auto power_of_two = [](index_t n) { return (n & (n - 1)) == 0; };
    if (power_of_two(threads) && power_of_two(rows) && power_of_two(cols) &&
        threads <= rows * cols) {
        index_t across = 1; // block columns
        for (index_t left = threads; left > 1; left /= 2)
            if (rows < cols) {
                cols /= 2;
                across *= 2;
            } else {
                rows /= 2;
            }
        return {thread / across * rows, thread % across * cols, rows, cols};
    }
    const bool by_rows = rows >= cols;
    const index_t n = by_rows ? rows : cols;
    const index_t chunk = n / threads, longer_from = threads - n % threads;
    const index_t beyond = thread - longer_from;
    const index_t start = thread * chunk + (beyond > 0 ? beyond : 0);
    const index_t length = chunk + (beyond >= 0);
    return by_rows ? part{start, 0, length, cols} : part{0, start, rows, length};
}

// The place of element (row, col) of a matrix, counted from its first one.
inline index_t offset(bool by_rows, index_t row, index_t col, index_t ld, index_t stride = 1) {
    return by_rows ? row * ld + col * stride : col * ld + row * stride;
}

} // namespace vox::trans
