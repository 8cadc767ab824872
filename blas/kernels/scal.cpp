// scal.cpp - ?scal: alpha x, by real and by complex factors. Zero multiplies like any other factor.
#include "blas/blas.hpp"
#include "blas/kernels/elementwise.hpp"

namespace {

template <class S, class T>
VOX_INLINE void scal(index_t n, S alpha, T *x, index_t incx) {
    elementwise<T>(n, absent(), update(x, incx), [=](auto &, auto &b) { b = times(alpha, b); });
}

} // namespace

#define SCAL(p, S, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##scal) VOX_SCAL_PARAMETERS(T, index_t, S) {                 \
        scal(*n, *alpha, x, *incx);                                                                \
    }
SCAL(s, float, float)
SCAL(d, double, double)
SCAL(c, vox_complex_float, vox_complex_float)
SCAL(z, vox_complex_double, vox_complex_double)
SCAL(cs, float, vox_complex_float)
SCAL(zd, double, vox_complex_double)
