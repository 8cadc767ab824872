// scalars.cpp - see scalars.hpp.
//
// ladiv: M. Baudin, R. L. Smith, "A Robust Complex Division in Scilab", arXiv:1210.4539, 2012. lartg:
// E. Anderson, "Algorithm 978: Safe Scaling in the Level 1 BLAS", ACM TOMS 44(1), 2017.
#include "lapack/drivers/scalars.hpp"

#include <limits>

#include "blas/drivers/rotg.hpp"
#include "lapack/drivers/sum_of_squares.hpp"

namespace vox::lapack {
namespace {

using level1::absolute;
using level1::root;
using level1::safe;

template <class R>
R larger(R a, R b) {
    return a < b ? b : a;
}

// (a + b d/c) / (c + d d/c) = (a + b ratio) t, where b ratio may vanish although the result does not.
template <class R>
R quotient_part(R a, R b, R c, R d, R ratio, R t) {
    if (ratio == 0)
        return (a + d * (b / c)) * t;
    const R product = b * ratio;
    return product != 0 ? (a + product) * t : a * t + (b * t) * ratio;
}

// For |d| <= |c|, all of moderate size.
template <class R>
void moderate_quotient(R a, R b, R c, R d, R *p, R *q) {
    const R ratio = d / c, t = 1 / (c + d * ratio);
    *p = quotient_part(a, b, c, d, ratio, t);
    *q = quotient_part(b, -a, c, d, ratio, t);
}

} // namespace

template <class T>
void lassq(index_t n, const T *x, index_t incx, real_of<T> *scale, real_of<T> *sum) {
    if (*scale != *scale || *sum != *sum)
        return;
    if (*sum == 0)
        *scale = 1;
    if (*scale == 0)
        *scale = 1, *sum = 0;
    if (n <= 0)
        return;
    sum_of_squares<real_of<T>> squares;
    for (index_t i = 0; i < n; ++i) {
        const T element = x[incx < 0 ? (i + 1 - n) * incx : i * incx];
        squares.add(real(element));
        if constexpr (is_complex<T>)
            squares.add(imag(element));
    }
    squares.add(*scale, *sum);
    squares.get(scale, sum);
}

template <class R>
R lapy2(R x, R y) {
    if (x != x)
        return x;
    if (y != y)
        return y;
    const R a = absolute(x), b = absolute(y), most = larger(a, b), least = a < b ? a : b;
    if (least == 0 || most > std::numeric_limits<R>::max())
        return most;
    return most * root(1 + (least / most) * (least / most));
}

template <class R>
R lapy3(R x, R y, R z) {
    const R a = absolute(x), b = absolute(y), c = absolute(z), most = larger(larger(a, b), c);
    if (most == 0 || most > std::numeric_limits<R>::max())
        return a + b + c; // NaN, too
    return most * root((a / most) * (a / most) + (b / most) * (b / most) + (c / most) * (c / most));
}

template <class R>
void ladiv(R a, R b, R c, R d, R *p, R *q) {
    constexpr R huge = std::numeric_limits<R>::max(), eps = std::numeric_limits<R>::epsilon() / 2;
    constexpr R tiny = safe<R>::min * 2 / eps, up = 2 / (eps * eps);
    const bool by_real = absolute(d) <= absolute(c);
    const R numerator = larger(absolute(a), absolute(b));
    const R denominator = larger(absolute(c), absolute(d));
    R scale = 1;
    if (numerator >= huge / 2)
        a /= 2, b /= 2, scale *= 2;
    if (denominator >= huge / 2)
        c /= 2, d /= 2, scale /= 2;
    if (numerator <= tiny)
        a *= up, b *= up, scale /= up;
    if (denominator <= tiny)
        c *= up, d *= up, scale *= up;
    if (by_real) {
        moderate_quotient(a, b, c, d, p, q);
    } else {
        moderate_quotient(b, a, d, c, p, q);
        *q = -*q;
    }
    *p *= scale;
    *q *= scale;
}

template <class T>
T ladiv(T x, T y) {
    T result;
    ladiv(x.real, x.imag, y.real, y.imag, &result.real, &result.imag);
    return result;
}

template <class T>
void lartg(T f, T g, real_of<T> *c, T *s, T *r) {
    if constexpr (is_complex<T>) {
        *r = f;
        level1::complex_rotg(r, &g, c, s);
    } else {
        const T size_f = absolute(f), size_g = absolute(g);
        if (g == 0) {
            *c = 1, *s = 0, *r = f;
        } else if (f == 0) {
            *c = 0, *s = __builtin_copysign(T(1), g), *r = size_g;
        } else {
            const bool plain = safe<T>::can_be_squared(size_f) && safe<T>::can_be_squared(size_g);
            const T scale = plain ? T(1) : safe<T>::clamp(larger(size_f, size_g));
            const T fs = f / scale, gs = g / scale, length = root(fs * fs + gs * gs);
            const T signed_length = __builtin_signbit(f) ? -length : length;
            *c = absolute(fs) / length;
            *s = gs / signed_length;
            *r = signed_length * scale;
        }
    }
}

template <class R>
void labad(R *small, R *large) {
    if (*large > std::numeric_limits<R>::max())
        *small = root(*small);
}

template <class R>
R lamch(char what) {
    using limits = std::numeric_limits<R>;
    switch (what >= 'a' && what <= 'z' ? what - 'a' + 'A' : what) {
    case 'E': // rounding: half of the distance from 1 to the next number
        return limits::epsilon() / 2;
    case 'S': // 1 over it does not overflow
    case 'U':
        return limits::min();
    case 'B':
        return limits::radix;
    case 'P':
        return limits::epsilon();
    case 'N':
        return limits::digits;
    case 'R': // numbers are rounded
        return 1;
    case 'M':
        return limits::min_exponent;
    case 'L':
        return limits::max_exponent;
    case 'O':
        return limits::max();
    default:
        return 0;
    }
}

#define ALL(p, P, T)                                                                               \
    template void lassq<T>(index_t, const T *, index_t, real_of<T> *, real_of<T> *);               \
    template void lartg<T>(T, T, real_of<T> *, T *, T *);
VOX_PRECISIONS(ALL)

#define REAL(p, P, T)                                                                              \
    template T lapy2<T>(T, T);                                                                     \
    template T lapy3<T>(T, T, T);                                                                  \
    template void ladiv<T>(T, T, T, T, T *, T *);                                                  \
    template void labad<T>(T *, T *);                                                              \
    template T lamch<T>(char);
VOX_REAL_PRECISIONS(REAL)

#define COMPLEX(p, P, T) template T ladiv<T>(T, T);
VOX_COMPLEX_PRECISIONS(COMPLEX)

} // namespace vox::lapack
