// mcg31m1.cpp - seeding, leapfrog and skip-ahead, see mcg31m1.hpp.
#include "rng/brng/mcg31m1.hpp"

#include "rng/brng/modular.hpp"
#include "rng/registry.hpp"

extern "C" int vox_rng_mcg31m1_init(int method, vox::rng::stream *s, int n,
                                    const uint32_t *params) {
    using namespace vox::rng;
    constexpr modulo ring{mcg31m1_state::modulus};
    mcg31m1_state &state = s->state<mcg31m1_state>();
    switch (method) {
    case seed: {
        const uint32_t x = n > 0 ? params[0] % ring.m : 1;
        state = {x ? x : 1, mcg31m1_state::multiplier};
        return ok;
    }
    case leapfrog:
        state.x = ring.multiply(ring.power(state.a, params[0]), state.x);
        state.a = ring.power(state.a, uint32_t(n));
        return ok;
    case skip:
        state.x = ring.multiply(ring.power(state.a, count_of(params)), state.x);
        return ok;
    case validate: {
        const auto unit = [](uint32_t x) { return x > 0 && x < ring.m; };
        return unit(state.x) && unit(state.a) ? ok : bad_state;
    }
    default:
        return unknown_method;
    }
}
