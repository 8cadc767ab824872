/* first_calls.c - many threads make the first call of everything at once. Runs under Helgrind too.
 */
#include <pthread.h>

#include "check.h"
#include "vox/vox.h"

enum { callers = 16 };
static pthread_barrier_t start;

static void *call_everything(void *number) {
    const int first = *(const int *)number;
    const double x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
    pthread_barrier_wait(&start);
    for (int i = 0; i < 8; ++i)
        switch ((first + i) % 8) {
        case 0:
            CHECK(cblas_ddot(3, x, 1, y, 1) == 32);
            break;
        case 1:
            vox_free(vox_malloc(1000, 64));
            break;
        case 2:
            CHECK(vox_get_max_threads() >= 1);
            break;
        case 3:
            vox_serv_deallocate(vox_serv_allocate(1000, 64));
            break;
        case 4: {
            vox_version version;
            vox_get_version(&version);
            break;
        }
        case 5:
            CHECK(*vox_serv_verbose_mode() == 0);
            break;
        case 6:
            CHECK(vox_cbwr_get(1) == VOX_CBWR_OFF);
            break;
        default:
            CHECK(dsecnd() >= 0);
        }
    return NULL;
}

int main(void) {
    pthread_t threads[callers];
    int numbers[callers];
    pthread_barrier_init(&start, NULL, callers);
    for (int i = 0; i < callers; ++i) {
        numbers[i] = i;
        CHECK(pthread_create(&threads[i], NULL, call_everything, &numbers[i]) == 0);
    }
    for (int i = 0; i < callers; ++i)
        CHECK(pthread_join(threads[i], NULL) == 0);
    return 0;
}
