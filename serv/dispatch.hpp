// dispatch.hpp - binds an entry point to the kernel of this process's code path.
//
//   VOX_DISPATCH(blas, ddot, double, (const index_t *n, const double *x, ...), (n, x, ...))
//
// defines vox_blas_xddot with its slot and its choice among the copies vox_blas_<path>_xddot, one
// per code path. The slot is empty at load and filled by the first call; from then on a call is a
// load, a predicted test and an indirect jump. Two threads may both fill it: they store the same
// pointer. The choice is code, not a table of addresses, which the dynamic linker would have to
// relocate at load. A missing copy is a link error.
#pragma once

#include <atomic>

#include "serv/base.hpp"
#include "serv/code_paths.hpp"
#include "vox/service.h"

namespace vox {

template <class Kernel>
__attribute__((cold, noinline)) inline Kernel *bind(std::atomic<Kernel *> &slot,
                                                    Kernel *(*choose)(code_path)) {
    vox_serv_inspector_suppress(&slot, sizeof slot);
    Kernel *const kernel = choose(this_code_path());
    slot.store(kernel, std::memory_order_relaxed);
    vox_serv_inspector_unsuppress(&slot, sizeof slot);
    return kernel;
}

} // namespace vox

#define VOX_COPY_DECLARE(path, family, routine, result, parameters)                                \
    extern "C" result vox_##family##_##path##_x##routine parameters;
#define VOX_COPY_CASE(path, family, routine)                                                       \
    case vox::code_path::path:                                                                     \
        return vox_##family##_##path##_x##routine;

#define VOX_DISPATCH(family, routine, result, parameters, arguments)                               \
    VOX_CODE_PATHS(VOX_COPY_DECLARE, family, routine, result, parameters)                          \
    namespace {                                                                                    \
    namespace dispatch_##routine {                                                                 \
        using kernel = result parameters;                                                          \
        constinit std::atomic<kernel *> slot;                                                      \
        __attribute__((cold)) kernel *choose(vox::code_path path) {                                \
            switch (path) { VOX_CODE_PATHS(VOX_COPY_CASE, family, routine) }                       \
            __builtin_unreachable();                                                               \
        }                                                                                          \
    }                                                                                              \
    }                                                                                              \
    extern "C" result vox_##family##_x##routine parameters {                                       \
        dispatch_##routine::kernel *kernel =                                                       \
            dispatch_##routine::slot.load(std::memory_order_relaxed);                              \
        if (VOX_UNLIKELY(!kernel))                                                                 \
            kernel = vox::bind(dispatch_##routine::slot, dispatch_##routine::choose);              \
        return kernel arguments;                                                                   \
    }
