// mt19937.cpp - seeding and skip-ahead, see mt19937.hpp.
#include "rng/brng/mt19937.hpp"

#include "rng/brng/jump.hpp"
#include "rng/brng/modular.hpp"
#include "rng/brng/twister.hpp"
#include "rng/registry.hpp"

namespace {

using namespace vox::rng;
using state_type = mt19937_state;

constexpr uint16_t exponents[] = {
#define VOX_ROW(exponent) exponent,
#include "rng/tables/mt19937_charpoly.inc"
#undef VOX_ROW
};

struct recurrence {
    using word = uint32_t;
    static word next(const word *w) {
        const word y = (w[0] & state_type::upper) | (w[1] & ~state_type::upper);
        return w[state_type::lag] ^ y >> 1 ^ (y & 1 ? state_type::twist : 0);
    }
    static void tail(bits19968 &bits) {
        constexpr int degree = 19937;
        for (const int exponent : exponents)
            if (exponent < degree)
                bits.flip(exponent + bits19968::count - degree);
    }
};

} // namespace

extern "C" int vox_rng_mt19937_init(int method, vox::rng::stream *s, int n,
                                    const uint32_t *params) {
    mt19937_state &state = s->state<mt19937_state>();
    switch (method) {
    case seed: {
        constexpr uint32_t one = 1;
        fill_from_array(state.words, n > 0 ? n : 1, n > 0 ? params : &one);
        state.position = state.size;
        return ok;
    }
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip:
        return skip_blocks<recurrence>(state.words, state.position, count_of(params));
    case validate:
        return is_block(state.words, state.position, state.upper) ? ok : bad_state;
    default:
        return unknown_method;
    }
}
