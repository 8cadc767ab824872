// move.hpp - moves a nest's elements, block by block (dnn/shape.hpp).
//
// Blocks go straight to the destination, or through a stage on the stack: where the destination is larger than the
// caches, so that it is written by whole lines past them; where rows are shorter than a lane, since the stage may be
// written beyond their end; and where there is room behind a run, which is zeros there.
#pragma once

#include "dnn/shape.hpp"
#include "serv/tile.hpp"

namespace {
namespace dnn {

using namespace simd;
using vox::index_t;
using vox::dnn::loops;
using vox::dnn::nest;
using vox::dnn::shape;

template <class T>
VOX_INLINE void copy_run(T *to, const T *from, index_t n) {
    constexpr int w = simd::lanes<T>, k = per_lane<T>;
    index_t i = 0;
    for (; i + 4 * w <= n; i += 4 * w)
        unroll<4>([&](auto l) VOX_INLINED { store(to + i + l * w, load(from + i + l * w)); });
    for (; i + w <= n; i += w)
        store(to + i, load(from + i));
    for (; i + k <= n; i += k)
        store(to + i, load<16>(from + i));
    for (; i < n; ++i)
        to[i] = from[i];
}

// The same past the caches, but for what is no whole line.
template <class T>
VOX_INLINE void stream_run(T *to, const T *from, index_t n) {
    constexpr int line = per_line<T>;
    const index_t skip = -place_in_line(to) & (line - 1);
    if (n < skip + line)
        return copy_run(to, from, n);
    copy_run(to, from, skip);
    index_t i = skip;
    for (; i + line <= n; i += line)
        stream_line(to + i, from + i);
    copy_run(to + i, from + i, n - i);
}

// count runs of n elements, from_step and to_step apart.
template <int N, bool Fetch, class T>
VOX_INLINE void copy_units(index_t count, T *to, index_t to_step, const T *from, index_t from_step,
                           index_t ahead) {
    constexpr int bytes = N * int(sizeof(T)), whole = bytes & -16;
    constexpr int v = whole < vector_bytes ? whole : vector_bytes, w = v / int(sizeof(T));
    for (index_t x = 0; x < count; ++x) {
        const T *const p = from + x * from_step;
        T *const q = to + x * to_step;
        if constexpr (Fetch)
            __builtin_prefetch(p + ahead, 0, 2);
        unroll<whole / v>([&](auto l) VOX_INLINED { store(q + l * w, load<v>(p + l * w)); });
        unroll<(bytes - whole) / int(sizeof(T))>(
            [&](auto l) VOX_INLINED { q[whole / v * w + l] = p[whole / v * w + l]; });
    }
}
// Fewer elements than a lane has. Zeros are written beyond them, and what is beyond them is read.
template <bool Fetch, class T>
VOX_INLINE void copy_short_units(index_t n, index_t count, T *to, index_t to_step, const T *from,
                                 index_t from_step, index_t ahead) {
    using lane = typename vec_of<T, 16>::type;
    using mask = decltype(lane{} < lane{});
    mask kept{};
    for (int i = 0; i < per_lane<T>; ++i)
        kept[i] = i < n ? -1 : 0;
    for (index_t x = 0; x < count; ++x) {
        if constexpr (Fetch)
            __builtin_prefetch(from + x * from_step + ahead, 0, 2);
        store(to + x * to_step, lane(mask(load<16>(from + x * from_step)) & kept));
    }
}
template <bool Fetch, class T>
VOX_INLINE void copy_units(index_t n, index_t count, T *to, index_t to_step, const T *from,
                           index_t from_step, index_t ahead) {
    constexpr int k = per_lane<T>;
    switch (n * int(sizeof(T))) {
    case 16:
        return copy_units<k, Fetch>(count, to, to_step, from, from_step, ahead);
    case 24: // three doubles
        return copy_units<3 * k / 2, Fetch>(count, to, to_step, from, from_step, ahead);
    case 32:
        return copy_units<2 * k, Fetch>(count, to, to_step, from, from_step, ahead);
    case 64:
        return copy_units<4 * k, Fetch>(count, to, to_step, from, from_step, ahead);
    }
    for (index_t x = 0; x < count; ++x)
        copy_run(to + x * to_step, from + x * from_step, n);
}

// A block's rows and columns: places in the source of its rows, and in the destination of its columns.
struct lines {
    index_t from[vox::dnn::most_lines], to[vox::dnn::most_lines];
};

// b[to[j] + i] = a[from[i] + j] for i < m, j < n. With Fetch the same of the next block, `ahead` elements from here,
// is brought into the second-level cache.
template <class T, bool Fetch>
class transposition {
  public:
    VOX_INLINE transposition(const lines &at, index_t m, index_t n, const T *a, T *b, index_t ahead)
        : at_(at), m_(m), n_(n), a_(a), b_(b), next_(a + ahead) {}

