// code_paths.cpp - the selection rule: from the processor type and the reproducibility branch to a
// path.
#include "serv/code_paths.hpp"

#include "serv/cpu.hpp"

vox::code_path vox::this_code_path() {
    const int type = vox_serv_cpu_detect();
    return code_path_for(type, vox_serv_cbwr_get(1) != VOX_CBWR_OFF);
}

vox::code_path vox::code_path_for(int type, bool reproducible) {
    switch (type) {
    case VOX_CPU_DEF:
        return reproducible ? code_path::cnr_def : code_path::def;
    case VOX_CPU_SSSE3:
        return reproducible ? code_path::cnr_def : code_path::ssse3;
    case VOX_CPU_SSE42:
        return code_path::sse42;
    case VOX_CPU_AVX:
        return code_path::avx;
    case VOX_CPU_AVX2:
        return code_path::avx2;
    case VOX_CPU_AVX512_ZEL:
    case VOX_CPU_AVX512_ZEL_E1:
        return code_path::avx512_zel;
    case VOX_CPU_AVX512:
        return code_path::avx512;
    }
    unsupported_cpu_type(type);
    return code_path::def; // where an exit handler has returned
}

const char *vox::code_path_name(code_path path) {
    switch (path) {
#define VOX_PATH_NAME(name, ...)                                                                   \
    case code_path::name:                                                                          \
        return #name;
        VOX_CODE_PATHS(VOX_PATH_NAME)
#undef VOX_PATH_NAME
    }
    return "";
}
