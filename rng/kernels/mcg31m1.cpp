// mcg31m1.cpp - numbers of MCG31M1, see rng/brng/mcg31m1.hpp.
//
// Lane i holds the number i places ahead; all move by the same power of the multiplier. A product of 62 bits
// is reduced by 2^31 = 1: the sum of its halves, twice.
#include "rng/brng/mcg31m1.hpp"

#include "rng/kernels/outputs.hpp"

namespace {

using namespace output;
using vox::rng::mcg31m1_state;

constexpr uint32_t m = mcg31m1_state::modulus;

inline uint32_t multiply(uint32_t x, uint32_t y) {
    const uint64_t product = uint64_t(x) * y;
    const uint32_t sum = uint32_t(product & m) + uint32_t(product >> 31);
    return sum >= m ? sum - m : sum;
}

struct mcg31m1 {
    using word_type = uint32_t;
    template <class Store>
    static void word(words x, Store store) {
        store(x);
    }
    template <class Store>
    static void unit(words x, double, Store store) {
        to_doubles(x, [&](auto y) { store(y * 4.656612875245797e-10); });
    }
    template <class Store>
    static void unit(words x, float, Store store) {
        bits32::unit(x << 1, float(), store);
    }
};

template <class Out>
int generate(mcg31m1_state &state, index_t n, Out out) {
    uint32_t x = state.x;
    for (; n >= word_lanes; n -= word_lanes) {
        words v;
        for (int i = 0; i < word_lanes; ++i, x = multiply(x, state.a))
            v[i] = x;
        out.put(v);
    }
    words v{};
    for (int i = 0; i < n; ++i, x = multiply(x, state.a))
        v[i] = x;
    out.put_first(v, int(n));
    state.x = x;
    return vox::rng::ok;
}

} // namespace

VOX_BRNG_KERNELS(mcg31m1, mcg31m1_state, mcg31m1)
