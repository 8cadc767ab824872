// condition.cpp - N. J. Higham, FORTRAN Codes for Estimating the One-Norm of a Real or Complex
// Matrix, with Applications to Condition Estimation, ACM Transactions on Mathematical Software 14
// (1988), Algorithm 674.
#include "lapack/drivers/condition.hpp"

#include <limits>

#include "lapack/drivers/magnitudes.hpp"
#include "lapack/drivers/norms.hpp"
#include "lapack/drivers/scaled_solve.hpp"

namespace vox::lapack {
namespace {

template <class T>
index_t place_of_largest(index_t n, const T *x) {
    index_t place = 0;
    real_of<T> most = magnitude(x[0]);
    for (index_t i = 1; i < n; ++i)
        if (const real_of<T> here = magnitude(x[i]); here > most)
            place = i, most = here;
    return place;
}

// a / |a|; what is too small for the quotient counts as 1.
template <class T>
T direction(T a) {
    if constexpr (is_complex<T>) {
        const real_of<T> r = magnitude(a);
        return r > std::numeric_limits<real_of<T>>::min() ? T{a.real / r, a.imag / r} : one<T>;
    } else {
        return a >= 0 ? 1 : -1;
    }
}

// The estimate's state between calls is what the caller keeps for it in isave: who is asked for, the
// column tried last, counted from 1, and how many have been tried.
enum stage : vox_int { of_mean = 1, of_its_signs, of_column, of_signs, of_alternating };

template <class T>
class one_norm {
  public:
    one_norm(index_t n, T *v, T *x, vox_int *isgn, real_of<T> *est, vox_int *kase, vox_int *isave)
        : n_(n), v_(v), x_(x), isgn_(isgn), est_(est), kase_(kase), stage_(isave),
          column_(isave + 1), tried_(isave + 2) {}

    void step() const {
        if (*kase_ == 0) {
            for (index_t i = 0; i < n_; ++i)
                x_[i] = make<T>(1 / real_of<T>(n_));
            return ask(1, of_mean);
        }
        switch (*stage_) {
        case of_mean:
            return after_mean();
        case of_its_signs:
            *column_ = vox_int(place_of_largest(n_, x_) + 1);
            *tried_ = 2;
            return try_column();
        case of_column:
            return after_column();
        case of_signs:
            return after_signs();
        case of_alternating:
            return after_alternating();
        }
    }

  private:
    static constexpr vox_int most_tried = 5;

    void ask(vox_int kase, stage next) const {
        *kase_ = kase;
        *stage_ = next;
    }
    void after_mean() const {
        if (n_ == 1) {
            v_[0] = x_[0];
            *est_ = magnitude(v_[0]);
            *kase_ = 0;
            return;
        }
        *est_ = sum_of_magnitudes(n_, x_);
        take_signs();
        ask(2, of_its_signs);
    }
    void take_signs() const {
        for (index_t i = 0; i < n_; ++i) {
            x_[i] = direction(x_[i]);
            if constexpr (!is_complex<T>)
                isgn_[i] = vox_int(x_[i]);
        }
    }
    // For complex types there are too many signs for a repetition to be likely.
    bool signs_are_new() const {
        if constexpr (!is_complex<T>) {
            for (index_t i = 0; i < n_; ++i)
                if (vox_int(direction(x_[i])) != isgn_[i])
                    return true;
            return false;
        }
        return true;
    }
    void try_column() const {
        for (index_t i = 0; i < n_; ++i)
            x_[i] = T{};
        x_[*column_ - 1] = one<T>;
        ask(1, of_column);
    }
    void after_column() const {
        blas::copy(n_, x_, 1, v_, 1);
        const real_of<T> before = *est_;
        *est_ = sum_of_magnitudes(n_, v_);
        if (!signs_are_new() || *est_ <= before)
            return try_alternating();
        take_signs();
        ask(2, of_signs);
    }
    void after_signs() const {
        const index_t last = *column_ - 1;
        *column_ = vox_int(place_of_largest(n_, x_) + 1);
        const real_of<T> a = magnitude(x_[last]), b = magnitude(x_[*column_ - 1]);
        if (a == b || *tried_ >= most_tried)
            return try_alternating();
        ++*tried_;
        try_column();
    }
    // Guards against cancellation in matrices that are out to deceive.
    void try_alternating() const {
        for (index_t i = 0; i < n_; ++i) {
            const real_of<T> x = 1 + real_of<T>(i) / real_of<T>(n_ - 1);
            x_[i] = make<T>(i % 2 ? -x : x);
        }
        ask(1, of_alternating);
    }
    void after_alternating() const {
        const real_of<T> other = 2 * (sum_of_magnitudes(n_, x_) / real_of<T>(3 * n_));
        if (other > *est_) {
            blas::copy(n_, x_, 1, v_, 1);
            *est_ = other;
        }
        *kase_ = 0;
    }

