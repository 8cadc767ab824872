// kernel_api.hpp - which generation of parallel product drivers is in use.
//
// 1: a call's threads follow from its work (drivers/gemm_threads.hpp). 2: every product goes to
// vox_blas_?gemm_omp_driver_v1, which takes all threads that the caller may use, and leaves it to the
// kernels' team to divide the work; for programs that build their own work rule on top.
#pragma once

#include "blas/products.hpp"

#define VOX_OMP_DRIVER(p, P, T)                                                                    \
    extern "C" void vox_blas_##p##gemm_omp_driver_v1(const vox::product<T> *job);
VOX_PRECISIONS(VOX_OMP_DRIVER)
#undef VOX_OMP_DRIVER

extern "C" int vox_blas_get_kernel_api_version();
