/* replacement.c - a program that defines one spelling of xerbla and one of vox_progress (REPORT and
 * PROGRESS), makes the library report in every way it has, and prints what arrived. */
#include <stdio.h>

#include "vox/service.h"

void REPORT(const char *name, const vox_int *code, int name_length) {
    printf("report %.*s %d\n", name_length, name, (int)*code);
}

int PROGRESS(const vox_int *thread, const vox_int *step, const char *stage, int stage_length) {
    printf("progress %d %d %.*s\n", (int)*thread, (int)*step, stage_length, stage);
    return 17;
}

static void handler(const char *name, const vox_int *code, int name_length) {
    printf("handler %.*s %d\n", name_length, name, (int)*code);
}

int main(void) {
    const vox_int three = 3, condition = -2;
    vox_xerbla_handler previous;
    vox_serv_xerbla("DGEMM from here", &three, 5);
    vox_serv_check_ptr(NULL, "buffer");
    previous = vox_set_xerbla(handler);
    vox_serv_xerbla("DSYMM", &three, 5);
    cblas_xerbla("cblas_dsymm", 4);
    vox_set_xerbla(previous);
    vox_serv_xerbla("DTRMM", &condition, 5);
    cdecl_xerbla("vdExp", &three, 5);
    cblas_xerbla("cblas_dgemv", 7); /* registers the handler of the C interface */
    cblas_xerbla_malloc_error("cblas_dtrsm");
    vox_serv_xerbla("DPOTRF", &three, 6);
    printf("result %d\n", vox_serv_progress(&three, &condition, "DGETRF", 6));
    return 0;
}
