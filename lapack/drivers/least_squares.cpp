// least_squares.cpp - ?gels.
#include "lapack/drivers/least_squares.hpp"

#include <limits>

#include "lapack/drivers/matrices.hpp"
#include "lapack/drivers/norms.hpp"
#include "lapack/drivers/orthogonal.hpp"
#include "lapack/drivers/qr.hpp"
#include "lapack/drivers/triangular.hpp"
#include "lapack/drivers/workspace.hpp"

namespace vox::lapack {
namespace {

// A matrix whose largest element is brought into the range where its squares are safe.
template <class T>
struct scaling {
    using R = real_of<T>;
    R norm, scaled;

    scaling(index_t m, index_t n, T *a, index_t lda)
        : norm(lange('M', m, n, a, lda, static_cast<R *>(nullptr))), scaled(norm) {
        constexpr R least = std::numeric_limits<R>::min() / std::numeric_limits<R>::epsilon();
        if (norm > 0 && norm < least)
            scaled = least;
        else if (norm > 1 / least)
            scaled = 1 / least;
        if (is_scaled())
            lascl('G', 0, 0, norm, scaled, m, n, a, lda);
    }
    bool is_scaled() const { return scaled < norm || scaled > norm; } // not for NaN
    // X was computed with a scaled A (as A X = B has it), or is scaled as B is.
    void undo(bool of_b, index_t m, index_t n, T *x, index_t ldx) const {
        if (is_scaled())
            lascl('G', 0, 0, of_b ? scaled : norm, of_b ? norm : scaled, m, n, x, ldx);
    }
};

} // namespace

template <class T>
index_t gels(char trans, index_t m, index_t n, index_t nrhs, T *a, index_t lda, T *b, index_t ldb,
             T *work, index_t lwork) {
    const index_t k = m < n ? m : n, longer = m < n ? n : m;
    const T optimum = work_size<T>(k + (k > nrhs ? k : nrhs) * blocking_of(algorithm::qr).wide);
    *work = real(optimum) > 0 ? optimum : one<T>;
    if (lwork == -1)
        return 0;
    if (k == 0 || nrhs == 0) {
        laset('A', longer, nrhs, T{}, T{}, b, ldb);
        return 0;
    }
    const bool plain = trans == 'N', tall = m >= n;
    const index_t rows = plain ? m : n, unknowns = plain ? n : m;
    const scaling<T> of_a(m, n, a, lda);
    if (of_a.norm == 0) {
        laset('A', longer, nrhs, T{}, T{}, b, ldb);
        return 0;
    }
    const scaling<T> of_b(rows, nrhs, b, ldb);
    T *const tau = work, *const rest = work + k;
    const index_t lrest = lwork - k;
    const char op = plain ? 'N' : 'C', uplo = tall ? 'U' : 'L';
    const auto solve = [&] { return trtrs(uplo, op, 'N', k, nrhs, a, lda, b, ldb); };
    if (tall)
        geqrf(m, n, a, lda, tau, rest, lrest);
    else
        gelqf(m, n, a, lda, tau, rest, lrest);
    if (tall == plain) { // more equations than unknowns, or as many
        // Q^H B, then R X = it; or, of A^H = Q^H L^H, Q B, then L^H X = it.
        if (tall)
            ormqr('L', 'C', m, nrhs, k, a, lda, tau, b, ldb, rest, lrest);
        else
            ormlq('L', 'N', n, nrhs, k, a, lda, tau, b, ldb, rest, lrest);
        if (const index_t info = solve())
            return info;
    } else {
        if (const index_t info = solve())
            return info;
        laset('A', longer - k, nrhs, T{}, T{}, b + k, ldb);
        if (tall)
            ormqr('L', 'N', m, nrhs, k, a, lda, tau, b, ldb, rest, lrest);
        else
            ormlq('L', 'C', n, nrhs, k, a, lda, tau, b, ldb, rest, lrest);
    }
    of_a.undo(false, unknowns, nrhs, b, ldb);
    of_b.undo(true, unknowns, nrhs, b, ldb);
    *work = optimum;
    return 0;
}

#define INSTANCES(p, P, T)                                                                         \
    template index_t gels<T>(char, index_t, index_t, index_t, T *, index_t, T *, index_t, T *,     \
                             index_t);
VOX_PRECISIONS(INSTANCES)
#undef INSTANCES

} // namespace vox::lapack
