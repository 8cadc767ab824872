// affinity.hpp - on which processors a thread may run, by the kernel's own calls.
//
// The C library's wrappers read only masks as wide as their type; the system calls take any width.
#pragma once

#include <stdint.h>

namespace vox {

inline constexpr int max_processors = 8192;

struct processor_mask {
    uint64_t words[max_processors / 64] = {};

    bool has(int processor) const { return words[processor / 64] >> processor % 64 & 1; }
    void add(int processor) { words[processor / 64] |= uint64_t(1) << processor % 64; }
    void remove(int processor) { words[processor / 64] &= ~(uint64_t(1) << processor % 64); }
    int count() const;
    bool operator==(const processor_mask &) const = default;
};

// The mask of a thread by its system number, 0 for the calling one. False when the system does not
// tell, or tells of more processors than the mask holds.
bool read_affinity(int thread, processor_mask &mask);

// The main thread's, which stands for the process: any other may be bound to a processor.
bool read_process_affinity(processor_mask &mask);

// The calling thread's.
bool set_affinity(const processor_mask &mask);

} // namespace vox
