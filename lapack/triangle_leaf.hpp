// triangle_leaf.hpp - what the recursions over triangles do with a block too small to be divided: its
// factorisation, inverse or product, by a kernel of the code path.
//
// Only the triangle that `upper` names is read and written.
#pragma once

#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox::lapack {

// The largest order of a leaf: where halves and level 3 begin to be as fast as the kernels.
template <class T>
constexpr index_t triangle_leaf = sizeof(T) == 4   ? 64
                                  : sizeof(T) == 8 ? 48
                                                   : 32;

} // namespace vox::lapack

// U^H U or L L^H = A; the order of the first leading minor that is not positive, or 0.
#define VOX_POTRF_LEAF_PARAMETERS(T) (bool upper, vox::index_t n, T *a, vox::index_t lda)
// A := A^-1; with `unit`, the diagonal is taken as ones and left alone.
#define VOX_TRTRI_LEAF_PARAMETERS(T) (bool upper, bool unit, vox::index_t n, T *a, vox::index_t lda)
// U U^H or L^H L in place of U or L.
#define VOX_LAUUM_LEAF_PARAMETERS(T) (bool upper, vox::index_t n, T *a, vox::index_t lda)
