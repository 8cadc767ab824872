// bernoulli.cpp - ones with probability p, else zeros.
//
// Uniforms of single precision are compared with p as the integers that their bits are: the same order where
// both are positive, and it says what becomes of a p that is not a number.
#include <string.h>

#include "rng/kernels/outputs.hpp"

extern "C" int VOX_KERNEL_NAMED(rng, sRngUniform)(int method, vox::rng::stream *s, int n, float *r,
                                                  float a, float b);

namespace {

using integers = typename simd::vec_of<int32_t, output::integer_bytes>::type;

// One element, wherever it lies.
void decide(int32_t *r, int32_t p) {
    int32_t u;
    memcpy(&u, r, sizeof u);
    u = p > u;
    memcpy(r, &u, sizeof u);
}

} // namespace

// r holds the uniforms first.
extern "C" int VOX_KERNEL_NAMED(rng, iRngBernoulli)(int, vox::rng::stream *s, int n, int32_t *r,
                                                    double probability) {
    const int status =
        VOX_KERNEL_NAMED(rng, sRngUniform)(0, s, n, reinterpret_cast<float *>(r), 0, 1);
    if (status < 0 || n < 1)
        return status;
    const float single = float(probability);
    int32_t p;
    memcpy(&p, &single, sizeof p);
    int32_t *const end = r + n;
    if (reinterpret_cast<uintptr_t>(r) % sizeof *r == 0) {
        for (; r < end && reinterpret_cast<uintptr_t>(r) % 16; ++r)
            decide(r, p);
        for (; end - r >= output::word_lanes; r += output::word_lanes)
            simd::store(r, -(p > simd::load<output::integer_bytes>(r)));
    }
    for (; r < end; ++r)
        decide(r, p);
    return status;
}
