// mt2203.cpp - seeding, and the parameters of the members, see mt2203.hpp.
#include "rng/brng/mt2203.hpp"

#include <string.h>

#include "rng/brng/twister.hpp"
#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace {

using namespace vox::rng;

// A member in 57 bits: the top bit of a is set and its lower 16 are the member's number, which leaves 15; the
// masks meet words shifted up by 7 and 15, so that their lower bits do not matter.
constexpr uint64_t packed(int, uint32_t a, uint32_t b, uint32_t c, int) {
    return uint64_t(a >> 16 & 0x7FFF) << 42 | uint64_t(b >> 7) << 17 | c >> 15;
}
constexpr uint64_t members[] = {
#define VOX_ROW(...) packed(__VA_ARGS__),
#include "rng/tables/mt2203.inc"
#undef VOX_ROW
};
static_assert(sizeof members / sizeof members[0] == 6024);

mt2203_member member_of(const stream *s) {
    const uint32_t number = uint32_t(s->id) & 0xFFFFF;
    const uint64_t m = members[number];
    return {0x80000000u | uint32_t(m >> 42) << 16 | number, uint32_t(m >> 17) << 7,
            uint32_t(m) << 15};
}

} // namespace

extern "C" int vox_rng_mt2203_init(int method, vox::rng::stream *s, int n, const uint32_t *params) {
    mt2203_state &state = s->state<mt2203_state>();
    switch (method) {
    case seed:
        if (n > 1)
            fill_from_array(state.words, n, params);
        else
            fill_from_word(state.words, n == 1 ? params[0] : 1);
        state.position = state.size;
        state.member = member_of(s);
        return ok;
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip:
        return RSK_ERROR_NO_SKIPAHEAD;
    case validate: {
        const mt2203_member member = member_of(s);
        const bool whole = memcmp(&member, &state.member, sizeof member) == 0;
        return whole && is_block(state.words, state.position, state.upper) ? ok : bad_state;
    }
    default:
        return unknown_method;
    }
}
