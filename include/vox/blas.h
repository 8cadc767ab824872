/* blas.h - the BLAS as Fortran calls it. */
#ifndef VOX_BLAS_H
#define VOX_BLAS_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

/* Level 1: vectors.
 *
 * A vector is n elements, `inc` elements apart; with a negative increment it is walked from its end, so
 * that x[0] is its last element, and with increment 0 every element is the same one. n < 1: nothing is
 * read or written, sums are 0. No argument is an error. Vectors that are written must not overlap other
 * operands. Contiguous and strided vectors may round differently; the same call on the same thread
 * count always gives the same bits, whatever the alignment.
 *
 * Bounds: u = eps / 2, gamma(n) = n u / (1 - n u).
 * Source, where no other is named: Lawson, Hanson, Kincaid, Krogh, "Basic Linear Algebra Subprograms for
 * Fortran Usage", ACM TOMS 5(3), 1979. */

/* ?dot: the sum of x_i y_i. ?dotu: the same for complex numbers; ?dotc: the sum of conj(x_i) y_i.
 * dsdot: the product of single-precision vectors, in double precision; sdsdot: b + that product, rounded
 * to single precision at the end.
 * Error: gamma(n) sum |x_i y_i|, gamma(n + 2) sqrt(2) sum |x_i y_i| for complex numbers.
 * ddot runs on several threads from n = 4096 on, in parts of at least 2048 elements.
 * Complex results are returned by value, as GNU Fortran does it. */
VOX_FORTRAN(float, sdot, SDOT,
            (const vox_int *n, const float *x, const vox_int *incx, const float *y,
             const vox_int *incy));
VOX_FORTRAN(double, ddot, DDOT,
            (const vox_int *n, const double *x, const vox_int *incx, const double *y,
             const vox_int *incy));
VOX_FORTRAN(double, dsdot, DSDOT,
            (const vox_int *n, const float *x, const vox_int *incx, const float *y,
             const vox_int *incy));
VOX_FORTRAN(float, sdsdot, SDSDOT,
            (const vox_int *n, const float *b, const float *x, const vox_int *incx, const float *y,
             const vox_int *incy));
VOX_FORTRAN(vox_complex_float, cdotu, CDOTU,
            (const vox_int *n, const vox_complex_float *x, const vox_int *incx,
             const vox_complex_float *y, const vox_int *incy));
VOX_FORTRAN(vox_complex_double, zdotu, ZDOTU,
            (const vox_int *n, const vox_complex_double *x, const vox_int *incx,
             const vox_complex_double *y, const vox_int *incy));
VOX_FORTRAN(vox_complex_float, cdotc, CDOTC,
            (const vox_int *n, const vox_complex_float *x, const vox_int *incx,
             const vox_complex_float *y, const vox_int *incy));
VOX_FORTRAN(vox_complex_double, zdotc, ZDOTC,
            (const vox_int *n, const vox_complex_double *x, const vox_int *incx,
             const vox_complex_double *y, const vox_int *incy));

/* ?asum: the sum of |x_i|, of |re| + |im| for complex numbers. incx < 1 gives 0.
 * Error: gamma(n) times the result (2 n for n in complex numbers). */
VOX_FORTRAN(float, sasum, SASUM, (const vox_int *n, const float *x, const vox_int *incx));
VOX_FORTRAN(double, dasum, DASUM, (const vox_int *n, const double *x, const vox_int *incx));
VOX_FORTRAN(float, scasum, SCASUM,
            (const vox_int *n, const vox_complex_float *x, const vox_int *incx));
VOX_FORTRAN(double, dzasum, DZASUM,
            (const vox_int *n, const vox_complex_double *x, const vox_int *incx));

/* ?nrm2: the Euclidean norm, sqrt(sum |x_i|^2), without overflow or underflow on the way. A NaN gives NaN,
 * else an infinity gives infinity. A negative increment gives the norm of the same elements.
 * Error: gamma(n / 2 + 2) times the result (n + 2 in complex numbers); single precision is computed in
 * double. */
VOX_FORTRAN(float, snrm2, SNRM2, (const vox_int *n, const float *x, const vox_int *incx));
VOX_FORTRAN(double, dnrm2, DNRM2, (const vox_int *n, const double *x, const vox_int *incx));
VOX_FORTRAN(float, scnrm2, SCNRM2,
            (const vox_int *n, const vox_complex_float *x, const vox_int *incx));
VOX_FORTRAN(double, dznrm2, DZNRM2,
            (const vox_int *n, const vox_complex_double *x, const vox_int *incx));

/* i?amax, i?amin: the place, counted from 1, of the first element whose magnitude, |x_i| or |re| + |im|, is
 * largest or smallest. n < 1 or incx < 1 gives 0. A NaN is passed over, except that one in the first place
 * is the answer: nothing compares as larger or smaller than it. */
VOX_FORTRAN(vox_int, isamax, ISAMAX, (const vox_int *n, const float *x, const vox_int *incx));
VOX_FORTRAN(vox_int, idamax, IDAMAX, (const vox_int *n, const double *x, const vox_int *incx));
VOX_FORTRAN(vox_int, icamax, ICAMAX,
            (const vox_int *n, const vox_complex_float *x, const vox_int *incx));
VOX_FORTRAN(vox_int, izamax, IZAMAX,
            (const vox_int *n, const vox_complex_double *x, const vox_int *incx));
VOX_FORTRAN(vox_int, isamin, ISAMIN, (const vox_int *n, const float *x, const vox_int *incx));
VOX_FORTRAN(vox_int, idamin, IDAMIN, (const vox_int *n, const double *x, const vox_int *incx));
VOX_FORTRAN(vox_int, icamin, ICAMIN,
            (const vox_int *n, const vox_complex_float *x, const vox_int *incx));
VOX_FORTRAN(vox_int, izamin, IZAMIN,
            (const vox_int *n, const vox_complex_double *x, const vox_int *incx));

/* ?cabs1: |re z| + |im z|. */
VOX_FORTRAN(float, scabs1, SCABS1, (const vox_complex_float *z));
VOX_FORTRAN(double, dcabs1, DCABS1, (const vox_complex_double *z));

/* ?copy: y := x. ?swap: x and y exchanged. Bits are kept as they are. */
VOX_FORTRAN(void, scopy, SCOPY,
            (const vox_int *n, const float *x, const vox_int *incx, float *y, const vox_int *incy));
