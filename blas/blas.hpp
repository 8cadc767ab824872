// blas.hpp - the internal layers of the BLAS.
//
// A call passes through four: the exported entry (spelling, check, verbose line; 32-bit integers),
// the driver vox_blas_<routine> (quick returns, threads; 64-bit integers from here on), the
// dispatching entry vox_blas_x<routine> (binds once to the code path's copy) and the kernel.
#pragma once

#include "serv/base.hpp"

namespace vox {

// Parameter lists and their arguments, shared by drivers, dispatching entries and kernels.
#define VOX_DOT_PARAMETERS(T)                                                                      \
    (const vox::index_t *n, const T *x, const vox::index_t *incx, const T *y,                      \
     const vox::index_t *incy)
#define VOX_DOT_ARGUMENTS (n, x, incx, y, incy)

} // namespace vox

extern "C" {
double vox_blas_ddot VOX_DOT_PARAMETERS(double);
double vox_blas_xddot VOX_DOT_PARAMETERS(double);
}
