// orthogonal.cpp - Q and products with it, a block of reflectors at a time.
#include "lapack/drivers/orthogonal.hpp"

#include "lapack/drivers/block_reflector.hpp"
#include "lapack/drivers/householder.hpp"
#include "lapack/drivers/qr_panel.hpp"
#include "lapack/drivers/reflections.hpp"
#include "lapack/drivers/workspace.hpp"
#include "serv/scratch.hpp"

namespace vox::lapack {
namespace {

// Reflectors as a factorisation leaves them, columns or rows of A: i has its head in row and column
// i.
template <class T>
struct stored_q {
    bool by_columns;
    index_t order, k;
    const T *a;
    index_t lda;
    const T *tau;

    const T *from(index_t i) const { return a + i + i * lda; }
    block_reflector<T> single(index_t i) const {
        return stored_reflectors(true, by_columns, order - i, 1, from(i), lda, tau + i, 1);
    }
};

// Copies of blocks of reflectors, with ones and zeros, and their triangular factors.
template <class T>
class q_blocks {
  public:
    // others: rows or columns of what the reflectors are applied to; 0 if nothing is to be copied.
    q_blocks(const stored_q<T> &q, index_t others)
        : q_(q), nb_(least(q.k, block_size<T>(algorithm::apply_q, q.order, others))),
          ld_(padded<T>(q.order)), memory_(others ? nb_ * (ld_ + nb_ + most(nb_, others)) : 0) {}

    bool empty() const { return memory_.empty(); }
    index_t width() const { return nb_; }
    index_t width(index_t i) const { return least(nb_, q_.k - i); }
    index_t last() const { return (q_.k - 1) / nb_ * nb_; }
    T *v() const { return memory_.data(); }
    index_t ldv() const { return ld_; }
    T *t() const { return v() + nb_ * ld_; }
    T *w() const { return t() + nb_ * nb_; }

    // The reflectors from i on, as columns; with what belongs to R or L above them.
    void copy(index_t i) const {
        const index_t m = q_.order - i, n = width(i);
        if (q_.by_columns)
            for (index_t j = 0; j < n; ++j)
                blas::copy(m - j, q_.from(i) + j + j * q_.lda, 1, v() + j + j * ld_, 1);
        else
            copy_adjoint(n, m, q_.from(i), q_.lda, v(), ld_);
    }
    block_reflector<T> load(index_t i) const {
        const index_t m = q_.order - i, n = width(i);
        copy(i);
        for (index_t j = 0; j < n; ++j) {
            for (index_t r = 0; r < j; ++r)
                v()[r + j * ld_] = T{};
            v()[j + j * ld_] = one<T>;
        }
        larft('F', 'C', m, n, v(), ld_, q_.tau + i, t(), nb_);
        return plain_reflectors(m, n, v(), ld_, t(), nb_);
    }

  private:
    const stored_q<T> &q_;
    index_t nb_, ld_;
    scratch<T> memory_;
};

// C := H(1) .. H(k) C, C H(1) .. H(k), or with their adjoint.
template <class T>
struct q_product {
    stored_q<T> q;
    bool left, adjoined;
    index_t m, n;
    T *c;
    index_t ldc;

    bool ascending() const { return left == adjoined; }
    // What the reflectors from i on concern.
    index_t rows(index_t i) const { return left ? m - i : m; }
    index_t columns(index_t i) const { return left ? n : n - i; }
    T *at(index_t i) const { return c + i * (left ? 1 : ldc); }

    void one_by_one(T *work) const {
        for (index_t s = 0; s < q.k; ++s) {
            const index_t i = ascending() ? s : q.k - 1 - s;
            if (!is_zero(q.tau[i]))
                q.single(i).apply(left, adjoined, rows(i), columns(i), at(i), ldc, work);
        }
    }

    // Fewer vectors than this are passed by the kernel sooner than T is formed.
    static constexpr index_t few_vectors = is_complex<T> ? 96 : 48;

    bool by_kernel() const {
        if (left)
            return by_kernel(adjoined, n, c, ldc);
        const index_t ld = padded<T>(n); // (C H)^H = H^H C^H
        const scratch<T> copy(ld * m);
        if (copy.empty())
            return false;
        copy_adjoint(m, n, c, ldc, copy.data(), ld);
        if (!by_kernel(!adjoined, m, copy.data(), ld))
            return false;
        copy_adjoint(n, m, copy.data(), ld, c, ldc);
        return true;
    }
    // A block at a time, which stays in the caches while columns of X pass.
    bool by_kernel(bool adjoint, index_t columns, T *x, index_t ldx) const {
        const bool in_place = q.by_columns;
        const q_blocks<T> blocks(q, in_place ? 0 : 1);
        if (!in_place && blocks.empty())
            return false;
        for (index_t s = 0; s < q.k; s += blocks.width()) {
            const index_t i = adjoint ? s : blocks.last() - s;
            if (!in_place)
                blocks.copy(i);
            apply_reflectors(q.order - i, columns, blocks.width(i),
                             in_place ? q.from(i) : blocks.v(), in_place ? q.lda : blocks.ldv(),
                             q.tau + i, adjoint, adjoint, x + i, ldx);
        }
        return true;
    }