VOX_FORTRAN(void, dcopy, DCOPY,
            (const vox_int *n, const double *x, const vox_int *incx, double *y,
             const vox_int *incy));
VOX_FORTRAN(void, ccopy, CCOPY,
            (const vox_int *n, const vox_complex_float *x, const vox_int *incx,
             vox_complex_float *y, const vox_int *incy));
VOX_FORTRAN(void, zcopy, ZCOPY,
            (const vox_int *n, const vox_complex_double *x, const vox_int *incx,
             vox_complex_double *y, const vox_int *incy));
VOX_FORTRAN(void, sswap, SSWAP,
            (const vox_int *n, float *x, const vox_int *incx, float *y, const vox_int *incy));
VOX_FORTRAN(void, dswap, DSWAP,
            (const vox_int *n, double *x, const vox_int *incx, double *y, const vox_int *incy));
VOX_FORTRAN(void, cswap, CSWAP,
            (const vox_int *n, vox_complex_float *x, const vox_int *incx, vox_complex_float *y,
             const vox_int *incy));
VOX_FORTRAN(void, zswap, ZSWAP,
            (const vox_int *n, vox_complex_double *x, const vox_int *incx, vox_complex_double *y,
             const vox_int *incy));

/* ?scal: x := alpha x. incx < 1 or alpha = 1: nothing is done. Zero is a factor like any other: NaN and
 * infinities in x become NaN. Error: u |alpha x_i|, gamma(2) sqrt(2) |alpha x_i| for complex numbers. */
VOX_FORTRAN(void, sscal, SSCAL,
            (const vox_int *n, const float *alpha, float *x, const vox_int *incx));
VOX_FORTRAN(void, dscal, DSCAL,
            (const vox_int *n, const double *alpha, double *x, const vox_int *incx));
VOX_FORTRAN(void, cscal, CSCAL,
            (const vox_int *n, const vox_complex_float *alpha, vox_complex_float *x,
             const vox_int *incx));
VOX_FORTRAN(void, zscal, ZSCAL,
            (const vox_int *n, const vox_complex_double *alpha, vox_complex_double *x,
             const vox_int *incx));
VOX_FORTRAN(void, csscal, CSSCAL,
            (const vox_int *n, const float *alpha, vox_complex_float *x, const vox_int *incx));
VOX_FORTRAN(void, zdscal, ZDSCAL,
            (const vox_int *n, const double *alpha, vox_complex_double *x, const vox_int *incx));

/* ?axpy: y := alpha x + y. alpha = 0: nothing is read or written.
 * Error: gamma(2) (|alpha x_i| + |y_i|), gamma(3) sqrt(2) (...) for complex numbers. */
VOX_FORTRAN(void, saxpy, SAXPY,
            (const vox_int *n, const float *alpha, const float *x, const vox_int *incx, float *y,
             const vox_int *incy));
VOX_FORTRAN(void, daxpy, DAXPY,
            (const vox_int *n, const double *alpha, const double *x, const vox_int *incx, double *y,
             const vox_int *incy));
VOX_FORTRAN(void, caxpy, CAXPY,
            (const vox_int *n, const vox_complex_float *alpha, const vox_complex_float *x,
             const vox_int *incx, vox_complex_float *y, const vox_int *incy));
VOX_FORTRAN(void, zaxpy, ZAXPY,
            (const vox_int *n, const vox_complex_double *alpha, const vox_complex_double *x,
             const vox_int *incx, vox_complex_double *y, const vox_int *incy));

/* ?axpby: y := alpha x + beta y. alpha = 0: x is not read. beta = 0: y need not be set.
 * Error: gamma(2) (|alpha x_i| + |beta y_i|), gamma(3) sqrt(2) (...) for complex numbers.
 * Source: Blackford et al., "An Updated Set of Basic Linear Algebra Subprograms", ACM TOMS 28(2), 2002. */
VOX_FORTRAN(void, saxpby, SAXPBY,
            (const vox_int *n, const float *alpha, const float *x, const vox_int *incx,
             const float *beta, float *y, const vox_int *incy));
VOX_FORTRAN(void, daxpby, DAXPBY,
            (const vox_int *n, const double *alpha, const double *x, const vox_int *incx,
             const double *beta, double *y, const vox_int *incy));
VOX_FORTRAN(void, caxpby, CAXPBY,
            (const vox_int *n, const vox_complex_float *alpha, const vox_complex_float *x,
             const vox_int *incx, const vox_complex_float *beta, vox_complex_float *y,
             const vox_int *incy));
VOX_FORTRAN(void, zaxpby, ZAXPBY,
            (const vox_int *n, const vox_complex_double *alpha, const vox_complex_double *x,
             const vox_int *incx, const vox_complex_double *beta, vox_complex_double *y,
             const vox_int *incy));

/* ?rot: x_i := c x_i + s y_i, y_i := c y_i - conj(s) x_i. c is real; s is real in srot, drot, csrot, zdrot and
 * complex in crot, zrot. Error: gamma(2) (|c x_i| + |s y_i|) and alike, gamma(3) sqrt(2) (...) for a complex s. */
VOX_FORTRAN(void, srot, SROT,
            (const vox_int *n, float *x, const vox_int *incx, float *y, const vox_int *incy,
             const float *c, const float *s));
VOX_FORTRAN(void, drot, DROT,
            (const vox_int *n, double *x, const vox_int *incx, double *y, const vox_int *incy,
             const double *c, const double *s));
VOX_FORTRAN(void, csrot, CSROT,
            (const vox_int *n, vox_complex_float *x, const vox_int *incx, vox_complex_float *y,
             const vox_int *incy, const float *c, const float *s));
VOX_FORTRAN(void, zdrot, ZDROT,
            (const vox_int *n, vox_complex_double *x, const vox_int *incx, vox_complex_double *y,
             const vox_int *incy, const double *c, const double *s));
VOX_FORTRAN(void, crot, CROT,
            (const vox_int *n, vox_complex_float *x, const vox_int *incx, vox_complex_float *y,
             const vox_int *incy, const float *c, const vox_complex_float *s));
VOX_FORTRAN(void, zrot, ZROT,
            (const vox_int *n, vox_complex_double *x, const vox_int *incx, vox_complex_double *y,
             const vox_int *incy, const double *c, const vox_complex_double *s));