    // Rows and columns of a lane at least.
    VOX_INLINE void whole() const {
        constexpr int rows = tile_rows<T>, k = per_lane<T>;
        index_t i = 0;
        for (; i + rows <= m_; i += rows)
            band<tile_lanes<T>>(i);
        if (i == m_)
            return;
        if (m_ >= rows)
            return band<tile_lanes<T>>(m_ - rows);
        for (; i + k <= m_; i += k)
            band<1>(i);
        if (i < m_)
            band<1>(m_ - k);
    }

    // Fewer rows than a lane has. What is written beyond them is 0.
    VOX_INLINE void few_rows() const {
        constexpr int k = per_lane<T>;
        index_t j = 0;
        for (; j + k <= n_; j += k) {
            typename vec_of<T, 16>::type v[k];
            unroll<k>([&](auto r) VOX_INLINED {
                v[r] = typename vec_of<T, 16>::type{};
                if (r < m_) {
                    v[r] = load<16>(a_ + at_.from[r] + j);
                    if constexpr (Fetch)
                        __builtin_prefetch(next_ + at_.from[r] + j, 0, 2);
                }
            });
            transpose_lanes(v);
            unroll<k>([&](auto c) VOX_INLINED { store(b_ + at_.to[j + c], v[c]); });
        }
        for (; j < n_; ++j)
            for (index_t i = 0; i < m_; ++i)
                b_[at_.to[j] + i] = a_[at_.from[i] + j];
    }

    // Fewer columns than a lane has. What is beyond them is read.
    VOX_INLINE void few_columns() const {
        constexpr int k = per_lane<T>;
        const auto at = [&](index_t i) VOX_INLINED {
            if constexpr (Fetch)
                __builtin_prefetch(next_ + at_.from[i], 0, 2);
            typename vec_of<T, 16>::type v[k];
            unroll<k>([&](auto r) VOX_INLINED { v[r] = load<16>(a_ + at_.from[i + r]); });
            transpose_lanes(v);
            unroll<k - 1>([&](auto c) VOX_INLINED {
                if (c < n_)
                    store(b_ + at_.to[c] + i, v[c]);
            });
        };
        index_t i = 0;
        for (; i + k <= m_; i += k)
            at(i);
        if (i < m_)
            at(m_ - k);
    }

    VOX_INLINE void by_elements() const {
        for (index_t j = 0; j < n_; ++j)
            for (index_t i = 0; i < m_; ++i)
                b_[at_.to[j] + i] = a_[at_.from[i] + j];
    }

  private:
    template <int Lanes>
    VOX_INLINE void band(index_t i) const {
        constexpr int k = per_lane<T>;
        index_t j = 0;
        for (; j + k <= n_; j += k)
            tile<Lanes>(i, j);
        if (j < n_)
            tile<Lanes>(i, n_ - k);
        if constexpr (Fetch) // what begins within a line ends in one more
            unroll<Lanes * k>([&](auto r) VOX_INLINED {
                __builtin_prefetch(next_ + at_.from[i + r] + n_ - 1, 0, 2);
            });
    }
    template <int Lanes>
    VOX_INLINE void tile(index_t i, index_t j) const {
        constexpr int k = per_lane<T>, steps = per_line<T> / k, rows = Lanes * k / steps;
        if constexpr (Fetch) // a line lasts for some steps, in which all rows have their turn
            unroll<rows>([&](auto r) VOX_INLINED {
                __builtin_prefetch(next_ + at_.from[i + j / k % steps * rows + r] + j, 0, 2);
            });
        typename vec_of<T, 16 * Lanes>::type v[k];
        unroll<k>([&](auto r) VOX_INLINED {
            v[r] = load_lanes<Lanes>([&](int l)
                                         VOX_INLINED { return a_ + at_.from[i + r + l * k] + j; });
        });
        transpose_lanes(v);
        unroll<k>([&](auto c) VOX_INLINED { store(b_ + at_.to[j + c] + i, v[c]); });
    }

