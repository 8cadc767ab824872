// cpu_model.cpp - see cpu_model.hpp.
#include "serv/cpu_model.hpp"

#include <string.h>

#include "vox/service.h"

namespace {

using namespace vox;

struct model_row {
    char vendor[13];
    int family, first_model, last_model, identifier;
};

// Families and models: the processor programming references of the maker.
constexpr model_row models[] = {
    {"AuthenticAMD", 0x17, 0x00, 0x2F, VOX_UARCH_ZEN1},
    {"AuthenticAMD", 0x17, 0x30, 0xFF, VOX_UARCH_ZEN2},
    {"AuthenticAMD", 0x19, 0x00, 0x0F, VOX_UARCH_ZEN3},
    {"AuthenticAMD", 0x19, 0x10, 0x1F, VOX_UARCH_ZEN4},
    {"AuthenticAMD", 0x19, 0x20, 0x5F, VOX_UARCH_ZEN3},
    {"AuthenticAMD", 0x19, 0x60, 0xFF, VOX_UARCH_ZEN4},
    {"AuthenticAMD", 0x1A, 0x00, 0xFF, VOX_UARCH_ZEN5},
    {"HygonGenuine", 0x18, 0x00, 0xFF, VOX_UARCH_ZEN1},
};

int by_features(uint64_t word) {
    const bool avx2 = has(word, feature::avx) && has_all(word, avx2_group);
    if (avx2 && has_all(word, avx512_group))
        return has_all(word, feature_mask(feature::avx512ifma, feature::avx512vbmi))
                   ? VOX_UARCH_AVX512_IFMA
                   : VOX_UARCH_AVX512;
    if (avx2 && has_all(word, avx512_zel_group))
        return has_all(word, feature_mask(feature::avx512_4fmaps, feature::avx512_4vnniw))
                   ? VOX_UARCH_ZEL_E1
                   : VOX_UARCH_ZEL;
    if (avx2)
        return VOX_UARCH_AVX2;
    if (has(word, feature::avx))
        return VOX_UARCH_AVX;
    if (has(word, feature::small_core))
        return VOX_UARCH_SMALL_CORE;
    if (has(word, feature::sse42))
        return VOX_UARCH_SSE42;
    if (has(word, feature::ssse3))
        return VOX_UARCH_SSSE3;
    return has(word, feature::sse2) ? VOX_UARCH_BASELINE : VOX_UARCH_UNKNOWN;
}

} // namespace

int vox::microarchitecture_of(const cpu_snapshot &s) {
    const vendor_name vendor = vendor_of(s);
    const int family = family_of(s), model = model_of(s);
    for (const model_row &m : models)
        if (strcmp(m.vendor, vendor.text) == 0 && m.family == family && m.first_model <= model &&
            model <= m.last_model)
            return m.identifier;
    return by_features(feature_word(s));
}

const char *vox::microarchitecture_name(int identifier) {
    switch (identifier) {
    case VOX_UARCH_BASELINE:
        return "baseline";
    case VOX_UARCH_SMALL_CORE:
        return "small core";
    case VOX_UARCH_SSSE3:
        return "ssse3";
    case VOX_UARCH_SSE42:
        return "sse4.2";
    case VOX_UARCH_AVX:
        return "avx";
    case VOX_UARCH_AVX2:
        return "avx2";
    case VOX_UARCH_ZEL:
        return "zel";
    case VOX_UARCH_ZEL_E1:
        return "zel e1";
    case VOX_UARCH_AVX512:
        return "avx512";
    case VOX_UARCH_AVX512_IFMA:
        return "avx512 with ifma";
    case VOX_UARCH_ZEN1:
        return "zen";
    case VOX_UARCH_ZEN2:
        return "zen2";
    case VOX_UARCH_ZEN3:
        return "zen3";
    case VOX_UARCH_ZEN4:
        return "zen4";
    case VOX_UARCH_ZEN5:
        return "zen5";
    default:
        return "unknown";
    }
}

extern "C" int vox_serv_get_microarchitecture() { return microarchitecture_of(this_processor()); }
VOX_ALIAS(vox_get_microarchitecture, vox_serv_get_microarchitecture);

extern "C" int vox_serv_cpu_is_small_core() { return has(features(), feature::small_core); }

extern "C" int vox_serv_cpu_is_zel() { return has_all(features(), avx512_zel_group); }

extern "C" int vox_serv_cpu_is_zel_e1() {
    return vox_serv_cpu_is_zel() && e1_probe(this_processor());
}

extern "C" int vox_serv_cpu_is_zen() { return vox_serv_get_microarchitecture() >= VOX_UARCH_ZEN1; }

extern "C" int vox_serv_cpu_has_split_512() {
    return vox_serv_get_microarchitecture() == VOX_UARCH_ZEN4;
}

extern "C" int vox_serv_cpu_is_virtual() { return this_processor().leaf1.ecx >> 31 & 1; }