/* ?rotg: the rotation with c a + s b = r, -conj(s) a + c b = 0. a is replaced by r; in real precisions b by z,
 * from which c and s can be computed: z = s where |a| > |b|, else 1 / c, or 1 where c = 0.
 * A zero b gives c = 1, s = 0. No intermediate result overflows or underflows where r does not.
 * Source: Anderson, "Algorithm 978: Safe Scaling in the Level 1 BLAS", ACM TOMS 44(1), 2017. */
VOX_FORTRAN(void, srotg, SROTG, (float *a, float *b, float *c, float *s));
VOX_FORTRAN(void, drotg, DROTG, (double *a, double *b, double *c, double *s));
VOX_FORTRAN(void, crotg, CROTG,
            (vox_complex_float * a, const vox_complex_float *b, float *c, vox_complex_float *s));
VOX_FORTRAN(void, zrotg, ZROTG,
            (vox_complex_double * a, const vox_complex_double *b, double *c,
             vox_complex_double *s));

/* ?rotm: x_i := h11 x_i + h12 y_i, y_i := h21 x_i + h22 y_i. param: a flag, then h11, h21, h12, h22.
 * Flag -1: all of these; 0: h11 = h22 = 1; 1: h12 = 1, h21 = -1; -2: the identity, nothing is done. What the
 * flag says is not read from param.
 * ?rotmg: the H for which H (sqrt(d1) x1, sqrt(d2) y1) scaled by the new d1, d2 has a zero second component;
 * d1, d2 and x1 are replaced, and param set (only the entries that the flag does not say). d1 < 0 gives H = 0
 * and zeros. d1, d2 are kept between 2^-24 and 2^24 unless they are zero or not finite. */
VOX_FORTRAN(void, srotm, SROTM,
            (const vox_int *n, float *x, const vox_int *incx, float *y, const vox_int *incy,
             const float *param));
VOX_FORTRAN(void, drotm, DROTM,
            (const vox_int *n, double *x, const vox_int *incx, double *y, const vox_int *incy,
             const double *param));
VOX_FORTRAN(void, srotmg, SROTMG, (float *d1, float *d2, float *x1, const float *y1, float *param));
VOX_FORTRAN(void, drotmg, DROTMG,
            (double *d1, double *d2, double *x1, const double *y1, double *param));

/* Level 1 with one vector compressed: x has nz elements, the i-th of which belongs to place indx[i] of y,
 * counted from 1. nz < 1: nothing is done, sums are 0. Places that are written differ from each other.
 * Source: Dodson, Grimes, Lewis, "Sparse Extensions to the FORTRAN Basic Linear Algebra Subprograms", ACM
 * TOMS 17(2), 1991. Errors as for the dense routines with n = nz. */

/* ?axpyi: y[indx] += alpha x; alpha = 0: nothing is done. */
VOX_FORTRAN(void, saxpyi, SAXPYI,
            (const vox_int *nz, const float *alpha, const float *x, const vox_int *indx, float *y));
VOX_FORTRAN(void, daxpyi, DAXPYI,
            (const vox_int *nz, const double *alpha, const double *x, const vox_int *indx,
             double *y));
VOX_FORTRAN(void, caxpyi, CAXPYI,
            (const vox_int *nz, const vox_complex_float *alpha, const vox_complex_float *x,
             const vox_int *indx, vox_complex_float *y));
VOX_FORTRAN(void, zaxpyi, ZAXPYI,
            (const vox_int *nz, const vox_complex_double *alpha, const vox_complex_double *x,
             const vox_int *indx, vox_complex_double *y));

/* ?doti, ?dotui: the sum of x_i y[indx_i]; ?dotci: of conj(x_i) y[indx_i]. */
VOX_FORTRAN(float, sdoti, SDOTI,
            (const vox_int *nz, const float *x, const vox_int *indx, const float *y));
VOX_FORTRAN(double, ddoti, DDOTI,
            (const vox_int *nz, const double *x, const vox_int *indx, const double *y));
VOX_FORTRAN(vox_complex_float, cdotui, CDOTUI,
            (const vox_int *nz, const vox_complex_float *x, const vox_int *indx,
             const vox_complex_float *y));
VOX_FORTRAN(vox_complex_double, zdotui, ZDOTUI,
            (const vox_int *nz, const vox_complex_double *x, const vox_int *indx,
             const vox_complex_double *y));
VOX_FORTRAN(vox_complex_float, cdotci, CDOTCI,
            (const vox_int *nz, const vox_complex_float *x, const vox_int *indx,
             const vox_complex_float *y));
VOX_FORTRAN(vox_complex_double, zdotci, ZDOTCI,
            (const vox_int *nz, const vox_complex_double *x, const vox_int *indx,
             const vox_complex_double *y));

/* ?gthr: x := y[indx]; ?gthrz: the same, and zeros into those places of y. */
VOX_FORTRAN(void, sgthr, SGTHR, (const vox_int *nz, const float *y, float *x, const vox_int *indx));
VOX_FORTRAN(void, dgthr, DGTHR,
            (const vox_int *nz, const double *y, double *x, const vox_int *indx));
VOX_FORTRAN(void, cgthr, CGTHR,
            (const vox_int *nz, const vox_complex_float *y, vox_complex_float *x,
             const vox_int *indx));
VOX_FORTRAN(void, zgthr, ZGTHR,
            (const vox_int *nz, const vox_complex_double *y, vox_complex_double *x,
             const vox_int *indx));
VOX_FORTRAN(void, sgthrz, SGTHRZ, (const vox_int *nz, float *y, float *x, const vox_int *indx));
VOX_FORTRAN(void, dgthrz, DGTHRZ, (const vox_int *nz, double *y, double *x, const vox_int *indx));
VOX_FORTRAN(void, cgthrz, CGTHRZ,
            (const vox_int *nz, vox_complex_float *y, vox_complex_float *x, const vox_int *indx));
VOX_FORTRAN(void, zgthrz, ZGTHRZ,
            (const vox_int *nz, vox_complex_double *y, vox_complex_double *x, const vox_int *indx));

/* ?roti: x_i := c x_i + s y[indx_i], y[indx_i] := c y[indx_i] - s x_i. */
VOX_FORTRAN(void, sroti, SROTI,
            (const vox_int *nz, float *x, const vox_int *indx, float *y, const float *c,
             const float *s));
VOX_FORTRAN(void, droti, DROTI,
            (const vox_int *nz, double *x, const vox_int *indx, double *y, const double *c,
             const double *s));

