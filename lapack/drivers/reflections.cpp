// reflections.cpp - the dispatching entries of lapack/kernels/reflections.cpp.
#include "lapack/drivers/reflections.hpp"

#include "lapack/drivers/householder.hpp"
#include "lapack/kernels/reflection_parameters.hpp"
#include "serv/dispatch.hpp"

#define DISPATCH(p, P, T)                                                                          \
    VOX_DISPATCH_NAMED(lapack, p##factor_columns, p##factor_columns, void,                         \
                       VOX_FACTOR_COLUMNS_PARAMETERS(T), VOX_FACTOR_COLUMNS_ARGUMENTS)             \
    VOX_DISPATCH_NAMED(lapack, p##apply_reflectors, p##apply_reflectors, void,                     \
                       VOX_APPLY_REFLECTORS_PARAMETERS(T), VOX_APPLY_REFLECTORS_ARGUMENTS)         \
    VOX_DISPATCH_NAMED(lapack, p##triangular_factor, p##triangular_factor, void,                   \
                       VOX_TRIANGULAR_FACTOR_PARAMETERS(T), VOX_TRIANGULAR_FACTOR_ARGUMENTS)
VOX_PRECISIONS(DISPATCH)

namespace vox::lapack {
namespace {

template <class T>
void careful_reflector(index_t n, T *alpha, T *x, T *tau) {
    larfg(n, alpha, x, 1, tau);
}

} // namespace

// With standard types for arguments, gcc takes a specialisation for a public one.
#define VOX_HIDDEN __attribute__((visibility("hidden")))
#define INSTANCES(p, P, T)                                                                         \
    template <>                                                                                    \
    VOX_HIDDEN void factor_columns<T>(index_t m, index_t n, T * a, index_t lda, T * tau, T * w,    \
                                      T * t, index_t ldt) {                                        \
        p##factor_columns(m, n, a, lda, tau, w, t, ldt, careful_reflector<T>);                     \
    }                                                                                              \
    template <>                                                                                    \
    VOX_HIDDEN void apply_reflectors<T>(index_t m, index_t n, index_t k, const T *v, index_t ldv,  \
                                        const T *tau, bool adjoint, bool ascending, T *c,          \
                                        index_t ldc) {                                             \
        p##apply_reflectors(m, n, k, v, ldv, tau, adjoint, ascending, c, ldc);                     \
    }                                                                                              \
    template <>                                                                                    \
    VOX_HIDDEN void triangular_factor<T>(index_t m, index_t k, const T *v, index_t ldv,            \
                                         const T *tau, T *t, index_t ldt) {                        \
        p##triangular_factor(m, k, v, ldv, tau, t, ldt);                                           \
    }
VOX_PRECISIONS(INSTANCES)

} // namespace vox::lapack
