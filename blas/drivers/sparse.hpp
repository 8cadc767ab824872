// sparse.hpp - level 1 with one vector compressed: quick returns. These run on the calling thread:
// places are scattered, and nothing says that parts of them do not meet.
#pragma once

#include "serv/base.hpp"
#include "serv/scalar.hpp"

namespace vox::level1 {

// An array of places. Unlike other pointers to integers it is not an integer argument, so it is
// neither widened nor printed by value.
struct places {
    const vox_int *indx;
    operator const void *() const { return indx; }
};

template <class A>
[[gnu::always_inline]] inline A plain(A argument) {
    return argument;
}
[[gnu::always_inline]] inline const vox_int *plain(places p) { return p.indx; }

template <class Kernel, class... A>
inline auto sparse(Kernel kernel, index_t nz, A... a) {
    using R = decltype(kernel(&nz, plain(a)...));
    if (nz < 1)
        return R();
    return kernel(&nz, plain(a)...);
}

template <class Kernel, class T>
inline void axpyi(Kernel kernel, index_t nz, const T *alpha, const T *x, places indx, T *y) {
    if (nz < 1 || is_zero(*alpha))
        return;
    kernel(&nz, alpha, x, indx.indx, y);
}

} // namespace vox::level1
