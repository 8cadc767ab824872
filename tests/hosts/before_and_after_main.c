/* before_and_after_main.c - the first call comes from a constructor, the last from an exit handler.
 */
#include "check.h"
#include "vox/vox.h"

static double ones[10000];

static void use_everything(void) {
    for (int i = 0; i < 10000; ++i)
        ones[i] = 1;
    CHECK(cblas_ddot(10000, ones, 1, ones, 1) == 10000);
    void *block = vox_malloc(1000, 64);
    CHECK(block);
    vox_free(block);
    CHECK(vox_get_max_threads() >= 1);
}

__attribute__((constructor)) static void before(void) { use_everything(); }
__attribute__((destructor)) static void after(void) { use_everything(); }

int main(void) {
    CHECK(atexit(use_everything) == 0);
    return 0;
}
