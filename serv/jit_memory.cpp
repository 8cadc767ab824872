// jit_memory.cpp - memory for generated code, never writable and executable at the same time.
//
// Each allocation is a mapping of its own. Its first 64 bytes hold the mapping's size; they turn
// read-only with the code, which is all that releasing needs. This memory is no part of the
// statistics of the allocators.
#include <stddef.h>
#include <stdint.h>
#include <sys/mman.h>
#include <unistd.h>

#include "vox/service.h"

namespace {

struct alignas(64) mapping {
    size_t size;
};

mapping *mapping_of(void *code) { return static_cast<mapping *>(code) - 1; }

} // namespace

extern "C" void *vox_serv_jit_alloc(size_t size) {
    const size_t page = size_t(sysconf(_SC_PAGESIZE));
    size_t bytes;
    if (size == 0 || __builtin_add_overflow(size, sizeof(mapping) + page - 1, &bytes))
        return nullptr;
    bytes &= ~(page - 1);
    void *const base =
        mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (base == MAP_FAILED)
        return nullptr;
    mapping *const m = static_cast<mapping *>(base);
    m->size = bytes;
    return m + 1;
}

extern "C" int vox_serv_jit_set_exec(void *pointer) {
    if (!pointer)
        return -1;
    mapping *const m = mapping_of(pointer);
    return mprotect(m, m->size, PROT_READ | PROT_EXEC);
}

extern "C" void vox_serv_jit_free(void *pointer) {
    if (!pointer)
        return;
    mapping *const m = mapping_of(pointer);
    munmap(m, m->size);
}
