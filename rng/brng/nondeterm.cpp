// nondeterm.cpp - seeding and numbers, see nondeterm.hpp. The instruction takes hundreds of cycles, so that there
// is nothing for kernel sets to gain.
#include "rng/brng/nondeterm.hpp"

#include <immintrin.h>

#include "rng/brng/instructions.hpp"
#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace {

using namespace vox::rng;

__attribute__((target("rdrnd"))) bool rdrand(uint64_t *bits) {
    unsigned long long drawn;
    const bool good = _rdrand64_step(&drawn);
    *bits = drawn;
    return good;
}

// put(i, word) for i = 0, ..., n - 1, as far as the source gives them.
template <class Put>
int draw_words(stream *s, int n, Put put) {
    const nondeterm_state &state = s->state<nondeterm_state>();
    if (!has_instructions(vox::feature::rdrand))
        return RSK_ERROR_NO_INSTRUCTIONS;
    uint64_t bits = 0;
    for (int i = 0; i < n; ++i, bits >>= 32) {
        if (i % 2 == 0 && !draw_with_retries(rdrand, state.retries, &bits))
            return RSK_ERROR_NO_ENTROPY;
        put(i, uint32_t(bits));
    }
    return ok;
}

} // namespace

extern "C" int vox_rng_nondeterm_init(int method, stream *s, int n, const uint32_t *params) {
    nondeterm_state &state = s->state<nondeterm_state>();
    switch (method) {
    case seed:
        state = {0, n >= 2 && params[1] ? params[1] : nondeterm_state::default_retries};
        if (!has_instructions(vox::feature::rdrand))
            return RSK_ERROR_NO_INSTRUCTIONS;
        return ok;
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip:
        return RSK_ERROR_NO_SKIPAHEAD;
    case validate:
        return state.method == 0 ? ok : bad_state;
    default:
        return unknown_method;
    }
}

extern "C" int vox_rng_nondeterm_i(stream *s, int n, uint32_t *r) {
    return draw_words(s, n, [=](int i, uint32_t word) { r[i] = word; });
}
extern "C" int vox_rng_nondeterm_s(stream *s, int n, float *r, float a, float b) {
    return draw_words(
        s, n, [=](int i, uint32_t word) { r[i] = a + (b - a) * (float(word >> 8) * 0x1p-24f); });
}
extern "C" int vox_rng_nondeterm_d(stream *s, int n, double *r, double a, double b) {
    return draw_words(s, n, [=](int i, uint32_t word) { r[i] = a + (b - a) * (word * 0x1p-32); });
}
