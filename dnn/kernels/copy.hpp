// copy.hpp - copies a tensor from one layout to another, on the threads of the subsystem.
//
// The n-th element of the destination is the n-th of the source, from its first one again where the source has fewer.
// With `clear`, what is no element in the destination's buffer becomes 0.
#pragma once

#include "dnn/conversion.hpp"
#include "dnn/kernels/in_order.hpp"
#include "dnn/kernels/move.hpp"
#include "dnn/threads.hpp"

namespace {
namespace dnn {

using vox::dnn::conversion;
using vox::dnn::nests;

template <class T>
class copying {
  public:
    copying(const conversion &c, const void *from, void *to)
        : c_(c), from_axes_(c.from), to_axes_(c.to), from_(static_cast<const T *>(from)),
          to_(static_cast<T *>(to)), from_end_(from_ + memory_bytes(c.from) / sizeof(T)),
          span_(index_t(memory_bytes(c.to) / sizeof(T))), count_(index_t(element_count(c.to))),
          past_caches_(span_ * index_t(sizeof(T)) >= streamed_bytes && place_in_line(to_) >= 0) {}

    void run(bool clear) {
        distinct_ = count_ > 0 && to_axes_.distinct();
        if (clear && !(distinct_ && count_ == span_))
            clear_rest();
        if (count_ == 0)
            return;
        const index_t from_count = index_t(element_count(c_.from));
        if (distinct_ && from_count == count_) {
            const nests all(from_axes_, to_axes_);
            if (all.any())
                return move(all);
        }
        divide(distinct_ ? bytes() : 0, [&](int thread, int team) {
            const part mine = part_of(thread, team, count_);
            copy_in_order(from_axes_, from_, to_axes_, to_, mine.begin, mine.end);
        });
    }

  private:
    uint64_t bytes() const { return uint64_t(count_) * sizeof(T); }

    void move(const nests &all) {
        divide(bytes(), [&](int thread, int team) { move_part(all, thread, team); });
    }
    // Apart, so that the stack of a block is needed once.
    VOX_APART void move_part(const nests &all, int thread, int team) const {
        nests mine = all;
        for (nest n; mine.next(n);) {
            const shape s(n, sizeof(T), room_ > 0 ? room_ : n.loops > 0 ? n.at[0].count : 1);
            const part blocks = part_of(thread, team, s.blocks);
            mover<T> m(n, s, from_ + from_axes_.first + n.from, from_end_,
                       to_ + to_axes_.first + n.to, past_caches_);
            m.move(blocks.begin, blocks.end);
        }
        if (past_caches_)
            streaming_done();
    }

    void clear_rest() {
        const layout &l = c_.to;
        if (l.kind == vox::dnn::orb_data && distinct_) {
            const bool dense = l.ndims == 4 && l.stride[0] == 1 && has_channel_loop();
            const uint64_t room = dense ? l.stride[1] : l.size[0];
            if (room >= l.size[0] && room * sizeof(T) <= vox::dnn::long_row_bytes && fills(room)) {
                room_ = room > l.size[0] ? index_t(room) : 0;
                return clear_borders(room);
            }
        }
        divide(uint64_t(span_) * sizeof(T), [&](int thread, int team) {
            const part mine = part_of(thread, team, span_);
            memset(to_ + mine.begin, 0, size_t(mine.end - mine.begin) * sizeof(T));
        });
    }

    // Whether the channels of an image are one loop, which has all others around it.
    bool has_channel_loop() const {
        if (index_t(element_count(c_.from)) != count_)
            return false;
        nests all(from_axes_, to_axes_);
        nest n;
        return all.any() && all.next(n) && n.loops > 0 && n.at[0].to == 1 &&
               n.at[0].count == index_t(c_.to.size[0]) && !all.next(n);
    }

    // Whether an image with `room` channels and its borders is all of the buffer.
    bool fills(uint64_t room) const {
        const layout &l = c_.to;
        vox::dnn::axes all;
        uint64_t count = 1;
        for (uint64_t i = 0; i < l.ndims; ++i) {
            const uint64_t size = i == 0 ? room : l.size[i];
            all.add(size, size, 0, l.stride[i]);
            count = times(count, size);
        }
        return count == uint64_t(span_) && all.distinct();
    }

    // Above and below, then left and right.
    void clear_borders(uint64_t room) {
        const layout &l = c_.to;
        const uint64_t bw = l.border1, bh = l.border2, width = l.size[1], height = l.size[2];
        const auto clear = [&](uint64_t x, uint64_t columns, uint64_t y, uint64_t rows) {
            if (columns == 0 || rows == 0)
                return;
            nest n;
            n.to = index_t(x * l.stride[1] + y * l.stride[2]);
            n.add(index_t(room), 0, index_t(l.stride[0]));
            n.add(index_t(columns), 0, index_t(l.stride[1]));
            n.add(index_t(rows), 0, index_t(l.stride[2]));
            for (uint64_t i = 3; i < l.ndims; ++i)
                n.add(index_t(l.size[i]), 0, index_t(l.stride[i]));
            n.arrange();
            clear_box(n, n.loops, to_ + n.to);
        };
        clear(0, width, 0, bh);
        clear(0, width, height - bh, bh);
        clear(0, bw, bh, height - 2 * bh);
        clear(width - bw, bw, bh, height - 2 * bh);
    }
    static void clear_box(const nest &n, int loops, T *to) {
        if (loops == 0) {
            *to = 0;
            return;
        }
        const auto [count, none, step] = n.at[loops - 1];
        if (loops == 1 && step == 1)
            memset(to, 0, size_t(count) * sizeof(T));
        else
            for (index_t i = 0; i < count; ++i)
                clear_box(n, loops - 1, to + i * step);
    }

    const conversion &c_;
    const vox::dnn::axes from_axes_, to_axes_;
    const T *const from_;
    T *const to_;
    const T *const from_end_;
    const index_t span_, count_;
    const bool past_caches_;
    bool distinct_ = false;
    index_t room_ = 0; // places of a pixel's channels, if more than there are
};

} // namespace dnn
} // namespace
