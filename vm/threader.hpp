// threader.hpp - runs a kernel on a whole vector, or on the shares of a team of threads.
//
// One threader per precision and shape: d_2i_1o is two inputs and one output of doubles. A kernel takes its
// count, its vectors and a fixed scalar, which only few functions have. cost: nanoseconds an element.
#pragma once

#include "serv/base.hpp"

namespace vox::vm {

template <class T>
using kernel_1i_1o = void(index_t n, const T *a, T *r, T fixed);
template <class T>
using kernel_2i_1o = void(index_t n, const T *a, const T *b, T *r, T fixed);

// How many threads pay for n elements; 1: the caller's alone.
extern "C" int vox_tqm_serv_GetMinN(index_t n, float cost, int threads);

#define VOX_TQM_THREADERS(X) X(s, float) X(d, double)
#define VOX_TQM_DECLARE_THREADERS(p, T)                                                            \
    extern "C" void vox_tqm_serv_threader_##p##_1i_1o(kernel_1i_1o<T> *kernel, index_t n,          \
                                                      const T *a, T *r, T fixed, float cost);      \
    extern "C" void vox_tqm_serv_threader_##p##_2i_1o(                                             \
        kernel_2i_1o<T> *kernel, index_t n, const T *a, const T *b, T *r, T fixed, float cost);
VOX_TQM_THREADERS(VOX_TQM_DECLARE_THREADERS)

} // namespace vox::vm
