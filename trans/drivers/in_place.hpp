// in_place.hpp - ?imatcopy: AB := alpha op(AB), the result in the place of its operand.
//
// Without a transposition rows are scaled where they are, or moved one by one in an order in which
// none is overwritten too early. With one, and the same leading dimension before and after, blocks of
// the leading square change places through a block on the stack, and what is beyond the square goes to
// where nothing else is. With another leading dimension every element may land on any other one: small
// matrices go through a copy, for others the cycles and paths of the permutation are followed, with a
// bit for each element to know which are done; without memory for the bits a cycle is moved when its
// first element is met, which takes a walk along the cycle from each of its elements.
// Cycles: Windley, "Transposing matrices in a digital computer", Computer Journal 2(1), 1959.
#pragma once

#include "serv/scratch.hpp"
#include "trans/drivers/threads.hpp"

namespace vox::trans {

// The elements of a matrix before and after its transposition: `outer` rows of `inner` elements, lda
// apart, become `inner` rows of `outer`, ldb apart.
struct permutation {
    index_t outer, inner, lda, ldb;

    // Element e of the result in the order of its rows: where it is, and where it was.
    index_t target(index_t e) const { return e / outer * ldb + e % outer; }
    index_t source(index_t e) const { return e % outer * lda + e / outer; }
    // Which element of the result is at a position, -1 for none.
    index_t element_at(index_t position) const {
        const index_t row = position / ldb, col = position % ldb;
        return row < inner && col < outer ? row * outer + col : -1;
    }
    bool is_source(index_t position) const {
        return position / lda < outer && position % lda < inner;
    }
    // The element whose target is e's source, -1 if there is none.
    index_t next(index_t e) const { return element_at(source(e)); }
    index_t count() const { return outer * inner; }
};

// Which elements of a permutation lie on cycles that are to be moved from there.
class done_bits {
  public:
    explicit done_bits(index_t count) : bits_((count + 63) / 64) {
        for (index_t i = 0; !bits_.empty() && i < (count + 63) / 64; ++i)
            bits_[i] = 0;
    }
    void set(index_t e) const {
        if (!bits_.empty())
            bits_[e / 64] |= uint64_t(1) << e % 64;
    }
    bool starts_cycle(const permutation &p, index_t e) const {
        if (!bits_.empty())
            return !(bits_[e / 64] >> e % 64 & 1);
        index_t other = p.next(e);
        while (other > e)
            other = p.next(other);
        return other == e;
    }

  private:
    scratch<uint64_t> bits_;
};

template <class T>
void follow(const permutation &p, T *ab) {
    const done_bits done(p.count());
    // Paths end where no operand was; what is moved there makes room for the next element.
    for (index_t end = 0; end < p.count(); ++end)
        if (!p.is_source(p.target(end)))
            for (index_t e = end; e >= 0; e = p.next(e)) {
                ab[p.target(e)] = ab[p.source(e)];
                done.set(e);
            }
    for (index_t first = 0; first < p.count(); ++first) {
        if (!done.starts_cycle(p, first))
            continue;
        const T kept = ab[p.target(first)];
        index_t e = first;
        for (index_t next; (next = p.next(e)) != first; e = next) {
            ab[p.target(e)] = ab[p.source(e)];
            done.set(e);
        }
        ab[p.target(e)] = kept;
        done.set(e);
    }
}

// Copy: ?omatcopy2, Seq: the same on the calling thread.
template <class T, class Copy, class Seq>
class in_place {
  public:
    in_place(Copy copy, Seq seq, char trans, T alpha, T *ab, index_t lda, index_t ldb)
        : copy_(copy), seq_(seq), trans_(trans), alpha_(alpha), ab_(ab), lda_(lda), ldb_(ldb) {}

    // outer rows of inner elements, in the order of memory
    void compute(const request &asked, index_t outer, index_t inner) const {
        const index_t rows = asked.transposed ? inner : outer;
        const index_t cols = asked.transposed ? outer : inner;
        const bool changes = !(alpha_ == one<T>) || (asked.conjugated && is_complex<T>);
        if (!asked.transposed) {
            if (lda_ != ldb_)
                move_rows(rows, cols);
            else if (changes)
                scale(trans_, rows, cols);
            return;
        }
        if (lda_ == ldb_) {
            const index_t side = outer < inner ? outer : inner;
            exchange(side);
            return move_rest(outer, inner, side);
        }
        if (through_copy(outer, inner))
            return;
        follow(permutation{outer, inner, lda_, ldb_}, ab_);
        if (changes)
            scale(asked.conjugated ? 'R' : 'N', rows, cols);
    }

