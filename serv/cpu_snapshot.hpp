// cpu_snapshot.hpp - what CPUID and XGETBV say about a processor, as plain data.
//
// Everything that follows from it (features, tiers, generation) is a pure function of this record,
// so any processor can be tested on any machine.
#pragma once

#include <stdint.h>

namespace vox {

struct cpuid_registers {
    uint32_t eax, ebx, ecx, edx;
};

struct cpu_snapshot {
    cpuid_registers leaf0;     // highest leaf, vendor string
    cpuid_registers leaf1;     // family and model, features
    cpuid_registers leaf7;     // subleaf 0; zeros when there is none
    cpuid_registers extended1; // leaf 0x80000001; zeros when there is none
    uint64_t xcr0;             // state the operating system saves; 0 without OSXSAVE
};

cpuid_registers cpuid(uint32_t leaf, uint32_t subleaf);

// The processor this runs on, read once.
const cpu_snapshot &this_processor();

// The 12 characters of CPUID leaf 0, terminated.
struct vendor_name {
    char text[13];
};
vendor_name vendor_of(const cpu_snapshot &snapshot);

// Family and model with their extended fields folded in, as vendors print them.
int family_of(const cpu_snapshot &snapshot);
int model_of(const cpu_snapshot &snapshot);

} // namespace vox
