// kernel.hpp - how a kernel source names the copy that it is being compiled as.
//
// A kernel source is compiled once per code path with VOX_PATH=<path> and that path's instruction
// flags, which the running processor may lack. So nothing in it may leak into the rest of the
// program: no standard-library templates, no inline function with external linkage; everything but
// the kernels themselves is static or in an unnamed namespace.
#pragma once

#include "serv/base.hpp"

#ifndef VOX_PATH
#error "kernel sources are compiled by vox_add_kernels"
#endif

// VOX_KERNEL(blas, ddot) is vox_blas_avx2_xddot in the avx2 copy, VOX_KERNEL_NAMED(trans, name)
// vox_trans_avx2_name.
#define VOX_KERNEL(family, routine) VOX_KERNEL_NAMED(family, x##routine)
#define VOX_KERNEL_NAMED(family, name) VOX_KERNEL_1(family, VOX_PATH, name)
#define VOX_KERNEL_1(family, path, name) VOX_KERNEL_2(family, path, name)
#define VOX_KERNEL_2(family, path, name) vox_##family##_##path##_##name
