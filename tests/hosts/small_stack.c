/* small_stack.c - the library runs on a thread with a stack of 64 KiB. */
#include <pthread.h>

#include "check.h"
#include "vox/vox.h"

enum { order = 700 };
static double ones[100000];
static vox_complex_double matrix[order * order], x[2 * order], y[2 * order];

/* Strided vectors go through the stack, piece by piece. */
static void use_level2(void) {
    const vox_complex_double one = {1, 0}, zero = {0, 0};
    cblas_zhemv(CblasColMajor, CblasUpper, order, &one, matrix, order, x, 2, &zero, y, 2);
    CHECK(y[0].real == order && y[2 * order - 2].real == order);
    cblas_zgemv(CblasRowMajor, CblasConjTrans, order, order, &one, matrix, order, x, -2, &zero, y,
                2);
    CHECK(y[0].real == order && y[2 * order - 2].real == order);
    cblas_zher2(CblasRowMajor, CblasLower, order, &one, x, 2, x, -2, matrix, order);
    CHECK(matrix[order].real == 3 && matrix[1].real == 1);
    cblas_ztrmv(CblasColMajor, CblasUpper, CblasNoTrans, CblasUnit, order, matrix, order, x, 2);
    CHECK(x[0].real == 1 + 3 * (order - 1) && x[2 * order - 2].real == 1);
    cblas_ztrsv(CblasColMajor, CblasUpper, CblasNoTrans, CblasUnit, order, matrix, order, x, 2);
    CHECK(x[0].real == 1 && x[2 * order - 2].real == 1);
}

/* Small factors and strips of transposed ones stand on the stack. */
static void use_level3(void) {
    enum { n = 25 };
    const vox_complex_double one = {1, 0}, zero = {0, 0};
    static vox_complex_double c[n * n];
    for (int i = 0; i < n * n; ++i)
        matrix[i].real = 1;
    cblas_zgemm(CblasColMajor, CblasTrans, CblasConjTrans, n, n, n, &one, matrix, n, matrix, n,
                &zero, c, n);
    CHECK(c[0].real == n && c[n * n - 1].real == n);
    cblas_zsymm(CblasColMajor, CblasRight, CblasUpper, n, n, &one, matrix, n, matrix, n, &zero, c,
                n);
    CHECK(c[0].real == n && c[n * n - 1].real == n);
    cblas_zherk(CblasColMajor, CblasLower, CblasConjTrans, n, n, 1, matrix, n, 0, c, n);
    CHECK(c[0].real == n && c[n * n - 1].real == n);
    cblas_ztrmm(CblasColMajor, CblasLeft, CblasUpper, CblasTrans, CblasNonUnit, n, n, &one, matrix,
                n, c, n);
    cblas_ztrsm(CblasColMajor, CblasLeft, CblasUpper, CblasTrans, CblasNonUnit, n, n, &one, matrix,
                n, c, n);
    CHECK(c[0].real == n && c[n * n - 1].real == n);
}

static void *use(void *unused) {
    CHECK(cblas_ddot(100000, ones, 1, ones, 1) == 100000);
    CHECK(cblas_ddot(10, ones, 1, ones, -1) == 10);
    use_level2();
    use_level3();
    vox_free(vox_malloc(1000, 64));
    vox_serv_deallocate(vox_serv_allocate(1000, 64));
    char text[100];
    vox_get_version_string(text, 100);
    return unused;
}

int main(void) {
    for (int i = 0; i < 100000; ++i)
        ones[i] = 1;
    for (int i = 0; i < order * order; ++i)
        matrix[i].real = 1;
    for (int i = 0; i < 2 * order; ++i)
        x[i].real = 1;
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
