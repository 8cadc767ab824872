/* vox-run-report.c - preloaded by vox-run beside the library: says, when the program ends, which of its libraries
 * brought a BLAS that no preloaded one can stand in for, because its routines have names of its own.
 *
 * Python packages rename the BLAS that they bring, by a prefix or a suffix, and load it long after the program has
 * begun. What is linked into such a library without a name cannot be seen from here. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <link.h>
#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

static const char *const renamed[] = {
    "scipy_cblas_dgemm64_", "scipy_cblas_dgemm", "scipy_dgemm_64_", "scipy_dgemm_",
    "cblas_dgemm64_",       "cblas_dgemm_64",    "dgemm_64_"};

static pid_t program;
static struct stat error_stream;

__attribute__((constructor)) static void begin(void) {
    program = getpid();
    if (fstat(STDERR_FILENO, &error_stream) != 0)
        program = 0; /* nowhere to report to */
}

/* The names of loaded objects, one after the other, in `names`. They are only collected while the list is locked. */
static char names[1 << 16];
static size_t used;

static int collect(struct dl_phdr_info *info, size_t size, void *unused) {
    (void)size, (void)unused;
    const size_t length = strlen(info->dlpi_name) + 1;
    if (length > 1 && used + length < sizeof names) {
        memcpy(names + used, info->dlpi_name, length);
        used += length;
    }
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

/* Children of the program have nothing to add. A program may have put a file of its own in the place of the standard
 * error stream. */
__attribute__((destructor)) static void end(void) {
    struct stat now;
    if (getpid() != program || fstat(STDERR_FILENO, &now) != 0 ||
        now.st_dev != error_stream.st_dev || now.st_ino != error_stream.st_ino)
        return;
    dl_iterate_phdr(collect, NULL);
    for (const char *object = names; object < names + used; object += strlen(object) + 1) {
        const char *const name = renamed_product(object);
        if (name)
            dprintf(STDERR_FILENO,
                    "vox-run: %s brings a BLAS under names of its own (%s): its calls do not reach "
                    "the library\n",
                    object, name);
    }
}
