// main.cpp - main of every test binary: runs as a child if asked to, else checks that the code path
// that the registration forces (VOX_TEST_PATH) is the one that runs, and runs the tests.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>

#include "tests/support/child.hpp"
#include "vox/service.h"

namespace {

const char *running_path() {
    static const char *const names[] = {"def", "",     "ssse3",      "sse42",
                                        "avx", "avx2", "avx512_zel", "avx512"};
    const int type = vox_get_cpu_type(0);
    if ((type == 0 || type == 2) && vox_cbwr_get(1) != VOX_CBWR_OFF)
        return "cnr_def";
    return names[type];
}

} // namespace

int main(int argc, char **argv) {
    if (test::run_as_child())
        return 0;
    testing::InitGoogleTest(&argc, argv);
    const char *wanted = std::getenv("VOX_TEST_PATH");
    if (wanted && std::strcmp(wanted, running_path()) != 0) {
        std::fprintf(stderr, "code path %s was asked for, %s runs\n", wanted, running_path());
        return 1;
    }
    return RUN_ALL_TESTS();
}
