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

// For a pair of uniforms, radius(first) times sine and cosine of so many turns as the second says.
inline doubles radius(doubles u) { return math::sqrt(2.0 * math::minus_log_of_rest(u)); }
inline doubles sine(doubles u) { // x, 1/2 - x or x - 1, whichever is within a quarter of 0
    return math::sin_of_turns(math::larger(math::smaller(u, 0.5 - u), u - 1.0));
}
inline doubles cosine(doubles u) { return math::sin_of_turns(math::larger(0.25 - u, u - 0.75)); }

// Arithmetic in double precision, whatever the result is.
template <class R>
int gaussian(int method, stream *s, int n, R *r, double a, double sigma) {
    switch (method) {
    case RSK_GAUSSIAN_BOXMULLER:
        return draw<2, 1>(s, n, r, [&](const auto &u, auto &z) VOX_INLINED {
            doubles first, second;
            part(u[0], u[1], first, second, places);
            z[0] = a + sigma * (radius(first) * sine(second));
        });
    case RSK_GAUSSIAN_BOXMULLER2:
        return draw<2, 2>(s, n, r, [&](const auto &u, auto &z) VOX_INLINED {
            doubles first, second;
            part(u[0], u[1], first, second, places);
            const doubles length = radius(first);
            join(a + sigma * (length * sine(second)), a + sigma * (length * cosine(second)), z[0],
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
