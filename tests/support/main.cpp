// main.cpp - main of every test binary: runs as a child if asked to, else checks that the code path
// that the registration forces (VOX_TEST_PATH) is the one that runs, and runs the tests.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <malloc.h>

#include "tests/support/child.hpp"
#include "tests/support/running_path.h"

int main(int argc, char **argv) {
    // Memory of operands stays with the process for the next ones: a test that draws many large ones would
    // spend half of its time on fresh pages.
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, -1);
    if (test::run_as_child())
        return 0;
    testing::InitGoogleTest(&argc, argv);
    const char *wanted = std::getenv("VOX_TEST_PATH");
    const char *running = running_path(vox_get_cpu_type, vox_cbwr_get);
    if (wanted && std::strcmp(wanted, running) != 0) {
        std::fprintf(stderr, "code path %s was asked for, %s runs\n", wanted, running);
        return 1;
    }
    return RUN_ALL_TESTS();
}
