// norms.cpp - see norms.hpp. All are walks along columns: those of the matrix, or of the part of it that
// counts.
#include "lapack/drivers/norms.hpp"

#include "lapack/blas.hpp"
#include "lapack/drivers/magnitudes.hpp"
#include "lapack/drivers/sum_of_squares.hpp"

namespace vox::lapack {
namespace {

// A whole matrix, or a triangle of it, with a diagonal of ones where it is a unit one.
template <class T>
struct part {
    char uplo; // neither 'U' nor 'L': all of it
    bool unit;
    index_t m, n;
    const T *a;
    index_t lda;

    span rows(index_t j) const { return column_of(uplo, m, j, unit); }
    bool has_one(index_t j) const { return unit && j < m; }
    const T *column(index_t j) const { return a + j * lda; }
};

template <class R>
R largest_of(index_t n, const R *x) {
    return largest_magnitude(n, x); // of numbers that are not negative
}

template <class T>
real_of<T> largest_element(const part<T> &p) {
    real_of<T> result = p.unit;
    for (index_t j = 0; j < p.n; ++j) {
        const span rows = p.rows(j);
        result = larger(result, largest_magnitude(rows.length(), p.column(j) + rows.begin));
    }
    return result;
}

template <class T>
real_of<T> largest_column_sum(const part<T> &p) {
    real_of<T> result = 0;
    for (index_t j = 0; j < p.n; ++j) {
        const span rows = p.rows(j);
        const auto sum = sum_of_magnitudes(rows.length(), p.column(j) + rows.begin);
        result = larger(result, sum + real_of<T>(p.has_one(j)));
    }
    return result;
}

template <class T>
real_of<T> largest_row_sum(const part<T> &p, real_of<T> *work) {
    for (index_t i = 0; i < p.m; ++i)
        work[i] = p.unit && i < p.n;
    for (index_t j = 0; j < p.n; ++j) {
        const span rows = p.rows(j);
        add_magnitudes(rows.length(), p.column(j) + rows.begin, work + rows.begin);
    }
    return largest_of(p.m, work);
}

// The squares of a part; every column's norm is one term.
template <class T>
sum_of_squares<real_of<T>> squares_of(const part<T> &p) {
    sum_of_squares<real_of<T>> squares;
    if (p.lda == p.m && p.uplo != 'U' && p.uplo != 'L') {
        squares.add(blas::nrm2(p.m * p.n, p.a, 1));
        return squares;
    }
    for (index_t j = 0; j < p.n; ++j) {
        const span rows = p.rows(j);
        squares.add(blas::nrm2(rows.length(), p.column(j) + rows.begin, 1));
        if (p.has_one(j))
            squares.add(1);
    }
    return squares;
}

template <class T>
real_of<T> norm_of(char norm, const part<T> &p, real_of<T> *work) {
    if (p.m <= 0 || p.n <= 0)
        return 0;
    switch (norm) {
    case 'M':
        return largest_element(p);
    case 'O':
    case '1':
        return largest_column_sum(p);
    case 'I':
        return largest_row_sum(p, work);
    case 'F':
    case 'E':
        return squares_of(p).norm();
    default:
        return 0;
    }
}

// A matrix that is its own mirror image, from what is beside the diagonal in one triangle and the
// magnitudes on it.
template <class T, class Diagonal>
real_of<T> norm_of_symmetric(char norm, char uplo, index_t n, const T *a, index_t lda,
                             real_of<T> *work, const Diagonal &diagonal) {
    using R = real_of<T>;
    if (n <= 0)
        return 0;
    const auto beside = [=](index_t j) { return column_of(uplo, n, j, 1); };
    R result = 0;
    if (norm == 'M') {
        for (index_t j = 0; j < n; ++j) {
            const span rows = beside(j);
            result = larger(result, largest_magnitude(rows.length(), a + rows.begin + j * lda));
            result = larger(result, diagonal(a[j + j * lda]));
        }
    } else if (norm == 'O' || norm == '1' || norm == 'I') {
        for (index_t j = 0; j < n; ++j)
            work[j] = 0;
        for (index_t j = 0; j < n; ++j) {
            const span rows = beside(j);
            work[j] += diagonal(a[j + j * lda]) +
                       add_magnitudes(rows.length(), a + rows.begin + j * lda, work + rows.begin);
        }
        result = largest_of(n, work);
    } else if (norm == 'F' || norm == 'E') {
        sum_of_squares<R> squares;
        for (index_t j = 0; j < n; ++j) {
            const span rows = beside(j);
            squares.add(blas::nrm2(rows.length(), a + rows.begin + j * lda, 1));
        }
        squares.times(2);
        for (index_t j = 0; j < n; ++j)
            squares.add(diagonal(a[j + j * lda]));
        result = squares.norm();
    }
    return result;
}

} // namespace

template <class T>
real_of<T> lange(char norm, index_t m, index_t n, const T *a, index_t lda, real_of<T> *work) {
    return norm_of<T>(norm, {'G', false, m, n, a, lda}, work);
}

template <class T>
real_of<T> lantr(char norm, char uplo, char diag, index_t m, index_t n, const T *a, index_t lda,
                 real_of<T> *work) {
    return norm_of<T>(norm, {uplo, diag == 'U', m, n, a, lda}, work);
}

template <class T>
real_of<T> lansy(char norm, char uplo, index_t n, const T *a, index_t lda, real_of<T> *work) {
    return norm_of_symmetric(norm, uplo, n, a, lda, work, magnitude<T>);
}

template <class T>
real_of<T> lanhe(char norm, char uplo, index_t n, const T *a, index_t lda, real_of<T> *work) {
    return norm_of_symmetric(norm, uplo, n, a, lda, work,
                             [](T x) { return level1::absolute(real(x)); });
}

#define ALL(p, P, T)                                                                               \
    template real_of<T> lange<T>(char, index_t, index_t, const T *, index_t, real_of<T> *);        \
    template real_of<T> lantr<T>(char, char, char, index_t, index_t, const T *, index_t,           \
                                 real_of<T> *);                                                    \
    template real_of<T> lansy<T>(char, char, index_t, const T *, index_t, real_of<T> *);
VOX_PRECISIONS(ALL)

#define COMPLEX(p, P, T)                                                                           \
    template real_of<T> lanhe<T>(char, char, index_t, const T *, index_t, real_of<T> *);
VOX_COMPLEX_PRECISIONS(COMPLEX)

} // namespace vox::lapack