/* ?sctr: y[indx] := x. */
VOX_FORTRAN(void, ssctr, SSCTR, (const vox_int *nz, const float *x, const vox_int *indx, float *y));
VOX_FORTRAN(void, dsctr, DSCTR,
            (const vox_int *nz, const double *x, const vox_int *indx, double *y));
VOX_FORTRAN(void, csctr, CSCTR,
            (const vox_int *nz, const vox_complex_float *x, const vox_int *indx,
             vox_complex_float *y));
VOX_FORTRAN(void, zsctr, ZSCTR,
            (const vox_int *nz, const vox_complex_double *x, const vox_int *indx,
             vox_complex_double *y));

/*
 * Level 2: a matrix and a vector or two.
 *
 * Source: Dongarra, Du Croz, Hammarling, Hanson, "An Extended Set of FORTRAN Basic Linear Algebra
 * Subprograms", ACM TOMS 14(1), 1988. What follows holds for every routine of the level.
 *
 * Storage, by columns; i and j count from 0:
 *   full            A(i,j) at a[i + j*lda], lda >= max(1, rows)
 *   band            A(i,j) at a[ku + i - j + j*lda] for -ku <= i - j <= kl, lda >= kl + ku + 1
 *   full triangle   as full; only i <= j ('U') or i >= j ('L') is read or written
 *   band triangle   'U': A(i,j) at a[k + i - j + j*lda] for 0 <= j - i <= k,
 *                   'L': A(i,j) at a[i - j + j*lda] for 0 <= i - j <= k; lda >= k + 1
 *   packed triangle 'U': A(i,j) at ap[i + j*(j + 1)/2] for i <= j,
 *                   'L': A(i,j) at ap[i + j*(2*n - j - 1)/2] for i >= j
 * Nothing else of the arrays is touched. Of a symmetric (A = A^T) or Hermitian (A = A^H) matrix only
 * the triangle that uplo names is stored. The imaginary parts of a Hermitian matrix's diagonal are
 * taken as zero, whatever the array holds, and updates set them to zero.
 *
 * Vectors: element i of n is at x[i*incx] for incx > 0, at x[(i - n + 1)*incx] for incx < 0.
 * Lengths and increments count elements.
 *
 * Letters, of either case:
 *   trans  'N' op(A) = A, 'T' op(A) = A^T, 'C' op(A) = A^H (A^T for real types)
 *   uplo   'U' upper, 'L' lower triangle
 *   diag   'U' the diagonal is all ones and not read, 'N' it is read
 *
 * alpha = 0: A and x are not read. beta = 0: y is overwritten, not multiplied, so it need not be set
 * and a NaN in it vanishes. m = 0 or n = 0: nothing is read or written. A zero in a vector leaves its
 * column of A out, so that no NaN or infinity comes from there: in updates (in ?syr2, ?her2 and the
 * packed ones where x and y both have it), and in triangular routines where op(A) = A. All others
 * propagate as arithmetic has it. Vectors and matrices that overlap give undefined results.
 *
 * Errors: a letter other than those, a negative size, a leading dimension below the one given above
 * or an increment of 0 is reported through xerbla with the parameter's number, the first bad one
 * only; nothing else is done.
 *
 * Accuracy, element by element, k being the number of terms summed (the columns of op(A); 1 or 2
 * for updates), and |z| = |re z| + |im z|:
 *   products  |error| <= gamma(k + 2) (|alpha| |op(A)| |x| + |beta| |y|)
 *   updates   |error| <= gamma(k + 2) (|A| + |alpha| |x| |y^T| + ...)
 *   solutions |b - op(A) x| <= gamma(k + 2) |op(A)| |x|, with no test for singularity
 * with gamma(2*k + 4), for solutions gamma(2*k + 10), in the complex types; gamma as for ?dot.
 *
 * Threads: any number of callers; large calls run on the BLAS domain's threads.
 */

/* ?gemv: y := alpha op(A) x + beta y. A: m by n, full. x has as many elements as op(A) has columns,
 * y as many as it has rows. */
#define VOX_GEMV(T)                                                                                \
    (const char *trans, const vox_int *m, const vox_int *n, const T *alpha, const T *a,            \
     const vox_int *lda, const T *x, const vox_int *incx, const T *beta, T *y,                     \
     const vox_int *incy)
VOX_FORTRAN(void, sgemv, SGEMV, VOX_GEMV(float));
VOX_FORTRAN(void, dgemv, DGEMV, VOX_GEMV(double));
VOX_FORTRAN(void, cgemv, CGEMV, VOX_GEMV(vox_complex_float));
VOX_FORTRAN(void, zgemv, ZGEMV, VOX_GEMV(vox_complex_double));
#undef VOX_GEMV

/* ?gbmv: the same for a band matrix, kl diagonals below and ku above the main one. */
#define VOX_GBMV(T)                                                                                \
    (const char *trans, const vox_int *m, const vox_int *n, const vox_int *kl, const vox_int *ku,  \
     const T *alpha, const T *a, const vox_int *lda, const T *x, const vox_int *incx,              \
     const T *beta, T *y, const vox_int *incy)
VOX_FORTRAN(void, sgbmv, SGBMV, VOX_GBMV(float));
VOX_FORTRAN(void, dgbmv, DGBMV, VOX_GBMV(double));
VOX_FORTRAN(void, cgbmv, CGBMV, VOX_GBMV(vox_complex_float));
VOX_FORTRAN(void, zgbmv, ZGBMV, VOX_GBMV(vox_complex_double));
#undef VOX_GBMV

/* ?symv, ?hemv: y := alpha A x + beta y. A: n by n, symmetric or Hermitian, full triangle. */
#define VOX_SYMV(T)                                                                                \
    (const char *uplo, const vox_int *n, const T *alpha, const T *a, const vox_int *lda,           \
     const T *x, const vox_int *incx, const T *beta, T *y, const vox_int *incy)
VOX_FORTRAN(void, ssymv, SSYMV, VOX_SYMV(float));
VOX_FORTRAN(void, dsymv, DSYMV, VOX_SYMV(double));
VOX_FORTRAN(void, csymv, CSYMV, VOX_SYMV(vox_complex_float));
VOX_FORTRAN(void, zsymv, ZSYMV, VOX_SYMV(vox_complex_double));
VOX_FORTRAN(void, chemv, CHEMV, VOX_SYMV(vox_complex_float));
VOX_FORTRAN(void, zhemv, ZHEMV, VOX_SYMV(vox_complex_double));
#undef VOX_SYMV

