// affinity.cpp - see affinity.hpp.
#include "serv/affinity.hpp"

#include <bit>
#include <sys/syscall.h>
#include <unistd.h>

int vox::processor_mask::count() const {
    int total = 0;
    for (uint64_t word : words)
        total += std::popcount(word);
    return total;
}

bool vox::read_affinity(int thread, processor_mask &mask) {
    mask = {};
    return syscall(SYS_sched_getaffinity, thread, sizeof mask.words, mask.words) > 0;
}

bool vox::read_process_affinity(processor_mask &mask) {
    return read_affinity(int(getpid()), mask) || read_affinity(0, mask);
}

bool vox::set_affinity(const processor_mask &mask) {
    return syscall(SYS_sched_setaffinity, 0, sizeof mask.words, mask.words) == 0;
}
