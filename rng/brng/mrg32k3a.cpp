// mrg32k3a.cpp - seeding, skip-ahead and jumps, see mrg32k3a.hpp.
#include "rng/brng/mrg32k3a.hpp"

#include "rng/brng/modular.hpp"
#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace {

using namespace vox::rng;
using parameters = mrg32k3a_state;

struct matrix {
    uint32_t at[3][3];
};

constexpr matrix one = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};

struct component {
    uint32_t m;
    matrix step; // takes the last three values one step on

    constexpr uint32_t row_times(const uint32_t (&row)[3], uint32_t a, uint32_t b,
                                 uint32_t c) const {
        return uint32_t(
            (uint64_t(row[0]) * a % m + uint64_t(row[1]) * b % m + uint64_t(row[2]) * c % m) % m);
    }
    constexpr matrix power(uint64_t n) const {
        return vox::rng::power(step, n, one, [this](const matrix &p, const matrix &q) {
            matrix product = {};
            for (int i = 0; i < 3; ++i)
                for (int j = 0; j < 3; ++j)
                    product.at[i][j] = row_times(p.at[i], q.at[0][j], q.at[1][j], q.at[2][j]);
            return product;
        });
    }
    void skip(uint32_t (&v)[3], uint64_t n) const {
        const matrix jump = power(n);
        const uint32_t a = v[0], b = v[1], c = v[2];
        for (int i = 0; i < 3; ++i)
            v[i] = row_times(jump.at[i], a, b, c);
    }
};

constexpr component components[2] = {
    {parameters::m1,
     {{{0, 1, 0}, {0, 0, 1}, {parameters::m1 - parameters::x3, parameters::x2, 0}}}},
    {parameters::m2,
     {{{0, 1, 0}, {0, 0, 1}, {parameters::m2 - parameters::y3, 0, parameters::y1}}}}};

constexpr mrg32k3a_jumps jumps_of(int distance) {
    mrg32k3a_jumps jumps = {};
    for (int c = 0; c < 2; ++c)
        for (int k = 0; k < mrg32k3a_jumps::multiples; ++k) {
            const matrix jump = components[c].power(uint64_t(k * distance));
            for (int i = 0; i < 3; ++i)
                for (int j = 0; j < 3; ++j) {
                    jumps.upper[c][i][j][k] = float(jump.at[i][j] >> 16);
                    jumps.lower[c][i][j][k] = float(jump.at[i][j] & 0xFFFF);
                }
        }
    return jumps;
}

// From three words that begin at `first`. Missing ones are 1; three zeros would stay so.
void seed_component(uint32_t (&v)[3], uint32_t m, int first, int n, const uint32_t *params) {
    for (int i = 0; i < 3; ++i) {
        v[i] = first + i < n ? params[first + i] : 1;
        v[i] -= v[i] >= m ? m : 0;
    }
    if (!v[0] && !v[1] && !v[2])
        v[0] = 1;
}

} // namespace

constinit const vox::rng::mrg32k3a_jumps vox::rng::mrg32k3a_jumps_of_8 = jumps_of(8);
constinit const vox::rng::mrg32k3a_jumps vox::rng::mrg32k3a_jumps_of_32 = jumps_of(32);
constinit const vox::rng::mrg32k3a_jumps vox::rng::mrg32k3a_jumps_of_256 = jumps_of(256);

extern "C" int vox_rng_mrg32k3a_init(int method, vox::rng::stream *s, int n,
                                     const uint32_t *params) {
    mrg32k3a_state &state = s->state<mrg32k3a_state>();
    switch (method) {
    case seed:
        seed_component(state.x, parameters::m1, 0, n, params);
        seed_component(state.y, parameters::m2, 3, n, params);
        return ok;
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip:
        components[0].skip(state.x, count_of(params));
        components[1].skip(state.y, count_of(params));
        return ok;
    case validate:
        for (int i = 0; i < 3; ++i)
            if (state.x[i] >= parameters::m1 || state.y[i] >= parameters::m2)
                return bad_state;
        return ok;
    default:
        return unknown_method;
    }
}
