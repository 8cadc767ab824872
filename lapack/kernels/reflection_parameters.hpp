// reflection_parameters.hpp - the kernels of reflectors as drivers and kernels both see them.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// A reflector by the careful way, which leaves nothing to chance near the ends of the range.
template <class T>
using reflector_maker = void(index_t n, T *alpha, T *x, T *tau);

} // namespace vox::lapack

#define VOX_FACTOR_COLUMNS_PARAMETERS(T)                                                           \
    (vox::index_t m, vox::index_t n, T * a, vox::index_t lda, T * tau, T * w, T * t,               \
     vox::index_t ldt, vox::lapack::reflector_maker<T> * larfg)
#define VOX_FACTOR_COLUMNS_ARGUMENTS (m, n, a, lda, tau, w, t, ldt, larfg)

#define VOX_APPLY_REFLECTORS_PARAMETERS(T)                                                         \
    (vox::index_t m, vox::index_t n, vox::index_t k, const T *v, vox::index_t ldv, const T *tau,   \
     bool adjoint, bool ascending, T *c, vox::index_t ldc)
#define VOX_APPLY_REFLECTORS_ARGUMENTS (m, n, k, v, ldv, tau, adjoint, ascending, c, ldc)

#define VOX_TRIANGULAR_FACTOR_PARAMETERS(T)                                                        \
    (vox::index_t m, vox::index_t k, const T *v, vox::index_t ldv, const T *tau, T *t,             \
     vox::index_t ldt)
#define VOX_TRIANGULAR_FACTOR_ARGUMENTS (m, k, v, ldv, tau, t, ldt)
