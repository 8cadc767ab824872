/* small_stack.c - the library runs on a thread with a stack of 64 KiB. */
#include <pthread.h>

#include "check.h"
#include "vox/vox.h"

static double ones[100000];

static void *use(void *unused) {
    CHECK(cblas_ddot(100000, ones, 1, ones, 1) == 100000);
    CHECK(cblas_ddot(10, ones, 1, ones, -1) == 10);
    vox_free(vox_malloc(1000, 64));
    vox_serv_deallocate(vox_serv_allocate(1000, 64));
    char text[100];
    vox_get_version_string(text, 100);
    return unused;
}

int main(void) {
    for (int i = 0; i < 100000; ++i)
        ones[i] = 1;
    vox_set_dynamic(0);
    vox_set_num_threads(600); /* many partial results */
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    CHECK(pthread_attr_setstacksize(&attributes, 65536) == 0);
    pthread_t thread;
    CHECK(pthread_create(&thread, &attributes, use, NULL) == 0);
    CHECK(pthread_join(thread, NULL) == 0);
    return 0;
}
