// mcg31m1.cpp - numbers of MCG31M1, see rng/brng/mcg31m1.hpp.
//
// A product of 62 bits is reduced by 2^31 = 1: the sum of its upper and lower 31 bits, below 2 m, once more. It
// is never m, since no number is 0.
#include "rng/brng/mcg31m1.hpp"

#include "rng/kernels/arithmetic.hpp"
#include "rng/kernels/congruential.hpp"

namespace {

using namespace output;
using vox::rng::mcg31m1_state;

constexpr uint32_t m = mcg31m1_state::modulus;

template <class T>
inline T fold(T x) {
    return (x & m) + (x >> 31);
}

// fold(x) of the sum of two halves.
inline longs fold_sum(longs x) {
#if defined(__AVX512F__)
    return longs(_mm512_maskz_min_epu32(0xFFFF, __m512i(x), __m512i(x - m)));
#elif defined(__AVX2__)
    return longs(_mm256_min_epu32(__m256i(x), __m256i(x - m)));
#else
    return fold(x);
#endif
}

struct ring : ring_of_longs {
    static element multiply(element x, element y) { return fold(fold(x * y)); }
    static vector multiply(vector x, vector y) {
        return fold_sum(fold(arithmetic::multiply_halves(x, y)));
    }
};

struct kind {
    using word_type = uint32_t;
    template <class Store>
    static void word(longs x, Store store) {
        store(to_words(x));
    }
    template <class Store>
    static void unit(longs x, double, Store store) {
        store(to_doubles(x) * 4.656612875245797e-10);
    }
    template <class Store>
    static void unit(longs x, float, Store store) {
        store(to_floats(x >> 7) * 0x1p-24f);
    }
};

template <class Out>
int generate(mcg31m1_state &state, index_t n, Out out) {
    uint64_t x = state.x;
    const int status = congruential(ring(), x, uint64_t(state.a), n, out);
    state.x = uint32_t(x);
    return status;
}

} // namespace

VOX_BRNG_KERNELS(mcg31m1, mcg31m1_state, kind)
