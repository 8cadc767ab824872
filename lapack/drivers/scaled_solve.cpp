// scaled_solve.cpp - after E. Anderson, Robust Triangular Solves for Use in Condition Estimation,
// LAPACK Working Note 36 (1991): a bound on the growth of the solution, from the diagonal and the
// norms of the columns beside it, tells whether plain substitution is safe. Where it is not,
// substitution goes column by column, and scales the whole of x down before a step that could
// overflow.
#include "lapack/drivers/scaled_solve.hpp"

#include <limits>

#include "lapack/extremes.hpp"

namespace vox::lapack {
namespace {

// A power of two below which quotients of numbers of ordinary size overflow or lose digits, with a
// margin of the precision; and its reciprocal.
template <class R>
constexpr R tiny = std::numeric_limits<R>::min() / std::numeric_limits<R>::epsilon();
template <class R>
constexpr R huge = 1 / tiny<R>;

template <class T>
class substitution {
    using R = real_of<T>;

  public:
    substitution(char uplo, char trans, char diag, index_t n, const T *a, index_t lda, T *x,
                 R *norms)
        : uplo_(uplo), trans_(trans), diag_(diag), upper_(uplo == 'U'), across_(trans == 'N'),
          n_(n), a_(a), lda_(lda), x_(x), norms_(norms) {}

    void find_norms() const {
        for (index_t j = 0; j < n_; ++j)
            norms_[j] = blas::asum(count(j), beside(j), 1);
    }

    R solve() {
        if (!scale_matrix()) { // A holds infinities or NaN, and so will x
            plain();
            return 1;
        }
        xmax_ = half_size(x_[blas::iamax(n_, x_, 1) - 1]);
        if (a_scale_ == 1 && growth_is_harmless()) {
            plain();
        } else {
            careful();
            scale_ /= a_scale_;
        }
        if (a_scale_ != 1)
            blas::scal(n_, 1 / a_scale_, norms_, 1);
        return scale_;
    }

  private:
    // What lies beside the diagonal in column j, and which rows these are.
    index_t first(index_t j) const { return upper_ ? 0 : j + 1; }
    index_t count(index_t j) const { return upper_ ? j : n_ - 1 - j; }
    const T *beside(index_t j) const { return a_ + first(j) + j * lda_; }

    // j in the order of substitution.
    index_t in_order(index_t step) const { return upper_ == across_ ? n_ - 1 - step : step; }

    // Half of it, since the sum of two parts can overflow.
    static R half_size(T a) { return size(make<T>(real(a) / 2, imag(a) / 2)); }

    void plain() const { blas::trsv(uplo_, trans_, diag_, n_, a_, lda_, x_, 1); }

    // Chooses a_scale_ <= 1 such that the norms, times it, are at most huge; they are multiplied by
    // it. False if there is no such number.
    bool scale_matrix() {
        const R top = largest_size(n_, norms_), infinity = std::numeric_limits<R>::infinity();
        if (top <= huge<R> / 2)
            return true;
        if (top < infinity) {
            a_scale_ = 1 / (2 * tiny<R> * top);
            blas::scal(n_, a_scale_, norms_, 1);
            return true;
        }
        R entry = 0; // sums overflow: from the entries
        for (index_t j = 0; j < n_; ++j)
            if (count(j) > 0) {
                const R here = half_size(beside(j)[blas::iamax(count(j), beside(j), 1) - 1]);
                if (!(here < infinity))
                    return false;
                entry = most(entry, here);
            }
        a_scale_ = 1 / (4 * R(n_) * (tiny<R> * entry));
        for (index_t j = 0; j < n_; ++j) {
            norms_[j] = 0;
            for (index_t i = 0; i < count(j); ++i)
                norms_[j] += size(a_scale_ * beside(j)[i]);
        }
        return true;
    }

    // Whether a lower bound of 1 / max |x_j| over all steps of substitution is far from underflow.
    bool growth_is_harmless() const {
        const R start = 1 / most(2 * xmax_, tiny<R>);
        R grow = start, bound = start; // of the largest entry so far; of what is solved
        for (index_t step = 0; step < n_; ++step) {
            if (!(grow > tiny<R>))
                return false;
            const index_t j = in_order(step);
            const R d = diag_ == 'U' ? 1 : size(a_[j + j * lda_]);
            if (across_) { // x_j / d is taken to the others
                bound = least(bound, least(R(1), d) * grow);
                grow = d + norms_[j] >= tiny<R> ? grow * (d / (d + norms_[j])) : 0;
            } else { // x_j gathers the others, then is divided
                const R sum = 1 + norms_[j];
                grow = least(grow, bound / sum);
                bound *= least(R(1), d / sum);
            }
        }
        return least(grow, bound) > tiny<R>;
    }

