// uniform.cpp - uniform numbers on [a, b), and integers.
#include "rng/kernels/variates.hpp"
#include "vox/rsk.h"

namespace {

using simd::lanes;
using simd::vec;
using vox::rng::stream;

// To [a, b], which the rounding of a + (b - a) u may leave.
template <class T>
void clamp(int n, T *r, T a, T b) {
    const auto within = [=](vec<T> x) {
        x = x > a ? x : vec<T>{} + a;
        return x < b ? x : vec<T>{} + b;
    };
    for (; n >= lanes<T>; n -= lanes<T>, r += lanes<T>)
        simd::store(r, within(simd::load(r)));
    simd::store_partial(r, within(simd::load_partial(r, n)), n);
}

template <class T, class Routine>
int uniform(int method, stream *s, int n, T *r, T a, T b,
            Routine *vox::rng::brng_properties::*draw) {
    vox::rng::brng_properties row;
    if (const int status = vox::rng::rskGetBrngProperties(s->id, &row); status < 0)
        return status;
    const int status = (row.*draw)(s, n, r, a, b);
    if (status >= 0 && n >= 1 && method & RSK_UNIFORM_CLAMP_BIT)
        clamp(n, r, a, b);
    return status;
}

} // namespace

extern "C" int VOX_KERNEL_NAMED(rng, sRngUniform)(int method, stream *s, int n, float *r, float a,
                                                  float b) {
    return uniform(method, s, n, r, a, b, &vox::rng::brng_properties::singles);
}

extern "C" int VOX_KERNEL_NAMED(rng, dRngUniform)(int method, stream *s, int n, double *r, double a,
                                                  double b) {
    return uniform(method, s, n, r, a, b, &vox::rng::brng_properties::doubles);
}

// a + floor((b - a) u): b - a and the sum are exact, and the product stays below b - a.
extern "C" int VOX_KERNEL_NAMED(rng, iRngUniform)(int, stream *s, int n, int32_t *r, int32_t a,
                                                  int32_t b) {
    const double first = a, width = double(b) - first;
    return variates::draw<1, 1>(s, n, r, [&](const auto &u, auto &z) VOX_INLINED {
        z[0] = first + math::floor(width * u[0]);
    });
}
