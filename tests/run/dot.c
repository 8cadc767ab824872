/* dot.c - an inner product by the BLAS that the program is linked with. */
#include <stdio.h>

double ddot_(const int *n, const double *x, const int *incx, const double *y, const int *incy);

int main(void) {
    const double x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
    const int n = 3, one = 1;
    printf("%g\n", ddot_(&n, x, &one, y, &one));
    return 0;
}
