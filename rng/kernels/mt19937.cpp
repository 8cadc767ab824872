// mt19937.cpp - numbers of MT19937, see rng/brng/mt19937.hpp.
#include "rng/brng/mt19937.hpp"

#include "rng/kernels/blocks.hpp"

namespace {

using namespace output;
using vox::rng::mt19937_state;

struct mt19937 {
    static constexpr int size = mt19937_state::size, lag = mt19937_state::lag;
    static constexpr int ahead = size - lag; // words whose lag is in the old block

    static words twist(words x0, words x1, words x_lag) {
        const words y = (x0 & mt19937_state::upper) | (x1 & ~mt19937_state::upper);
        return x_lag ^ y >> 1 ^ (-(x1 & 1) & mt19937_state::twist);
    }
    static void renew(uint32_t *w, block_seam &seam) {
        constexpr auto load = block_seam::load;
        constexpr int across = ahead / word_lanes * word_lanes;
        seam.put_end(w);
        int i = 0;
        for (; i < across; i += word_lanes)
            simd::store(w + i, twist(load(w + i), load(w + i + 1), load(w + i + lag)));
        seam.put_start(w);
        simd::store(w + i, twist(load(w + i), load(w + i + 1), load(seam.at(i + lag))));
        for (i += word_lanes; i < size - word_lanes; i += word_lanes)
            simd::store(w + i, twist(load(w + i), load(w + i + 1), load(w + i - ahead)));
        simd::store(w + i, twist(load(w + i), load(seam.at(i + 1)), load(w + i - ahead)));
    }
    static words output(words y) {
        y ^= y >> 11;
        y ^= y << 7 & 0x9D2C5680;
        y ^= y << 15 & 0xEFC60000;
        return y ^ y >> 18;
    }
};

template <class Out>
int generate(mt19937_state &state, index_t n, Out out) {
    return generate_blocks<mt19937>(state, n, out);
}

} // namespace

VOX_BRNG_KERNELS(mt19937, mt19937_state, bits32)
