// memory.cpp - see memory.hpp.
//
// A plain block, from low to high addresses; base is what the source gave:
//
//   base ... | base, total, kind and alignment (24 bytes) | the caller's bytes ...
//                                                         ^ aligned
#include "serv/memory.hpp"

#include <stdlib.h>
#include <string.h>

#include "serv/environment.hpp"

extern "C" {
void *(*i_malloc)(size_t) = malloc;
void *(*i_calloc)(size_t, size_t) = calloc;
void *(*i_realloc)(void *, size_t) = realloc;
void (*i_free)(void *) = free;
}

namespace {

using namespace vox;

constinit std::atomic<bool> configured;
constinit bool hooked;
constinit fast_memory_binding fast_memory;

// At the start of every block of the internal source.
struct block_header {
    void *raw;
    uint32_t is_fast;
    size_t raw_size;
    size_t page_size;
};
static_assert(sizeof(block_header) == 32);

// Just below every address that the plain allocator hands out.
struct block_trailer {
    void *base;
    size_t total;
    uint32_t kind; // 0: plain allocator
    uint32_t alignment;
};
static_assert(sizeof(block_trailer) == 24);

constexpr size_t ordinary_page = 4096;

block_header *header_of(void *block) { return static_cast<block_header *>(block) - 1; }
block_trailer *trailer_of(void *pointer) { return static_cast<block_trailer *>(pointer) - 1; }

void *with_header(void *raw, const block_header &header) {
    if (!raw)
        return nullptr;
    block_header *const place = static_cast<block_header *>(raw);
    *place = header;
    place->raw = raw;
    return place + 1;
}

bool any_hook_replaced() {
    return i_malloc != malloc || i_calloc != calloc || i_realloc != realloc || i_free != free;
}

size_t total_of(size_t size, size_t alignment) {
    size_t total;
    const bool wraps = __builtin_add_overflow(size, alignment + sizeof(block_trailer), &total);
    return wraps ? 0 : total;
}

// The caller's address in a block of total_of(size, alignment) bytes.
char *address_in(void *base, size_t alignment) {
    char *const first = static_cast<char *>(base) + sizeof(block_trailer);
    return first + alignment - (uintptr_t(first) & (alignment - 1));
}

void *take_aligned(size_t size, size_t wanted_alignment, contents wanted) {
    const size_t alignment = normal_alignment(wanted_alignment);
    const size_t total = alignment ? total_of(size, alignment) : 0;
    if (size == 0 || total == 0)
        return nullptr;
    configure_memory();
    void *const base = take_block(total, wanted);
    if (!base)
        return nullptr;
    account(int64_t(total), 1);
    void *const pointer = address_in(base, alignment);
    *trailer_of(pointer) = {base, total, 0, uint32_t(alignment)};
    return pointer;
}

} // namespace

void vox::configure_memory() {
    if (VOX_UNLIKELY(!configured.load(std::memory_order_acquire)))
        configure_memory_with(find_fast_memory());
}

// The search for high-bandwidth memory comes before the lock, because it runs the dynamic loader,
// whose lock another thread may hold while it waits for ours. Threads that search at the same time
// find the same.
void vox::configure_memory_with(const fast_memory_binding &fast) {
    bool first = false;
    once(configured, lock_id::memory_setup, [&] {
        const env_value<30> pool("VOX_DISABLE_FAST_MM"), limit("VOX_FAST_MEMORY_LIMIT");
        long long mebibytes = 0;
        if (parse_integer(limit.text, 10, &mebibytes))
            set_fast_memory_limit(mebibytes);
        hooked = any_hook_replaced();
        fast_memory = fast;
        start_pool(pool.state == env_state::missing ? pool_state::in_use
                                                    : pool_state::off_by_environment);
        first = true;
    });
    if (first && fast.state == fast_memory_state::too_old && *vox_serv_verbose_mode() == 1)
        vox_serv_format_print(0, "%s", 1,
                              "Minimal supported version of the memkind library is 1.1.0");
}

void *vox::take_block(size_t size, contents wanted) {
    if (hooked) {
        if (wanted == contents::zero)
            return i_calloc ? i_calloc(1, size) : nullptr;
        return i_malloc ? i_malloc(size) : nullptr;
    }
    block_header header{nullptr, 0, 0, ordinary_page};
    if (__builtin_add_overflow(size, sizeof header, &header.raw_size))
        return nullptr;
    if (void *const raw = take_fast_memory(fast_memory, header.raw_size, &header.page_size)) {
        header.is_fast = 1;
        void *const block = with_header(raw, header);
        return wanted == contents::zero ? memset(block, 0, size) : block;
    }
    return with_header(
        wanted == contents::zero ? calloc(1, header.raw_size) : malloc(header.raw_size), header);
}