    index_t n_;
    T *v_, *x_;
    vox_int *isgn_;
    real_of<T> *est_;
    vox_int *kase_, *stage_, *column_, *tried_;
};

// The arrays of an estimate within the caller's.
template <class T>
struct workspace {
    T *x, *v;
    vox_int *isgn;
    real_of<T> *norms; // from here on
    workspace(index_t n, T *work, con_work<T> *last) : x(work), v(work + n) {
        if constexpr (is_complex<T>) {
            isgn = nullptr;
            norms = last;
        } else {
            isgn = last;
            norms = work + 2 * n;
        }
    }
};

// The 1-norm of an inverse, or its infinity norm, which is the 1-norm of the adjoint. solve(adjoint,
// x, norms_known) applies the inverse or its adjoint to x, times a scale that it returns. False where the
// solutions overflow: the norm is beyond the range of numbers.
template <class T, class Solve>
bool norm_of_inverse(bool infinity, index_t n, const workspace<T> &w, real_of<T> threshold,
                     real_of<T> *norm, const Solve &solve) {
    vox_int kase = 0, isave[3];
    *norm = 0;
    for (bool norms_known = false;; norms_known = true) {
        lacn2(n, w.v, w.x, w.isgn, norm, &kase, isave);
        if (kase == 0)
            return true;
        const real_of<T> scale = solve((kase == 2) != infinity, w.x, norms_known);
        if (scale != 1) {
            if (scale == 0 || scale < largest_size(n, w.x) * threshold)
                return false;
            rscl(n, scale, w.x, 1);
        }
    }
}

} // namespace

template <class T>
void lacn2(index_t n, T *v, T *x, vox_int *isgn, real_of<T> *est, vox_int *kase, vox_int *isave) {
    one_norm<T>(n, v, x, isgn, est, kase, isave).step();
}

template <class T>
index_t gecon(char norm, index_t n, const T *a, index_t lda, real_of<T> anorm, real_of<T> *rcond,
              T *work, con_work<T> *last) {
    using R = real_of<T>;
    *rcond = n == 0;
    if (n == 0 || anorm == 0)
        return 0;
    const workspace<T> w(n, work, last);
    const auto solve = [&](bool adjoint, T *x, bool norms_known) {
        const auto lower = [&](char trans) {
            return scaled_solve('L', trans, 'U', norms_known, n, a, lda, x, w.norms);
        };
        const auto upper = [&](char trans) {
            return scaled_solve('U', trans, 'N', norms_known, n, a, lda, x, w.norms + n);
        };
        const R first = adjoint ? upper('C') : lower('N');
        return first * (adjoint ? lower('C') : upper('N'));
    };
    R inverse;
    if (norm_of_inverse(norm == 'I', n, w, std::numeric_limits<R>::min(), &inverse, solve) &&
        inverse != 0)
        *rcond = 1 / inverse / anorm;
    return 0;
}

template <class T>
index_t pocon(char uplo, index_t n, const T *a, index_t lda, real_of<T> anorm, real_of<T> *rcond,
              T *work, con_work<T> *last) {
    using R = real_of<T>;
    *rcond = n == 0;
    if (n == 0 || anorm == 0)
        return 0;
    const workspace<T> w(n, work, last);
    const auto solve = [&](bool, T *x, bool norms_known) { // the inverse is its own adjoint
        const auto factor = [&](char trans, bool known) {
            return scaled_solve(uplo, trans, 'N', known, n, a, lda, x, w.norms);
        };
        const R first = factor(uplo == 'U' ? 'C' : 'N', norms_known);
        return first * factor(uplo == 'U' ? 'N' : 'C', true);
    };
    R inverse;
    if (norm_of_inverse(false, n, w, std::numeric_limits<R>::min(), &inverse, solve) &&
        inverse != 0)
        *rcond = 1 / inverse / anorm;
    return 0;
}

template <class T>
index_t trcon(char norm, char uplo, char diag, index_t n, const T *a, index_t lda,
              real_of<T> *rcond, T *work, con_work<T> *last) {
    using R = real_of<T>;
    *rcond = n == 0;
    if (n == 0)
        return 0;
    const workspace<T> w(n, work, last);
    const bool infinity = norm == 'I';
    const R anorm = lantr(norm, uplo, diag, n, n, a, lda, w.norms);
    if (!(anorm > 0))
        return 0;
    const auto solve = [&](bool adjoint, T *x, bool norms_known) {
        return scaled_solve(uplo, adjoint ? 'C' : 'N', diag, norms_known, n, a, lda, x, w.norms);
    };
    R inverse;
    if (norm_of_inverse(infinity, n, w, std::numeric_limits<R>::min() * R(n), &inverse, solve) &&
        inverse != 0)
        *rcond = 1 / anorm / inverse;
    return 0;
}

#define INSTANCES(p, P, T)                                                                         \
    template void lacn2<T>(index_t, T *, T *, vox_int *, real_of<T> *, vox_int *, vox_int *);      \
    template index_t gecon<T>(char, index_t, const T *, index_t, real_of<T>, real_of<T> *, T *,    \
                              con_work<T> *);                                                      \
    template index_t pocon<T>(char, index_t, const T *, index_t, real_of<T>, real_of<T> *, T *,    \
                              con_work<T> *);                                                      \
    template index_t trcon<T>(char, char, char, index_t, const T *, index_t, real_of<T> *, T *,    \
                              con_work<T> *);
VOX_PRECISIONS(INSTANCES)

} // namespace vox::lapack
