/* own_blas.c - a BLAS that is linked into a program. */
double ddot_(const int *n, const double *x, const int *incx, const double *y, const int *incy) {
    double sum = 0;
    for (int i = 0; i < *n; ++i)
        sum += x[i * *incx] * y[i * *incy];
    return sum;
}

void dscal_(const int *n, const double *alpha, double *x, const int *incx) {
    for (int i = 0; i < *n; ++i)
        x[i * *incx] *= *alpha;
}
