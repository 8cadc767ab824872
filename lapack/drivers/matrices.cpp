// matrices.cpp - see matrices.hpp. Column by column; what lies together is one long column.
#include "lapack/drivers/matrices.hpp"

#include <string.h>

#include "blas/drivers/rotg.hpp"
#include "lapack/blas.hpp"
#include "lapack/drivers/columns.hpp"

namespace vox::lapack {
namespace {

// The quotient to / from as a product of factors none of which overflows or underflows, one at a time.
template <class R>
class factors {
  public:
    factors(R from, R to) : from_(from), to_(to) {}

    bool next(R *factor) {
        constexpr R small = level1::safe<R>::min, big = 1 / small;
        if (done_)
            return false;
        const R less = from_ * small, more = to_ / big;
        if (less == from_) { // infinite: 0 or NaN
            *factor = to_ / from_;
            done_ = true;
        } else if (more == to_) { // 0 or infinite
            *factor = to_;
            done_ = true;
        } else if (level1::absolute(less) > level1::absolute(to_) && to_ != 0) {
            *factor = small;
            from_ = less;
        } else if (level1::absolute(more) > level1::absolute(from_)) {
            *factor = big;
            to_ = more;
        } else {
            *factor = to_ / from_;
            done_ = true;
        }
        return true;
    }

  private:
    R from_, to_;
    bool done_ = false;
};

// The rows of the array in which column j of a matrix of lascl's types is stored.
span stored(char type, index_t kl, index_t ku, index_t m, index_t n, index_t j) {
    switch (type) {
    case 'H':
        return {0, least(m, j + 2)};
    case 'B':
        return {0, least(kl + 1, n - j)};
    case 'Q':
        return {most(0, ku - j), ku + 1};
    case 'Z': // below kl rows that gbtrf fills
        return {most(kl, kl + ku - j), least(2 * kl + ku + 1, kl + ku + m - j)};
    default:
        return column_of(type, m, j);
    }
}

} // namespace

template <class T>
void lacpy(char uplo, index_t m, index_t n, const T *a, index_t lda, T *b, index_t ldb) {
    for (index_t j = 0; j < n; ++j) {
        const span rows = column_of(uplo, m, j);
        if (rows.length() > 0)
            memcpy(b + rows.begin + j * ldb, a + rows.begin + j * lda,
                   size_t(rows.length()) * sizeof(T));
    }
}

template <class T>
void laset(char uplo, index_t m, index_t n, T alpha, T beta, T *a, index_t lda) {
    for (index_t j = 0; j < n; ++j) {
        T *const column = a + j * lda;
        const span rows = column_of(uplo, m, j, 1);
        for (index_t i = rows.begin; i < rows.end; ++i)
            column[i] = alpha;
        if (j < m)
            column[j] = beta;
    }
}

template <class T>
index_t lascl(char type, index_t kl, index_t ku, real_of<T> from, real_of<T> to, index_t m,
              index_t n, T *a, index_t lda) {
    if (m == 0 || n == 0)
        return 0;
    factors<real_of<T>> quotient(from, to);
    for (real_of<T> factor; quotient.next(&factor) && factor != 1;) {
        if (type == 'G' && lda == m) {
            blas::rscal(m * n, factor, a, 1);
            continue;
        }
        for (index_t j = 0; j < n; ++j) {
            const span rows = stored(type, kl, ku, m, n, j);
            blas::rscal(rows.length(), factor, a + rows.begin + j * lda, 1);
        }
    }
    return 0;
}

#define INSTANTIATE(p, P, T)                                                                       \
    template void lacpy<T>(char, index_t, index_t, const T *, index_t, T *, index_t);              \
    template void laset<T>(char, index_t, index_t, T, T, T *, index_t);                            \
    template index_t lascl<T>(char, index_t, index_t, real_of<T>, real_of<T>, index_t, index_t,    \
                              T *, index_t);
VOX_PRECISIONS(INSTANTIATE)

} // namespace vox::lapack
