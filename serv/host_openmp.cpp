// host_openmp.cpp - see host_openmp.hpp.
//
// The loader's list is searched first and the copy opened after that: the two hold different locks
// of the loader. The handle is kept, so the function stays where it is.
#include "serv/host_openmp.hpp"

#include <dlfcn.h>
#include <link.h>
#include <string.h>

#include "serv/lock.hpp"

constinit vox::host_runtime vox::host_runtimes[max_host_runtimes] = {};
constinit std::atomic<int> vox::host_runtime_count;

namespace {

using namespace vox;

constexpr size_t max_path = 1024;
constexpr char file_prefix[] = "libgomp";

struct search {
    uintptr_t base = 0;
    char path[max_path];
};

bool is_known(uintptr_t base) {
    for (int i = host_runtime_count.load(std::memory_order_acquire); i-- > 0;)
        if (host_runtimes[i].base == base)
            return true;
    return false;
}

int visit(dl_phdr_info *object, size_t, void *context) {
    search &s = *static_cast<search *>(context);
    const char *const path = object->dlpi_name, *const slash = path ? strrchr(path, '/') : nullptr;
    const char *const file = slash ? slash + 1 : path;
    if (!file || strncmp(file, file_prefix, sizeof file_prefix - 1) != 0 ||
        strlen(path) >= max_path || is_known(object->dlpi_addr))
        return 0;
    s.base = object->dlpi_addr;
    memcpy(s.path, path, strlen(path) + 1);
    return 1;
}

void add(const host_runtime &found) {
    scoped_lock guard(lock_id::thread_settings);
    const int count = host_runtime_count.load(std::memory_order_relaxed);
    if (count == max_host_runtimes || is_known(found.base))
        return;
    host_runtimes[count] = found;
    host_runtime_count.store(count + 1, std::memory_order_release);
}

int never() { return 0; }

} // namespace

void vox::find_host_runtimes() {
    search s;
    while (host_runtime_count.load(std::memory_order_relaxed) < max_host_runtimes &&
           dl_iterate_phdr(visit, &s)) {
        void *const handle = dlopen(s.path, RTLD_NOLOAD | RTLD_LAZY);
        void *const function = handle ? dlsym(handle, "omp_in_parallel") : nullptr;
        add({s.base, function ? reinterpret_cast<int (*)()>(function) : never});
    }
}
