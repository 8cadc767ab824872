// congruential.hpp - the numbers of a generator x := a x, a vector of consecutive ones at a time.
//
// Lane i holds the number i places ahead, and all lanes move by the same power of a. A ring says what x is and
// how it is multiplied:
//
//   element, vector      one number, and `lanes` of them
//   vectors              how many vectors are on their way at once, to hide the latency of a product
//   multiply(p, q)       for both
//   load(p), broadcast(x), store(p, v)
//   value(v)             what the output takes, see outputs.hpp
#pragma once

#include "rng/kernels/outputs.hpp"

namespace {

// All but the products of a ring whose numbers are 64-bit words.
struct ring_of_longs {
    using element = uint64_t;
    using vector = output::longs;
    static constexpr int lanes = sizeof(vector) / 8, vectors = 4;

    static vector load(const element *p) { return simd::load<sizeof(vector)>(p); }
    static void store(element *p, vector v) { simd::store(p, v); }
    static vector broadcast(element x) { return simd::broadcast<sizeof(vector)>(x); }
    static vector value(vector v) { return v; }
};

template <class Ring, class Out>
inline int congruential(Ring ring, typename Ring::element &x, const typename Ring::element &a,
                        vox::index_t n, Out out) {
    if (n <= 0)
        return vox::rng::ok;
    constexpr int lanes = Ring::lanes, vectors = Ring::vectors, all = lanes * vectors;
    alignas(64) typename Ring::element next[all] = {x};
    typename Ring::element step = a;
    for (int known = 1; known < all && known <= n; known *= 2) {
        for (int i = 0; i < known; ++i)
            next[known + i] = ring.multiply(next[i], step);
        step = ring.multiply(step, step);
    }
    if (n >= all) {
        const typename Ring::vector power = ring.broadcast(step);
        typename Ring::vector v[vectors];
        simd::unroll<vectors>([&](auto k) VOX_INLINED { v[k] = ring.load(next + k * lanes); });
        for (; n >= all; n -= all) {
            simd::unroll<vectors>([&](auto k) VOX_INLINED {
                out.put(ring.value(v[k]));
                v[k] = ring.multiply(v[k], power);
            });
            __asm__ volatile(""); // gcc would make a loop of each vector's
        }
        simd::unroll<vectors>([&](auto k) VOX_INLINED { ring.store(next + k * lanes, v[k]); });
    }
    int given = 0;
    for (; given + lanes <= n; given += lanes)
        out.put(ring.value(ring.load(next + given)));
    out.put_first(ring.value(ring.load(next + given)), int(n) - given);
    x = next[n];
    return vox::rng::ok;
}

} // namespace
