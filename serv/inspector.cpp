// inspector.cpp - see inspector.hpp.
#include "serv/inspector.hpp"

#include "vox/service.h"

namespace {

// Tool prefix 'H','G' in the upper half of the code; the requests used here.
constexpr unsigned long helgrind = (unsigned long)'H' << 24 | (unsigned long)'G' << 16;
constexpr unsigned long happens_before = helgrind + 256 + 33; // send on a synchronisation object
constexpr unsigned long happens_after = helgrind + 256 + 34;  // receive on it
constexpr unsigned long make_untracked = helgrind + 256 + 39; // stop watching a range of addresses

inline void request(unsigned long code, const volatile void *address, unsigned long bytes) {
    volatile unsigned long block[6] = {code, (unsigned long)address, bytes, 0, 0, 0};
    unsigned long result = 0;
    asm volatile("rolq $3, %%rdi; rolq $13, %%rdi; rolq $61, %%rdi; rolq $51, %%rdi\n\t"
                 "xchgq %%rbx, %%rbx"
                 : "=d"(result)
                 : "a"(&block[0]), "0"(result)
                 : "cc", "memory");
}

} // namespace

void vox::inspector_acquired(const void *lock) { request(happens_after, lock, 0); }

void vox::inspector_releasing(const void *lock) { request(happens_before, lock, 0); }

extern "C" void vox_serv_inspector_suppress(const volatile void *address, size_t bytes) {
    request(make_untracked, address, bytes);
}

// Helgrind keeps the bytes of a filled slot unwatched: later readers race with no one.
extern "C" void vox_serv_inspector_unsuppress(const volatile void *, size_t) {}
