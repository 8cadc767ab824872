/* running_path.h - the code path that this process runs, by its name in cmake/code_paths.cmake. */
#pragma once

#include "vox/service.h"

/* The two functions are arguments for those that find them at run time. */
static inline const char *running_path(int (*cpu_type)(int), int (*cbwr)(int)) {
    static const char *const names[] = {"def", "",     "ssse3",      "sse42",
                                        "avx", "avx2", "avx512_zel", "avx512"};
    const int type = cpu_type(0);
    if ((type == 0 || type == 2) && cbwr(1) != VOX_CBWR_OFF)
        return "cnr_def";
    return names[type];
}
