// level1.hpp - one line gives a routine of level 1 its dispatching entry, driver and Fortran forms:
//
//   VOX_LEVEL1(void, daxpy, DAXPY, AXPY, axpy, double)
//
// Shape AXPY says what the parameters are (blas.hpp), vox::level1::axpy is the driver, given the
// dispatching entry and the arguments; the element type comes last, a second one after it.
#pragma once

#include "blas/blas.hpp"
#include "blas/entry/forms.hpp"
#include "serv/dispatch.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

#define VOX_LEVEL1(result, lower, upper, SHAPE, driver, T, ...)                                    \
    VOX_LEVEL1_DISPATCH(result, lower, SHAPE, T __VA_OPT__(, ) __VA_ARGS__)                        \
    static constexpr auto lower##_driver = [](auto... a) {                                         \
        return vox::level1::driver(x##lower, a...);                                                \
    };                                                                                             \
    VOX_LEVEL1_ROUTINE(result, lower, upper, SHAPE, lower##_driver, T __VA_OPT__(, ) __VA_ARGS__)

#define VOX_LEVEL1_DISPATCH(result, lower, SHAPE, T, ...)                                          \
    VOX_DISPATCH(blas, lower, result,                                                              \
                 VOX_##SHAPE##_PARAMETERS(T, vox::index_t __VA_OPT__(, ) __VA_ARGS__),             \
                 VOX_##SHAPE##_ARGUMENTS)

#define VOX_LEVEL1_ROUTINE(result, lower, upper, SHAPE, driver, T, ...)                            \
    VOX_BLAS_ROUTINE(result, lower, upper,                                                         \
                     VOX_##SHAPE##_PARAMETERS(T, vox_int __VA_OPT__(, ) __VA_ARGS__),              \
                     VOX_##SHAPE##_PARAMETERS(T, vox::index_t __VA_OPT__(, ) __VA_ARGS__),         \
                     VOX_##SHAPE##_ARGUMENTS, driver)
