/* cblas.h - the BLAS as C calls it. Routines as in blas.h; scalars by value. */
#ifndef VOX_CBLAS_H
#define VOX_CBLAS_H

#include "vox/types.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef enum { CblasRowMajor = 101, CblasColMajor = 102 } CBLAS_LAYOUT;
typedef enum { CblasNoTrans = 111, CblasTrans = 112, CblasConjTrans = 113 } CBLAS_TRANSPOSE;
typedef enum { CblasUpper = 121, CblasLower = 122 } CBLAS_UPLO;
typedef enum { CblasNonUnit = 131, CblasUnit = 132 } CBLAS_DIAG;
typedef enum { CblasLeft = 141, CblasRight = 142 } CBLAS_SIDE;

VOX_API double cblas_ddot(vox_int n, const double *x, vox_int incx, const double *y, vox_int incy);

#ifdef __cplusplus
}
#endif

#endif
