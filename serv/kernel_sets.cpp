// kernel_sets.cpp - see kernel_sets.hpp.
#include "serv/kernel_sets.hpp"

#include "serv/cpu.hpp"

namespace {

using namespace vox;

int index_of_type(int type) {
    switch (type) {
    case VOX_CPU_SSSE3:
        return 3;
    case VOX_CPU_SSE42:
        return 5;
    case VOX_CPU_AVX:
        return 6;
    case VOX_CPU_AVX2:
        return 7;
    case VOX_CPU_AVX512_ZEL:
    case VOX_CPU_AVX512_ZEL_E1:
        return 8;
    case VOX_CPU_AVX512:
        return 9;
    default:
        return 0;
    }
}

} // namespace

int vox::kernel_index_of(const cpu_facts &facts, const cpu_settings &settings,
                         const cpu_choice &choice) {
    if (choice.reason == cpu_reason::debug_type)
        return index_of_type(choice.type);
    if (choice.reason == cpu_reason::branch) {
        if (settings.branch == VOX_CBWR_SSE4_1 && has(facts.word, feature::sse41))
            return 4;
        return choice.type == VOX_CPU_DEF ? 1 : index_of_type(choice.type);
    }
    int type = choice.type;
    if (choice.reason == cpu_reason::vendor) {
        cpu_facts open = facts;
        open.vendor_supported = true;
        cpu_settings by_ladder = settings;
        by_ladder.debug_given = false;
        by_ladder.branch = VOX_CBWR_OFF;
        type = choose_cpu(open, by_ladder).type;
    }
    if (type == VOX_CPU_SSSE3 && has(facts.word, feature::sse41))
        return 4;
    if (type != VOX_CPU_DEF)
        return index_of_type(type);
    if (settings.branch != VOX_CBWR_OFF)
        return 1;
    return has(facts.word, feature::sse3) ? 2 : 0;
}

vox::kernel_set vox::kernel_set_of(int index) {
    switch (index) {
    case 1:
        return kernel_set::cnr_def;
    case 3:
        return kernel_set::ssse3;
    case 4:
        return kernel_set::sse41;
    case 5:
        return kernel_set::sse42;
    case 6:
        return kernel_set::avx;
    case 7:
        return kernel_set::avx2;
    case 8:
        return kernel_set::avx512_zel;
    case 9:
        return kernel_set::avx512;
    default:
        return kernel_set::def;
    }
}

bool vox::kernel_index_runs(const cpu_facts &facts, int index) {
    if (index == 4)
        return has(facts.word, feature::sse41);
    constexpr int types[] = {VOX_CPU_SSSE3, VOX_CPU_SSE42,      VOX_CPU_AVX,
                             VOX_CPU_AVX2,  VOX_CPU_AVX512_ZEL, VOX_CPU_AVX512};
    for (const int type : types)
        if (index_of_type(type) == index) {
            cpu_settings forced;
            forced.debug_given = true;
            forced.debug_type = type;
            return choose_cpu(facts, forced).reason == cpu_reason::debug_type;
        }
    return true;
}

int vox::this_kernel_index() {
    const cpu_choice choice = chosen_cpu(); // first: it may change the settings
    return kernel_index_of(this_cpu(), current_cpu_settings(), choice);
}

vox::kernel_set vox::this_kernel_set() { return kernel_set_of(this_kernel_index()); }