  private:
    static constexpr index_t block = sizeof(T) == 4 ? 64 : 32;          // of a square, 4 to 16 KB
    static constexpr index_t piece = 4096 / index_t(sizeof(T));         // of a row
    static constexpr index_t copied = 1024 * 1024 / index_t(sizeof(T)); // elements at most

    void scale(char trans, index_t rows, index_t cols) const {
        copy_('R', trans, rows, cols, alpha_, ab_, ldb_, 1, ab_, ldb_, 1);
    }

    // Rows come closer from the first one on, or part from the last one on; a row overlaps itself.
    void move_rows(index_t rows, index_t cols) const {
        const bool up = ldb_ < lda_;
        const index_t pieces = (cols + piece - 1) / piece;
        T kept[piece];
        for (index_t r = 0; r < rows; ++r)
            for (index_t q = 0; q < pieces; ++q) {
                const index_t row = up ? r : rows - 1 - r;
                const index_t from = (up ? q : pieces - 1 - q) * piece;
                const index_t n = cols - from < piece ? cols - from : piece;
                seq_('R', trans_, 1, n, alpha_, ab_ + row * lda_ + from, n, 1, kept, n, 1);
                seq_('R', 'N', 1, n, one<T>, kept, n, 1, ab_ + row * ldb_ + from, n, 1);
            }
    }

    // The leading square: each block below the diagonal and its mirror image.
    void exchange(index_t side) const {
        const index_t blocks = (side + block - 1) / block;
        const auto some = [&](int thread, int team) {
            const index_t t = thread, threads = team;
            index_t rows;
            const index_t first = vox_serv_divbythreadstr(&t, &threads, &blocks, "L", &rows);
            for (index_t i = first; i < first + rows; ++i)
                for (index_t j = 0; j <= i; ++j)
                    exchange_blocks(i * block, j * block, side);
        };
        parallel(is_divided<T>(side, side) ? vox_serv_domain_get_max_threads(VOX_DOMAIN_ALL) : 1,
                 some);
    }
    void exchange_blocks(index_t row, index_t col, index_t side) const {
        const index_t m = side - row < block ? side - row : block;
        const index_t n = side - col < block ? side - col : block;
        T kept[block * block];
        T *const lower = ab_ + row * lda_ + col, *const upper = ab_ + col * lda_ + row;
        seq_('R', trans_, m, n, alpha_, lower, lda_, 1, kept, m, 1);
        if (row != col)
            seq_('R', trans_, n, m, alpha_, upper, lda_, 1, lower, lda_, 1);
        seq_('R', 'N', n, m, one<T>, kept, m, 1, upper, lda_, 1);
    }

    void move_rest(index_t outer, index_t inner, index_t side) const {
        T *const right = ab_ + side, *const below = ab_ + side * lda_;
        if (inner > side)
            copy_('R', trans_, side, inner - side, alpha_, right, lda_, 1, below, lda_, 1);
        else if (outer > side)
            copy_('R', trans_, outer - side, side, alpha_, below, lda_, 1, right, lda_, 1);
    }

    bool through_copy(index_t outer, index_t inner) const {
        if (outer > copied / inner)
            return false;
        const scratch<T> kept(outer * inner);
        if (kept.empty())
            return false;
        seq_('R', trans_, outer, inner, alpha_, ab_, lda_, 1, kept.data(), outer, 1);
        seq_('R', 'N', inner, outer, one<T>, kept.data(), outer, 1, ab_, ldb_, 1);
        return true;
    }

    Copy copy_;
    Seq seq_;
    char trans_;
    T alpha_;
    T *ab_;
    index_t lda_, ldb_;
};

template <class T, class Copy, class Seq>
void imatcopy(Copy copy, Seq seq, char ordering, char trans, index_t rows, index_t cols, T alpha,
              T *ab, index_t lda, index_t ldb) {
    const request asked(ordering, trans);
    const index_t outer = asked.by_rows ? rows : cols, inner = asked.by_rows ? cols : rows;
    if (rows <= 0 || cols <= 0 || !asked.valid || lda < inner ||
        ldb < (asked.transposed ? outer : inner))
        return;
    in_place<T, Copy, Seq>(copy, seq, trans, alpha, ab, lda, ldb).compute(asked, outer, inner);
}

} // namespace vox::trans
