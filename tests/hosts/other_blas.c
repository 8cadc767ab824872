/* other_blas.c - a program that has routines of the same names, with integers of 64 bits, and opens another
 * BLAS and LAPACK besides: the library's own calls stay inside, and each library computes. */
#include <dlfcn.h>
#include <stdint.h>

#include "check.h"
#include "vox/cblas.h"
#include "vox/lapacke.h"

/* Found first by the dynamic linker. */
#define TAKEN(name)                                                                                \
    void name(void);                                                                               \
    void name(void) { CHECK(!"called"); }
TAKEN(dtrsm)
TAKEN(dgetrf)
TAKEN(dgetrf_)
TAKEN(dgetrs_)
TAKEN(dgels_)
TAKEN(dgeqrf_)
TAKEN(ilaenv)

int64_t dgemm(const int64_t *n);
int64_t dgemm(const int64_t *n) { return *n; }
int64_t dgesv_(const int64_t *n);
int64_t dgesv_(const int64_t *n) { return *n; }

typedef double ddot_function(const int *, const double *, const int *, const double *, const int *);
ddot_function ddot_;

static void use_this_library(void) {
    enum { n = 40 };
    static double a[n * n], b[n], c[n * n], x[n];
    vox_int pivots[n];
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j)
            a[i * n + j] = i == j ? 2 : 0;
        b[i] = x[i] = i;
    }
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, n, n, n, 1, a, n, a, n, 0, c, n);
    CHECK(c[0] == 4 && c[1] == 0 && c[n * n - 1] == 4);
    CHECK(LAPACKE_dgesv(LAPACK_ROW_MAJOR, n, 1, c, n, pivots, b, 1) == 0);
    CHECK(b[n - 1] == x[n - 1] / 4);
    CHECK(LAPACKE_dgels(LAPACK_COL_MAJOR, 'N', n, n, 1, a, n, x, n) == 0);
    CHECK(x[n - 1] > 19.4 && x[n - 1] < 19.6);
}

int main(void) {
    use_this_library();
    void *blas = dlopen(OTHER_BLAS, RTLD_NOW | RTLD_GLOBAL);
    CHECK(blas);
    ddot_function *const other = (ddot_function *)dlsym(blas, "ddot_");
    CHECK(other && other != ddot_);
    const int three = 3, one = 1;
    const double x[3] = {1, 2, 3};
    CHECK(other(&three, x, &one, x, &one) == 14);
    CHECK(ddot_(&three, x, &one, x, &one) == 14);
    use_this_library();
    return 0;
}