/* ?sbmv, ?hbmv: the same for a band triangle with k diagonals beside the main one. */
#define VOX_SBMV(T)                                                                                \
    (const char *uplo, const vox_int *n, const vox_int *k, const T *alpha, const T *a,             \
     const vox_int *lda, const T *x, const vox_int *incx, const T *beta, T *y,                     \
     const vox_int *incy)
VOX_FORTRAN(void, ssbmv, SSBMV, VOX_SBMV(float));
VOX_FORTRAN(void, dsbmv, DSBMV, VOX_SBMV(double));
VOX_FORTRAN(void, chbmv, CHBMV, VOX_SBMV(vox_complex_float));
VOX_FORTRAN(void, zhbmv, ZHBMV, VOX_SBMV(vox_complex_double));
#undef VOX_SBMV

/* ?spmv, ?hpmv: the same for a packed triangle. */
#define VOX_SPMV(T)                                                                                \
    (const char *uplo, const vox_int *n, const T *alpha, const T *ap, const T *x,                  \
     const vox_int *incx, const T *beta, T *y, const vox_int *incy)
VOX_FORTRAN(void, sspmv, SSPMV, VOX_SPMV(float));
VOX_FORTRAN(void, dspmv, DSPMV, VOX_SPMV(double));
VOX_FORTRAN(void, cspmv, CSPMV, VOX_SPMV(vox_complex_float));
VOX_FORTRAN(void, zspmv, ZSPMV, VOX_SPMV(vox_complex_double));
VOX_FORTRAN(void, chpmv, CHPMV, VOX_SPMV(vox_complex_float));
VOX_FORTRAN(void, zhpmv, ZHPMV, VOX_SPMV(vox_complex_double));
#undef VOX_SPMV

/* ?trmv: x := op(A) x. ?trsv: x := op(A)^-1 x. A: n by n, triangular, full triangle. */
#define VOX_TRMV(T)                                                                                \
    (const char *uplo, const char *trans, const char *diag, const vox_int *n, const T *a,          \
     const vox_int *lda, T *x, const vox_int *incx)
VOX_FORTRAN(void, strmv, STRMV, VOX_TRMV(float));
VOX_FORTRAN(void, dtrmv, DTRMV, VOX_TRMV(double));
VOX_FORTRAN(void, ctrmv, CTRMV, VOX_TRMV(vox_complex_float));
VOX_FORTRAN(void, ztrmv, ZTRMV, VOX_TRMV(vox_complex_double));
VOX_FORTRAN(void, strsv, STRSV, VOX_TRMV(float));
VOX_FORTRAN(void, dtrsv, DTRSV, VOX_TRMV(double));
VOX_FORTRAN(void, ctrsv, CTRSV, VOX_TRMV(vox_complex_float));
VOX_FORTRAN(void, ztrsv, ZTRSV, VOX_TRMV(vox_complex_double));
#undef VOX_TRMV

/* ?tbmv, ?tbsv: the same for a band triangle with k diagonals beside the main one. */
#define VOX_TBMV(T)                                                                                \
    (const char *uplo, const char *trans, const char *diag, const vox_int *n, const vox_int *k,    \
     const T *a, const vox_int *lda, T *x, const vox_int *incx)
VOX_FORTRAN(void, stbmv, STBMV, VOX_TBMV(float));
VOX_FORTRAN(void, dtbmv, DTBMV, VOX_TBMV(double));
VOX_FORTRAN(void, ctbmv, CTBMV, VOX_TBMV(vox_complex_float));
VOX_FORTRAN(void, ztbmv, ZTBMV, VOX_TBMV(vox_complex_double));
VOX_FORTRAN(void, stbsv, STBSV, VOX_TBMV(float));
VOX_FORTRAN(void, dtbsv, DTBSV, VOX_TBMV(double));
VOX_FORTRAN(void, ctbsv, CTBSV, VOX_TBMV(vox_complex_float));
VOX_FORTRAN(void, ztbsv, ZTBSV, VOX_TBMV(vox_complex_double));
#undef VOX_TBMV

/* ?tpmv, ?tpsv: the same for a packed triangle. */
#define VOX_TPMV(T)                                                                                \
    (const char *uplo, const char *trans, const char *diag, const vox_int *n, const T *ap, T *x,   \
     const vox_int *incx)
VOX_FORTRAN(void, stpmv, STPMV, VOX_TPMV(float));
VOX_FORTRAN(void, dtpmv, DTPMV, VOX_TPMV(double));
VOX_FORTRAN(void, ctpmv, CTPMV, VOX_TPMV(vox_complex_float));
VOX_FORTRAN(void, ztpmv, ZTPMV, VOX_TPMV(vox_complex_double));
VOX_FORTRAN(void, stpsv, STPSV, VOX_TPMV(float));
VOX_FORTRAN(void, dtpsv, DTPSV, VOX_TPMV(double));
VOX_FORTRAN(void, ctpsv, CTPSV, VOX_TPMV(vox_complex_float));
VOX_FORTRAN(void, ztpsv, ZTPSV, VOX_TPMV(vox_complex_double));
#undef VOX_TPMV

/* ?ger, ?geru: A := alpha x y^T + A. ?gerc: A := alpha x y^H + A.
 * A: m by n, full. x: m elements, y: n elements. */
#define VOX_GER(T)                                                                                 \
    (const vox_int *m, const vox_int *n, const T *alpha, const T *x, const vox_int *incx,          \
     const T *y, const vox_int *incy, T *a, const vox_int *lda)
VOX_FORTRAN(void, sger, SGER, VOX_GER(float));
VOX_FORTRAN(void, dger, DGER, VOX_GER(double));
VOX_FORTRAN(void, cgeru, CGERU, VOX_GER(vox_complex_float));
VOX_FORTRAN(void, zgeru, ZGERU, VOX_GER(vox_complex_double));
VOX_FORTRAN(void, cgerc, CGERC, VOX_GER(vox_complex_float));
VOX_FORTRAN(void, zgerc, ZGERC, VOX_GER(vox_complex_double));
#undef VOX_GER

/* ?syr: A := alpha x x^T + A. ?her: A := alpha x x^H + A, alpha real. A: n by n, symmetric or
 * Hermitian, full triangle. */
