// philox4x32x10.cpp - seeding and skip-ahead, see philox4x32x10.hpp.
#include "rng/brng/philox4x32x10.hpp"

#include "rng/registry.hpp"

extern "C" int vox_rng_philox4x32x10_init(int method, vox::rng::stream *s, int n,
                                          const uint32_t *params) {
    using namespace vox::rng;
    philox_state &state = s->state<philox_state>();
    if (method != seed)
        return change_counter(state, method, params);
    const uint64_t key = uint64_t(words_of(params, n, 0, 2));
    state = {words_of(params, n, 2, 4), {uint32_t(key), uint32_t(key >> 32)}, 0, 0};
    return ok;
}