    const lines &at_;
    const index_t m_, n_;
    const T *const a_;
    T *const b_;
    const T *const next_;
};

template <class T>
class mover {
  public:
    // end: behind the last element of the source's buffer.
    mover(const nest &n, const shape &s, const T *from, const T *end, T *to, bool past_caches)
        : n_(n), s_(s), from_(from), end_(end), to_(to), past_caches_(past_caches) {
        constexpr int k = per_lane<T>;
        const bool padded = n.loops > 0 && s.room > n.at[0].count;
        const bool short_rows = s.way == shape::transposed
                                    ? s.product(s.row) < k
                                    : s.way == shape::units && s.extent[0] < k;
        staged_ = s.way != shape::rows && s.run > 0 && (past_caches || padded || short_rows);
        index_t step = 1;
        for (int l = 0; l < n.loops; ++l) {
            to_step_[l] = staged_ ? step : n.at[l].to;
            step *= l == 0 && s.extent[0] == n.at[0].count ? s.room : s.extent[l];
            taken_[l] = 0;
            if (l >= s.run && s.extent[l] > 1)
                runs_.add(l);
            int i = l; // a stable sort by insertion
            for (; i > 0 && n.at[order_[i - 1]].from > n.at[l].from; --i)
                order_[i] = order_[i - 1];
            order_[i] = l;
        }
        // What is written beyond a short row is the place of the next one, or room.
        const loops &around = s.way == shape::units ? s.other : s.column;
        overrun_ = staged_ && around.count > 0 && to_step_[around.at[0]] == s.room &&
                   (s.way == shape::units || (around.count == 1 && s.row.count == 1));
        if (padded)
            for (T &x : stage_)
                x = 0;
    }

    // Blocks begin .. end-1, in the order of the source.
    VOX_APART void move(index_t begin, index_t end) {
        index_t piece[vox::dnn::most_loops], pieces[vox::dnn::most_loops];
        const T *a = from_;
        T *b = to_;
        index_t rest = begin;
        for (int i = 0; i < n_.loops; ++i) {
            const int l = order_[i];
            pieces[l] = s_.pieces(n_, l);
            piece[l] = rest % pieces[l];
            rest /= pieces[l];
            a += piece[l] * s_.extent[l] * n_.at[l].from;
            b += piece[l] * s_.extent[l] * n_.at[l].to;
        }
        for (; begin < end; ++begin) {
            take(piece);
            const T *const this_a = a;
            T *const this_b = b;
            for (int i = 0; i < n_.loops; ++i) {
                const int l = order_[i];
                const index_t back = ++piece[l] < pieces[l] ? 0 : pieces[l];
                a += (1 - back) * s_.extent[l] * n_.at[l].from;
                b += (1 - back) * s_.extent[l] * n_.at[l].to;
                if (back == 0)
                    break;
                piece[l] = 0;
            }
            ahead_ = a - this_a;
            if (past_caches_)
                block<true>(this_a, this_b);
            else
                block<false>(this_a, this_b);
        }
    }

  private:
    // How much of each loop is in a block, and its lines if they change.
    VOX_INLINE void take(const index_t *piece) {
        bool same = true;
        for (int l = 0; l < n_.loops; ++l) {
            const index_t left = n_.at[l].count - piece[l] * s_.extent[l];
            const index_t length = left < s_.extent[l] ? left : s_.extent[l];
            same &= length == taken_[l];
            taken_[l] = length;
        }
        if (same)
            return;
        rows_ = places(
            s_.row, [&](int l) VOX_INLINED { return n_.at[l].from; }, lines_.from);
        columns_ = places(
            s_.column, [&](int l) VOX_INLINED { return to_step_[l]; }, lines_.to);
        farthest_ = 0;
        for (index_t i = 0; i < rows_; ++i)
            if (lines_.from[i] > farthest_)
                farthest_ = lines_.from[i];
    }
    template <class Step>
    VOX_INLINE index_t places(const loops &some, const Step &step, index_t *table) const {
        index_t n = 1;
        table[0] = 0;
        for (int i = 0; i < some.count; ++i) {
            const int l = some.at[i];
            for (index_t x = 1; x < taken_[l]; ++x)
                for (index_t k = 0; k < n; ++k)
                    table[x * n + k] = table[k] + x * step(l);
            n *= taken_[l];
        }
        return n;
    }

