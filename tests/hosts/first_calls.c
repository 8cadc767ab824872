/* first_calls.c - many threads make the first call of everything at once, and get the same answers.
 *
 * Runs under Helgrind too, which knows nothing of the relaxed atomics behind it; with an argument then:
 * nothing asks for a thread count, which starts the OpenMP runtime, which is not clean under the checker. */
#include <pthread.h>
#include <stdatomic.h>
#include <stdint.h>

#include "check.h"
#include "vox/vox.h"

static void multiply(void) {
    const double x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
    CHECK(cblas_ddot(3, x, 1, y, 1) == 32);
}
static void take_memory(void) { vox_free(vox_malloc(1000, 64)); }
static void take_scratch(void) { vox_serv_deallocate(vox_serv_allocate(1000, 64)); }
static void ask_version(void) {
    vox_version version;
    vox_get_version(&version);
}
static void ask_verbose(void) { CHECK(*vox_serv_verbose_mode() == 0); }
static void ask_branch(void) { CHECK(vox_cbwr_get(1) == VOX_CBWR_SSSE3); }
static void ask_path(void) { CHECK(vox_get_cpu_type(0) == VOX_CPU_SSSE3); }
static void ask_time(void) { CHECK(dsecnd() >= 0); }
static void ask_frequency(void) {
    static _Atomic double first_answer;
    double none = 0;
    const double answer = vox_get_clocks_frequency();
    CHECK(answer > 0);
    CHECK(atomic_compare_exchange_strong(&first_answer, &none, answer) || none == answer);
}
static void ask_threads(void) { CHECK(vox_domain_get_max_threads(VOX_DOMAIN_BLAS) == 3); }

static void (*const calls[])(void) = {multiply,      take_memory, take_scratch, ask_version,
                                      ask_verbose,   ask_branch,  ask_path,     ask_time,
                                      ask_frequency, ask_threads};
enum { callers = 32, all_calls = sizeof calls / sizeof *calls };
static int used_calls = all_calls;
static pthread_barrier_t start;

/* Each caller begins with another call. */
static void *call_everything(void *number) {
    const int first = (int)(intptr_t)number;
    pthread_barrier_wait(&start);
    for (int i = 0; i < used_calls; ++i)
        calls[(first + i) % used_calls]();
    return NULL;
}

int main(int argc, char **argv) {
    (void)argv;
    used_calls -= argc > 1;
    setenv("VOX_CBWR", "SSSE3", 1);
    setenv("VOX_DYNAMIC", "false", 1);
    setenv("VOX_DOMAIN_NUM_THREADS", "VOX_DOMAIN_BLAS=3", 1);
    pthread_t threads[callers];
    pthread_barrier_init(&start, NULL, callers);
    for (intptr_t i = 0; i < callers; ++i)
        CHECK(pthread_create(&threads[i], NULL, call_everything, (void *)i) == 0);
    for (int i = 0; i < callers; ++i)
        CHECK(pthread_join(threads[i], NULL) == 0);
    return 0;
}
