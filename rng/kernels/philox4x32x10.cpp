// philox4x32x10.cpp - numbers of PHILOX4X32X10, see rng/brng/philox4x32x10.hpp.
//
// A lane of 64 bits is a block, and one vector holds one word of each: what the widening product takes is the
// low half, so the low half of a product is the next round's word as it stands, and its high half after a
// shift. The upper halves hold whatever they hold. Lanes are numbered so that pairing the words and
// interleaving the pairs within 128 bits gives blocks in order.
#include "rng/brng/philox4x32x10.hpp"

#include "rng/kernels/arithmetic.hpp"
#include "rng/kernels/counter.hpp"

namespace {

using namespace output;
using vox::rng::counter128;
using vox::rng::philox_state;

constexpr int long_lanes = integer_bytes / 8;

// Lanes first, first + 2, ... of both alternately.
template <int... I>
inline longs interleave(longs a, longs b, int first, std::integer_sequence<int, I...>) {
    constexpr int other = long_lanes - 1;
    return first ? __builtin_shufflevector(a, b, (I % 2 ? I + other + 1 : I + 1)...)
                 : __builtin_shufflevector(a, b, (I % 2 ? I + other : I)...);
}
inline longs interleave(longs a, longs b, int first) {
    return interleave(a, b, first, std::make_integer_sequence<int, long_lanes>());
}

// The low halves of the lanes of both, b's above a's.
inline longs pair(longs a, longs b) {
#if defined(__AVX512F__)
    return longs(_mm512_mask_shuffle_epi32(__m512i(a), 0xAAAA, __m512i(b), _MM_PERM_CCAA));
#else
    return (a & 0xFFFFFFFF) | b << 32;
#endif
}

struct philox_blocks {
    static constexpr int groups = 4; // vectors of blocks, to hide the products' latency
    static constexpr int vectors = 2 * groups;

    longs key[philox_state::rounds][2];
    longs offset; // which blocks the lanes are

    explicit philox_blocks(const philox_state &s) {
        for (int r = 0; r < philox_state::rounds; ++r)
            for (int i = 0; i < 2; ++i)
                key[r][i] = longs{} + (s.key[i] + uint32_t(r) * philox_state::weyl[i]);
        for (int i = 0; i < long_lanes; ++i) // even ones first, odd ones second
            offset[i] = uint64_t(i % 2 * (long_lanes / 2) + i / 2);
    }

    [[gnu::always_inline]] void operator()(counter128 counter, words (&v)[vectors]) const {
        constexpr uint32_t blocks = groups * long_lanes;
        if (VOX_LIKELY(uint32_t(counter) <= uint32_t(-blocks)))
            without_carry(counter, v);
        else
            with_carry(counter, v);
    }

  private:
    using group = longs[4];

    // The blocks differ in word 0 alone, so half of the first two rounds is the same for all.
    [[gnu::always_inline]] void without_carry(counter128 counter, words (&v)[vectors]) const {
        const longs high_words = longs{} + uint64_t(counter >> 64);
        const longs p1 = high_product(high_words);
        const longs c0 = (p1 >> 32) ^ uint64_t(counter) >> 32 ^ key[0][0];
        const longs q0 = low_product(c0);
        const longs mask2 = (high_words >> 32) ^ key[0][1], mask0 = p1 ^ key[1][0],
                    mask02 = (q0 >> 32) ^ key[1][1];
        group c[groups];
        simd::unroll<groups>([&](auto g) VOX_INLINED {
            const longs p0 = low_product(offset + (uint64_t(counter) + unsigned(g * long_lanes)));
            const longs q1 = high_product((p0 >> 32) ^ mask2);
            c[g][0] = (q1 >> 32) ^ mask0;
            c[g][1] = q1;
            c[g][2] = p0 ^ mask02;
            c[g][3] = q0;
        });
        rounds<2>(c);
        in_order(c, v);
    }

    __attribute__((noinline, cold)) void with_carry(counter128 counter, words (&v)[vectors]) const {
        group c[groups];
        for (int g = 0; g < groups; ++g) {
            uint64_t low[long_lanes], high[long_lanes];
            for (int i = 0; i < long_lanes; ++i) {
                const counter128 block = counter + uint64_t(g * long_lanes) + offset[i];
                low[i] = uint64_t(block);
                high[i] = uint64_t(block >> 64);
            }
            c[g][0] = simd::load<integer_bytes>(low);
            c[g][1] = c[g][0] >> 32;
            c[g][2] = simd::load<integer_bytes>(high);
            c[g][3] = c[g][2] >> 32;
        }
        rounds<0>(c);
        in_order(c, v);
    }

    static longs low_product(longs c0) {
        return arithmetic::multiply_halves(c0, longs{} + philox_state::multiplier[0]);
    }
    static longs high_product(longs c2) {
        return arithmetic::multiply_halves(c2, longs{} + philox_state::multiplier[1]);
    }

    // The rounds from number First on.
    template <int First>
    [[gnu::always_inline]] void rounds(group (&c)[groups]) const {
        simd::unroll<philox_state::rounds - First>([&](auto r) VOX_INLINED {
            simd::unroll<groups>([&](auto g) VOX_INLINED {
                const longs p0 = low_product(c[g][0]), p1 = high_product(c[g][2]);
                c[g][0] = (p1 >> 32) ^ c[g][1] ^ key[First + r][0];
                c[g][1] = p1;
                c[g][2] = (p0 >> 32) ^ c[g][3] ^ key[First + r][1];
                c[g][3] = p0;
            });
        });
    }

    [[gnu::always_inline]] static void in_order(const group (&c)[groups], words (&v)[vectors]) {
        simd::unroll<groups>([&](auto g) VOX_INLINED {
            const longs low = pair(c[g][0], c[g][1]), high = pair(c[g][2], c[g][3]);
            v[2 * g] = words(interleave(low, high, 0));
            v[2 * g + 1] = words(interleave(low, high, 1));
        });
    }
};

template <class Out>
int generate(philox_state &state, index_t n, Out out) {
    deliver(state, n, out, philox_blocks(state));
    return vox::rng::ok;
}

} // namespace

VOX_BRNG_KERNELS(philox4x32x10, philox_state, bits32)
