// fast_memory.hpp - high-bandwidth memory of many-core processors: the binding to the memkind
// library, which is looked for at run time, and the budget.
#pragma once

#include <stddef.h>
#include <stdint.h>

namespace vox {

enum class fast_memory_state {
    other_processor,
    static_c_library, // which loads no libraries
    not_found,
    too_old,    // below 1.1.0, or without a version
    incomplete, // a function is missing
    available
};

// The functions of memkind's interface hbwmalloc.h; null unless available.
struct fast_memory_binding {
    fast_memory_state state = fast_memory_state::other_processor;
    int (*allocate)(void **pointer, size_t alignment, size_t size, int page_kind) = nullptr;
    void (*release)(void *pointer) = nullptr;
};

// Whether a processor with this feature word is one that may have such memory.
bool may_have_fast_memory(uint64_t features);

// Binds the library of this name. A name without "/" is looked for in the two directories first
// (null or empty: none), then where the dynamic loader looks. The first library that opens decides.
fast_memory_binding bind_memkind(const char *name, const char *directory,
                                 const char *second_directory);

// For this process: beside this library, then beside the program.
fast_memory_binding find_fast_memory();

// The budget counts blocks with their headers. Negative: no limit.
void set_fast_memory_limit(int64_t mebibytes);

struct fast_memory_budget {
    uint64_t limit, used; // bytes; limit all ones: none
};
fast_memory_budget fast_memory_budget_now();

// Null when there is no such memory, when the size reaches what remains of the budget, or when the
// library has none left. Stores the size of the pages.
void *take_fast_memory(const fast_memory_binding &binding, size_t size, size_t *page_size);
void give_back_fast_memory(const fast_memory_binding &binding, void *block, size_t size);

} // namespace vox
