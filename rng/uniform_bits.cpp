// uniform_bits.cpp - see uniform_bits.hpp.
#include "rng/uniform_bits.hpp"

#include "rng/registry.hpp"
#include "vox/rsk.h"

namespace {

using namespace vox::rng;

// Among the generators with words of 32 bits, MRG32K3A stays below its modulus: the last 209 values never
// come.
bool has_uniform_words(const brng_properties &row) {
    return row.word_size == 4 && row.bits == 32 && row.integers != vox_rng_mrg32k3a_i;
}

// The upper half of a generator's 64-bit words is uniform where it has 32 bits far from the lowest ones.
bool has_uniform_halves(const brng_properties &row) { return row.word_size == 8 && row.bits >= 56; }

constexpr int block = 512;

} // namespace

extern "C" int vox_rng_iRngUniformBits(int, stream *s, int n, uint32_t *r) {
    brng_properties row;
    if (const int status = rskGetBrngProperties(s->id, &row); status < 0)
        return status;
    return row.integers(s, n, r);
}

extern "C" int vox_rng_iRngUniformBits32(int, stream *s, int n, uint32_t *r) {
    brng_properties row;
    if (const int status = rskGetBrngProperties(s->id, &row); status < 0)
        return status;
    if (has_uniform_words(row))
        return row.integers(s, n, r);
    if (!has_uniform_halves(row))
        return RSK_ERROR_NO_UNIFORM_BITS;
    uint64_t words[block];
    for (int m; n > 0; n -= m, r += m) {
        m = n < block ? n : block;
        if (const int status = row.integers(s, m, reinterpret_cast<uint32_t *>(words)); status < 0)
            return status;
        for (int i = 0; i < m; ++i)
            r[i] = uint32_t(words[i] >> (row.bits - 32));
    }
    return ok;
}

// Two words each, the lower one first.
extern "C" int vox_rng_iRngUniformBits64(int, stream *s, int n, uint64_t *r) {
    brng_properties row;
    if (const int status = rskGetBrngProperties(s->id, &row); status < 0)
        return status;
    if (!has_uniform_words(row))
        return RSK_ERROR_NO_UNIFORM_BITS;
    constexpr int most = 1 << 30; // so that twice as many is a number
    for (int m; n > 0; n -= m, r += m) {
        m = n < most ? n : most;
        if (const int status = row.integers(s, 2 * m, reinterpret_cast<uint32_t *>(r)); status < 0)
            return status;
    }
    return ok;
}
