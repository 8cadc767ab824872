// cpu_features.hpp - the processor feature word: one bit per feature that the library asks about.
//
// A bit is set when the processor has the feature and the operating system saves the registers that
// it needs. Bit 0 means that the word has been built.
#pragma once

#include "serv/cpu_snapshot.hpp"

namespace vox {

namespace feature {
enum bit {
    built = 0,
    fpu = 1,
    cmov = 2,
    mmx = 3,
    fxsave = 4,
    sse = 5,
    sse2 = 6,
    sse3 = 7,
    ssse3 = 8,
    sse41 = 9,
    sse42 = 10,
    movbe = 11,
    popcnt = 12,
    pclmulqdq = 13,
    aes = 14,
    f16c = 15,
    avx = 16,
    rdrand = 17,
    fma = 18,
    bmi = 19, // BMI1 and BMI2
    lzcnt = 20,
    hle = 21,
    rtm = 22,
    avx2 = 23,
    avx512dq = 24,
    avx512f = 27,
    adx = 28,
    rdseed = 29,
    avx512ifma = 30,
    small_core = 31,
    avx512er = 32,
    avx512pf = 33,
    avx512cd = 34,
    sha = 35,
    mpx = 36,
    avx512bw = 37,
    avx512vl = 38,
    avx512vbmi = 39,
    avx512_4fmaps = 40,
    avx512_4vnniw = 41,
    avx512_vpopcntdq = 42,
};
} // namespace feature

template <class... Bits>
constexpr uint64_t feature_mask(Bits... bits) {
    return ((uint64_t(1) << bits) | ...);
}

// The groups that the tiers of code paths ask for.
inline constexpr uint64_t avx2_group =
    feature_mask(feature::pclmulqdq, feature::fma, feature::bmi, feature::lzcnt, feature::avx2);
inline constexpr uint64_t avx512_group =
    feature_mask(feature::avx512dq, feature::avx512f, feature::avx512bw, feature::avx512vl);
inline constexpr uint64_t avx512_zel_group =
    feature_mask(feature::avx512f, feature::avx512er, feature::avx512pf, feature::avx512cd);
static_assert(avx2_group == 0x9C2000 && avx512_group == 0x6009000000 &&
              avx512_zel_group == 0x708000000);

constexpr bool has_all(uint64_t word, uint64_t mask) { return (word & mask) == mask; }
constexpr bool has(uint64_t word, feature::bit bit) { return word >> bit & 1; }

uint64_t feature_word(const cpu_snapshot &snapshot);

// The many-core processors of the E1 kind: leaf 7 EDX bits 2 and 3.
bool e1_probe(const cpu_snapshot &snapshot);

// The word of the processor this runs on, built once.
uint64_t features();

// The name of a feature bit ("avx512f"), null for a bit without one.
const char *feature_name(int bit);

} // namespace vox
