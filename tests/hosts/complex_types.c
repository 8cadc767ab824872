/* complex_types.c - a C program's own complex type in the interface, and by value as GNU Fortran
 * returns it. */
#include <complex.h>
#define vox_complex_float float _Complex
#define vox_complex_double double _Complex

#include "check.h"
#include "vox/vox.h"

int main(void) {
    const float _Complex x[2] = {1 + 2 * I, 3 - I}, y[2] = {2 - I, 1 + I};
    const double _Complex u[2] = {1 + 2 * I, 3 - I}, v[2] = {2 - I, 1 + I};
    const vox_int n = 2, one = 1;
    CHECK(cdotu(&n, x, &one, y, &one) == 8 + 5 * I);
    CHECK(cdotc_(&n, x, &one, y, &one) == 2 - I);
    CHECK(ZDOTU(&n, u, &one, v, &one) == 8 + 5 * I);
    CHECK(zdotc(&n, u, &one, v, &one) == 2 - I);
    double _Complex sum = 0;
    cblas_zdotc_sub(n, u, 1, v, 1, &sum);
    CHECK(sum == 2 - I);
    return 0;
}
