// rot.cpp - plane rotations of the rows (x_i, y_i): ?rot, with real or complex s, and ?rotm.
#include "blas/blas.hpp"
#include "blas/kernels/elementwise.hpp"

namespace {

// x, y := h11 x + h12 y, h21 x + h22 y.
template <class V, class D, class A>
VOX_INLINE void apply(V &x, V &y, D h11, A h12, A h21, D h22) {
    const V a = in_register(x), b = in_register(y);
    x = plus_times(times(h11, a), h12, b);
    y = plus_times(times(h22, b), h21, a);
}

// x := c x + s y, y := c y - conj(s) x.
template <class S, class T>
VOX_INLINE void rot(index_t n, T *x, index_t incx, T *y, index_t incy, real_of<T> c, S s) {
    elementwise<T>(n, update(x, incx), update(y, incy),
                   [=](auto &a, auto &b) { apply(a, b, c, s, -vox::conj_if(true, s), c); });
}

// x := h11 x + h12 y, y := h21 x + h22 y; param holds the flag, then h by columns. The flag says
// which entries are 1 or -1 without being stored.
template <class T>
void rotm(index_t n, T *x, index_t incx, T *y, index_t incy, const T *param) {
    const T flag = param[0];
    const bool unit_diagonal = flag == 0, unit_antidiagonal = !(flag <= 0);
    const T h11 = unit_diagonal ? T(1) : param[1], h21 = unit_antidiagonal ? T(-1) : param[2];
    const T h12 = unit_antidiagonal ? T(1) : param[3], h22 = unit_diagonal ? T(1) : param[4];
    elementwise<T>(n, update(x, incx), update(y, incy),
                   [=](auto &a, auto &b) { apply(a, b, h11, h12, h21, h22); });
}

} // namespace

#define ROT(p, S, T)                                                                               \
    extern "C" void VOX_KERNEL(blas, p##rot) VOX_ROT_PARAMETERS(T, index_t, S) {                   \
        rot(*n, x, *incx, y, *incy, *c, *s);                                                       \
    }
ROT(s, float, float)
ROT(d, double, double)
ROT(cs, float, vox_complex_float)
ROT(zd, double, vox_complex_double)
ROT(c, vox_complex_float, vox_complex_float)
ROT(z, vox_complex_double, vox_complex_double)

#define ROTM(p, P, T)                                                                              \
    extern "C" void VOX_KERNEL(blas, p##rotm) VOX_ROTM_PARAMETERS(T, index_t) {                    \
        rotm(*n, x, *incx, y, *incy, param);                                                       \
    }
VOX_REAL_PRECISIONS(ROTM)
