// rotg.hpp - the construction of plane rotations: ?rotg and ?rotmg.
//
// ?rotg: E. Anderson, "Algorithm 978: Safe Scaling in the Level 1 BLAS", ACM TOMS 44(1), 2017: no
// overflow or underflow on the way to a representable result. ?rotmg: Lawson, Hanson, Kincaid, Krogh,
// "Basic Linear Algebra Subprograms for Fortran Usage", ACM TOMS 5(3), 1979.
#pragma once

#include <float.h>

#include "serv/scalar.hpp"

namespace vox::level1 {

inline float absolute(float x) { return __builtin_fabsf(x); }
inline double absolute(double x) { return __builtin_fabs(x); }
inline float root(float x) { return __builtin_sqrtf(x); }
inline double root(double x) { return __builtin_sqrt(x); }

// The smallest normal number and its reciprocal; between the square roots below, squares and sums of
// four of them are safe and accurate.
template <class R>
struct safe {
    static constexpr bool single = sizeof(R) == sizeof(float);
    static constexpr R min = single ? R(FLT_MIN) : R(DBL_MIN), max = 1 / min;
    static constexpr R root_min = single ? R(0x1p-51) : R(0x1p-485);
    static constexpr R root_max = single ? R(0x1p62) : R(0x1p510);

    static R clamp(R x) { return x < min ? min : x > max ? max : x; }
    static bool can_be_squared(R x) { return root_min < x && x < root_max; }
};

// a := r, b := z, from which c and s can be had again.
template <class R>
void rotg(R *a, R *b, R *c, R *s) {
    const R f = *a, g = *b, size_f = absolute(f), size_g = absolute(g);
    if (size_g == 0) {
        *c = 1;
        *s = *b = 0;
        return;
    }
    if (size_f == 0) {
        *a = g;
        *c = 0;
        *s = *b = 1;
        return;
    }
    const bool f_leads = size_f > size_g;
    const R scale = safe<R>::clamp(f_leads ? size_f : size_g), fs = f / scale, gs = g / scale;
    const R size = root(fs * fs + gs * gs);
    const R length = __builtin_signbit(f_leads ? f : g) ? -size : size;
    *c = fs / length; // not f / r, which would suffer where r is denormal
    *s = gs / length;
    *a = scale * length;
    *b = f_leads ? *s : *c != 0 ? 1 / *c : 1;
}

template <class T>
real_of<T> square(T z) {
    return z.real * z.real + z.imag * z.imag;
}
template <class T>
T quotient(T z, real_of<T> by) {
    return {z.real / by, z.imag / by};
}
template <class T>
real_of<T> largest_part(T z) {
    const auto re = absolute(z.real), im = absolute(z.imag);
    return re > im ? re : im;
}

// a := r = (f / |f|) sqrt(|f|^2 + |g|^2); b stays.
template <class T>
void complex_rotg(T *a, const T *b, real_of<T> *c, T *s) {
    using R = real_of<T>;
    using range = safe<R>;
    const T f = *a, g = *b;
    if (is_zero(g)) {
        *c = 1;
        *s = T{};
        return;
    }
    const R size_f = largest_part(f), size_g = largest_part(g);
    if (is_zero(f)) {
        const R scale = range::can_be_squared(size_g) ? 1 : range::clamp(size_g);
        const T gs = quotient(g, scale);
        const R length = root(square(gs));
        *c = 0;
        *s = quotient(conj_if(true, gs), length);
        *a = T{length * scale, 0};
        return;
    }
    // f and g over one scale, or f over its own where it would vanish: f = f_scale fs.
    const bool plain = range::can_be_squared(size_f) && range::can_be_squared(size_g);
    const R scale = plain ? 1 : range::clamp(size_f > size_g ? size_f : size_g);
    const R f_scale = size_f / scale < range::root_min ? range::clamp(size_f) : scale;
    const R ratio = f_scale / scale;
    const T fs = quotient(f, f_scale), gs = quotient(g, scale);
    const R f2 = square(fs), h2 = f2 * ratio * ratio + square(gs);
    R cosine;
    T r;
    if (f2 >= h2 * range::min) {
        cosine = root(f2 / h2);
        r = quotient(fs, cosine);
        *s = f2 > range::root_min && h2 < 2 * range::root_max
                 ? conj_if(true, gs) * quotient(fs, root(f2 * h2))
                 : conj_if(true, gs) * quotient(r, h2);
    } else {
        const R d = root(f2 * h2);
        cosine = f2 / d;
        r = cosine >= range::min ? quotient(fs, cosine) : fs * (h2 / d);
        *s = conj_if(true, gs) * quotient(fs, d);
    }
    *c = cosine * ratio;
    *a = r * scale;
}

// The matrix H of a modified rotation, by columns as in param.
template <class R>
struct modified_rotation {
    R flag, h11, h21, h12, h22;

    // From here on all entries are stored.
    void spell_out() {
        if (flag == 0)
            h11 = h22 = 1;
        else if (flag > 0)
            h21 = -1, h12 = 1;
        flag = -1;
    }
};

// Keeps |d| between 2^-24 and 2^24; its row of H and its component of the vector take the square root
// of what d takes. Zero, infinity and NaN stay as they are.
template <class R>
void rescale(modified_rotation<R> &h, R &d, R &row_1, R &row_2, R &component) {
    constexpr R gamma = 4096, gamma_squared = gamma * gamma;
    while (d != 0 && absolute(d) - absolute(d) == 0 &&
           (absolute(d) <= 1 / gamma_squared || absolute(d) >= gamma_squared)) {
        h.spell_out();
        const bool up = absolute(d) < 1;
        d = up ? d * gamma_squared : d / gamma_squared;
        const R factor = up ? 1 / gamma : gamma; // powers of two: exact
        row_1 *= factor;
        row_2 *= factor;
        component *= factor;
    }
}

template <class R>
void rotmg(R *d1, R *d2, R *x1, const R *y1, R *param) {
    modified_rotation<R> h = {-1, 0, 0, 0, 0};
    const R p2 = *d2 * *y1;
    if (!(*d1 < 0) && p2 == 0) {
        param[0] = -2;
        return;
    }
    const R p1 = *d1 * *x1, q1 = p1 * *x1, q2 = p2 * *y1;
    bool valid = !(*d1 < 0);
    if (valid && absolute(q1) > absolute(q2)) {
        h.h21 = -*y1 / *x1;
        h.h12 = p2 / p1;
        const R u = 1 - h.h12 * h.h21;
        valid = !(u <= 0);
        if (valid) {
            h.flag = 0;
            *d1 /= u;
            *d2 /= u;
            *x1 *= u;
        }
    } else if (valid) {
        valid = !(q2 < 0);
        if (valid) {
            h.flag = 1;
            h.h11 = p1 / p2;
            h.h22 = *x1 / *y1;
            const R u = 1 + h.h11 * h.h22, swapped = *d2 / u;
            *d2 = *d1 / u;
            *d1 = swapped;
            *x1 = *y1 * u;
        }
    }
    if (valid) {
        rescale(h, *d1, h.h11, h.h12, *x1);
        R none = 0;
        rescale(h, *d2, h.h21, h.h22, none);
    } else {
        h = {-1, 0, 0, 0, 0};
        *d1 = *d2 = *x1 = 0;
    }
    param[0] = h.flag;
    if (h.flag != 0) {
        param[1] = h.h11;
        param[4] = h.h22;
    }
    if (h.flag <= 0) {
        param[2] = h.h21;
        param[3] = h.h12;
    }
}

} // namespace vox::level1
