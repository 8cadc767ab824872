// in_order.hpp - copies elements in their order, one layout's place beside the other's: for layouts whose axes have
// no common refinement, and where elements have places in common and the last one is to stay.
#pragma once

#include "dnn/nest.hpp"

namespace {
namespace dnn {

using vox::index_t;
using vox::dnn::axes;

// A place that goes from element to element. Behind the last element comes the first one.
class place {
  public:
    place(const axes &all, index_t n) : all_(all), offset_(all.first) {
        for (int i = 0; i < all.count; ++i) {
            const vox::dnn::axis &a = all.at[i];
            const index_t x = n % a.count;
            n /= a.count;
            block_[i] = x / a.block;
            in_block_[i] = x % a.block;
            offset_ += block_[i] * a.outer + in_block_[i] * a.inner;
        }
    }
    index_t offset() const { return offset_; }
    // Elements from here on that are step() apart.
    index_t run() const {
        if (all_.count == 0)
            return 1;
        const vox::dnn::axis &a = all_.at[0];
        const index_t in_block = a.block - in_block_[0];
        const index_t left = a.count - block_[0] * a.block - in_block_[0];
        return in_block < left ? in_block : left;
    }
    index_t step() const { return all_.count == 0 ? 0 : all_.at[0].inner; }
    // 0 < n <= run()
    void advance(index_t n) {
        for (int i = 0; i < all_.count; ++i, n = 1) {
            const vox::dnn::axis &a = all_.at[i];
            in_block_[i] += n;
            offset_ += n * a.inner;
            if (block_[i] * a.block + in_block_[i] == a.count) {
                offset_ -= block_[i] * a.outer + in_block_[i] * a.inner;
                block_[i] = in_block_[i] = 0;
                continue;
            }
            if (in_block_[i] == a.block) {
                offset_ += a.outer - a.block * a.inner;
                ++block_[i];
                in_block_[i] = 0;
            }
            return;
        }
    }

  private:
    const axes &all_;
    index_t offset_, block_[vox::dnn::max_dims], in_block_[vox::dnn::max_dims];
};

// Elements begin .. end-1 of the destination.
template <class T>
__attribute__((noinline)) void copy_in_order(const axes &from, const T *a, const axes &to, T *b,
                                             index_t begin, index_t end) {
    place p(from, begin), q(to, begin);
    while (begin < end) {
        index_t n = p.run() < q.run() ? p.run() : q.run();
        if (n > end - begin)
            n = end - begin;
        const T *const source = a + p.offset();
        T *const destination = b + q.offset();
        const index_t source_step = p.step(), destination_step = q.step();
        for (index_t i = 0; i < n; ++i)
            destination[i * destination_step] = source[i * source_step];
        begin += n;
        p.advance(n);
        q.advance(n);
    }
}

} // namespace dnn
} // namespace
