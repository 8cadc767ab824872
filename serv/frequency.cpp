// frequency.cpp - see frequency.hpp.
#include "serv/frequency.hpp"

#include <string.h>
#include <x86intrin.h>

#include "serv/base.hpp"
#include "vox/service.h"

namespace {

using namespace vox;

constexpr uint32_t frequency_leaf = 0x16, first_brand_leaf = 0x80000002, brand_leaves = 3;

// The number that ends in front of `end`: digits with at most one point.
double number_before(const char *start, const char *end) {
    double value = 0, scale = 1;
    bool point = false;
    for (const char *p = end; p > start;) {
        const char c = *--p;
        if (c >= '0' && c <= '9') {
            value += (c - '0') * scale;
            scale *= 10;
        } else if (c == '.' && !point) {
            point = true;
            value /= scale;
            scale = 1;
        } else {
            break;
        }
    }
    return value;
}

double frequency_in_brand(const char *brand) {
    struct unit {
        char name[4];
        double ghz;
    };
    static constexpr unit units[] = {{"MHz", 1e-3}, {"GHz", 1}, {"THz", 1e3}};
    double found = 0;
    for (const char *p = brand; *p; ++p)
        for (const unit &u : units)
            if (strncmp(p, u.name, 3) == 0)
                found = number_before(brand, p) * u.ghz;
    return found;
}

// Counter ticks that a chain of additions takes, each of which needs the sum before it: one cycle
// each on every processor. Both operands are registers, since some processors fold constants away.
constexpr int chain_links = 1 << 18, links_per_round = 16;

uint64_t ticks_of_chain() {
    uint64_t sum = 0, step = 1;
    const uint64_t start = __rdtsc();
    for (int round = 0; round < chain_links / links_per_round; ++round)
        asm volatile(".rept %c2\n\taddq %1, %0\n\t.endr"
                     : "+r"(sum)
                     : "r"(step), "i"(links_per_round));
    asm volatile("" : : "r"(sum));
    return __rdtsc() - start;
}

} // namespace

double vox::rated_frequency(const frequency_facts &facts) {
    const uint32_t base_mhz = facts.leaf16.eax & 0xFFFF;
    return base_mhz ? base_mhz * 1e-3 : frequency_in_brand(facts.brand);
}

vox::frequency_facts vox::this_processors_frequency() {
    frequency_facts facts{};
    if (this_processor().leaf0.eax >= frequency_leaf)
        facts.leaf16 = cpuid(frequency_leaf, 0);
    if (cpuid(0x80000000, 0).eax >= first_brand_leaf + brand_leaves - 1)
        for (uint32_t i = 0; i < brand_leaves; ++i) {
            const cpuid_registers part = cpuid(first_brand_leaf + i, 0);
            memcpy(facts.brand + sizeof part * i, &part, sizeof part);
        }
    return facts;
}

extern "C" double vox_serv_get_max_cpu_frequency() {
    const double rated = rated_frequency(this_processors_frequency());
    return rated > 0 ? rated : vox_serv_get_clocks_frequency();
}
VOX_ALIAS(vox_get_max_cpu_frequency, vox_serv_get_max_cpu_frequency);
VOX_FORTRAN_FORM(double, vox_get_max_cpu_frequency, VOX_GET_MAX_CPU_FREQUENCY, (), ());

// Best of several, since an interrupt can only make a chain longer. Takes about half a millisecond;
// the first chains also give the processor time to speed up.
extern "C" double vox_serv_get_cpu_frequency() {
    uint64_t ticks = ticks_of_chain();
    for (int repeat = 1; repeat < 6; ++repeat) {
        const uint64_t again = ticks_of_chain();
        ticks = again < ticks ? again : ticks;
    }
    return ticks ? chain_links * vox_serv_get_clocks_frequency() / double(ticks) : 0;
}
VOX_ALIAS(vox_get_cpu_frequency, vox_serv_get_cpu_frequency);
VOX_FORTRAN_FORM(double, vox_get_cpu_frequency, VOX_GET_CPU_FREQUENCY, (), ());
