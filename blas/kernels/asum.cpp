// asum.cpp - ?asum: the sum of |x_i|, of |re| + |im| for complex numbers.
#include "blas/blas.hpp"
#include "blas/kernels/reduction.hpp"

namespace {

template <class V>
struct magnitudes {
    V v;
    VOX_INLINE void add(V x) { v += abs(x); }
    VOX_INLINE void merge(const magnitudes &other) { v += other.v; }
    VOX_INLINE auto total() const { return sum_of_lanes(v); }
};

} // namespace

#define ASUM(p, T)                                                                                 \
    extern "C" real_of<T> VOX_KERNEL(blas, p##asum) VOX_VECTOR_PARAMETERS(T, index_t) {            \
        return reduce<magnitudes, real_of<T>, parts<T>>(*n, source(x, *incx));                     \
    }
ASUM(s, float)
ASUM(d, double)
ASUM(sc, vox_complex_float)
ASUM(dz, vox_complex_double)
