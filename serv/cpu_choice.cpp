// cpu_choice.cpp - see cpu_choice.hpp.
#include "serv/cpu_choice.hpp"

#include <string.h>

namespace {

using namespace vox;

constexpr uint64_t avx_bit = feature_mask(feature::avx);

// Features without which a type's code would fault. avx512_zel's code uses less than its tier asks
// for, so that a debug type can run it on any AVX-512 processor.
uint64_t code_needs(int type) {
    switch (type) {
    case VOX_CPU_SSSE3:
        return feature_mask(feature::ssse3);
    case VOX_CPU_SSE42:
        return feature_mask(feature::sse42);
    case VOX_CPU_AVX:
        return avx_bit;
    case VOX_CPU_AVX2:
        return avx_bit | avx2_group;
    case VOX_CPU_AVX512_ZEL:
    case VOX_CPU_AVX512_ZEL_E1:
        return avx_bit | avx2_group | feature_mask(feature::avx512f, feature::avx512cd);
    case VOX_CPU_AVX512:
        return avx_bit | avx2_group | avx512_group;
    default:
        return 0;
    }
}

// -1 below the minimum.
int tier_ladder(const cpu_facts &f, const tier_flags &on) {
    if (!f.vendor_supported)
        return VOX_CPU_DEF;
    const bool avx = has(f.word, feature::avx);
    const bool avx2 = avx && has_all(f.word, avx2_group);
    if (avx2 && on.avx512 && has_all(f.word, avx512_group))
        return VOX_CPU_AVX512;
    if (avx2 && on.avx512_zel && has_all(f.word, avx512_zel_group))
        return on.zel_e1 && f.e1 ? VOX_CPU_AVX512_ZEL_E1 : VOX_CPU_AVX512_ZEL;
    if (avx2 && on.avx2)
        return VOX_CPU_AVX2;
    if (avx && on.avx)
        return VOX_CPU_AVX;
    if (on.sse42 && has(f.word, feature::sse42))
        return VOX_CPU_SSE42;
    if (has(f.word, feature::ssse3))
        return VOX_CPU_SSSE3;
    return has(f.word, feature::sse2) ? VOX_CPU_DEF : -1;
}

cpu_choice by_ladder(const cpu_facts &f, const tier_flags &tiers, int message) {
    const int type = tier_ladder(f, tiers);
    if (type < 0)
        return {VOX_CPU_DEF, cpu_reason::below_minimum, 1210};
    if (!f.vendor_supported)
        return {type, cpu_reason::vendor, message};
    const bool held_down = type != tier_ladder(f, tier_flags());
    return {type, held_down ? cpu_reason::ceiling : cpu_reason::features, message};
}

struct branch_row {
    int branch, type;
    char word[14];
};

// The order is that of the words in a search; "SSE3" is another word for branch 4.
constexpr branch_row branches[] = {
    {VOX_CBWR_AUTO, -1, "AUTO"},
    {VOX_CBWR_COMPATIBLE, VOX_CPU_DEF, "COMPATIBLE"},
    {VOX_CBWR_SSE2, VOX_CPU_DEF, "SSE2"},
    {VOX_CBWR_SSE2, VOX_CPU_DEF, "SSE3"},
    {VOX_CBWR_SSSE3, VOX_CPU_SSSE3, "SSSE3"},
    {VOX_CBWR_SSE4_1, VOX_CPU_SSSE3, "SSE4_1"},
    {VOX_CBWR_SSE4_2, VOX_CPU_SSE42, "SSE4_2"},
    {VOX_CBWR_AVX, VOX_CPU_AVX, "AVX"},
    {VOX_CBWR_AVX2, VOX_CPU_AVX2, "AVX2"},
    {VOX_CBWR_AVX512_ZEL, VOX_CPU_AVX512_ZEL, "AVX512_ZEL"},
    {VOX_CBWR_AVX512, VOX_CPU_AVX512, "AVX512"},
    {VOX_CBWR_AVX512_ZEL_E1, VOX_CPU_AVX512_ZEL_E1, "AVX512_ZEL_E1"},
};

constexpr int unnamed_sse2_branch = 5; // accepted as a number only

} // namespace

