// reflections.cpp - the entry points of reflections.hpp on a code path.
#include "lapack/kernels/reflections.hpp"

#define KERNELS(p, P, T)                                                                           \
    extern "C" void VOX_KERNEL_NAMED(lapack, p##factor_columns) VOX_FACTOR_COLUMNS_PARAMETERS(T) { \
        factor_columns(m, n, a, lda, tau, w, t, ldt, larfg);                                       \
    }                                                                                              \
    extern "C" void VOX_KERNEL_NAMED(lapack, p##apply_reflectors)                                  \
        VOX_APPLY_REFLECTORS_PARAMETERS(T) {                                                       \
        apply_reflectors(m, n, k, v, ldv, tau, adjoint, ascending, c, ldc);                        \
    }                                                                                              \
    extern "C" void VOX_KERNEL_NAMED(lapack, p##triangular_factor)                                 \
        VOX_TRIANGULAR_FACTOR_PARAMETERS(T) {                                                      \
        triangular_factor(m, k, v, ldv, tau, t, ldt);                                              \
    }
VOX_PRECISIONS(KERNELS)
