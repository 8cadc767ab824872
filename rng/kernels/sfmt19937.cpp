// sfmt19937.cpp - numbers of SFMT19937, see rng/brng/sfmt19937.hpp.
//
// The recurrence needs the word just made, so it runs in 128 bits; what it takes from farther back is worked out
// before in whole vectors.
#include "rng/brng/sfmt19937.hpp"

#include "rng/kernels/blocks.hpp"

namespace {

using namespace output;
using vox::rng::sfmt19937_state;

// Vectors of which 128 bits can be shifted at a time.
#if defined(__AVX512F__) && !defined(__AVX512BW__)
constexpr int shifted_bytes = 32;
#else
constexpr int shifted_bytes = integer_bytes;
#endif
constexpr int shifted_lanes = shifted_bytes / 4;

using shifted = typename simd::vec_of<uint32_t, shifted_bytes>::type;
using quad = typename simd::vec_of<uint32_t, 16>::type;

inline shifted up_8(shifted v) {
#if defined(__AVX512BW__)
    return shifted(_mm512_bslli_epi128(__m512i(v), 1));
#elif defined(__AVX2__)
    return shifted(_mm256_bslli_epi128(__m256i(v), 1));
#else
    return shifted(_mm_bslli_si128(__m128i(v), 1));
#endif
}
template <class V, class Body>
VOX_INLINED inline void each_quad(V v, const Body &body) {
    if constexpr (sizeof v == sizeof(quad)) {
        body(v);
    } else {
        each_quad(simd::low_half(v), body);
        each_quad(simd::high_half(v), body);
    }
}

inline quad down_8(quad v) { return quad(_mm_bsrli_si128(__m128i(v), 1)); }

struct sfmt19937 {
    static constexpr int size = sfmt19937_state::size, lag = sfmt19937_state::lag;
    static constexpr int ahead = size - lag; // words whose lag is in the old block

    quad newest, second;

    // The words of a vector, from the old ones in their place and those at the lag.
    void make(uint32_t *w, shifted x_lag) {
        const shifted x = simd::load<shifted_bytes>(w);
        shifted masks;
        for (int i = 0; i < shifted_lanes; ++i)
            masks[i] = sfmt19937_state::masks[i % 4];
        const shifted far = x ^ up_8(x) ^ (x_lag >> 11 & masks);
        each_quad(far, [&](quad part) VOX_INLINED {
            const quad made = part ^ down_8(second) ^ newest << 18;
            simd::store(w, made);
            w += 4;
            second = newest;
            newest = made;
        });
    }
    static void renew(uint32_t *w, block_seam &seam) {
        constexpr auto load = simd::load<shifted_bytes, uint32_t>;
        constexpr int across = ahead / shifted_lanes * shifted_lanes;
        sfmt19937 chain{simd::load<16>(w + size - 4), simd::load<16>(w + size - 8)};
        seam.put_end(w);
        int i = 0;
        for (; i < across; i += shifted_lanes)
            chain.make(w + i, load(w + i + lag));
        seam.put_start(w);
        if (ahead % shifted_lanes) {
            chain.make(w + i, load(seam.at(i + lag)));
            i += shifted_lanes;
        }
        for (; i < size; i += shifted_lanes)
            chain.make(w + i, load(w + i - ahead));
    }
    static words output(words y) { return y; }
};

template <class Out>
int generate(sfmt19937_state &state, index_t n, Out out) {
    return generate_blocks<sfmt19937>(state, n, out);
}

} // namespace

VOX_BRNG_KERNELS(sfmt19937, sfmt19937_state, bits32)
