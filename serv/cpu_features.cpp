// cpu_features.cpp - builds the feature word; where each bit stands in CPUID is the table below.
#include "serv/cpu_features.hpp"

#include <atomic>

namespace {

using namespace vox;

enum source : uint8_t { leaf1_edx, leaf1_ecx, leaf7_ebx, leaf7_ecx, leaf7_edx, extended1_ecx };
enum state : uint8_t { any, ymm, zmm, bound }; // register state that must be enabled

struct row {
    uint8_t bit;
    source from;
    uint8_t first, second; // CPUID bits, equal unless a feature is two of them together
    state needs;
    char name[17];
};

// clang-format off
constexpr row rows[] = {
    {feature::fpu,              leaf1_edx,      0,  0, any,   "fpu"},
    {feature::cmov,             leaf1_edx,     15, 15, any,   "cmov"},
    {feature::mmx,              leaf1_edx,     23, 23, any,   "mmx"},
    {feature::fxsave,           leaf1_edx,     24, 24, any,   "fxsave"},
    {feature::sse,              leaf1_edx,     25, 25, any,   "sse"},
    {feature::sse2,             leaf1_edx,     26, 26, any,   "sse2"},
    {feature::sse3,             leaf1_ecx,      0,  0, any,   "sse3"},
    {feature::ssse3,            leaf1_ecx,      9,  9, any,   "ssse3"},
    {feature::sse41,            leaf1_ecx,     19, 19, any,   "sse4.1"},
    {feature::sse42,            leaf1_ecx,     20, 20, any,   "sse4.2"},
    {feature::movbe,            leaf1_ecx,     22, 22, any,   "movbe"},
    {feature::popcnt,           leaf1_ecx,     23, 23, any,   "popcnt"},
    {feature::pclmulqdq,        leaf1_ecx,      1,  1, any,   "pclmulqdq"},
    {feature::aes,              leaf1_ecx,     25, 25, any,   "aes"},
    {feature::f16c,             leaf1_ecx,     29, 29, ymm,   "f16c"},
    {feature::avx,              leaf1_ecx,     28, 28, ymm,   "avx"},
    {feature::rdrand,           leaf1_ecx,     30, 30, any,   "rdrand"},
    {feature::fma,              leaf1_ecx,     12, 12, ymm,   "fma"},
    {feature::bmi,              leaf7_ebx,      3,  8, any,   "bmi"},
    {feature::lzcnt,            extended1_ecx,  5,  5, any,   "lzcnt"},
    {feature::hle,              leaf7_ebx,      4,  4, any,   "hle"},
    {feature::rtm,              leaf7_ebx,     11, 11, any,   "rtm"},
    {feature::avx2,             leaf7_ebx,      5,  5, ymm,   "avx2"},
    {feature::avx512dq,         leaf7_ebx,     17, 17, zmm,   "avx512dq"},
    {feature::avx512f,          leaf7_ebx,     16, 16, zmm,   "avx512f"},
    {feature::adx,              leaf7_ebx,     19, 19, any,   "adx"},
    {feature::rdseed,           leaf7_ebx,     18, 18, any,   "rdseed"},
    {feature::avx512ifma,       leaf7_ebx,     21, 21, zmm,   "avx512ifma"},
    {feature::avx512er,         leaf7_ebx,     27, 27, zmm,   "avx512er"},
    {feature::avx512pf,         leaf7_ebx,     26, 26, zmm,   "avx512pf"},
    {feature::avx512cd,         leaf7_ebx,     28, 28, zmm,   "avx512cd"},
    {feature::sha,              leaf7_ebx,     29, 29, any,   "sha"},
    {feature::mpx,              leaf7_ebx,     14, 14, bound, "mpx"},
    {feature::avx512bw,         leaf7_ebx,     30, 30, zmm,   "avx512bw"},
    {feature::avx512vl,         leaf7_ebx,     31, 31, zmm,   "avx512vl"},
    {feature::avx512vbmi,       leaf7_ecx,      1,  1, zmm,   "avx512vbmi"},
    {feature::avx512_4fmaps,    leaf7_edx,      3,  3, zmm,   "avx512_4fmaps"},
    {feature::avx512_4vnniw,    leaf7_edx,      2,  2, zmm,   "avx512_4vnniw"},
    {feature::avx512_vpopcntdq, leaf7_ecx,     14, 14, zmm,   "avx512_vpopcntdq"},
};
// clang-format on

constexpr uint64_t xcr0_bits[] = {0, 0x6, 0xE6, 0x18}; // by state

uint32_t value_of(const cpu_snapshot &s, source from) {
    switch (from) {
    case leaf1_edx:
        return s.leaf1.edx;
    case leaf1_ecx:
        return s.leaf1.ecx;
    case leaf7_ebx:
        return s.leaf7.ebx;
    case leaf7_ecx:
        return s.leaf7.ecx;
    case leaf7_edx:
        return s.leaf7.edx;
    case extended1_ecx:
        return s.extended1.ecx;
    }
    return 0;
}

bool is_small_core(const cpu_snapshot &s) {
    const int model = model_of(s);
    return family_of(s) == 6 && (model == 0x1C || model == 0x26 || model == 0x27);
}

} // namespace

uint64_t vox::feature_word(const cpu_snapshot &s) {
    const bool osxsave = s.leaf1.ecx >> 27 & 1;
    const uint64_t enabled = osxsave ? s.xcr0 : 0;
    uint64_t word = feature_mask(feature::built);
    for (const row &r : rows) {
        const uint32_t value = value_of(s, r.from);
        if ((value >> r.first & value >> r.second & 1) && has_all(enabled, xcr0_bits[r.needs]))
            word |= feature_mask(r.bit);
    }
    if (is_small_core(s))
        word |= feature_mask(feature::small_core);
    return word;
}

bool vox::e1_probe(const cpu_snapshot &s) { return has_all(s.leaf7.edx, 0xC); }

uint64_t vox::features() {
    static constinit std::atomic<uint64_t> cached{0};
    uint64_t word = cached.load(std::memory_order_relaxed);
    if (word == 0) {
        word = feature_word(this_processor());
        cached.store(word, std::memory_order_relaxed);
    }
    return word;
}

const char *vox::feature_name(int bit) {
    for (const row &r : rows)
        if (r.bit == bit)
            return r.name;
    return bit == feature::small_core ? "small_core" : nullptr;
}
