/* fork_use.c - any call works in parent and child after fork, even while other threads are inside.
 */
#include <pthread.h>
#include <stdatomic.h>
#include <sys/wait.h>

#include "check.h"
#include "vox/vox.h"

enum { length = 20000, order = 600, cells = order * order };
#ifdef __SANITIZE_ADDRESS__
/* The checker's own allocator stays locked in a child that is forked while others allocate. */
enum { hammers = 0 };
#else
enum { hammers = 3 };
#endif
static double ones[cells];
static atomic_int stop;

static void use(void) {
    CHECK(cblas_ddot(length, ones, 1, ones, 1) == length);
    static double y[length];
    cblas_dgemv(CblasColMajor, CblasNoTrans, order, order, 1, ones, order, ones, 1, 0, y, 1);
    CHECK(y[0] == order && y[order - 1] == order);
    cblas_dsymv(CblasColMajor, CblasLower, order, 1, ones, order, ones, 1, 0, y, 1);
    CHECK(y[0] == order && y[order - 1] == order);
    cblas_daxpy(length, 1, ones, 1, y, 1);
    void *block = vox_serv_allocate(5000, 128);
    CHECK(block);
    vox_serv_deallocate(block);
    vox_free_buffers();
    int blocks = 0;
    vox_mem_stat(&blocks);
}

static void *hammer(void *unused) {
    while (!stop) {
        void *block = vox_serv_allocate(3000, 64);
        CHECK(block);
        vox_serv_deallocate(block);
        vox_free(vox_malloc(100, 64));
        vox_get_max_threads();
        vox_free_buffers();
    }
    return unused;
}

static void fork_and_use(void) {
    const pid_t child = fork();
    CHECK(child >= 0);
    if (child == 0) {
        alarm(30); /* a child that hangs is a failure */
        use();
        _exit(0);
    }
    use();
    int status = -1;
    CHECK(waitpid(child, &status, 0) == child);
    CHECK(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

int main(void) {
    for (int i = 0; i < cells; ++i)
        ones[i] = 1;
    vox_set_dynamic(0);
    vox_set_num_threads(3);
    fork_and_use(); /* nothing used before */
    use();
    for (int i = 0; i < 5; ++i)
        fork_and_use();
    pthread_t threads[hammers + 1];
    for (int i = 0; i < hammers; ++i)
        CHECK(pthread_create(&threads[i], NULL, hammer, NULL) == 0);
    for (int i = 0; i < 30; ++i)
        fork_and_use();
    stop = 1;
    for (int i = 0; i < hammers; ++i)
        CHECK(pthread_join(threads[i], NULL) == 0);
    return 0;
}
