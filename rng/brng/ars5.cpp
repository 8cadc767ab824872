// ars5.cpp - seeding and skip-ahead, see ars5.hpp.
#include "rng/brng/ars5.hpp"

#include "rng/brng/instructions.hpp"
#include "rng/registry.hpp"

extern "C" int vox_rng_ars5_init(int method, vox::rng::stream *s, int n, const uint32_t *params) {
    using namespace vox::rng;
    ars_state &state = s->state<ars_state>();
    if ((method == seed || method == skip) && !has_instructions(vox::feature::aes))
        return RSK_ERROR_NO_INSTRUCTIONS;
    if (method != seed)
        return change_counter(state, method, params);
    const counter128 key = words_of(params, n, 0, 4);
    state = {words_of(params, n, 4, 4), {uint64_t(key), uint64_t(key >> 64)}, 0};
    return ok;
}