    bool by_blocks() const {
        if ((left ? n : m) < few_vectors && by_kernel())
            return true;
        const q_blocks<T> blocks(q, left ? n : m);
        if (blocks.empty())
            return false;
        for (index_t s = 0; s < q.k; s += blocks.width()) {
            const index_t i = ascending() ? s : blocks.last() - s;
            blocks.load(i).apply(left, adjoined, rows(i), columns(i), at(i), ldc, blocks.w());
        }
        return true;
    }
};

template <class T>
q_product<T> product_with(bool by_columns, char side, char trans, index_t m, index_t n, index_t k,
                          const T *a, index_t lda, const T *tau, T *c, index_t ldc) {
    const bool left = side == 'L';
    return {{by_columns, left ? m : n, k, a, lda, tau},
            left,
            (trans != 'N') == by_columns,
            m,
            n,
            c,
            ldc};
}

template <class T>
index_t multiply_q(bool by_columns, char side, char trans, index_t m, index_t n, index_t k,
                   const T *a, index_t lda, const T *tau, T *c, index_t ldc, T *work,
                   index_t lwork) {
    if (lwork != -1 && m && n && k) {
        const auto job = product_with(by_columns, side, trans, m, n, k, a, lda, tau, c, ldc);
        if (!job.by_blocks())
            job.one_by_one(work);
    }
    *work = best_work<T>(algorithm::apply_q, side == 'L' ? n : m);
    return 0;
}

// Q takes the place of its reflectors: vectors of length `length`, `count` of them, columns or rows.
// What follows is written for columns; rows are those of the adjoint.
template <class T>
struct q_in_place {
    bool by_columns;
    index_t length, count, k;
    T *a;
    index_t lda;
    const T *tau;

    T &at(index_t i, index_t j) const { return by_columns ? a[i + j * lda] : a[j + i * lda]; }
    stored_q<T> q() const { return {by_columns, length, k, a, lda, tau}; }

    // Vectors first .. count: those of the unit matrix, rows `from` on.
    void set_unit(index_t first, index_t from) const {
        for (index_t j = first; j < count; ++j)
            for (index_t i = from; i < length; ++i)
                at(i, j) = i == j ? one<T> : T{};
    }
    void set_zero(index_t first, index_t end, index_t rows) const {
        for (index_t j = first; j < end; ++j)
            for (index_t i = 0; i < rows; ++i)
                at(i, j) = T{};
    }
    // H, whose head is in row i, times vectors first .. count.
    void apply(const block_reflector<T> &h, index_t i, index_t first, T *w) const {
        if (first < count)
            h.apply(by_columns, !by_columns, count - first, count - first, &at(i, first), lda, w);
    }

    void one_by_one(T *work) const {
        set_unit(k, 0);
        for (index_t i = k - 1; i >= 0; --i) {
            const T factor = -conj_if(!by_columns, tau[i]);
            if (!is_zero(tau[i]))
                apply(q().single(i), i, i + 1, work);
            if (i + 1 < length)
                blas::scal(length - i - 1, factor, &at(i + 1, i), by_columns ? 1 : lda);
            at(i, i) = one<T> + factor;
            set_zero(i, i + 1, i);
        }
    }

    static constexpr index_t small_bytes = 96 * 1024;

    // H(1) .. H(k) times four columns of the unit matrix at a time, of which those beyond j leave
    // column j alone.
    bool by_kernel() const {
        constexpr index_t group = 4;
        const index_t ld = padded<T>(length), vectors = by_columns ? k : k + count;
        if (ld * vectors * index_t(sizeof(T)) > small_bytes)
            return false;
        const scratch<T> memory(ld * vectors);
        if (memory.empty())
            return false;
        T *const v = memory.data(), *const x = by_columns ? a : v + k * ld;
        const index_t ldx = by_columns ? lda : ld;
        if (by_columns)
            for (index_t j = 0; j < k; ++j)
                blas::copy(length, a + j * lda, 1, v + j * ld, 1);
        else
            copy_adjoint(k, length, a, lda, v, ld);
        for (index_t j = 0; j < count; j += group) {
            const index_t n = least(group, count - j);
            for (index_t c = j; c < j + n; ++c)
                for (index_t i = 0; i < length; ++i)
                    x[i + c * ldx] = i == c ? one<T> : T{};
            apply_reflectors(length, n, least(k, j + n), v, ld, tau, false, false, x + j * ldx,
                             ldx);
        }
        if (!by_columns)
            copy_adjoint(length, count, x, ld, a, lda);
        return true;
    }

