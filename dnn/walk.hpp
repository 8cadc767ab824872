// walk.hpp - the elements of two layouts, side by side, in the order that suits memory.
//
// What is done element by element may be done in any order, so the dimensions that both layouts share are
// sorted by stride, the largest outermost, and those that continue each other are joined: the channels of
// an image that vary fastest in memory become rows, and what has no gaps becomes one row.
#pragma once

#include "dnn/layout.hpp"

namespace {
namespace dnn {

struct axis {
    uint64_t size, in, out; // elements, and their distances in either layout
};

class walk {
  public:
    // False where the elements of a layout do not lie at fixed distances, or the two differ in sizes.
    bool follow(const layout &in, const layout &out) {
        n_ = 0;
        if (in.ndims != out.ndims)
            return false;
        for (uint64_t i = 0; i < in.ndims; ++i) {
            axis next;
            uint64_t size;
            if (!along(in, i, next.size, next.in) || !along(out, i, size, next.out) ||
                next.size != size)
                return false;
            if (size != 1)
                insert(next);
        }
        join();
        return true;
    }

    // body(in, out, n, in_stride, out_stride) for each piece of a row, of the elements begin to end - 1.
    template <class Body>
    void rows(uint64_t begin, uint64_t end, const Body &body) const {
        if (begin >= end)
            return;
        const axis row = n_ ? axes_[0] : axis{1, 1, 1};
        uint64_t at[vox::dnn::max_dims], n = begin, in = 0, out = 0;
        for (uint64_t i = 0; i < n_; ++i) {
            at[i] = n % axes_[i].size;
            n /= axes_[i].size;
            in += at[i] * axes_[i].in;
            out += at[i] * axes_[i].out;
        }
        uint64_t skipped = n_ ? at[0] : 0;
        for (;;) {
            const uint64_t rest = row.size - skipped, left = end - begin;
            body(in, out, rest < left ? rest : left, row.in, row.out);
            if (left <= rest)
                return;
            begin += rest;
            in -= skipped * row.in, out -= skipped * row.out;
            skipped = 0;
            for (uint64_t i = 1;; ++i) { // the next row; there is one
                in += axes_[i].in, out += axes_[i].out;
                if (++at[i] < axes_[i].size)
                    break;
                in -= axes_[i].size * axes_[i].in, out -= axes_[i].size * axes_[i].out;
                at[i] = 0;
            }
        }
    }

  private:
    // Dimension i in the order of the elements.
    static bool along(const layout &l, uint64_t i, uint64_t &size, uint64_t &stride) {
        static constexpr uint8_t image[] = {1, 2, 0, 3, 4};
        if (l.kind > vox::dnn::orb_data)
            return false;
        uint64_t d = i;
        if (l.kind == vox::dnn::orb_data) {
            if (l.ndims < 3 || l.ndims > 5 || (l.border1 | l.border2) != 0)
                return false;
            d = image[i];
        }
        size = l.size[d], stride = l.stride[d];
        return true;
    }

    void insert(const axis &next) {
        uint64_t i = n_++;
        for (; i > 0 && axes_[i - 1].out > next.out; --i)
            axes_[i] = axes_[i - 1];
        axes_[i] = next;
    }

    void join() {
        uint64_t last = 0;
        for (uint64_t i = 1; i < n_; ++i) {
            axis &inner = axes_[last];
            const axis &outer = axes_[i];
            if (outer.in == inner.in * inner.size && outer.out == inner.out * inner.size)
                inner.size *= outer.size;
            else
                axes_[++last] = outer;
        }
        n_ = n_ ? last + 1 : 0;
    }

    axis axes_[vox::dnn::max_dims]; // innermost first
    uint64_t n_ = 0;
};

} // namespace dnn
} // namespace
