/* first_dispatch.c - many threads select a kernel, and take memory, for the first time at once.
 *
 * Runs under Helgrind too, which knows nothing of the relaxed atomics behind it. Nothing here asks for
 * a thread count: that starts the OpenMP runtime, which is not clean under the checker. */
#include <pthread.h>

#include "check.h"
#include "vox/vox.h"

enum { callers = 16 };
static pthread_barrier_t start;

static void *call(void *unused) {
    const double x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
    pthread_barrier_wait(&start);
    for (int i = 0; i < 3; ++i) {
        CHECK(cblas_ddot(3, x, 1, y, 1) == 32);
        CHECK(vox_get_cpu_type(0) >= 0);
        CHECK(vox_cbwr_get(1) == VOX_CBWR_OFF);
        void *block = vox_malloc(1000, 64), *scratch = vox_serv_allocate(1000, 64);
        CHECK(block && scratch);
        vox_serv_deallocate(scratch);
        vox_free(block);
    }
    return unused;
}

int main(void) {
    pthread_t threads[callers];
    pthread_barrier_init(&start, NULL, callers);
    for (int i = 0; i < callers; ++i)
        CHECK(pthread_create(&threads[i], NULL, call, NULL) == 0);
    for (int i = 0; i < callers; ++i)
        CHECK(pthread_join(threads[i], NULL) == 0);
    return 0;
}
