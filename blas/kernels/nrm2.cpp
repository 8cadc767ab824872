// nrm2.cpp - ?nrm2: the square root of the sum of |x_i|^2, without overflow or underflow.
//
// The squares are summed in double precision. For single precision that is all: no square of a float
// leaves the range. For double precision the sum tells whether squares overflowed, or underflowed so
// that it matters, and then a second pass scales by a power of two that is safe for every vector of
// its kind. With m = max |x_i| and n < 2^63:
//   sum = inf, m finite:  m > 2^480, and squares of 2^-600 x lie between 2^-240 and 2^848, or are
//                         too small to matter beside the largest;
//   sum < 2^-900:         m < 2^-450, and squares of 2^600 x lie between 2^-948 and 2^300.
// From 2^-900 on, what squares lose below 2^-1022 is less than an ulp of the sum. NaN stays NaN, and
// an infinity without NaN gives infinity. Error: gamma(n/2 + 2) of the norm.
#include "blas/blas.hpp"
#include "blas/kernels/reduction.hpp"

namespace {

template <class V>
struct squares {
    V v;
    VOX_INLINE void add(V x) { v = fma(x, x, v); }
    VOX_INLINE void merge(const squares &other) { v += other.v; }
    VOX_INLINE auto total() const { return sum_of_lanes(v); }
};

constexpr double large = 0x1p600, small = 0x1p-600;

template <class V>
struct enlarged_squares : squares<V> {
    VOX_INLINE void add(V x) { squares<V>::add(x * large); }
};
template <class V>
struct reduced_squares : squares<V> {
    VOX_INLINE void add(V x) { squares<V>::add(x * small); }
};

template <template <class> class Sum, class T>
__attribute__((noinline)) double second_sum(index_t n, const T *x, index_t incx) {
    return reduce<Sum, double, parts<T>>(n, source(x, incx));
}

template <class T>
VOX_INLINE real_of<T> nrm2(index_t n, const T *x, index_t incx) {
    const double sum = reduce<squares, double, parts<T>>(n, source(x, incx));
    if constexpr (sizeof(real_of<T>) == sizeof(double)) {
        if (VOX_UNLIKELY(sum < 0x1p-900))
            return small * __builtin_sqrt(second_sum<enlarged_squares>(n, x, incx));
        if (VOX_UNLIKELY(sum > 0x1.fffffffffffffp1023))
            return large * __builtin_sqrt(second_sum<reduced_squares>(n, x, incx));
    }
    return real_of<T>(__builtin_sqrt(sum));
}

} // namespace

#define NRM2(p, T)                                                                                 \
    extern "C" real_of<T> VOX_KERNEL(blas, p##nrm2) VOX_VECTOR_PARAMETERS(T, index_t) {            \
        return nrm2(*n, x, *incx);                                                                 \
    }
NRM2(s, float)
NRM2(d, double)
NRM2(sc, vox_complex_float)
NRM2(dz, vox_complex_double)
