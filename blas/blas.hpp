// blas.hpp - the internal layers of the BLAS.
//
// A call passes through four: the exported entry (spelling, check, verbose line; 32-bit integers),
// the driver vox_blas_<routine> (quick returns, threads; 64-bit integers from here on), the
// dispatching entry vox_blas_x<routine> (binds once to the code path's copy) and the kernel.
//
// Parameter lists and their arguments stand here, one pair for all routines of a shape: T is the
// element type, I the integer (vox_int at the boundary, index_t inside).
#pragma once

#include "serv/base.hpp"
#include "serv/scalar.hpp"

#define VOX_DOT_PARAMETERS(T, I) (const I *n, const T *x, const I *incx, const T *y, const I *incy)
#define VOX_DOT_ARGUMENTS (n, x, incx, y, incy)

extern "C" {
double vox_blas_ddot VOX_DOT_PARAMETERS(double, vox::index_t);
double vox_blas_xddot VOX_DOT_PARAMETERS(double, vox::index_t);
}
