// memory.hpp - where all memory of the library comes from: the first-use configuration, the source
// of blocks beneath both allocators, and what is to be told about them.
//
// The source is decided at the first allocation and for good, so that every block goes back to
// where it came from. When one of the four hooks is not the C library's function any more, it is
// the hooks; otherwise high-bandwidth memory where there is any, and the C library. The decision is
// kept, not the pointers: a call goes to what the hook holds at that moment. A null hook gives no
// memory.
#pragma once

#include <stddef.h>

#include "serv/fast_memory.hpp"
#include "serv/peak.hpp"
#include "serv/pool.hpp"

namespace vox {

// Done at the first call that needs it.
void configure_memory();

// The configuration with this binding instead of the one that the process finds; without effect
// when the configuration has been made.
void configure_memory_with(const fast_memory_binding &fast);

// Alignments are powers of two from 64 to 2^31: what is smaller or no power of two counts as 64,
// and 0 stands for what is larger, which nobody gets.
inline size_t normal_alignment(size_t alignment) {
    if (alignment < 64 || (alignment & (alignment - 1)) != 0)
        return 64;
    return alignment <= UINT32_MAX ? alignment : 0;
}

inline char *align_up(char *address, size_t alignment) {
    return address + (-uintptr_t(address) & (alignment - 1));
}

// Blocks from the source, with the alignment of malloc; null when there is no memory. No lock may
// be held: hooks run.
enum class contents { any, zero };
void *take_block(size_t size, contents wanted);
void *resize_block(void *block, size_t old_size, size_t size); // null: the old block is as it was
void release_block(void *block);

struct memory_facts {
    bool hooked;
    pool_state pool;
    fast_memory_state fast;
    uint64_t fast_limit; // bytes, all ones for no limit
    uint64_t fast_used;
    int64_t bytes_held;
    int blocks_held;
    peak_usage peak;
};
memory_facts memory_facts_now();

const char *describe(pool_state state);
const char *describe(fast_memory_state state);

} // namespace vox
