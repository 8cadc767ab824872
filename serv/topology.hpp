// topology.hpp - the processors and cores that the process may use.
//
// Two sources tell which logical processors share a core. On the supported vendor's processors the
// calling thread visits each logical processor of the affinity mask and asks CPUID there; its mask
// is put back afterwards. Everywhere else, and where CPUID's narrow fields cannot hold the answer,
// it is /proc/cpuinfo; no thread is moved then. A processor of which neither tells counts as a core
// of its own.
#pragma once

#include <stddef.h>

#include "serv/affinity.hpp"

namespace vox {

enum class core_source { none, cpuid, cpuinfo };

struct topology {
    int logical = 1; // processors in the mask
    int cores = 1;
    int threads_per_core = 1; // rounded up where the mask covers cores unevenly
    core_source source = core_source::none;

    bool hyper_threading() const { return logical != cores; }
};

// CPUID on one logical processor: the initial APIC identifier and the sizes of the identifier space
// of a package (leaf 1 EBX, leaf 4 EAX).
struct apic_reading {
    int id, logical_per_package, cores_per_package;
};

// All that the search asks of a machine.
struct machine {
    bool visits; // whether its processors are to be visited
    bool (*read_affinity)(int thread, processor_mask &mask);
    bool (*set_affinity)(const processor_mask &mask);
    apic_reading (*read_apic)();
    const char *cpuinfo_path;
    void *(*allocate)(size_t bytes);
    void (*release)(void *block);
};

// The search's working memory. It is had before the search, so that no allocation function of the
// program's runs under the search's lock.
struct core_tables {
    const machine &owner;
    uint8_t *package, *core, *thread; // of each processor visited
    uint64_t *core_keys;              // of each processor in cpuinfo

    core_tables(const machine &m, int processors);
    ~core_tables();
    core_tables(const core_tables &) = delete;
    core_tables &operator=(const core_tables &) = delete;
};

// mask: null when unknown; then every processor that cpuinfo lists counts.
topology find_topology(const machine &m, const processor_mask *mask, core_tables &tables);

// This process's, found at the first call.
const topology &this_topology();

} // namespace vox
