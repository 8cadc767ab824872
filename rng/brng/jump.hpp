// jump.hpp - skipping ahead in generators that are linear over GF(2). Their step F obeys its characteristic
// polynomial, so J steps are what t^J leaves modulo that polynomial, with F for t.
//
// For the two generators of period 2^19937 - 1, which renew their 19968 bits, 624 numbers, a block at a time.
// See H. Haramoto, M. Matsumoto, T. Nishimura, F. Panneton, P. L'Ecuyer, "Efficient jump ahead for F2-linear
// random number generators", INFORMS J. Comput. 20 (2008) 385-390.
#pragma once

#include <stdint.h>
#include <string.h>

#include "rng/stream.hpp"
#include "vox/rsk.h"
#include "vox/service.h"

namespace vox::rng {

// A polynomial over GF(2), the coefficient of t^i in bit i % 64 of word i / 64; or a state.
struct bits19968 {
    static constexpr int count = 19968, words = count / 64;
    uint64_t word[words];

    bool operator[](int i) const { return word[i / 64] >> i % 64 & 1; }
    void flip(int i) { word[i / 64] ^= uint64_t(1) << i % 64; }
};

// Adds as many bits from elsewhere, at any addresses.
template <class... Bits>
inline void add(void *to, const Bits *...from) {
    typedef uint64_t vector __attribute__((vector_size(16), aligned(1), may_alias));
    vector *const t = static_cast<vector *>(to);
    for (size_t i = 0; i < sizeof(bits19968) / sizeof(vector); ++i)
        t[i] = (t[i] ^ ... ^ reinterpret_cast<const vector *>(from)[i]);
}

// A count of steps: 64 bits and those of a block's position.
typedef unsigned __int128 step_count;

// Powers of t modulo t^19968 + tail, where tail has no term above t^19960.
class powers {
  public:
    void set_modulus(const bits19968 &tail);
    void power(step_count exponent, bits19968 &result);

  private:
    void reduce();

    bits19968 low_[16], high_[16]; // c tail and c t^4 tail, c a polynomial of four coefficients
    uint64_t power_[2 * bits19968::words];
};

// Skips `count` numbers, position of the block having been delivered. Generator is
//   word          the element of its recurrence, one of which a step makes
//   next(w)       the element that follows the block beginning at w
//   tail(bits)    t^19968 + tail is a multiple of the characteristic polynomial of a step
// Few numbers are skipped by steps. Without memory for more the state is left as it is.
template <class Generator>
int skip_blocks(uint32_t (&block)[624], int32_t &position, uint64_t count) {
    using word = typename Generator::word;
    constexpr int size = bits19968::count / 8 / sizeof(word);
    constexpr uint64_t least_jump = 0x100000;
    if (count == 0)
        return ok;

    word line[2 * size];
    const auto extend = [&] {
        for (int i = 0; i < size; ++i)
            line[size + i] = Generator::next(line + i);
    };
    memcpy(line, block, sizeof block);
    // A block is made when the first of its numbers is asked for.
    const auto end = step_count(count) + unsigned(position);
    const auto blocks = uint64_t((end - 1) / 624);
    if (count < least_jump) {
        for (uint64_t i = 0; i < blocks; ++i) {
            extend();
            memcpy(line, line + size, sizeof block);
        }
        memcpy(block, line, sizeof block);
    } else {
        auto *ring = static_cast<powers *>(vox_serv_allocate(sizeof(powers), 64));
        if (!ring)
            return RSK_ERROR_NO_MEMORY;
        bits19968 tail{};
        Generator::tail(tail);
        ring->set_modulus(tail);
        bits19968 polynomial;
        ring->power(step_count(blocks) * size, polynomial);
        vox_serv_deallocate(ring);
        memset(block, 0, sizeof block);
        for (int i = 0; i < bits19968::count; i += size) {
            extend();
            for (int j = 0; j < size; ++j)
                if (polynomial[i + j])
                    add(block, line + j);
            memcpy(line, line + size, sizeof block);
        }
    }
    position = int32_t(end - step_count(blocks) * 624);
    return ok;
}

} // namespace vox::rng
