// variates.hpp - from a generator's uniforms on [0, 1) to variates, a block at a time.
//
// Each variate takes a fixed number of uniforms, so that results do not depend on how a request is split.
// Where the generator fails, the request ends with its status; blocks before stand, nothing is written after.
#pragma once

#include "rng/kernels/math.hpp"
#include "rng/kernels/outputs.hpp"
#include "rng/registry.hpp"

namespace {
namespace variates {

using math::doubles;
using vox::rng::stream;
constexpr int lanes = simd::lanes<double>;

constexpr int block = 1024; // uniforms

// For every block of m variates body(u, m, r) with their uniforms, U for every Z; zeros to a whole number of
// vectors after them.
template <int U, int Z, class R, class Body>
inline int in_blocks(stream *s, int n, R *r, const Body &body) {
    constexpr int variates = block / U * Z;
    vox::rng::brng_properties row;
    int status = vox::rng::rskGetBrngProperties(s->id, &row);
    alignas(64) double u[block];
    for (int m; status >= 0 && n > 0; n -= m, r += m) {
        m = n < variates ? n : variates;
        int filled = (m + Z - 1) / Z * U;
        status = row.doubles(s, filled, u, 0, 1);
        if (status < 0)
            break;
        for (; filled % (U * lanes); ++filled)
            u[filled] = 0;
        body(u, m, r);
    }
    return status;
}

// Results as they are stored.
inline void put(double *r, doubles x) { simd::store(r, x); }
inline void put(float *r, doubles x) {
    simd::store(r, __builtin_convertvector(x, typename simd::vec_of<float, sizeof(x) / 2>::type));
}
inline void put(int32_t *r, doubles x) { // integers
    simd::store(r, __builtin_convertvector(x, typename simd::vec_of<int32_t, sizeof(x) / 2>::type));
}

// m variates from transform(u, z): U vectors of uniforms to Z vectors of variates, both in their order.
template <int U, int Z, class R, class Transform>
inline void transform_block(const double *u, int m, R *r, const Transform &transform) {
    const auto step = [&](R *to) VOX_INLINED {
        doubles in[U], out[Z];
        simd::unroll<U>([&](auto i) { in[i] = simd::load(u + i * lanes); });
        transform(in, out);
        simd::unroll<Z>([&](auto i) { put(to + i * lanes, out[i]); });
    };
    constexpr int at_once = Z * lanes;
    for (; m >= at_once; m -= at_once, r += at_once, u += U * lanes)
        step(r);
    if (m > 0) {
        R rest[at_once];
        step(rest);
        output::copy_first(r, rest, m);
    }
}

template <int U, int Z, class R, class Transform>
inline int draw(stream *s, int n, R *r, const Transform &transform) {
    return in_blocks<U, Z>(s, n, r, [&](const double *u, int m, R *to) VOX_INLINED {
        transform_block<U, Z>(u, m, to, transform);
    });
}

// The same from numbers of the normal distribution, by its inverse.
template <class R, class Transform>
inline int draw_from_normal(stream *s, int n, R *r, const Transform &transform) {
    return in_blocks<1, 1>(s, n, r, [&](const double *u, int m, R *to) VOX_INLINED {
        alignas(64) double normal[block];
        math::normal_inverse<block>((m + lanes - 1) & -lanes, u, normal);
        transform_block<1, 1>(normal, m, to, transform);
    });
}

} // namespace variates
} // namespace
