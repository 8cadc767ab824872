// dispatch.cpp - the generators' output routines, bound to the kernel set of this process.
#include "serv/dispatch.hpp"

#include "rng/registry.hpp"

namespace vox::rng {

#define VOX_BRNG_DISPATCH(name)                                                                    \
    VOX_DISPATCH_SET(rng, name##_i, int, (stream * s, int n, uint32_t *r), (s, n, r))              \
    VOX_DISPATCH_SET(rng, name##_s, int, (stream * s, int n, float *r, float a, float b),          \
                     (s, n, r, a, b))                                                              \
    VOX_DISPATCH_SET(rng, name##_d, int, (stream * s, int n, double *r, double a, double b),       \
                     (s, n, r, a, b))

VOX_BRNG_DISPATCH(ars5)
VOX_BRNG_DISPATCH(mcg31m1)
VOX_BRNG_DISPATCH(mcg59)
VOX_BRNG_DISPATCH(mrg32k3a)
VOX_BRNG_DISPATCH(mt19937)
VOX_BRNG_DISPATCH(mt2203)
VOX_BRNG_DISPATCH(niederr)
VOX_BRNG_DISPATCH(philox4x32x10)
VOX_BRNG_DISPATCH(r250)
VOX_BRNG_DISPATCH(sfmt19937)
VOX_BRNG_DISPATCH(sobol)
VOX_BRNG_DISPATCH(wh)

} // namespace vox::rng
