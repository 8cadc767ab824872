// level1.hpp - level 1 for tests: one overload per routine for all element types, in the Fortran or the
// C form, and long double mathematics to compare with.
#pragma once

#include <cmath>
#include <complex>
#include <ostream>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/thread_counts.hpp"
#include "vox/vox.h"

namespace test {

using cfloat = vox_complex_float;
using cdouble = vox_complex_double;
using wide = std::complex<long double>;

using vox::is_complex;
using vox::real_of;

template <class T>
wide widen(T a) {
    if constexpr (is_complex<T>)
        return {a.real, a.imag};
    else
        return a;
}
// The imaginary part is dropped for real types.
template <class T>
T narrow(wide a) {
    using R = real_of<T>;
    if constexpr (is_complex<T>)
        return T{R(a.real()), R(a.imag())};
    else
        return R(a.real());
}

// std::abs without its care for the ends of the range, which those of the tested types never reach.
inline long double modulus(wide a) { return std::sqrt(std::norm(a)); }

template <class T>
std::vector<T> random_numbers(size_t n, unsigned seed) {
    const std::vector<real_of<T>> parts = random_vector<real_of<T>>(2 * n, seed);
    std::vector<T> v(n);
    for (size_t i = 0; i < n; ++i)
        v[i] = narrow<T>({parts[2 * i], parts[2 * i + 1]});
    return v;
}

enum class form { fortran, c };

struct shape {
    vox_int n, incx, incy;
};
inline std::ostream &operator<<(std::ostream &out, const shape &s) {
    return out << "n " << s.n << " incx " << s.incx << " incy " << s.incy;
}

inline size_t extent(vox_int n, vox_int inc) {
    return n > 0 ? size_t(n - 1) * size_t(std::abs(inc)) + 1 : 0;
}
// Where element i of a BLAS vector lies: a negative increment walks it from its end.
inline size_t place(vox_int n, vox_int inc, vox_int i) {
    return size_t(inc < 0 ? int64_t(i + 1 - n) * inc : int64_t(i) * inc);
}

// Lengths past every unrolled loop; increments of all kinds on the short ones; then longer ones.
inline std::vector<shape> shapes() {
    std::vector<shape> all;
    for (vox_int n = 0; n <= 280; ++n)
        all.push_back({n, 1, 1});
    for (vox_int n : {0, 1, 2, 3, 5, 8, 13, 33})
        for (vox_int incx : {-3, -1, 0, 1, 2, 17})
            for (vox_int incy : {-3, -1, 0, 1, 2, 17})
                all.push_back({n, incx, incy});
    for (vox_int n : {1000, 2047, 10007})
        for (auto [incx, incy] : {std::pair{1, 1}, {-1, 1}, {2, -3}, {1, 0}})
            all.push_back({n, incx, incy});
    return all;
}

// name(form, arguments by value) calls the Fortran or the C form.
#define COMMON(p, T, in)                                                                           \
    inline void copy(form f, vox_int n, const T *x, vox_int incx, T *y, vox_int incy) {            \
        f == form::c ? cblas_##p##copy(n, x, incx, y, incy) : p##copy_(&n, x, &incx, y, &incy);    \
    }                                                                                              \
    inline void swap(form f, vox_int n, T *x, vox_int incx, T *y, vox_int incy) {                  \
        f == form::c ? cblas_##p##swap(n, x, incx, y, incy) : p##swap_(&n, x, &incx, y, &incy);    \
    }                                                                                              \
    inline void scal(form f, vox_int n, T a, T *x, vox_int incx) {                                 \
        f == form::c ? cblas_##p##scal(n, in(a), x, incx) : p##scal_(&n, &a, x, &incx);            \
    }                                                                                              \
    inline void axpy(form f, vox_int n, T a, const T *x, vox_int incx, T *y, vox_int incy) {       \
        f == form::c ? cblas_##p##axpy(n, in(a), x, incx, y, incy)                                 \
                     : p##axpy_(&n, &a, x, &incx, y, &incy);                                       \
    }                                                                                              \
    inline void axpby(form f, vox_int n, T a, const T *x, vox_int incx, T b, T *y, vox_int incy) { \
        f == form::c ? cblas_##p##axpby(n, in(a), x, incx, in(b), y, incy)                         \
                     : p##axpby_(&n, &a, x, &incx, &b, y, &incy);                                  \
    }                                                                                              \
    inline int64_t iamax(form f, vox_int n, const T *x, vox_int incx) {                            \
        return f == form::c ? int64_t(cblas_i##p##amax(n, x, incx)) : i##p##amax_(&n, x, &incx);   \
    }                                                                                              \
    inline int64_t iamin(form f, vox_int n, const T *x, vox_int incx) {                            \
        return f == form::c ? int64_t(cblas_i##p##amin(n, x, incx)) : i##p##amin_(&n, x, &incx);   \
    }                                                                                              \
    inline void axpyi(form f, vox_int n, T a, const T *x, const vox_int *indx, T *y) {             \
        f == form::c ? cblas_##p##axpyi(n, in(a), x, indx, y) : p##axpyi_(&n, &a, x, indx, y);     \
    }                                                                                              \
    inline void gthr(form f, vox_int n, const T *y, T *x, const vox_int *indx) {                   \
        f == form::c ? cblas_##p##gthr(n, y, x, indx) : p##gthr_(&n, y, x, indx);                  \
    }                                                                                              \
    inline void gthrz(form f, vox_int n, T *y, T *x, const vox_int *indx) {                        \
        f == form::c ? cblas_##p##gthrz(n, y, x, indx) : p##gthrz_(&n, y, x, indx);                \
    }                                                                                              \
    inline void sctr(form f, vox_int n, const T *x, const vox_int *indx, T *y) {                   \
        f == form::c ? cblas_##p##sctr(n, x, indx, y) : p##sctr_(&n, x, indx, y);                  \
    }
#define BY_VALUE(a) a
#define BY_ADDRESS(a) &a
COMMON(s, float, BY_VALUE)
COMMON(d, double, BY_VALUE)
COMMON(c, cfloat, BY_ADDRESS)
COMMON(z, cdouble, BY_ADDRESS)

// Routines whose names say both the type of the elements and that of a real scalar or result.
#define WITH_REALS(p, T)                                                                           \
    inline real_of<T> asum(form f, vox_int n, const T *x, vox_int incx) {                          \
        return f == form::c ? cblas_##p##asum(n, x, incx) : p##asum_(&n, x, &incx);                \
    }                                                                                              \
    inline real_of<T> nrm2(form f, vox_int n, const T *x, vox_int incx) {                          \
        return f == form::c ? cblas_##p##nrm2(n, x, incx) : p##nrm2_(&n, x, &incx);                \
    }
WITH_REALS(s, float)
WITH_REALS(d, double)
WITH_REALS(sc, cfloat)
WITH_REALS(dz, cdouble)

#define ROTATIONS(p, T)                                                                            \
    inline void rot(form f, vox_int n, T *x, vox_int incx, T *y, vox_int incy, real_of<T> c,       \
                    real_of<T> s) {                                                                \
        f == form::c ? cblas_##p##rot(n, x, incx, y, incy, c, s)                                   \
                     : p##rot_(&n, x, &incx, y, &incy, &c, &s);                                    \
    }
ROTATIONS(s, float)
ROTATIONS(d, double)
ROTATIONS(cs, cfloat)
ROTATIONS(zd, cdouble)

#define REAL_ONLY(p, T)                                                                            \
    inline T dot(form f, vox_int n, const T *x, vox_int incx, const T *y, vox_int incy) {          \
        return f == form::c ? cblas_##p##dot(n, x, incx, y, incy)                                  \
                            : p##dot_(&n, x, &incx, y, &incy);                                     \
    }                                                                                              \
    inline T dotc(form f, vox_int n, const T *x, vox_int incx, const T *y, vox_int incy) {         \
        return dot(f, n, x, incx, y, incy);                                                        \
    }                                                                                              \
    inline T doti(form f, vox_int n, const T *x, const vox_int *indx, const T *y) {                \
        return f == form::c ? cblas_##p##doti(n, x, indx, y) : p##doti_(&n, x, indx, y);           \
    }                                                                                              \
    inline T dotci(form f, vox_int n, const T *x, const vox_int *indx, const T *y) {               \
        return doti(f, n, x, indx, y);                                                             \
    }                                                                                              \
    inline void roti(form f, vox_int n, T *x, const vox_int *indx, T *y, T c, T s) {               \
        f == form::c ? cblas_##p##roti(n, x, indx, y, c, s) : p##roti_(&n, x, indx, y, &c, &s);    \
    }                                                                                              \
    inline void rotm(form f, vox_int n, T *x, vox_int incx, T *y, vox_int incy, const T *h) {      \
        f == form::c ? cblas_##p##rotm(n, x, incx, y, incy, h)                                     \
                     : p##rotm_(&n, x, &incx, y, &incy, h);                                        \
    }                                                                                              \
    inline void rotmg(form f, T *d1, T *d2, T *x1, T y1, T *param) {                               \
        f == form::c ? cblas_##p##rotmg(d1, d2, x1, y1, param)                                     \
                     : p##rotmg_(d1, d2, x1, &y1, param);                                          \
    }
REAL_ONLY(s, float)
REAL_ONLY(d, double)

#define COMPLEX_DOT(name, p, routine, T)                                                           \
    inline T name(form f, vox_int n, const T *x, vox_int incx, const T *y, vox_int incy) {         \
        T result;                                                                                  \
        if (f == form::c)                                                                          \
            cblas_##p##routine##_sub(n, x, incx, y, incy, &result);                                \
        else                                                                                       \
            result = p##routine##_(&n, x, &incx, y, &incy);                                        \
        return result;                                                                             \
    }                                                                                              \
    inline T name##i(form f, vox_int n, const T *x, const vox_int *indx, const T *y) {             \
        T result;                                                                                  \
        if (f == form::c)                                                                          \
            cblas_##p##routine##i_sub(n, x, indx, y, &result);                                     \
        else                                                                                       \
            result = p##routine##i_(&n, x, indx, y);                                               \
        return result;                                                                             \
    }
COMPLEX_DOT(dot, c, dotu, cfloat)
COMPLEX_DOT(dot, z, dotu, cdouble)
COMPLEX_DOT(dotc, c, dotc, cfloat)
COMPLEX_DOT(dotc, z, dotc, cdouble)

#define ROTG(p, T)                                                                                 \
    inline void rotg(form f, T *a, T *b, real_of<T> *c, T *s) {                                    \
        f == form::c ? cblas_##p##rotg(a, b, c, s) : p##rotg_(a, b, c, s);                         \
    }
ROTG(s, float)
ROTG(d, double)
ROTG(c, cfloat)
ROTG(z, cdouble)

#undef COMMON
#undef BY_VALUE
#undef BY_ADDRESS
#undef WITH_REALS
#undef ROTATIONS
#undef REAL_ONLY
#undef COMPLEX_DOT
#undef ROTG

} // namespace test
