// frequency.hpp - the processor's frequency: as it is rated (from CPUID) and as it runs (measured).
#pragma once

#include "serv/cpu_snapshot.hpp"

namespace vox {

// What CPUID says about frequency.
struct frequency_facts {
    cpuid_registers leaf16; // zeros when there is none
    char brand[49];         // empty when there is none
};

// GHz; 0 when nothing is said: leaf 0x16's base frequency, else the number in front of the last
// "MHz", "GHz" or "THz" of the brand string.
double rated_frequency(const frequency_facts &facts);

frequency_facts this_processors_frequency();

} // namespace vox
