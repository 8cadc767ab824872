// machines.hpp - synthetic processors: CPUID data built from tiers and single bits.
#pragma once

#include <cstring>

#include "serv/cpu_snapshot.hpp"

namespace test {

enum tier { bare, sse2, ssse3, sse42, avx, avx2, avx512, zel, zel_e1 };

constexpr uint64_t xcr0_sse = 0x3, xcr0_ymm = 0x7, xcr0_zmm = 0xE7;

inline void set_vendor(vox::cpu_snapshot &s, const char *twelve) {
    std::memcpy(&s.leaf0.ebx, twelve, 4);
    std::memcpy(&s.leaf0.edx, twelve + 4, 4);
    std::memcpy(&s.leaf0.ecx, twelve + 8, 4);
}

// A processor with every feature up to the tier, under an operating system that saves what xcr0
// says.
inline vox::cpu_snapshot machine(tier t, uint64_t xcr0 = xcr0_zmm,
                                 const char *vendor = "GenuineQuarn") {
    auto bits = [](auto... b) { return ((1u << b) | ... | 0u); };
    vox::cpu_snapshot s{};
    s.leaf0.eax = 7;
    s.leaf1.eax = 0x000506E3;
    set_vendor(s, vendor);
    s.leaf1.edx = bits(0, 15, 23, 24);
    if (t >= sse2)
        s.leaf1.edx |= bits(25, 26);
    if (t >= ssse3)
        s.leaf1.ecx |= bits(0, 9);
    if (t >= sse42)
        s.leaf1.ecx |= bits(19, 20, 23);
    if (t >= avx) {
        s.leaf1.ecx |= bits(1, 25, 27, 28);
        s.xcr0 = xcr0;
    }
    if (t >= avx2) {
        s.leaf1.ecx |= bits(12, 22, 29);
        s.leaf7.ebx |= bits(3, 5, 8);
        s.extended1.ecx |= bits(5);
    }
    if (t == avx512)
        s.leaf7.ebx |= bits(16, 17, 28, 30, 31);
    if (t >= zel)
        s.leaf7.ebx |= bits(16, 26, 27, 28);
    if (t >= zel_e1)
        s.leaf7.edx |= bits(2, 3);
    return s;
}

} // namespace test