    // body(a, b) for all elements of some loops, from the skip-th on.
    template <class From, class To, class Body>
    VOX_INLINE void each(const loops &some, int skip, const T *a, T *b, const From &from,
                         const To &to, const Body &body) const {
        index_t x[vox::dnn::most_loops];
        for (int i = skip; i < some.count; ++i)
            x[i] = 0;
        for (;;) {
            body(a, b);
            int i = skip;
            for (; i < some.count; ++i) {
                const int l = some.at[i];
                const index_t back = ++x[i] < taken_[l] ? 0 : taken_[l];
                a += (1 - back) * from(l);
                b += (1 - back) * to(l);
                if (back == 0)
                    break;
                x[i] = 0;
            }
            if (i >= some.count)
                return;
        }
    }

    template <bool Fetch>
    VOX_INLINE void block(const T *a, T *b) {
        const auto from = [&](int l) VOX_INLINED { return n_.at[l].from; };
        const auto to_step = [&](int l) VOX_INLINED { return to_step_[l]; };
        if (s_.way == shape::rows)
            return run(b, a, taken_[0]);
        T *const out = staged_ ? stage_ : b;
        if (s_.way == shape::transposed) {
            each(s_.other, 0, a, out, from, to_step,
                 [&](const T *p, T *q) VOX_INLINED { transpose<Fetch>(p, q); });
        } else {
            const bool units = s_.way == shape::units;
            const int l = s_.other.count > 0 ? s_.other.at[0] : -1;
            const index_t count = l < 0 ? 1 : taken_[l];
            const index_t p_step = l < 0 ? 0 : from(l), q_step = l < 0 ? 0 : to_step_[l];
            each(s_.other, 1, a, out, from, to_step, [&](const T *p, T *q) VOX_INLINED {
                if (units && taken_[0] < per_lane<T> && overrun_ &&
                    end_ - p >= (count - 1) * p_step + per_lane<T>)
                    copy_short_units<Fetch>(taken_[0], count, q, q_step, p, p_step, ahead_);
                else if (units)
                    copy_units<Fetch>(taken_[0], count, q, q_step, p, p_step, ahead_);
                else
                    for (index_t x = 0; x < count; ++x)
                        q[x * q_step] = p[x * p_step];
            });
        }
        if (staged_)
            put_stage(b);
    }

    template <bool Fetch>
    VOX_INLINE void transpose(const T *a, T *b) const {
        constexpr int k = per_lane<T>;
        const transposition<T, Fetch> t(lines_, rows_, columns_, a, b, ahead_);
        if (rows_ >= k && columns_ >= k)
            t.whole();
        else if (rows_ < k && columns_ >= k && overrun_)
            t.few_rows();
        else if (rows_ >= k && columns_ < k && end_ - a >= farthest_ + k)
            t.few_columns();
        else
            t.by_elements();
    }

    VOX_INLINE void put_stage(T *b) const {
        index_t length = 1;
        for (int l = 0; l < s_.run; ++l)
            length *= l == 0 && taken_[0] == n_.at[0].count ? s_.room : taken_[l];
        each(
            runs_, 0, stage_, b, [&](int l) VOX_INLINED { return to_step_[l]; },
            [&](int l) VOX_INLINED { return n_.at[l].to; },
            [&](const T *p, T *q) VOX_INLINED { run(q, p, length); });
    }

    VOX_INLINE void run(T *to, const T *from, index_t n) const {
        if (past_caches_)
            stream_run(to, from, n);
        else
            copy_run(to, from, n);
    }

    const nest &n_;
    const shape &s_;
    const T *const from_, *const end_;
    T *const to_;
    const bool past_caches_;
    bool staged_, overrun_;
    int order_[vox::dnn::most_loops];
    loops runs_;                            // of the stage's runs, one after the other
    index_t to_step_[vox::dnn::most_loops]; // where a block is put together
    index_t taken_[vox::dnn::most_loops];   // of each loop in this block
    index_t rows_, columns_, farthest_;
    index_t ahead_; // from this block to the next one
    lines lines_;
    alignas(64) T stage_[vox::dnn::block_bytes / sizeof(T) + per_line<T>];
};

} // namespace dnn
} // namespace
