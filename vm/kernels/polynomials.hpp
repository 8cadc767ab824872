// polynomials.hpp - polynomials of vectors.
#pragma once

#include "vm/kernels/masks.hpp"

namespace {
namespace vm {

// c[0] + c[1] x + ..., given x^2: pairs of terms, and of these by powers of x^2. That takes as many operations as
// one by one and half the time until the result is there, which bounds how many vectors are in flight. The
// coefficients are doubles, or vectors.
template <class V, class C, int N>
VOX_INLINED inline V polynomial(V x, [[maybe_unused]] V square, const C (&c)[N]) {
    const auto constant = [&](int i) VOX_INLINED {
        if constexpr (std::is_same_v<C, V>)
            return c[i];
        else
            return V{} + element<V>(c[i]);
    };
    const auto pair = [&](int i) VOX_INLINED {
        return i + 1 < N ? fma(x, constant(i + 1), constant(i)) : constant(i);
    };
    constexpr int last = (N - 1) & ~1;
    V sum = pair(last);
    simd::unroll<last / 2>([&](auto i)
                               VOX_INLINED { sum = fma(sum, square, pair(last - 2 - 2 * i)); });
    return sum;
}

// c[0] + c[1] x + ... by Horner's rule.
template <class T, int N>
VOX_INLINED inline vec<T> polynomial(vec<T> x, const T (&c)[N]) {
    vec<T> p = vec<T>{} + c[N - 1];
    simd::unroll<N - 1>([&](auto i) VOX_INLINED { p = fma(p, x, vec<T>{} + c[N - 2 - i]); });
    return p;
}

} // namespace vm
} // namespace
