/* blas.h - the BLAS as Fortran calls it. */
#ifndef VOX_BLAS_H
#define VOX_BLAS_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ?dot: the sum of x_i y_i over n elements.
 * n < 1 gives 0 and reads nothing. incx, incy: in elements, any sign; a negative increment walks the
 * vector from its end, as the reference BLAS has it.
 * Accuracy: |error| <= gamma(n) sum |x_i y_i|, gamma(n) = n u / (1 - n u), u = eps / 2.
 * Source: Lawson, Hanson, Kincaid, Krogh, "Basic Linear Algebra Subprograms for Fortran Usage",
 * ACM TOMS 5(3), 1979. */
VOX_FORTRAN(double, ddot, DDOT,
            (const vox_int *n, const double *x, const vox_int *incx, const double *y,
             const vox_int *incy));

#ifdef __cplusplus
}
#endif

#endif
