// fast_memory.cpp - see fast_memory.hpp.
#include "serv/fast_memory.hpp"

#include <dlfcn.h>
#include <limits.h>
#include <link.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include "serv/cpu_features.hpp"
#include "serv/lock.hpp"
#include "serv/memory.hpp"

namespace {

using namespace vox;

constexpr char library_name[] = "libmemkind.so";
constexpr int minimal_version = 1001000; // 1.1.0

constexpr uint64_t unlimited = UINT64_MAX;

// Under the budget's lock.
constinit fast_memory_budget budget{unlimited, 0};

// Every dynamically linked program, and the C library itself, names a program interpreter.
bool c_library_is_static() {
    auto names_interpreter = [](dl_phdr_info *object, size_t, void *) {
        for (int i = 0; i < object->dlpi_phnum; ++i)
            if (object->dlpi_phdr[i].p_type == PT_INTERP)
                return 1;
        return 0;
    };
    return dl_iterate_phdr(names_interpreter, nullptr) == 0;
}

// Cuts a path at its last "/"; empty when it has none.
void keep_directory(char *path) {
    char *const slash = strrchr(path, '/');
    *(slash ? slash : path) = '\0';
}

struct directory {
    char path[PATH_MAX];
};

void directory_of_library(directory &d) {
    Dl_info info;
    d.path[0] = '\0';
    if (dladdr(&budget, &info) && info.dli_fname && strlen(info.dli_fname) < sizeof d.path)
        strcpy(d.path, info.dli_fname);
    keep_directory(d.path);
}

void directory_of_program(directory &d) {
    const ssize_t length = readlink("/proc/self/exe", d.path, sizeof d.path - 1);
    d.path[length > 0 ? length : 0] = '\0';
    keep_directory(d.path);
}

void *open_library(const char *path) {
    void *const library = dlopen(path, RTLD_LAZY | RTLD_GLOBAL);
    if (!library)
        dlerror(); // not for the program to find
    return library;
}

void *open_in(const char *directory, const char *name) {
    char path[PATH_MAX];
    if (!directory || !*directory)
        return nullptr;
    const int length = snprintf(path, sizeof path, "%s/%s", directory, name);
    return length < int(sizeof path) ? open_library(path) : nullptr;
}

template <class Function>
bool resolve(void *library, const char *name, Function *&function) {
    function = reinterpret_cast<Function *>(dlsym(library, name));
    if (!function)
        dlerror();
    return function != nullptr;
}

fast_memory_binding bind(void *library) {
    fast_memory_binding binding;
    int (*version)();
    if (!resolve(library, "memkind_get_version", version) || version() < minimal_version)
        binding.state = fast_memory_state::too_old;
    else if (!resolve(library, "hbw_posix_memalign_psize", binding.allocate) ||
             !resolve(library, "hbw_free", binding.release))
        binding.state = fast_memory_state::incomplete;
    else
        binding.state = fast_memory_state::available;
    return binding;
}

bool reserve(uint64_t size) {
    scoped_lock guard(lock_id::fast_memory_budget);
    if (budget.limit != unlimited &&
        (budget.used >= budget.limit || size >= budget.limit - budget.used))
        return false;
    budget.used += size;
    return true;
}

void give_back(uint64_t size) {
    scoped_lock guard(lock_id::fast_memory_budget);
    budget.used -= size;
}

} // namespace

bool vox::may_have_fast_memory(uint64_t features) { return has_all(features, avx512_zel_group); }

vox::fast_memory_binding vox::bind_memkind(const char *name, const char *directory,
                                           const char *second_directory) {
    void *library = nullptr;
    if (!strchr(name, '/')) {
        library = open_in(directory, name);
        if (!library && !(directory && second_directory && !strcmp(directory, second_directory)))
            library = open_in(second_directory, name);
    }
    if (!library)
        library = open_library(name);
    if (!library)
        return {fast_memory_state::not_found};
    const fast_memory_binding binding = bind(library);
    if (binding.state != fast_memory_state::available) {
        dlclose(library);
        return {binding.state};
    }
    return binding;
}

vox::fast_memory_binding vox::find_fast_memory() {
    if (!may_have_fast_memory(features()))
        return {fast_memory_state::other_processor};
    if (c_library_is_static())
        return {fast_memory_state::static_c_library};
    directory own, program;
    directory_of_library(own);
    directory_of_program(program);
    return bind_memkind(library_name, own.path, program.path);
}

void vox::set_fast_memory_limit(int64_t mebibytes) {
    const bool no_limit = mebibytes < 0 || uint64_t(mebibytes) > unlimited >> 20;
    scoped_lock guard(lock_id::fast_memory_budget);
    budget.limit = no_limit ? unlimited : uint64_t(mebibytes) << 20;
}

vox::fast_memory_budget vox::fast_memory_budget_now() {
    scoped_lock guard(lock_id::fast_memory_budget);
    return budget;
}

// The budget is reserved first, so that its lock is not held while the library works.
void *vox::take_fast_memory(const fast_memory_binding &binding, size_t size, size_t *page_size) {
    static constexpr struct {
        size_t size;
        int kind; // HBW_PAGESIZE_2MB, HBW_PAGESIZE_4KB
    } pages[] = {{size_t(2) << 20, 2}, {4096, 1}};
    if (binding.state != fast_memory_state::available || !reserve(size))
        return nullptr;
    for (const auto &page : pages) {
        void *block = nullptr;
        if (binding.allocate(&block, page.size, size, page.kind) == 0 && block) {
            *page_size = page.size;
            return block;
        }
    }
    give_back(size);
    return nullptr;
}

void vox::give_back_fast_memory(const fast_memory_binding &binding, void *block, size_t size) {
    binding.release(block);
    give_back(size);
}

extern "C" int vox_serv_set_memory_limit(int kind, int64_t limit_mib) {
    if (kind != VOX_MEM_FAST)
        return 0;
    configure_memory(); // so that the environment does not override this later
    set_fast_memory_limit(limit_mib);
    return 1;
}

extern "C" uint64_t vox_serv_check_fast_memory_size() {
    configure_memory();
    const fast_memory_budget now = fast_memory_budget_now();
    if (now.limit == unlimited)
        return unlimited;
    return now.limit > now.used ? now.limit - now.used : 0;
}

VOX_ALIAS(vox_set_memory_limit, vox_serv_set_memory_limit);
