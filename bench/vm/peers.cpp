// peers.cpp - see peers.hpp.
#include "bench/vm/peers.hpp"

#include <dlfcn.h>

namespace vm_peers {

const kernel_set kernel_sets[set_count] = {
    {"def", 16, "sse2", 'b', &loops_16},
    {"cnr_def", 16, "sse2", 'b', &loops_16},
    {"def", 16, "sse2", 'b', &loops_16},
    {"ssse3", 16, "sse2", 'b', &loops_16},
    {"sse41", 16, "sse4", 'b', &loops_16},
    {"sse42", 16, "sse4", 'b', &loops_16},
    {"avx", 32, "avx", 'c', &loops_32},
    {"avx2", 32, "avx2", 'd', &loops_32},
    {"avx512_zel", 64, "avx512f", 'e', &loops_64},
    {"avx512", 64, "avx512f", 'e', &loops_64},
};

int best_set() {
    return __builtin_cpu_supports("avx512vl")                                     ? 9
           : __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")      ? 7
           : __builtin_cpu_supports("avx")                                        ? 6
           : __builtin_cpu_supports("sse4.2") && __builtin_cpu_supports("popcnt") ? 5
                                                                                  : 2;
}

namespace {

// Stays open for the life of the process.
void *look_up(void *handle, const std::string &symbol) {
    return handle ? dlsym(handle, symbol.c_str()) : nullptr;
}

std::string lanes_of(precision p, const kernel_set &set) {
    return std::to_string(set.bytes / element_bytes[p]);
}

} // namespace

void *sleef_function(const std::string &name, const std::string &accuracy, precision p,
                     const kernel_set &set) {
    static void *const handle = dlopen("libsleef.so.3", RTLD_NOW | RTLD_LOCAL);
    return look_up(handle, "Sleef_" + name + (p == real ? "d" : "f") + lanes_of(p, set) + "_" +
                               accuracy + set.sleef);
}

void *mvec_function(const std::string &name, int arguments, precision p, const kernel_set &set) {
    static void *const handle = dlopen("libmvec.so.1", RTLD_NOW | RTLD_LOCAL);
    return look_up(handle, std::string("_ZGV") + set.mvec + "N" + lanes_of(p, set) +
                               std::string(size_t(arguments), 'v') + "_" + name +
                               (p == real ? "" : "f"));
}

} // namespace vm_peers
