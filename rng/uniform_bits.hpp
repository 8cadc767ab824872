// uniform_bits.hpp - words of random bits, as a generator makes them or put together from what is uniform.
#pragma once

#include "rng/stream.hpp"

extern "C" {
// Words as they are, of the generator's size.
int vox_rng_iRngUniformBits(int method, vox::rng::stream *s, int n, uint32_t *r);
// Words all of whose bits are uniform; -1132 from generators that have none.
int vox_rng_iRngUniformBits32(int method, vox::rng::stream *s, int n, uint32_t *r);
int vox_rng_iRngUniformBits64(int method, vox::rng::stream *s, int n, uint64_t *r);
}
