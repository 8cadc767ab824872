/* dot.c - an inner product by the BLAS that the program is linked with, or by that of a package that it loads. Its
 * child process ends as it does itself. */
#include <dlfcn.h>
#include <stdio.h>
#include <sys/wait.h>
#include <unistd.h>

typedef double dot(const int *n, const double *x, const int *incx, const double *y,
                   const int *incy);
dot ddot_;

int main(void) {
    const double x[3] = {1, 2, 3}, y[3] = {4, 5, 6};
    const int n = 3, one = 1;
#ifdef PACKAGE
    void *const package = dlopen(PACKAGE, RTLD_NOW);
    dot *inner;
    *(void **)&inner = package ? dlsym(package, "cblas_ddot64_") : 0;
#else
    dot *const inner = ddot_;
#endif
    if (!inner)
        return 1;
    if (fork() == 0)
        return 0;
    wait(0);
    printf("%g\n", inner(&n, x, &one, y, &one));
    return 0;
}
