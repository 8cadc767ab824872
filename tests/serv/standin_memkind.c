/* standin_memkind.c - libmemkind.so as the library binds it, over ordinary memory. Variants leave a
 * function out or claim another version. A test steers and reads it through its variables, which it
 * finds because the library binds globally. */
#define _GNU_SOURCE
#include <stdlib.h>
#include <string.h>

#ifndef STANDIN_VERSION
#define STANDIN_VERSION 1001000
#endif

int standin_refused_kinds; /* bit k: page kind k is used up */
int standin_blocks;
size_t standin_last_size, standin_last_alignment;

#ifndef STANDIN_NO_VERSION
int memkind_get_version(void) { return STANDIN_VERSION; }
#endif

#ifndef STANDIN_NO_ALLOCATE
int hbw_posix_memalign_psize(void **pointer, size_t alignment, size_t size, int kind) {
    if (standin_refused_kinds >> kind & 1)
        return 12; /* ENOMEM */
    standin_last_size = size;
    standin_last_alignment = alignment;
    if (posix_memalign(pointer, alignment, size) != 0)
        return 12;
    memset(*pointer, 0xA5, size);
    ++standin_blocks;
    return 0;
}
#endif

#ifndef STANDIN_NO_FREE
void hbw_free(void *pointer) {
    --standin_blocks;
    free(pointer);
}
#endif
