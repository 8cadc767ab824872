// ars5.cpp - numbers of ARS5, see rng/brng/ars5.hpp.
//
// No path implies AES, so its instructions are written as such, for one block at a time or, where the processor
// has VAES, for as many as a vector holds.
#include "rng/brng/ars5.hpp"

#include "rng/brng/instructions.hpp"
#include "rng/kernels/counter.hpp"

namespace {

using namespace output;
using vox::rng::ars_state;
using vox::rng::counter128;

// One round of AES on every block of a vector, or the last one.
template <bool Last, class V>
inline V aes_round(V block, V key) {
#if defined(__AVX__)
    if constexpr (Last)
        __asm__("vaesenclast %2, %1, %0" : "=x"(block) : "x"(block), "x"(key));
    else
        __asm__("vaesenc %2, %1, %0" : "=x"(block) : "x"(block), "x"(key));
#else
    if constexpr (Last)
        __asm__("aesenclast %1, %0" : "+x"(block) : "x"(key));
    else
        __asm__("aesenc %1, %0" : "+x"(block) : "x"(key));
#endif
    return block;
}

constexpr int batch = 8; // vectors

// A batch in registers of so many bytes.
template <int Bytes>
struct cipher {
    static constexpr int vectors = batch, rounds = ars_state::rounds;
    static constexpr int parts = vectors * integer_bytes / Bytes; // registers of a batch
    static constexpr int part_blocks = Bytes / 16;
    static constexpr int together = 8; // enough to hide the latency of a round

    using longs = typename simd::vec_of<uint64_t, Bytes>::type;

    longs key[rounds + 1];
    longs offset{}; // which blocks a register's are

    explicit cipher(const ars_state &s) {
        for (uint64_t r = 0; r <= rounds; ++r)
            key[r] = simd::broadcast_pair<Bytes>(s.key[0] + r * ars_state::weyl[0],
                                                 s.key[1] + r * ars_state::weyl[1]);
        for (int i = 0; i < part_blocks; ++i)
            offset[2 * i] = uint64_t(i);
    }

    [[gnu::always_inline]] void operator()(counter128 counter, words (&v)[vectors]) const {
        const uint64_t low = uint64_t(counter), high = uint64_t(counter >> 64);
        longs x[parts];
        x[0] = simd::broadcast_pair<Bytes>(low, high) + offset;
        const longs step = simd::broadcast_pair<Bytes>(uint64_t(part_blocks), uint64_t(0));
        simd::unroll<parts - 1>([&](auto i) VOX_INLINED { x[i + 1] = x[i] + step; });
        constexpr int blocks = parts * part_blocks;
        if (VOX_UNLIKELY(low > uint64_t(-blocks))) // the lower half overflows within the batch
            for (int i = 0; i < parts; ++i)
                for (int j = 0; j < part_blocks; ++j)
                    x[i][2 * j + 1] += x[i][2 * j] < low;
        for (longs *y = x; y < x + parts; y += together) {
            simd::unroll<together>([&](auto i) VOX_INLINED { y[i] ^= key[0]; });
            simd::unroll<rounds - 1>([&](auto r) VOX_INLINED {
                simd::unroll<together>(
                    [&](auto i) VOX_INLINED { y[i] = aes_round<false>(y[i], key[r + 1]); });
            });
            simd::unroll<together>([&](auto i)
                                       VOX_INLINED { y[i] = aes_round<true>(y[i], key[rounds]); });
        }
        __builtin_memcpy(v, x, sizeof x);
    }
};

#if defined(__AVX2__)
struct ars_blocks {
    static constexpr int vectors = batch;

    cipher<integer_bytes> wide;
    cipher<16> narrow;
    bool has_vaes = vox::rng::has_vaes();

    explicit ars_blocks(const ars_state &s) : wide(s), narrow(s) {}

    [[gnu::always_inline]] void operator()(counter128 counter, words (&v)[vectors]) const {
        if (VOX_LIKELY(has_vaes)) {
            wide(counter, v);
        } else {
            words by_blocks[vectors]; // apart, so that v need not be in memory
            encrypt(counter, by_blocks);
            simd::unroll<vectors>([&](auto i) VOX_INLINED { v[i] = by_blocks[i]; });
        }
    }

  private:
    __attribute__((noinline)) void encrypt(counter128 counter, words (&v)[vectors]) const {
        narrow(counter, v);
    }
};
#else
using ars_blocks = cipher<16>;
#endif

template <class Out>
int generate(ars_state &state, index_t n, Out out) {
    if (!vox::rng::has_instructions(vox::feature::aes))
        return RSK_ERROR_NO_INSTRUCTIONS;
    deliver(state, n, out, ars_blocks(state));
    return vox::rng::ok;
}

} // namespace

VOX_BRNG_KERNELS(ars5, ars_state, bits32)
