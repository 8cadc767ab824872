// cpu_choice.hpp - from features and settings to a processor type: the rules, as pure functions.
//
// The order of the rules: a debug type decides alone; then a forced reproducibility branch; then
// the ladder of tiers, as high as the processor, its vendor and the instruction ceiling allow.
#pragma once

#include "serv/cpu_features.hpp"
#include "vox/service.h"

namespace vox {

inline constexpr char supported_vendor[] = "GenuineQuarn";

// Which tiers the instruction ceiling leaves enabled. ssse3 and def are always enabled.
struct tier_flags {
    bool sse42 = true, avx = true, avx2 = true, avx512_zel = true, avx512 = true, zel_e1 = true;
};

// The processor as the rules see it.
struct cpu_facts {
    uint64_t word;
    bool e1;               // E1 probe
    bool vendor_supported; // by CPUID, or because the vendor test was opened
};

struct cpu_settings {
    bool debug_given = false;
    int debug_type = -1;
    int branch = VOX_CBWR_OFF;
    tier_flags tiers;
};

enum class cpu_reason {
    debug_type,      // VOX_DEBUG_CPU_TYPE
    branch,          // forced by the reproducibility branch
    vendor,          // ladder, but another maker's processor: def
    ceiling,         // ladder, held down by the instruction ceiling
    features,        // ladder, the highest tier that the processor has
    below_minimum,   // no SSE2
    unsupported_type // debug type out of range
};

// type may be 8. message: 0, or the catalogue number of what is to be printed: 4 (debug type above
// what the processor has, ladder used), 1209 (bad branch or one that the processor lacks, ladder
// used), 1210 (below the minimum, type is 0) or 1213 (unsupported debug type, type is 0).
struct cpu_choice {
    int type;
    cpu_reason reason;
    int message = 0;
};

cpu_choice choose_cpu(const cpu_facts &facts, const cpu_settings &settings);

// What a re-evaluating query answers: the debug type or the ladder, whatever the branch.
int reevaluate_cpu(const cpu_facts &facts, const cpu_settings &settings);

// Instruction ceilings, 0 to 5.
bool level_supported(const cpu_facts &facts, int level);
tier_flags tiers_of_level(int level);
int parse_level(const char *word); // -1 for anything but the six words

// Reproducibility branches, 1 to 13.
int parse_branch(const char *value); // value of VOX_CBWR; 0 for an unknown word
const char *branch_word(int branch); // "AVX2"; null for a branch without a word
int type_of_branch(int branch);      // -1 for 1, 2 and what is no branch; 13 gives 8
bool branch_supported(const cpu_facts &facts, int branch);
int auto_branch(const cpu_facts &facts, const tier_flags &tiers);

// VOX_CPU_VENDOR: whether its value opens the vendor test for this vendor.
bool vendor_opened(const char *value, const vendor_name &vendor);

} // namespace vox
