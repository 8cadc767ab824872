// cpu_snapshot.cpp - see cpu_snapshot.hpp.
#include "serv/cpu_snapshot.hpp"

#include <cpuid.h>
#include <string.h>

#include "serv/lock.hpp"

namespace {

constexpr uint32_t osxsave = 1u << 27; // leaf 1, ECX

uint64_t xgetbv0() {
    uint32_t low, high;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return uint64_t(high) << 32 | low;
}

vox::cpu_snapshot read() {
    vox::cpu_snapshot s{};
    s.leaf0 = vox::cpuid(0, 0);
    s.leaf1 = vox::cpuid(1, 0);
    if (s.leaf0.eax >= 7)
        s.leaf7 = vox::cpuid(7, 0);
    if (vox::cpuid(0x80000000, 0).eax >= 0x80000001)
        s.extended1 = vox::cpuid(0x80000001, 0);
    if (s.leaf1.ecx & osxsave)
        s.xcr0 = xgetbv0();
    return s;
}

constinit std::atomic<bool> known;
constinit vox::cpu_snapshot processor{};

} // namespace

vox::cpuid_registers vox::cpuid(uint32_t leaf, uint32_t subleaf) {
    cpuid_registers r;
    __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
    return r;
}

const vox::cpu_snapshot &vox::this_processor() {
    once(known, lock_id::processor, [] { processor = read(); });
    return processor;
}

vox::vendor_name vox::vendor_of(const cpu_snapshot &s) {
    vendor_name name{};
    memcpy(name.text, &s.leaf0.ebx, 4);
    memcpy(name.text + 4, &s.leaf0.edx, 4);
    memcpy(name.text + 8, &s.leaf0.ecx, 4);
    return name;
}

int vox::family_of(const cpu_snapshot &s) {
    const int family = int(s.leaf1.eax >> 8 & 15);
    return family == 15 ? family + int(s.leaf1.eax >> 20 & 255) : family;
}

int vox::model_of(const cpu_snapshot &s) {
    const int family = int(s.leaf1.eax >> 8 & 15), model = int(s.leaf1.eax >> 4 & 15);
    return family == 6 || family == 15 ? model + int(s.leaf1.eax >> 16 & 15) * 16 : model;
}
