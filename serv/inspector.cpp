// inspector.cpp - see inspector.hpp.
#include "serv/inspector.hpp"

#include <atomic>
#include <link.h>
#include <stdint.h>

#include "vox/service.h"

namespace {

// Tool prefix 'H','G' in the upper half of the code; the requests used here.
constexpr unsigned long helgrind = (unsigned long)'H' << 24 | (unsigned long)'G' << 16;
constexpr unsigned long happens_before = helgrind + 256 + 33; // send on a synchronisation object
constexpr unsigned long happens_after = helgrind + 256 + 34;  // receive on it
constexpr unsigned long make_untracked = helgrind + 256 + 39; // stop watching a range of addresses

constexpr unsigned long running_under = 0x1001; // non-zero under the checker

inline unsigned long request(unsigned long code, const volatile void *address,
                             unsigned long bytes) {
    volatile unsigned long block[6] = {code, (unsigned long)address, bytes, 0, 0, 0};
    unsigned long result = 0;
    asm volatile("rolq $3, %%rdi; rolq $13, %%rdi; rolq $61, %%rdi; rolq $51, %%rdi\n\t"
                 "xchgq %%rbx, %%rbx"
                 : "=d"(result)
                 : "a"(&block[0]), "0"(result)
                 : "cc", "memory");
    return result;
}

// Untracks the writable segment that holds `data`, unless it is the program's (listed first).
int untrack_segment_of(dl_phdr_info *object, size_t, void *data) {
    const uintptr_t own = reinterpret_cast<uintptr_t>(data);
    for (int i = 0; i < object->dlpi_phnum; ++i) {
        const ElfW(Phdr) &segment = object->dlpi_phdr[i];
        const uintptr_t begin = object->dlpi_addr + segment.p_vaddr;
        if (segment.p_type != PT_LOAD || own - begin >= segment.p_memsz)
            continue;
        if (object->dlpi_name[0])
            request(make_untracked, reinterpret_cast<void *>(begin), segment.p_memsz);
        return 1;
    }
    return 0;
}

constinit std::atomic<bool> quiet{false};

} // namespace

void vox::inspector_quiet() {
    if (quiet.load(std::memory_order_relaxed))
        return;
    if (request(running_under, nullptr, 0) != 0)
        dl_iterate_phdr(untrack_segment_of, &quiet);
    quiet.store(true, std::memory_order_relaxed);
}

void vox::inspector_acquired(const void *lock) { request(happens_after, lock, 0); }

void vox::inspector_releasing(const void *lock) { request(happens_before, lock, 0); }

extern "C" void vox_serv_inspector_suppress(const volatile void *address, size_t bytes) {
    vox::inspector_quiet();
    request(make_untracked, address, bytes);
}

// Helgrind keeps the bytes of a filled slot unwatched: later readers race with no one.
extern "C" void vox_serv_inspector_unsuppress(const volatile void *, size_t) {}
