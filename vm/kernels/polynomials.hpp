// polynomials.hpp - polynomials of vectors.
#pragma once

#include "vm/kernels/masks.hpp"

namespace {
namespace vm {

// c[0] + c[1] x + ... + c[N-1] x^(N-1) by Horner's rule.
template <class T, int N>
VOX_INLINED inline vec<T> polynomial(vec<T> x, const T (&c)[N]) {
    vec<T> p = vec<T>{} + c[N - 1];
    simd::unroll<N - 1>([&](auto i) VOX_INLINED { p = fma(p, x, vec<T>{} + c[N - 2 - i]); });
    return p;
}

} // namespace vm
} // namespace