vox::cpu_choice vox::choose_cpu(const cpu_facts &f, const cpu_settings &s) {
    if (s.debug_given) {
        if (s.debug_type < 0 || s.debug_type > VOX_CPU_AVX512_ZEL_E1)
            return {VOX_CPU_DEF, cpu_reason::unsupported_type, 1213};
        if (!has_all(f.word, code_needs(s.debug_type)))
            return by_ladder(f, s.tiers, 4);
        return {s.debug_type, cpu_reason::debug_type};
    }
    if (s.branch == VOX_CBWR_OFF || s.branch == VOX_CBWR_AUTO)
        return by_ladder(f, s.tiers, 0);
    if (!branch_supported(f, s.branch))
        return by_ladder(f, s.tiers, 1209);
    return {type_of_branch(s.branch), cpu_reason::branch};
}

int vox::reevaluate_cpu(const cpu_facts &f, const cpu_settings &settings) {
    cpu_settings s = settings;
    s.branch = VOX_CBWR_OFF;
    return choose_cpu(f, s).type;
}

bool vox::level_supported(const cpu_facts &f, int level) {
    switch (level) {
    case VOX_ENABLE_SSE4_2:
        return has(f.word, feature::sse42);
    case VOX_ENABLE_AVX:
        return has(f.word, feature::avx);
    case VOX_ENABLE_AVX2:
        return has_all(f.word, avx2_group);
    case VOX_ENABLE_AVX512_ZEL:
        return has_all(f.word, avx512_zel_group);
    case VOX_ENABLE_AVX512:
        return has_all(f.word, avx512_group);
    case VOX_ENABLE_AVX512_ZEL_E1:
        return f.e1;
    default:
        return false;
    }
}

vox::tier_flags vox::tiers_of_level(int level) {
    const bool zel = level == VOX_ENABLE_AVX512_ZEL || level == VOX_ENABLE_AVX512_ZEL_E1;
    return {true, level >= VOX_ENABLE_AVX,    level >= VOX_ENABLE_AVX2,
            zel,  level == VOX_ENABLE_AVX512, level == VOX_ENABLE_AVX512_ZEL_E1};
}

int vox::parse_level(const char *word) {
    static constexpr char words[][14] = {"SSE4_2",     "AVX",    "AVX2",
                                         "AVX512_ZEL", "AVX512", "AVX512_ZEL_E1"};
    for (int level = 0; level < 6; ++level)
        if (strcmp(word, words[level]) == 0)
            return level;
    return -1;
}

int vox::parse_branch(const char *value) {
    static constexpr char key[] = "BRANCH=";
    const char *found = strstr(value, key);
    const char *word = found ? found + strlen(key) : value;
    for (const branch_row &row : branches)
        if (strcmp(word, row.word) == 0)
            return row.branch;
    return 0;
}

const char *vox::branch_word(int branch) {
    if (branch == VOX_CBWR_OFF)
        return "OFF";
    for (const branch_row &row : branches)
        if (row.branch == branch)
            return row.word;
    return nullptr;
}

int vox::type_of_branch(int branch) {
    if (branch == unnamed_sse2_branch)
        return VOX_CPU_DEF;
    for (const branch_row &row : branches)
        if (row.branch == branch)
            return row.type;
    return -1;
}

bool vox::branch_supported(const cpu_facts &f, int branch) {
    if (branch == VOX_CBWR_OFF || branch == VOX_CBWR_AUTO)
        return true;
    const int type = type_of_branch(branch);
    if (type < 0 || !has_all(f.word, code_needs(type)))
        return false;
    if (type == VOX_CPU_AVX512_ZEL)
        return has_all(f.word, avx512_zel_group);
    return type != VOX_CPU_AVX512_ZEL_E1 || f.e1;
}

int vox::auto_branch(const cpu_facts &f, const tier_flags &tiers) {
    const int type = tier_ladder(f, tiers);
    if (type <= VOX_CPU_DEF)
        return f.vendor_supported ? VOX_CBWR_SSE2 : VOX_CBWR_COMPATIBLE;
    int result = VOX_CBWR_SSE2;
    for (const branch_row &row : branches)
        if (row.type == type && row.branch != VOX_CBWR_SSE4_1)
            result = row.branch;
    return result;
}

bool vox::vendor_opened(const char *value, const vendor_name &vendor) {
    return strcmp(value, "ANY") == 0 || (strlen(value) == 12 && strcmp(value, vendor.text) == 0);
}
