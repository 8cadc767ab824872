// nest.cpp - see nest.hpp.
#include "dnn/nest.hpp"

namespace vox::dnn {
namespace {

index_t place(const axis &a, index_t x) { return x / a.block * a.outer + x % a.block * a.inner; }

// Between elements that are `step` apart, a multiple of a block or a part of one.
index_t stride(const axis &a, index_t step) {
    return step >= a.block ? step / a.block * a.outer : step * a.inner;
}

// Loops over one layout alone. An axis whose last block is filled in part counts as all of its blocks.
struct digits {
    int count = 0;
    struct {
        index_t count, stride;
    } digit[2 * max_dims];

    explicit digits(const axes &all) {
        for (int i = 0; i < all.count; ++i)
            add(all.at[i]);
    }
    digits(const axis *some, int n) {
        for (int i = 0; i < n; ++i)
            add(some[i]);
    }
    void add(const axis &a) {
        const index_t blocks = (a.count + a.block - 1) / a.block;
        if (a.block > 1)
            digit[count++] = {a.block, a.inner};
        if (blocks > 1)
            digit[count++] = {blocks, a.outer};
    }
};

} // namespace

bool has_axes(const layout &l) {
    return l.kind != orb_data ||
           ((l.ndims == 4 || l.ndims == 5) && (l.border1 == 0 || ::dnn::inner_width(l) > 0) &&
            (l.border2 == 0 || ::dnn::inner_height(l) > 0));
}

void axes::add(uint64_t n, uint64_t block, uint64_t outer, uint64_t inner) {
    const bool whole = block >= n;
    if (n != 1)
        at[count++] = {index_t(n), index_t(whole ? n : block), whole ? 0 : index_t(outer),
                       index_t(inner)};
}

axes::axes(const layout &l) {
    if (l.kind == orb_data) {
        first = index_t(l.border1 * l.stride[1] + l.border2 * l.stride[2]);
        const uint64_t sizes[] = {::dnn::inner_width(l), ::dnn::inner_height(l), l.size[0],
                                  l.size[3], l.ndims == 5 ? l.size[4] : 1};
        constexpr int dimension[] = {1, 2, 0, 3, 4};
        for (int i = 0; i < 5; ++i)
            add(sizes[i], sizes[i], 0, l.stride[dimension[i]]);
        return;
    }
    if (l.kind == plain) {
        for (uint64_t i = 0; i < l.ndims; ++i)
            add(l.size[i], l.size[i], 0, l.stride[i]);
        return;
    }
    first = index_t(l.base_offset);
    for (uint64_t i = 0; i < l.ndims; ++i)
        if (l.block[i] == 1)
            add(l.size[i], l.size[i], 0, l.blocked_stride[i].outer);
        else
            add(l.size[i], l.block[i], l.blocked_stride[i].outer, l.blocked_stride[i].inner);
}

bool axes::distinct() const {
    digits all(*this);
    index_t below = 0; // the largest place that smaller strides reach
    for (int left = all.count; left > 0; --left) {
        int least = 0;
        for (int i = 1; i < left; ++i)
            if (all.digit[i].stride < all.digit[least].stride)
                least = i;
        const auto [n, step] = all.digit[least];
        if (step <= below)
            return false;
        below += (n - 1) * step;
        all.digit[least] = all.digit[left - 1];
    }
    return true;
}

void nest::add(index_t n, index_t from_stride, index_t to_stride) {
    if (n > 1)
        at[loops++] = {n, from_stride, to_stride};
}

void nest::arrange() {
    for (int i = 1; i < loops; ++i) {
        const loop moved = at[i];
        int j = i;
        for (; j > 0 && at[j - 1].to > moved.to; --j)
            at[j] = at[j - 1];
        at[j] = moved;
    }
    int last = 0;
    for (int i = 1; i < loops; ++i) {
        loop &below = at[last];
        if (at[i].from == below.count * below.from && at[i].to == below.count * below.to)
            below.count *= at[i].count;
        else
            at[++last] = at[i];
    }
    if (loops > 0)
        loops = last + 1;
}

nests::nests(const axes &from, const axes &to) { any_ = find(from, to); }

bool nests::any() const { return any_; }

bool nests::find(const axes &from, const axes &to) {
    int i = 0, j = 0, number = 1;
    while (i < from.count && j < to.count) {
        const int first_i = i, first_j = j;
        index_t m = from.at[i++].count, n = to.at[j++].count;
        while (m != n) {
            if (m < n ? i == from.count : j == to.count)
                return false;
            if (m < n)
                m *= from.at[i++].count;
            else
                n *= to.at[j++].count;
        }
        group &now = group_[groups_++] = {pieces_, 0, 0};
        const bool single = i - first_i == 1 && j - first_j == 1;
        if (!(single ? cut(from.at[first_i], to.at[first_j])
                     : refine(from.at + first_i, i - first_i, to.at + first_j, j - first_j)))
            return false;
        number *= now.pieces;
        if (number > most_nests)
            return false;
    }
    return i == from.count && j == to.count;
}

bool nests::add_piece(index_t from, index_t to) {
    if (pieces_ == most_pieces)
        return false;
    piece_[pieces_++] = {from, to, loops_, 0};
    ++group_[groups_ - 1].pieces;
    return true;
}

bool nests::add_loop(index_t count, index_t from, index_t to) {
    if (count == 1)
        return true;
    if (loops_ == most_loops)
        return false;
    loop_[loops_++] = {count, from, to};
    ++piece_[pieces_ - 1].loops;
    return true;
}

// One axis on either side: whole blocks of the larger block factor, then of the smaller one in what is left, then
// the rest of such a block.
bool nests::cut(const axis &from, const axis &to) {
    const index_t n = from.count;
    const index_t a = from.block == n ? 1 : from.block, b = to.block == n ? 1 : to.block;
    const index_t small = a < b ? a : b, large = a < b ? b : a, tail = n % large;
    if (large % small != 0)
        return false;
    index_t x = 0;
    const auto part = [&](index_t length, index_t block, index_t blocks) {
        if (length == 0)
            return true;
        const index_t both = block * blocks, begin = x;
        x += length;
        return add_piece(place(from, begin), place(to, begin)) &&
               add_loop(block, stride(from, 1), stride(to, 1)) &&
               add_loop(blocks, stride(from, block), stride(to, block)) &&
               add_loop(length / both, stride(from, both), stride(to, both));
    };
    return part(n - tail, small, large / small) && part(tail - tail % small, small, 1) &&
           part(tail % small, 1, 1);
}

// Several axes: the digits of one side are taken apart as those of the other ask for.
bool nests::refine(const axis *from, int from_axes, const axis *to, int to_axes) {
    for (int i = 0; i < from_axes; ++i)
        if (from[i].count % from[i].block != 0)
            return false;
    for (int j = 0; j < to_axes; ++j)
        if (to[j].count % to[j].block != 0)
            return false;
    digits a(from, from_axes), b(to, to_axes);
    if (!add_piece(0, 0))
        return false;
    for (int i = 0, j = 0; i < a.count;) {
        auto &p = a.digit[i];
        auto &q = b.digit[j];
        const index_t n = p.count < q.count ? p.count : q.count;
        if (p.count % n != 0 || q.count % n != 0 || !add_loop(n, p.stride, q.stride))
            return false;
        p = {p.count / n, p.stride * n};
        q = {q.count / n, q.stride * n};
        i += p.count == 1;
        j += q.count == 1;
    }
    return true;
}

bool nests::next(nest &n) {
    if (done_)
        return false;
    n.from = n.to = 0;
    n.loops = 0;
    for (int g = 0; g < groups_; ++g) {
        const piece &p = piece_[group_[g].first + group_[g].now];
        n.from += p.from;
        n.to += p.to;
        for (int i = 0; i < p.loops; ++i)
            n.add(loop_[p.first + i].count, loop_[p.first + i].from, loop_[p.first + i].to);
    }
    n.arrange();
    int g = 0;
    while (g < groups_ && ++group_[g].now == group_[g].pieces)
        group_[g++].now = 0;
    done_ = g == groups_;
    return true;
}

} // namespace vox::dnn