#define VOX_SYR(S, T)                                                                              \
    (const char *uplo, const vox_int *n, const S *alpha, const T *x, const vox_int *incx, T *a,    \
     const vox_int *lda)
VOX_FORTRAN(void, ssyr, SSYR, VOX_SYR(float, float));
VOX_FORTRAN(void, dsyr, DSYR, VOX_SYR(double, double));
VOX_FORTRAN(void, csyr, CSYR, VOX_SYR(vox_complex_float, vox_complex_float));
VOX_FORTRAN(void, zsyr, ZSYR, VOX_SYR(vox_complex_double, vox_complex_double));
VOX_FORTRAN(void, cher, CHER, VOX_SYR(float, vox_complex_float));
VOX_FORTRAN(void, zher, ZHER, VOX_SYR(double, vox_complex_double));
#undef VOX_SYR

/* ?spr, ?hpr: the same for a packed triangle. */
#define VOX_SPR(S, T)                                                                              \
    (const char *uplo, const vox_int *n, const S *alpha, const T *x, const vox_int *incx, T *ap)
VOX_FORTRAN(void, sspr, SSPR, VOX_SPR(float, float));
VOX_FORTRAN(void, dspr, DSPR, VOX_SPR(double, double));
VOX_FORTRAN(void, cspr, CSPR, VOX_SPR(vox_complex_float, vox_complex_float));
VOX_FORTRAN(void, zspr, ZSPR, VOX_SPR(vox_complex_double, vox_complex_double));
VOX_FORTRAN(void, chpr, CHPR, VOX_SPR(float, vox_complex_float));
VOX_FORTRAN(void, zhpr, ZHPR, VOX_SPR(double, vox_complex_double));
#undef VOX_SPR

/* ?syr2: A := alpha x y^T + alpha y x^T + A. ?her2: A := alpha x y^H + conj(alpha) y x^H + A.
 * A: n by n, symmetric or Hermitian, full triangle. */
#define VOX_SYR2(T)                                                                                \
    (const char *uplo, const vox_int *n, const T *alpha, const T *x, const vox_int *incx,          \
     const T *y, const vox_int *incy, T *a, const vox_int *lda)
VOX_FORTRAN(void, ssyr2, SSYR2, VOX_SYR2(float));
VOX_FORTRAN(void, dsyr2, DSYR2, VOX_SYR2(double));
VOX_FORTRAN(void, cher2, CHER2, VOX_SYR2(vox_complex_float));
VOX_FORTRAN(void, zher2, ZHER2, VOX_SYR2(vox_complex_double));
#undef VOX_SYR2

/* ?spr2, ?hpr2: the same for a packed triangle. */
#define VOX_SPR2(T)                                                                                \
    (const char *uplo, const vox_int *n, const T *alpha, const T *x, const vox_int *incx,          \
     const T *y, const vox_int *incy, T *ap)
VOX_FORTRAN(void, sspr2, SSPR2, VOX_SPR2(float));
VOX_FORTRAN(void, dspr2, DSPR2, VOX_SPR2(double));
VOX_FORTRAN(void, chpr2, CHPR2, VOX_SPR2(vox_complex_float));
VOX_FORTRAN(void, zhpr2, ZHPR2, VOX_SPR2(vox_complex_double));
#undef VOX_SPR2

/*
 * Level 3: products of matrices.
 *
 * Source: Dongarra, Du Croz, Duff, Hammarling, "A Set of Level 3 Basic Linear Algebra Subprograms", ACM
 * TOMS 16(1), 1990; gemmt, gemm3m and what has gemm_ in its name are extensions. Storage (full, full
 * triangle) and letters as in level 2. What follows holds for every routine of the level.
 *
 *   side  'L' the matrix with a structure is the left factor, 'R' the right one
 *
 * A leading dimension is at least max(1, rows) of the matrix as it is stored, before its operation.
 * Nothing else of the arrays is touched; of a symmetric, Hermitian or triangular matrix only the
 * triangle that uplo names. The imaginary parts of a Hermitian matrix's diagonal are taken as zero,
 * whatever the array holds; routines that compute one set them to zero.
 *
 * alpha = 0, or k = 0: no factor is read. beta = 0: C is overwritten, not multiplied, so it need not
 * be set and a NaN in it vanishes. alpha = 0 or k = 0, and beta = 1: C is left as it is. A result
 * without elements: nothing is read or written. Otherwise NaNs and infinities propagate as arithmetic
 * has it. A result that overlaps a factor is undefined.
 *
 * Errors: a letter that the routine does not take, a negative size or a leading dimension below its
 * bound is reported through xerbla with the parameter's number, the first bad one only; nothing else
 * is done.
 *
 * Accuracy, element by element, k being the number of terms summed (2*k for ?syr2k, ?her2k) and |z| =
 * |re z| + |im z|:
 *   products   |error| <= gamma(k + 2) (|alpha| |op(A)| |op(B)| + |beta| |C|)
 *   solutions  |alpha B - op(A) X| <= gamma(k + 4) (|alpha| |B| + |op(A)| |X|), with no test for
 *              singularity
 * with gamma(2*k + 4), for solutions gamma(2*k + 10), in the complex types; gamma as for ?dot.
 *
 * Threads: any number of callers; large calls run on the BLAS domain's threads.
 */

/* ?gemm: C := alpha op(A) op(B) + beta C. op(A): m by k, op(B): k by n, C: m by n, full.
 * ?gemm3m: the same, named after the method that multiplies complex numbers by three real products. That
 * one has a weaker bound for the parts of the result; here the result is that of ?gemm. */
#define VOX_GEMM(T)                                                                                \
    (const char *transa, const char *transb, const vox_int *m, const vox_int *n, const vox_int *k, \
     const T *alpha, const T *a, const vox_int *lda, const T *b, const vox_int *ldb,               \
     const T *beta, T *c, const vox_int *ldc)
VOX_FORTRAN(void, sgemm, SGEMM, VOX_GEMM(float));
VOX_FORTRAN(void, dgemm, DGEMM, VOX_GEMM(double));
VOX_FORTRAN(void, cgemm, CGEMM, VOX_GEMM(vox_complex_float));
VOX_FORTRAN(void, zgemm, ZGEMM, VOX_GEMM(vox_complex_double));
VOX_FORTRAN(void, cgemm3m, CGEMM3M, VOX_GEMM(vox_complex_float));
VOX_FORTRAN(void, zgemm3m, ZGEMM3M, VOX_GEMM(vox_complex_double));
#undef VOX_GEMM

