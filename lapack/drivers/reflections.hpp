// reflections.hpp - reflectors one after the other on columns in the caches, by the code path's
// kernels. No memory is asked for.
#pragma once

#include "serv/scalar.hpp"

namespace vox::lapack {

// A := its QR factors. w: n elements. With t, the triangular factor of H(1) .. H(min(m, n)), too.
template <class T>
void factor_columns(index_t m, index_t n, T *a, index_t lda, T *tau, T *w, T *t = nullptr,
                    index_t ldt = 0);

// C := H(1) .. H(k) C or, ascending, H(k) .. H(1) C, or of their adjoints. The vectors are columns
// of V, forward.
template <class T>
void apply_reflectors(index_t m, index_t n, index_t k, const T *v, index_t ldv, const T *tau,
                      bool adjoint, bool ascending, T *c, index_t ldc);

// The triangular factor of H(1) .. H(k), of such vectors.
template <class T>
void triangular_factor(index_t m, index_t k, const T *v, index_t ldv, const T *tau, T *t,
                       index_t ldt);

// As many columns at a time are worth no recursion.
constexpr index_t few_reflectors = 16;

} // namespace vox::lapack
