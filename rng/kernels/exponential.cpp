// exponential.cpp - the exponential distribution, by the inverse of its distribution function.
#include "rng/kernels/variates.hpp"

namespace {

template <class R>
int exponential(vox::rng::stream *s, int n, R *r, double a, double beta) {
    return variates::draw<1, 1>(s, n, r, [&](const auto &u, auto &z) VOX_INLINED {
        z[0] = a + beta * math::minus_log_of_rest(u[0]);
    });
}

} // namespace

extern "C" int VOX_KERNEL_NAMED(rng, sRngExponential)(int, vox::rng::stream *s, int n, float *r,
                                                      float a, float beta) {
    return exponential(s, n, r, a, beta);
}

extern "C" int VOX_KERNEL_NAMED(rng, dRngExponential)(int, vox::rng::stream *s, int n, double *r,
                                                      double a, double beta) {
    return exponential(s, n, r, a, beta);
}
