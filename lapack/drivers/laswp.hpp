// laswp.hpp - row interchanges.
#pragma once

#include "serv/base.hpp"

namespace vox::lapack {

// Rows k1 .. k2 of a change places with the rows that their pivots name, counted from 1, in this
// order, or, for a negative increment, from k2 to k1. Row i's pivot is ipiv[k1 - 1 + (i - k1) |incx|].
template <class T>
void laswp(index_t n, T *a, index_t lda, index_t k1, index_t k2, const index_t *ipiv, index_t incx);

} // namespace vox::lapack
