// gaussian.cpp - the normal distribution, by Box and Muller's transformation of pairs of uniforms (Ann. Math.
// Statist. 29 (1958) 610-611) or by the inverse of its distribution function.
#include "rng/kernels/variates.hpp"
#include "vox/rsk.h"

namespace {

using namespace variates;

// The elements of two vectors that stand at even places, at odd ones; and back.
template <int... I>
inline void part(doubles a, doubles b, doubles &even, doubles &odd,
                 std::integer_sequence<int, I...>) {
    even = __builtin_shufflevector(a, b, (2 * I)...);
    odd = __builtin_shufflevector(a, b, (2 * I + 1)...);
}
template <int... I>
inline void join(doubles even, doubles odd, doubles &a, doubles &b,
                 std::integer_sequence<int, I...>) {
    a = __builtin_shufflevector(even, odd, (I % 2 * lanes + I / 2)...);
    b = __builtin_shufflevector(even, odd, (I % 2 * lanes + (I + lanes) / 2)...);
}
constexpr auto places = std::make_integer_sequence<int, lanes>();

// For a pair of uniforms, sqrt(-2 ln(1 - first)) times sine and cosine of so many turns as the second says.
// The root of 2 is with these.
inline doubles sine(doubles u) { // x, 1/2 - x or x - 1, whichever is within a quarter of 0
    return math::root2_sin_of_turns(math::larger(math::smaller(u, 0.5 - u), u - 1.0));
}
inline doubles cosine(doubles u) {
    return math::root2_sin_of_turns(math::larger(0.25 - u, u - 0.75));
}

// Z variates of every pair: transform(length, turns, z). The logarithms of a whole block come first, since one
// loop for all is too long a chain for the processor to look ahead to the next round.
template <int Z, class R, class Transform>
inline int box_muller(stream *s, int n, R *r, const Transform &transform) {
    return in_blocks<2, Z>(s, n, r, [&](double *u, int m, R *to) VOX_INLINED {
        for (int i = 0; i < (m + Z - 1) / Z * 2; i += 2 * lanes) {
            doubles first, second;
            part(simd::load(u + i), simd::load(u + i + lanes), first, second, places);
            simd::store(u + i, math::minus_log_of_rest(first));
            simd::store(u + i + lanes, second);
        }
        transform_block<2, Z>(u, m, to, [&](const auto &in, auto &z) VOX_INLINED {
            transform(math::sqrt(in[0]), in[1], z);
        });
    });
}

// Arithmetic in double precision, whatever the result is.
template <class R>
int gaussian(int method, stream *s, int n, R *r, double a, double sigma) {
    switch (method) {
    case RSK_GAUSSIAN_BOXMULLER:
        return box_muller<1>(s, n, r, [&](doubles length, doubles turns, auto &z) VOX_INLINED {
            z[0] = a + sigma * (length * sine(turns));
        });
    case RSK_GAUSSIAN_BOXMULLER2:
        return box_muller<2>(s, n, r, [&](doubles length, doubles turns, auto &z) VOX_INLINED {
            join(a + sigma * (length * sine(turns)), a + sigma * (length * cosine(turns)), z[0],
                 z[1], places);
        });
    default:
        return draw_from_normal(s, n, r, [&](const auto &normal, auto &z) VOX_INLINED {
            z[0] = a + sigma * normal[0];
        });
    }
}

} // namespace

extern "C" int VOX_KERNEL_NAMED(rng, sRngGaussian)(int method, stream *s, int n, float *r, float a,
                                                   float sigma) {
    return gaussian(method, s, n, r, a, sigma);
}

extern "C" int VOX_KERNEL_NAMED(rng, dRngGaussian)(int method, stream *s, int n, double *r,
                                                   double a, double sigma) {
    return gaussian(method, s, n, r, a, sigma);
}
