// mcg59.cpp - numbers of MCG59, see rng/brng/mcg59.hpp.
//
// Products are taken modulo 2^64: what lies above bit 58 never comes down, and goes when a number is given.
#include "rng/brng/mcg59.hpp"

#include "rng/kernels/arithmetic.hpp"
#include "rng/kernels/congruential.hpp"

namespace {

using namespace output;
using vox::rng::mcg59_state;

struct ring : ring_of_longs {
    static element multiply(element x, element y) { return x * y; }
    static vector multiply(vector x, vector y) {
#if defined(__AVX512DQ__)
        return x * y;
#else // as far as the lower 64 bits need it
        const vector cross =
            arithmetic::multiply_halves(x >> 32, y) + arithmetic::multiply_halves(x, y >> 32);
        return arithmetic::multiply_halves(x, y) + (cross << 32);
#endif
    }
};

// u has the upper 53 bits, or 24.
struct kind {
    using word_type = uint64_t;
    template <class Store>
    static void word(longs x, Store store) {
        store(x & mcg59_state::mask);
    }
    template <class Store>
    static void unit(longs x, double, Store store) {
        x <<= 5;
#if defined(__AVX512DQ__)
        store(to_doubles(x >> 11) * 0x1p-53);
#else // 21 bits and 32 bits, each exactly
        store(to_doubles(x >> 43) * 0x1p-21 + to_doubles(x >> 11 & 0xFFFFFFFF) * 0x1p-53);
#endif
    }
    template <class Store>
    static void unit(longs x, float, Store store) {
        store(to_floats(x << 5 >> 40) * 0x1p-24f);
    }
};

template <class Out>
int generate(mcg59_state &state, index_t n, Out out) {
    const int status = congruential(ring(), state.x, state.a, n, out);
    state.x &= mcg59_state::mask;
    return status;
}

} // namespace

VOX_BRNG_KERNELS(mcg59, mcg59_state, kind)
