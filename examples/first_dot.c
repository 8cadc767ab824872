/* first_dot.c - a first computation: ddot against a value known exactly.
 *
 * x_i = i and y_i = n - i + 1 for i = 1 .. n, so the products are integers and their sum is
 * n (n + 1) (n + 2) / 6, exact in double precision for the n used here. */
#include <stdio.h>
#include <stdlib.h>

#include "vox/vox.h"

int main(void) {
    const vox_int n = 100000;
    double *x = vox_malloc(n * sizeof *x, 64), *y = vox_malloc(n * sizeof *y, 64);
    if (!x || !y) {
        fprintf(stderr, "no memory\n");
        return EXIT_FAILURE;
    }
    for (vox_int i = 0; i < n; ++i) {
        x[i] = i + 1;
        y[i] = n - i;
    }
    const double exact = (double)((int64_t)n * (n + 1) / 2 * (n + 2) / 3);
    const double seconds = -dsecnd();
    const double dot = cblas_ddot(n, x, 1, y, 1);
    const double elapsed = seconds + dsecnd();
    printf("ddot of %d elements: %.0f\nexact value:           %.0f\nrelative difference:   %.1e\n",
           n, dot, exact, (dot - exact) / exact);
    printf("%.1f microseconds on up to %d thread(s)\n", elapsed * 1e6, vox_get_max_threads());
    vox_free(x);
    vox_free(y);
    return dot == exact ? EXIT_SUCCESS : EXIT_FAILURE;
}
