/* preload.c - loaded into the public BLAS test programs beside the library under test.
 *
 * Gives them the two variables that they expect a CBLAS to define, and ends the process at once if the
 * code path that the test is about (VOX_TEST_PATH) does not run. */
#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "tests/support/running_path.h"

int CBLAS_CallFromC, RowMajorStrg;

__attribute__((constructor)) static void check_path(void) {
    const char *const wanted = getenv("VOX_TEST_PATH");
    int (*cpu_type)(int), (*cbwr)(int);
    *(void **)&cpu_type = dlsym(RTLD_DEFAULT, "vox_get_cpu_type");
    *(void **)&cbwr = dlsym(RTLD_DEFAULT, "vox_cbwr_get");
    if (!wanted || !cpu_type || !cbwr)
        return; /* another process of the test */
    const char *const running = running_path(cpu_type, cbwr);
    if (strcmp(wanted, running) != 0) {
        fprintf(stderr, "code path %s was asked for, %s runs\n", wanted, running);
        _exit(1);
    }
}
