// packed_operand.hpp - a factor of real products that a program keeps packed: what stands at the front of
// its buffer.
//
// A buffer starts on a page. Its head says all that a later call must know to use it or to refuse it;
// then come the strips, depth block after depth block, as the kernels of one code path read them:
//
//     head | block 0: strip 0, strip 1, ... | block 1: strip 0, ... | ...
//
// A block is block_depth steps deep but for the last. A left factor's strips are rows, a right one's
// columns.
#pragma once

#include "blas/products.hpp"

namespace vox {

enum class packed_side : int32_t { none, left, right }; // none: nothing has been packed yet

struct packed_head {
    static constexpr uint64_t right_magic = 0x564f585041434b31; // changes with this layout
    static constexpr index_t page = 4096;

    uint64_t magic;
    int32_t path; // a code_path
    int32_t element_bytes;
    packed_side side;
    bool zero;            // alpha was 0: the strips are not set
    index_t width, depth; // rows of a left factor or columns of a right one; steps
    index_t strips = 0, block_depth = 0, start = 0; // start: bytes from the head to the first strip
};

// A right factor is packed as the left factor that its transpose is, so here, too, it is rows by depth.
template <class T>
struct packing_job {
    factor<T> source;
    T alpha;
    packed_head *to; // as lay_out left it
};

} // namespace vox