    void careful() {
        if (xmax_ > huge<R> / 2)
            shrink(huge<R> / 2 / xmax_);
        xmax_ *= 2;
        for (index_t step = 0; step < n_; ++step)
            across_ ? solve_across(in_order(step)) : solve_along(in_order(step));
    }

    void shrink(R factor) {
        blas::rscal(n_, factor, x_, 1);
        scale_ *= factor;
        xmax_ *= factor;
    }

    T diagonal(index_t j) const {
        return diag_ == 'U' ? make<T>(a_scale_)
                            : a_scale_ * conj_if(trans_ == 'C', a_[j + j * lda_]);
    }

    // x_j := x_j / d. Where d is zero, or not a number: x becomes a solution of the homogeneous
    // system.
    void divide_entry(index_t j, T d) {
        const R xj = size(x_[j]), dj = size(d);
        if (!(dj > 0)) {
            for (index_t i = 0; i < n_; ++i)
                x_[i] = T{};
            x_[j] = one<T>;
            scale_ = xmax_ = 0;
            return;
        }
        if (dj < 1 && xj > dj * huge<R>) {
            // by 1 / xj where that suffices; a column that is to follow may not grow either
            const R room = dj > tiny<R> ? 1 / xj : dj * huge<R> / xj;
            shrink(dj > tiny<R> || !across_ ? room : room / most(norms_[j], R(1)));
        }
        x_[j] = divide(x_[j], d);
    }

    void solve_across(index_t j) {
        if (diag_ != 'U' || a_scale_ != 1)
            divide_entry(j, diagonal(j));
        const R xj = size(x_[j]);
        if (xj > 1) {
            if (norms_[j] > (huge<R> - xmax_) / xj)
                shrink(1 / xj / 2);
        } else if (xj * norms_[j] > huge<R> - xmax_) {
            shrink(R(0.5));
        }
        if (count(j) == 0)
            return;
        T *const rest = x_ + first(j);
        blas::axpy(count(j), -(a_scale_ * x_[j]), beside(j), 1, rest, 1);
        xmax_ = largest_size(count(j), rest);
    }

    void solve_along(index_t j) {
        const T d = diagonal(j);
        const R dj = size(d);
        bool divided = false; // the sum is formed of quotients by d, which are smaller
        R room = 1 / most(xmax_, R(1));
        if (norms_[j] > (huge<R> - size(x_[j])) * room) {
            room /= 2;
            divided = dj > 1;
            if (divided)
                room = least(R(1), room * dj);
            if (room < 1)
                shrink(room);
        }
        const T *const column = beside(j), *const others = x_ + first(j);
        T sum{};
        if (a_scale_ == 1 && !divided) {
            sum = trans_ == 'C' ? blas::dotc(count(j), column, 1, others, 1)
                                : blas::dotu(count(j), column, 1, others, 1);
        } else {
            for (index_t i = 0; i < count(j); ++i) {
                const T factor = a_scale_ * conj_if(trans_ == 'C', column[i]);
                sum += (divided ? divide(factor, d) : factor) * others[i];
            }
        }
        if (divided) {
            x_[j] = divide(x_[j], d) - sum;
        } else {
            x_[j] -= sum;
            if (diag_ != 'U' || a_scale_ != 1)
                divide_entry(j, d);
        }
        xmax_ = most(xmax_, size(x_[j]));
    }

    char uplo_, trans_, diag_;
    bool upper_, across_; // across: a solved entry is taken to the others, column by column
    index_t n_;
    const T *a_;
    index_t lda_;
    T *x_;
    R *norms_;
    R scale_ = 1, a_scale_ = 1, xmax_ = 0;
};

} // namespace

template <class T>
real_of<T> scaled_solve(char uplo, char trans, char diag, bool norms_known, index_t n, const T *a,
                        index_t lda, T *x, real_of<T> *norms) {
    if (n <= 0)
        return 1;
    substitution<T> system(uplo, trans, diag, n, a, lda, x, norms);
    if (!norms_known)
        system.find_norms();
    return system.solve();
}

template <class T>
void rscl(index_t n, real_of<T> divisor, T *x, index_t incx) {
    using R = real_of<T>;
    constexpr R low = std::numeric_limits<R>::min(), high = 1 / low;
    const R d = __builtin_fabs(divisor);
    R factor = 1 / divisor;
    if (d < low) {
        blas::rscal(n, high, x, incx);
        factor = low / divisor;
    } else if (d > high) {
        blas::rscal(n, low, x, incx);
        factor = high / divisor;
    }
    blas::rscal(n, factor, x, incx);
}

#define INSTANCES(p, P, T)                                                                         \
    template real_of<T> scaled_solve<T>(char, char, char, bool, index_t, const T *, index_t, T *,  \
                                        real_of<T> *);                                             \
    template void rscl<T>(index_t, real_of<T>, T *, index_t);
VOX_PRECISIONS(INSTANCES)

} // namespace vox::lapack