/* ?gemmt: the same for C n by n, of which only the triangle that uplo names is computed: for products
 * that are known to be symmetric. op(A): n by k, op(B): k by n. */
#define VOX_GEMMT(T)                                                                               \
    (const char *uplo, const char *transa, const char *transb, const vox_int *n, const vox_int *k, \
     const T *alpha, const T *a, const vox_int *lda, const T *b, const vox_int *ldb,               \
     const T *beta, T *c, const vox_int *ldc)
VOX_FORTRAN(void, sgemmt, SGEMMT, VOX_GEMMT(float));
VOX_FORTRAN(void, dgemmt, DGEMMT, VOX_GEMMT(double));
VOX_FORTRAN(void, cgemmt, CGEMMT, VOX_GEMMT(vox_complex_float));
VOX_FORTRAN(void, zgemmt, ZGEMMT, VOX_GEMMT(vox_complex_double));
#undef VOX_GEMMT

/* ?gemm_batch: many products of ?gemm, in groups of the same operations, sizes, leading dimensions, alpha
 * and beta: entry g of each of these arrays is that of group g, of group_count. group_size[g] products
 * make a group. a, b and c hold the addresses of all matrices, group after group. No C may overlap
 * another: products are computed in any order, and on several threads, each on one, when the batch is
 * large enough.
 * Errors: in the order of the groups, with the numbers of ?gemm, 14 for group_count < 0 and 15 for an
 * entry of group_size below 0; no product is computed.
 * ?gemm3m_batch: the same. */
#define VOX_GEMM_BATCH(T)                                                                          \
    (const char *transa, const char *transb, const vox_int *m, const vox_int *n, const vox_int *k, \
     const T *alpha, const T *const *a, const vox_int *lda, const T *const *b, const vox_int *ldb, \
     const T *beta, T *const *c, const vox_int *ldc, const vox_int *group_count,                   \
     const vox_int *group_size)
VOX_FORTRAN(void, sgemm_batch, SGEMM_BATCH, VOX_GEMM_BATCH(float));
VOX_FORTRAN(void, dgemm_batch, DGEMM_BATCH, VOX_GEMM_BATCH(double));
VOX_FORTRAN(void, cgemm_batch, CGEMM_BATCH, VOX_GEMM_BATCH(vox_complex_float));
VOX_FORTRAN(void, zgemm_batch, ZGEMM_BATCH, VOX_GEMM_BATCH(vox_complex_double));
VOX_FORTRAN(void, cgemm3m_batch, CGEMM3M_BATCH, VOX_GEMM_BATCH(vox_complex_float));
VOX_FORTRAN(void, zgemm3m_batch, ZGEMM3M_BATCH, VOX_GEMM_BATCH(vox_complex_double));
#undef VOX_GEMM_BATCH

/*
 * ?gemm_alloc, ?gemm_pack, ?gemm_compute, ?gemm_free: products that share a factor, which is packed for
 * the processor once instead of in every call.
 *
 *   buffer = ?gemm_alloc(identifier, m, n, k)       identifier 'A': for op(A), m by k; 'B': op(B), k by n
 *   ?gemm_pack(identifier, trans, m, n, k, alpha, src, ld, buffer)       alpha op(src) goes there
 *   ?gemm_compute(transa, transb, m, n, k, a, lda, b, ldb, beta, c, ldc)
 *                     C := op(A) op(B) + beta C, as ?gemm with alpha = 1
 *   ?gemm_free(buffer)
 *
 * In ?gemm_compute transa, transb or both may be 'P': then a, or b, is a buffer that holds the packed
 * operand, with its operation and alpha, and lda, or ldb, is not looked at. To Fortran a buffer is a
 * type(c_ptr), passed by value.
 *
 * A buffer is for its own dimensions, m and k of A, k and n of B; the third may be another in every
 * product. It can be packed again, and used by any number of threads at a time; any thread may free it.
 * What it holds is for the code path of this process, and no format for files or other processes.
 *
 * Without memory ?gemm_alloc gives a null pointer; it reports nothing. ?gemm_free of a null pointer does
 * nothing.
 * Errors: as in ?gemm, with the numbers of the parameters here; a buffer that was not made by ?gemm_alloc
 * of this precision, for these dimensions, or, in ?gemm_compute, was not packed as this operand: 9 in
 * ?gemm_pack, 6 or 8 in ?gemm_compute, 1 in ?gemm_free. A bad argument of ?gemm_alloc gives null.
 */
