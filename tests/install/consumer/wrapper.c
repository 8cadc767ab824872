/* wrapper.c - a library that is preloaded between a program and its BLAS, as profilers do: its symbols carry no
 * version. It shows in the result. */
#include <dlfcn.h>

double ddot_(const int *n, const double *x, const int *incx, const double *y, const int *incy) {
    double (*next)(const int *, const double *, const int *, const double *, const int *);
    *(void **)&next = dlsym(RTLD_NEXT, "ddot_");
    return next(n, x, incx, y, incy) + 1;
}
