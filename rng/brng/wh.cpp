// wh.cpp - seeding, leapfrog and skip-ahead, and the parameters of the members, see wh.hpp.
#include "rng/brng/wh.hpp"

#include "rng/brng/modular.hpp"
#include "rng/registry.hpp"

namespace {

constexpr vox::rng::wh_member members[] = {
#define VOX_ROW(member, m1, m2, m3, m4, a1, a2, a3, a4) {{m1, m2, m3, m4}, {a1, a2, a3, a4}},
#include "rng/tables/wh.inc"
#undef VOX_ROW
};
static_assert(sizeof members / sizeof members[0] == 273);

} // namespace

const vox::rng::wh_member &vox::rng::wh_member_of(const stream *s) {
    return members[rskGetBrngBaseOffset(s->id).member];
}

extern "C" int vox_rng_wh_init(int method, vox::rng::stream *s, int n, const uint32_t *params) {
    using namespace vox::rng;
    const wh_member &member = wh_member_of(s);
    wh_state &state = s->state<wh_state>();
    for (int i = 0; i < 4; ++i) {
        const modulo ring{member.m[i]};
        uint32_t &x = state.x[i], &a = state.a[i];
        switch (method) {
        case seed:
            x = i < n ? params[i] % ring.m : 1;
            x = x ? x : 1;
            a = member.a[i];
            break;
        case leapfrog:
            x = ring.multiply(ring.power(a, params[0]), x);
            a = ring.power(a, uint32_t(n));
            break;
        case skip:
            x = ring.multiply(ring.power(a, count_of(params)), x);
            break;
        case validate:
            if (x == 0 || x >= ring.m || a == 0 || a >= ring.m)
                return bad_state;
            break;
        default:
            return unknown_method;
        }
    }
    return ok;
}
