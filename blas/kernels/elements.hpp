// elements.hpp - vectors of real and complex numbers as the kernels walk them.
//
// A vector is walked in units of its real type R: a contiguous one in SIMD vectors of R, whatever its
// element type; a strided one element by element, where an element is a scalar of R or a pair of
// lanes. Arithmetic that is written on "V" serves all three.
#pragma once

#include "serv/scalar.hpp"
#include "serv/simd.hpp"

#define VOX_INLINE __attribute__((always_inline)) inline

namespace {

using namespace simd;
using vox::is_complex;
using vox::real_of;

// Operands that do not fit the second-level cache: loads of half a cache line stream faster from
// beyond it than whole lines do (by up to a quarter on processors with 256-bit data paths), and
// there no processor gains by the wider ones.
constexpr index_t far_bytes = 512 * 1024;

// Lanes of an element.
template <class T>
constexpr int parts = is_complex<T> ? 2 : 1;

template <class T>
VOX_INLINE const real_of<T> *flat(const T *p) {
    return reinterpret_cast<const real_of<T> *>(p);
}
template <class T>
VOX_INLINE real_of<T> *flat(T *p) {
    return reinterpret_cast<real_of<T> *>(p);
}

// An element of so many lanes of R, and its conversion from another real type.
template <class R, int Lanes>
struct element_of {
    using type = typename vec_of<R, Lanes *int(sizeof(R))>::type;
    template <class S>
    static VOX_INLINE type load_from(const S *p) {
        return load_as<R, Lanes *int(sizeof(R))>(p);
    }
};
template <class R>
struct element_of<R, 1> {
    using type = R;
    template <class S>
    static VOX_INLINE type load_from(const S *p) {
        return R(*p);
    }
};
template <class R, int Lanes>
using element = typename element_of<R, Lanes>::type;

// The first element that a loop meets: a vector with a negative increment is walked from its end.
template <class P>
VOX_INLINE P first_element(P x, index_t n, index_t inc) {
    return inc < 0 ? x - (n - 1) * inc : x;
}

// a x and y + a x for real and complex a.
template <class T, class V>
VOX_INLINE V times(T a, V operand) {
    const V x = is_complex<T> ? in_register(operand) : operand;
    if constexpr (is_complex<T>)
        return a.real * x + broadcast_pair<int(sizeof(V))>(-a.imag, a.imag) * swap_pairs(x);
    else
        return a * x;
}
template <class T, class V>
VOX_INLINE V plus_times(V y, T a, V operand) {
    const V x = is_complex<T> ? in_register(operand) : operand;
    if constexpr (is_complex<T>) {
        const V re = a.real * x + y;
        return broadcast_pair<int(sizeof(V))>(-a.imag, a.imag) * swap_pairs(x) + re;
    } else {
        return a * x + y;
    }
}

} // namespace