void *vox::resize_block(void *block, size_t old_size, size_t size) {
    if (hooked)
        return i_realloc ? i_realloc(block, size) : nullptr;
    block_header header = *header_of(block);
    if (!header.is_fast) {
        if (__builtin_add_overflow(size, sizeof header, &header.raw_size))
            return nullptr;
        return with_header(realloc(header.raw, header.raw_size), header);
    }
    void *const moved = take_block(size, contents::any);
    if (moved) {
        memcpy(moved, block, old_size < size ? old_size : size);
        release_block(block);
    }
    return moved;
}

void vox::release_block(void *block) {
    if (hooked) {
        if (i_free)
            i_free(block);
        return;
    }
    const block_header header = *header_of(block);
    if (header.is_fast)
        give_back_fast_memory(fast_memory, header.raw, header.raw_size);
    else
        free(header.raw);
}

vox::memory_facts vox::memory_facts_now() {
    memory_facts facts{};
    facts.pool = current_pool_state();
    facts.hooked = hooked;
    facts.fast = fast_memory.state;
    const fast_memory_budget budget = fast_memory_budget_now();
    facts.fast_limit = budget.limit;
    facts.fast_used = budget.used;
    facts.bytes_held = vox_serv_mem_stat(&facts.blocks_held);
    facts.peak = peak_now();
    return facts;
}

const char *vox::describe(pool_state state) {
    switch (state) {
    case pool_state::unread:
        return "not used yet";
    case pool_state::in_use:
        return "in use";
    case pool_state::off_by_environment:
        return "off: VOX_DISABLE_FAST_MM is set";
    case pool_state::off_by_call:
        return "off: vox_disable_fast_mm was called";
    }
    return "";
}

const char *vox::describe(fast_memory_state state) {
    switch (state) {
    case fast_memory_state::other_processor:
        return "not used: the processor is not a many-core one";
    case fast_memory_state::static_c_library:
        return "not used: the C library is linked statically";
    case fast_memory_state::not_found:
        return "not used: no libmemkind.so";
    case fast_memory_state::too_old:
        return "not used: libmemkind.so is older than 1.1.0";
    case fast_memory_state::incomplete:
        return "not used: libmemkind.so lacks a function";
    case fast_memory_state::available:
        return "available through libmemkind.so";
    }
    return "";
}

extern "C" void *vox_serv_malloc(size_t size, size_t alignment) {
    return take_aligned(size, alignment, contents::any);
}

extern "C" void *vox_serv_calloc(size_t count, size_t size, size_t alignment) {
    size_t bytes;
    if (__builtin_mul_overflow(count, size, &bytes))
        return nullptr;
    return take_aligned(bytes, alignment, contents::zero);
}

extern "C" void vox_serv_free(void *pointer) {
    if (!pointer)
        return;
    const block_trailer trailer = *trailer_of(pointer);
    account(-int64_t(trailer.total), -1);
    release_block(trailer.base);
}

extern "C" void *vox_serv_realloc(void *pointer, size_t size) {
    if (!pointer)
        return vox_serv_malloc(size, 0);
    if (size == 0) {
        vox_serv_free(pointer);
        return nullptr;
    }
    const block_trailer old = *trailer_of(pointer);
    const size_t offset = size_t(static_cast<char *>(pointer) - static_cast<char *>(old.base));
    const size_t old_size = old.total - total_of(0, old.alignment);
    const size_t total = total_of(size, old.alignment);
    void *const base = total ? resize_block(old.base, old.total, total) : nullptr;
    if (!base)
        return nullptr;
    account(int64_t(total) - int64_t(old.total), 0);
    // The new base may be aligned otherwise: then the contents move within the block, before the
    // trailer is written where they may have been.
    void *const resized = address_in(base, old.alignment);
    char *const contents_now = static_cast<char *>(base) + offset;
    if (resized != contents_now)
        memmove(resized, contents_now, old_size < size ? old_size : size);
    *trailer_of(resized) = {base, total, 0, old.alignment};
    return resized;
}

VOX_ALIAS(vox_malloc, vox_serv_malloc);
VOX_ALIAS(VOX_MALLOC, vox_serv_malloc);
VOX_ALIAS(vox_calloc, vox_serv_calloc);
VOX_ALIAS(vox_realloc, vox_serv_realloc);
VOX_ALIAS(vox_free, vox_serv_free);
VOX_ALIAS(VOX_FREE, vox_serv_free);