    // The first columns of I - V T V^H are those of I - V (T V1^H), V1 being the first rows of V.
    bool by_blocks() const {
        const stored_q<T> reflectors = q();
        const q_blocks<T> blocks(reflectors, count);
        if (blocks.empty())
            return false;
        set_unit(k, 0);
        for (index_t i = blocks.last(); i >= 0; i -= blocks.width()) {
            const index_t n = blocks.width(i), m = length - i;
            const block_reflector<T> h = blocks.load(i);
            apply(h, i, i + n, blocks.w());
            T *const w = blocks.w(), *const v = blocks.v();
            for (index_t j = 0; j < n; ++j) // V1^H
                for (index_t r = 0; r < n; ++r)
                    w[r + j * n] = conj_if(true, v[j + r * blocks.ldv()]);
            triangle_multiply<T>({true, n, n, -one<T>, h.t, w, n});
            if (by_columns)
                blas::gemm('N', 'N', m, n, n, one<T>, v, blocks.ldv(), w, n, T{}, &at(i, i), lda);
            else
                blas::gemm('C', 'C', n, m, n, one<T>, w, n, v, blocks.ldv(), T{}, &at(i, i), lda);
            for (index_t j = i; j < i + n; ++j)
                at(j, j) += one<T>;
            set_zero(i, i + n, i);
        }
        return true;
    }
};

template <class T>
index_t generate_q(const q_in_place<T> &job, T *work, index_t lwork) {
    if (lwork != -1 && job.count && !job.by_kernel() && !job.by_blocks())
        job.one_by_one(work);
    *work = best_work<T>(algorithm::make_q, job.count);
    return 0;
}

} // namespace

template <class T>
index_t org2r(index_t m, index_t n, index_t k, T *a, index_t lda, const T *tau, T *work) {
    q_in_place<T>{true, m, n, k, a, lda, tau}.one_by_one(work);
    return 0;
}
template <class T>
index_t orgl2(index_t m, index_t n, index_t k, T *a, index_t lda, const T *tau, T *work) {
    q_in_place<T>{false, n, m, k, a, lda, tau}.one_by_one(work);
    return 0;
}
template <class T>
index_t orgqr(index_t m, index_t n, index_t k, T *a, index_t lda, const T *tau, T *work,
              index_t lwork) {
    return generate_q<T>({true, m, n, k, a, lda, tau}, work, lwork);
}
template <class T>
index_t orglq(index_t m, index_t n, index_t k, T *a, index_t lda, const T *tau, T *work,
              index_t lwork) {
    return generate_q<T>({false, n, m, k, a, lda, tau}, work, lwork);
}

template <class T>
index_t orm2r(char side, char trans, index_t m, index_t n, index_t k, const T *a, index_t lda,
              const T *tau, T *c, index_t ldc, T *work) {
    if (m && n)
        product_with(true, side, trans, m, n, k, a, lda, tau, c, ldc).one_by_one(work);
    return 0;
}
template <class T>
index_t orml2(char side, char trans, index_t m, index_t n, index_t k, const T *a, index_t lda,
              const T *tau, T *c, index_t ldc, T *work) {
    if (m && n)
        product_with(false, side, trans, m, n, k, a, lda, tau, c, ldc).one_by_one(work);
    return 0;
}
template <class T>
index_t ormqr(char side, char trans, index_t m, index_t n, index_t k, const T *a, index_t lda,
              const T *tau, T *c, index_t ldc, T *work, index_t lwork) {
    return multiply_q(true, side, trans, m, n, k, a, lda, tau, c, ldc, work, lwork);
}
template <class T>
index_t ormlq(char side, char trans, index_t m, index_t n, index_t k, const T *a, index_t lda,
              const T *tau, T *c, index_t ldc, T *work, index_t lwork) {
    return multiply_q(false, side, trans, m, n, k, a, lda, tau, c, ldc, work, lwork);
}

#define INSTANCES(p, P, T)                                                                         \
    template index_t org2r<T>(index_t, index_t, index_t, T *, index_t, const T *, T *);            \
    template index_t orgl2<T>(index_t, index_t, index_t, T *, index_t, const T *, T *);            \
    template index_t orgqr<T>(index_t, index_t, index_t, T *, index_t, const T *, T *, index_t);   \
    template index_t orglq<T>(index_t, index_t, index_t, T *, index_t, const T *, T *, index_t);   \
    template index_t orm2r<T>(char, char, index_t, index_t, index_t, const T *, index_t,           \
                              const T *, T *, index_t, T *);                                       \
    template index_t orml2<T>(char, char, index_t, index_t, index_t, const T *, index_t,           \
                              const T *, T *, index_t, T *);                                       \
    template index_t ormqr<T>(char, char, index_t, index_t, index_t, const T *, index_t,           \
                              const T *, T *, index_t, T *, index_t);                              \
    template index_t ormlq<T>(char, char, index_t, index_t, index_t, const T *, index_t,           \
                              const T *, T *, index_t, T *, index_t);
VOX_PRECISIONS(INSTANCES)
#undef INSTANCES

} // namespace vox::lapack