#define VOX_GEMM_PACKED(p, P, T)                                                                   \
    VOX_FORTRAN(T *, p##gemm_alloc, P##GEMM_ALLOC,                                                 \
                (const char *identifier, const vox_int *m, const vox_int *n, const vox_int *k));   \
    VOX_FORTRAN(void, p##gemm_pack, P##GEMM_PACK,                                                  \
                (const char *identifier, const char *trans, const vox_int *m, const vox_int *n,    \
                 const vox_int *k, const T *alpha, const T *src, const vox_int *ld, T *dest));     \
    VOX_FORTRAN(void, p##gemm_compute, P##GEMM_COMPUTE,                                            \
                (const char *transa, const char *transb, const vox_int *m, const vox_int *n,       \
                 const vox_int *k, const T *a, const vox_int *lda, const T *b, const vox_int *ldb, \
                 const T *beta, T *c, const vox_int *ldc));                                        \
    VOX_FORTRAN(void, p##gemm_free, P##GEMM_FREE, (T * dest))
VOX_GEMM_PACKED(s, S, float);
VOX_GEMM_PACKED(d, D, double);
#undef VOX_GEMM_PACKED

/*
 * gemm_s8u8s32, gemm_s16s16s32: products of integers, C := alpha (op(A) + ao) (op(B) + bo) + beta C + co.
 * A is of 8 bits and B of 8 bits without a sign, or both are of 16; C is of 32. ao is added to every
 * element of A, bo to those of B. co: one value for all of C (offsetc 'F'), a column of m values that is
 * added to every column ('C'), or a row of n that is added to every row ('R').
 *
 * The sums of products are exact where they fit 32 bits, and taken modulo 2^32 where they do not. With
 * alpha, beta C and co they are put together in double precision, rounded once to an integer and, beyond
 * the range of 32 bits, to its end; so alpha = 1 with beta = 0 or 1 is exact. alpha = 0: A and B are not
 * read; beta = 0: C is not.
 *
 * Errors: as in ?gemm, with the numbers of the parameters here, 3 for offsetc.
 */
#define VOX_GEMM_INTEGER(A, B)                                                                     \
    (const char *transa, const char *transb, const char *offsetc, const vox_int *m,                \
     const vox_int *n, const vox_int *k, const float *alpha, const A *a, const vox_int *lda,       \
     const A *ao, const B *b, const vox_int *ldb, const B *bo, const float *beta, int32_t *c,      \
     const vox_int *ldc, const int32_t *co)
VOX_FORTRAN(void, gemm_s8u8s32, GEMM_S8U8S32, VOX_GEMM_INTEGER(int8_t, uint8_t));
VOX_FORTRAN(void, gemm_s16s16s32, GEMM_S16S16S32, VOX_GEMM_INTEGER(int16_t, int16_t));
#undef VOX_GEMM_INTEGER

/* ?symm, ?hemm: C := alpha A B + beta C ('L') or alpha B A + beta C ('R'). A: symmetric or Hermitian, full
 * triangle, m by m ('L') or n by n ('R'). B, C: m by n, full. */
#define VOX_SYMM(T)                                                                                \
    (const char *side, const char *uplo, const vox_int *m, const vox_int *n, const T *alpha,       \
     const T *a, const vox_int *lda, const T *b, const vox_int *ldb, const T *beta, T *c,          \
     const vox_int *ldc)
VOX_FORTRAN(void, ssymm, SSYMM, VOX_SYMM(float));
VOX_FORTRAN(void, dsymm, DSYMM, VOX_SYMM(double));
VOX_FORTRAN(void, csymm, CSYMM, VOX_SYMM(vox_complex_float));
VOX_FORTRAN(void, zsymm, ZSYMM, VOX_SYMM(vox_complex_double));
VOX_FORTRAN(void, chemm, CHEMM, VOX_SYMM(vox_complex_float));
VOX_FORTRAN(void, zhemm, ZHEMM, VOX_SYMM(vox_complex_double));
#undef VOX_SYMM

/* ?syrk: C := alpha A A^T + beta C ('N') or alpha A^T A + beta C ('T'; 'C' too in the real types).
 * ?herk: C := alpha A A^H + beta C ('N') or alpha A^H A + beta C ('C'), alpha and beta real.
 * C: n by n, symmetric or Hermitian, full triangle. A: full, n by k ('N') or k by n. */
#define VOX_SYRK(S, T)                                                                             \
    (const char *uplo, const char *trans, const vox_int *n, const vox_int *k, const S *alpha,      \
     const T *a, const vox_int *lda, const S *beta, T *c, const vox_int *ldc)
VOX_FORTRAN(void, ssyrk, SSYRK, VOX_SYRK(float, float));
VOX_FORTRAN(void, dsyrk, DSYRK, VOX_SYRK(double, double));
VOX_FORTRAN(void, csyrk, CSYRK, VOX_SYRK(vox_complex_float, vox_complex_float));
VOX_FORTRAN(void, zsyrk, ZSYRK, VOX_SYRK(vox_complex_double, vox_complex_double));
VOX_FORTRAN(void, cherk, CHERK, VOX_SYRK(float, vox_complex_float));
VOX_FORTRAN(void, zherk, ZHERK, VOX_SYRK(double, vox_complex_double));
#undef VOX_SYRK

/* ?syr2k: C := alpha A B^T + alpha B A^T + beta C ('N') or alpha A^T B + alpha B^T A + beta C ('T'; 'C' too
 * in the real types).
 * ?her2k: C := alpha A B^H + conj(alpha) B A^H + beta C ('N') or alpha A^H B + conj(alpha) B^H A + beta C
 * ('C'), beta real.
 * C: n by n, symmetric or Hermitian, full triangle. A, B: full, n by k ('N') or k by n. */
#define VOX_SYR2K(S, T)                                                                            \
    (const char *uplo, const char *trans, const vox_int *n, const vox_int *k, const T *alpha,      \
     const T *a, const vox_int *lda, const T *b, const vox_int *ldb, const S *beta, T *c,          \
     const vox_int *ldc)
VOX_FORTRAN(void, ssyr2k, SSYR2K, VOX_SYR2K(float, float));
VOX_FORTRAN(void, dsyr2k, DSYR2K, VOX_SYR2K(double, double));
VOX_FORTRAN(void, csyr2k, CSYR2K, VOX_SYR2K(vox_complex_float, vox_complex_float));
VOX_FORTRAN(void, zsyr2k, ZSYR2K, VOX_SYR2K(vox_complex_double, vox_complex_double));
VOX_FORTRAN(void, cher2k, CHER2K, VOX_SYR2K(float, vox_complex_float));
VOX_FORTRAN(void, zher2k, ZHER2K, VOX_SYR2K(double, vox_complex_double));
#undef VOX_SYR2K

/* ?trmm: B := alpha op(A) B ('L') or alpha B op(A) ('R'). ?trsm: B := alpha op(A)^-1 B ('L') or
 * alpha B op(A)^-1 ('R'). A: triangular, full triangle, m by m ('L') or n by n ('R'). B: m by n, full.
 * alpha = 0 sets B to zero. */
#define VOX_TRMM(T)                                                                                \
    (const char *side, const char *uplo, const char *trans, const char *diag, const vox_int *m,    \
     const vox_int *n, const T *alpha, const T *a, const vox_int *lda, T *b, const vox_int *ldb)
VOX_FORTRAN(void, strmm, STRMM, VOX_TRMM(float));
VOX_FORTRAN(void, dtrmm, DTRMM, VOX_TRMM(double));
VOX_FORTRAN(void, ctrmm, CTRMM, VOX_TRMM(vox_complex_float));
VOX_FORTRAN(void, ztrmm, ZTRMM, VOX_TRMM(vox_complex_double));
VOX_FORTRAN(void, strsm, STRSM, VOX_TRMM(float));
VOX_FORTRAN(void, dtrsm, DTRSM, VOX_TRMM(double));
VOX_FORTRAN(void, ctrsm, CTRSM, VOX_TRMM(vox_complex_float));
VOX_FORTRAN(void, ztrsm, ZTRSM, VOX_TRMM(vox_complex_double));
#undef VOX_TRMM

#ifdef __cplusplus
}
#endif

#endif
