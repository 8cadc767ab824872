// dispatch.hpp - binds an entry point to the kernel of this process's code path.
//
//   VOX_DISPATCH(blas, ddot, double, (const index_t *n, const double *x, ...), (n, x, ...))
//
// defines vox_blas_xddot with its slot and its choice among the copies vox_blas_<path>_xddot, one
// per code path, and the function object xddot, which is the same inlined where the macro stands.
// The slot is empty at load and filled by the first call; from then on a call is a load, a
// predicted test and an indirect jump. Two threads may both fill it: they store the same pointer.
// The choice is code, not a table of addresses, which the dynamic linker would have to relocate at
// load. A missing copy is a link error, but for paths that borrow another's kernels (serv/code_path_list.hpp), whose
// copies are made here: names for the other's.
//
//   VOX_DISPATCH_NAMED(trans, vox_domatcopy, domatcopy, void, (...), (...))
//
// does the same for routines whose internal names carry no x: vox_trans_vox_domatcopy with copies
// vox_trans_<path>_vox_domatcopy, and the function object under the given name.
//
//   VOX_DISPATCH_SET(rng, mt19937_d, int, (...), (...))
//
// chooses among kernel sets (serv/kernel_sets.hpp) instead of code paths.
#pragma once

#include <atomic>

#include "serv/base.hpp"
#include "serv/code_paths.hpp"
#include "serv/kernel_sets.hpp"
#include "vox/service.h"

namespace vox {

inline void chosen(code_path &path) { path = this_code_path(); }
inline void chosen(kernel_set &set) { set = this_kernel_set(); }

template <class Kernel, class Copies>
inline Kernel *bind(std::atomic<Kernel *> &slot, Kernel *(*choose)(Copies)) {
    vox_serv_inspector_suppress(&slot, sizeof slot);
    Copies copy;
    chosen(copy);
    Kernel *const kernel = choose(copy);
    slot.store(kernel, std::memory_order_relaxed);
    vox_serv_inspector_unsuppress(&slot, sizeof slot);
    return kernel;
}

} // namespace vox

#define VOX_COPY_DECLARE(path, copy, family, name, result, parameters)                             \
    extern "C" result vox_##family##_##path##_##name parameters;
#define VOX_COPY_BORROW(path, copy, family, name, result, parameters, arguments)                   \
    extern "C" result vox_##family##_##path##_##name parameters {                                  \
        return vox_##family##_##copy##_##name arguments;                                           \
    }
#define VOX_COPY_CASE(path, copy, copies, family, name)                                            \
    case copies::path:                                                                             \
        return vox_##family##_##path##_##name;

#define VOX_DISPATCH(family, routine, result, parameters, arguments)                               \
    VOX_DISPATCH_NAMED(family, x##routine, x##routine, result, parameters, arguments)

#define VOX_DISPATCH_NAMED(family, name, object, result, parameters, arguments)                    \
    VOX_DISPATCH_AMONG(VOX_CODE_PATHS, vox::code_path, family, name, object, result, parameters,   \
                       arguments)

#define VOX_DISPATCH_SET(family, name, result, parameters, arguments)                              \
    VOX_DISPATCH_AMONG(VOX_KERNEL_SETS, vox::kernel_set, family, name, name, result, parameters,   \
                       arguments)

#define VOX_DISPATCH_AMONG(list, copies, family, name, object, result, parameters, arguments)      \
    list(VOX_COPY_DECLARE, family, name, result, parameters)                                       \
        list##_BORROWING(VOX_COPY_BORROW, family, name, result, parameters, arguments) namespace { \
        struct object##_dispatch {                                                                 \
            using kernel_type = result parameters;                                                 \
            static constinit inline std::atomic<kernel_type *> slot{nullptr};                      \
            __attribute__((cold)) static kernel_type *choose(copies copy) {                        \
                switch (copy) { list(VOX_COPY_CASE, copies, family, name) }                        \
                __builtin_unreachable();                                                           \
            }                                                                                      \
            __attribute__((cold, noinline)) static result first_call parameters {                  \
                return vox::bind(slot, choose) arguments;                                          \
            }                                                                                      \
            __attribute__((always_inline)) inline result operator() parameters const {             \
                kernel_type *const kernel = slot.load(std::memory_order_relaxed);                  \
                return VOX_LIKELY(kernel) ? kernel arguments : first_call arguments;               \
            }                                                                                      \
        };                                                                                         \
        constexpr object##_dispatch object;                                                        \
    }                                                                                              \
    extern "C" result vox_##family##_##name parameters { return object arguments; }
