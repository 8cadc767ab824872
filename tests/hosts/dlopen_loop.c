/* dlopen_loop.c - a program that opens the library, uses it, closes it, and does so again.
 *
 * Opening must start no thread and leave the floating-point state alone; a thread that has used the
 * library may end after it was closed. */
#include <dlfcn.h>
#include <pthread.h>
#include <sys/stat.h>
#include <xmmintrin.h>

#include "check.h"

typedef double ddot_function(const int *, const double *, const int *, const double *, const int *);

/* A directory has a link from each of those in it, and two more. */
static int threads_of_this_process(void) {
    struct stat tasks;
    CHECK(stat("/proc/self/task", &tasks) == 0);
    return (int)tasks.st_nlink - 2;
}

/* The control bits of both floating-point units; computing may raise flags. */
static unsigned control_bits(void) {
    unsigned short x87;
    __asm__ volatile("fnstcw %0" : "=m"(x87));
    return (_mm_getcsr() & ~0x3Fu) | (unsigned)x87 << 16;
}

static double ones[10000];

static void *open_use_close(void *unused) {
    void *library = dlopen(VOX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    CHECK(library);
    ddot_function *ddot = (ddot_function *)dlsym(library, "ddot_");
    CHECK(ddot);
    const int n = 10000, one = 1;
    CHECK(ddot(&n, ones, &one, ones, &one) == 10000);
    CHECK(dlclose(library) == 0);
    return unused;
}

int main(void) {
    for (int i = 0; i < 10000; ++i)
        ones[i] = 1;
    const unsigned controls = control_bits();
    void *library = dlopen(VOX_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    CHECK(library);
    CHECK(threads_of_this_process() == 1);
    CHECK(control_bits() == controls);
    CHECK(dlclose(library) == 0);
    for (int i = 0; i < 20; ++i) {
        open_use_close(NULL);
        pthread_t thread;
        CHECK(pthread_create(&thread, NULL, open_use_close, NULL) == 0);
        CHECK(pthread_join(thread, NULL) == 0);
    }
    CHECK(control_bits() == controls);
    return 0;
}
