// mcg59.cpp - seeding, leapfrog and skip-ahead, see mcg59.hpp.
#include "rng/brng/mcg59.hpp"

#include "rng/brng/modular.hpp"
#include "rng/registry.hpp"

namespace {

// Products modulo 2^64 are right modulo 2^59.
uint64_t power(uint64_t a, uint64_t n) {
    return vox::rng::power(a, n, uint64_t(1), [](uint64_t x, uint64_t y) { return x * y; });
}

} // namespace

extern "C" int vox_rng_mcg59_init(int method, vox::rng::stream *s, int n, const uint32_t *params) {
    using namespace vox::rng;
    constexpr uint64_t mask = mcg59_state::mask;
    mcg59_state &state = s->state<mcg59_state>();
    switch (method) {
    case seed: {
        uint64_t x = n > 0 ? params[0] : 1;
        if (n > 1)
            x = (x | uint64_t(params[1]) << 32) & mask;
        state = {x ? x : 1, mcg59_state::multiplier};
        return ok;
    }
    case leapfrog:
        state.x = power(state.a, params[0]) * state.x & mask;
        state.a = power(state.a, uint32_t(n)) & mask;
        return ok;
    case skip:
        state.x = power(state.a, count_of(params)) * state.x & mask;
        return ok;
    case validate:
        return state.x <= mask && state.a <= mask ? ok : bad_state;
    default:
        return unknown_method;
    }
}
