/* vox-run-report.c - preloaded by vox-run beside the library: says, when the program ends, which of its libraries
 * brought a BLAS that no preloaded one can stand in for, because its routines have names of its own; and after
 * --info whether anything was computed by this library.
 *
 * Python packages rename the BLAS that they bring, by a prefix or a suffix, and load it long after the program has
 * begun. What is linked into such a library without a name cannot be seen from here. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <link.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

#include "vox/service.h"

static const char *const renamed[] = {
    "scipy_cblas_dgemm64_", "scipy_cblas_dgemm", "scipy_dgemm_64_", "scipy_dgemm_",
    "cblas_dgemm64_",       "cblas_dgemm_64",    "dgemm_64_"};

static pid_t program;
static pid_t first; /* the process that was vox-run, after --info; else 0 */
static struct stat error_stream;

__attribute__((constructor)) static void begin(void) {
    program = getpid();
    if (fstat(STDERR_FILENO, &error_stream) != 0)
        program = 0; /* nowhere to report to */
    const char *const info = getenv("VOX_RUN_INFO");
    first = info ? atoi(info) : 0;
}

/* The names of loaded objects. They are only collected while the list is locked. */
static char *objects[4096];
static size_t count;

static int collect(struct dl_phdr_info *info, size_t size, void *unused) {
    (void)size, (void)unused;
    if (info->dlpi_name[0] && count < sizeof objects / sizeof *objects)
        objects[count++] = strdup(info->dlpi_name);
    return 0;
}

/* The name under which the object itself, not one that it depends on, has the product of matrices. */
static const char *renamed_product(const char *object) {
    void *const handle = dlopen(object, RTLD_LAZY | RTLD_NOLOAD);
    if (!handle)
        return NULL;
    const char *found = NULL;
    for (size_t i = 0; !found && i < sizeof renamed / sizeof *renamed; ++i) {
        void *const address = dlsym(handle, renamed[i]);
        Dl_info info;
        if (address && dladdr(address, &info) && strcmp(info.dli_fname, object) == 0)
            found = renamed[i];
    }
    dlclose(handle);
    return found;
}

/* Whether the library has chosen its code path, as it does when it first computes: it is then too late for another
 * reproducibility mode. */
static int has_computed(void) {
    const int mode = vox_cbwr_get(0);
    const int other = mode == VOX_CBWR_OFF ? VOX_CBWR_AUTO : VOX_CBWR_OFF;
    const int result = vox_cbwr_set(other);
    if (result == VOX_CBWR_SUCCESS)
        vox_cbwr_set(mode);
    return result == VOX_CBWR_ERR_TOO_LATE;
}

/* Children of the program have nothing to add. A program may have put a file of its own in the place of the standard
 * error stream. */
__attribute__((destructor)) static void end(void) {
    struct stat now;
    if (getpid() != program || fstat(STDERR_FILENO, &now) != 0 ||
        now.st_dev != error_stream.st_dev || now.st_ino != error_stream.st_ino)
        return;
    dl_iterate_phdr(collect, NULL);
    for (size_t i = 0; i < count; ++i) {
        const char *const name = objects[i] ? renamed_product(objects[i]) : NULL;
        if (name)
            dprintf(STDERR_FILENO,
                    "vox-run: %s brings a BLAS under names of its own (%s): its calls do not reach "
                    "the library\n",
                    objects[i], name);
        free(objects[i]);
    }
    if (!first)
        return;
    const int computed = has_computed();
    if (computed || program == first) /* of all that a script may start, what matters */
        dprintf(STDERR_FILENO, "vox-run: %s: %s was computed by the library\n",
                program_invocation_short_name, computed ? "something" : "nothing");
}
