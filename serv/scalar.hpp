// scalar.hpp - the four element types and what templates over them need: complex arithmetic, the
// type of the parts, lists of precisions.
//
// Complex products are the textbook ones, as Fortran's: no repair of infinities. Everything is
// inlined always, so that kernel objects can use it and leave no copy behind.
#pragma once

#include <type_traits>

#include "serv/base.hpp"

// X(lower letter, upper letter, element type) for each.
#define VOX_REAL_PRECISIONS(X) X(s, S, float) X(d, D, double)
#define VOX_COMPLEX_PRECISIONS(X) X(c, C, vox_complex_float) X(z, Z, vox_complex_double)
#define VOX_PRECISIONS(X) VOX_REAL_PRECISIONS(X) VOX_COMPLEX_PRECISIONS(X)

namespace vox {

template <class T>
struct parts_of {
    using type = T;
};
template <>
struct parts_of<vox_complex_float> {
    using type = float;
};
template <>
struct parts_of<vox_complex_double> {
    using type = double;
};

// The type of a number's real part.
template <class T>
using real_of = typename parts_of<T>::type;

template <class T>
constexpr bool is_complex = !std::is_same_v<T, real_of<T>>;

#define VOX_SCALAR [[gnu::always_inline]] constexpr

template <class T>
VOX_SCALAR real_of<T> real(T a) {
    if constexpr (is_complex<T>)
        return a.real;
    else
        return a;
}
template <class T>
VOX_SCALAR real_of<T> imag(T a) {
    if constexpr (is_complex<T>)
        return a.imag;
    else
        return 0;
}
// re is kept alone where T is real.
template <class T>
VOX_SCALAR T make(real_of<T> re, real_of<T> im = 0) {
    if constexpr (is_complex<T>)
        return T{re, im};
    else
        return (void)im, re;
}
// conj(a) where asked for; a itself for real types.
template <class T>
VOX_SCALAR T conj_if(bool conjugate, T a) {
    if constexpr (is_complex<T>)
        return T{a.real, conjugate ? -a.imag : a.imag};
    else
        return (void)conjugate, a;
}

// a / b; complex by Smith's method (Communications of the ACM 5(8), 1962), which does not overflow
// where the parts of b can be squared only with overflow.
template <class T>
VOX_SCALAR T divide(T a, T b) {
    if constexpr (!is_complex<T>) {
        return a / b;
    } else if ((b.real < 0 ? -b.real : b.real) < (b.imag < 0 ? -b.imag : b.imag)) {
        const auto ratio = b.real / b.imag, scale = b.real * ratio + b.imag;
        return {(a.real * ratio + a.imag) / scale, (a.imag * ratio - a.real) / scale};
    } else {
        const auto ratio = b.imag / b.real, scale = b.imag * ratio + b.real;
        return {(a.real + a.imag * ratio) / scale, (a.imag - a.real * ratio) / scale};
    }
}

template <class T>
VOX_SCALAR bool is_zero(T a) {
    return real(a) == 0 && imag(a) == 0;
}

// static: no symbol, even where an address of it is taken
template <class T>
static constexpr T one = make<T>(1);

} // namespace vox

#define VOX_COMPLEX_OPERATORS(T, R)                                                                \
    VOX_SCALAR T operator+(T a, T b) { return {a.real + b.real, a.imag + b.imag}; }                \
    VOX_SCALAR T operator-(T a, T b) { return {a.real - b.real, a.imag - b.imag}; }                \
    VOX_SCALAR T operator-(T a) { return {-a.real, -a.imag}; }                                     \
    VOX_SCALAR T operator*(T a, T b) {                                                             \
        return {a.real * b.real - a.imag * b.imag, a.real * b.imag + a.imag * b.real};             \
    }                                                                                              \
    VOX_SCALAR T operator*(R a, T b) { return {a * b.real, a * b.imag}; }                          \
    VOX_SCALAR T operator*(T a, R b) { return {a.real * b, a.imag * b}; }                          \
    VOX_SCALAR T &operator+=(T &a, T b) { return a = a + b; }                                      \
    VOX_SCALAR T &operator-=(T &a, T b) { return a = a - b; }                                      \
    VOX_SCALAR T &operator*=(T &a, T b) { return a = a * b; }                                      \
    VOX_SCALAR bool operator==(T a, T b) { return a.real == b.real && a.imag == b.imag; }
VOX_COMPLEX_OPERATORS(vox_complex_float, float)
VOX_COMPLEX_OPERATORS(vox_complex_double, double)
