// sfmt19937.cpp - seeding and skip-ahead, see sfmt19937.hpp.
#include "rng/brng/sfmt19937.hpp"

#include <emmintrin.h>

#include "rng/brng/jump.hpp"
#include "rng/brng/modular.hpp"
#include "rng/brng/twister.hpp"
#include "rng/registry.hpp"

namespace {

using namespace vox::rng;
using state_type = sfmt19937_state;

constexpr bits19968 characteristic{{
#define VOX_ROW(w0, w1, w2, w3) w0, w1, w2, w3,
#include "rng/tables/sfmt19937_charpoly.inc"
#undef VOX_ROW
}};

struct recurrence {
    using word = __m128i;
    static word next(const word *w) {
        const word mask = _mm_loadu_si128(reinterpret_cast<const word *>(state_type::masks));
        const word a = w[0], b = w[122], c = w[154], d = w[155];
        return a ^ _mm_slli_si128(a, 1) ^ (_mm_srli_epi32(b, 11) & mask) ^ _mm_srli_si128(c, 1) ^
               _mm_slli_epi32(d, 18);
    }
    static void tail(bits19968 &bits) { bits = characteristic; }
};

// The four words that a round of the initialisation by an array works on.
struct quartet {
    static constexpr int size = state_type::size, lag = 11, middle = (size - lag) / 2;
    uint32_t &here, &ahead, &farther, &behind;

    quartet(uint32_t (&w)[size], int i)
        : here(w[i]), ahead(w[(i + middle) % size]), farther(w[(i + middle + lag) % size]),
          behind(w[(i + size - 1) % size]) {}
};
uint32_t mixed(uint32_t x, uint32_t factor) { return (x ^ x >> 27) * factor; }

void fill_by_array(uint32_t (&w)[state_type::size], int n, const uint32_t *seeds) {
    constexpr int size = state_type::size;
    for (uint32_t &x : w)
        x = 0x8B8B8B8B;
    const int64_t rounds = n < size ? size : int64_t(n) + 1;
    for (int64_t k = 0; k < rounds; ++k) {
        const int i = int(k % size);
        const quartet q(w, i);
        uint32_t r = mixed(q.here ^ q.ahead ^ q.behind, 1664525);
        q.ahead += r;
        r += k == 0 ? uint32_t(n) : uint32_t(i) + (k <= n ? seeds[k - 1] : 0);
        q.farther += r;
        q.here = r;
    }
    for (int k = 0; k < size; ++k) {
        const int i = int((rounds + k) % size);
        const quartet q(w, i);
        uint32_t r = mixed(q.here + q.ahead + q.behind, 1566083941);
        q.ahead ^= r;
        r -= uint32_t(i);
        q.farther ^= r;
        q.here = r;
    }
}

// A state of an even parity could have a shorter period.
void certify_period(uint32_t (&w)[state_type::size]) {
    const uint32_t parity = (w[0] & 1) ^ (w[3] & 0x13C9E684);
    if (!__builtin_parity(parity))
        w[0] ^= 1;
}

} // namespace

extern "C" int vox_rng_sfmt19937_init(int method, vox::rng::stream *s, int n,
                                      const uint32_t *params) {
    sfmt19937_state &state = s->state<sfmt19937_state>();
    switch (method) {
    case seed:
        if (n > 1)
            fill_by_array(state.words, n, params);
        else
            fill_from_word(state.words, n == 1 ? params[0] : 1);
        certify_period(state.words);
        state.position = state.size;
        return ok;
    case leapfrog:
        return RSK_ERROR_NO_LEAPFROG;
    case skip:
        return skip_blocks<recurrence>(state.words, state.position, count_of(params));
    case validate:
        return is_block(state.words, state.position, ~0u) ? ok : bad_state;
    default:
        return unknown_method;
    }
}
