// iamax.cpp - i?amax and i?amin in all their forms. Places are counted from 1 in Fortran, from 0 in
// C, where nothing to look at gives 0 too.
#include "blas/drivers/reductions.hpp"
#include "blas/entry/level1.hpp"

namespace {

constexpr auto larger = [](auto a, auto b) { return a > b; };
constexpr auto smaller = [](auto a, auto b) { return a < b; };

} // namespace

#define IAMAX(lower, upper, better, T)                                                             \
    VOX_LEVEL1_DISPATCH(vox::index_t, lower, VECTOR, T)                                            \
    static constexpr auto lower##_driver = [](auto... a) {                                         \
        return vox::level1::iamax(x##lower, better, a...);                                         \
    };                                                                                             \
    extern "C" vox::index_t vox_blas_##lower VOX_VECTOR_PARAMETERS(T, vox::index_t) {              \
        return lower##_driver(*n, x, *incx);                                                       \
    }                                                                                              \
    extern "C" vox_int lower##_ VOX_VECTOR_PARAMETERS(T, vox_int) {                                \
        return vox_int(vox::logged(#upper, lower##_driver, lower##_driver, n, x, incx));           \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, upper);                                                             \
    extern "C" CBLAS_INDEX cblas_##lower(vox_int n, vox::c_in<T> x, vox_int incx) {                \
        const vox_int place = lower(&n, vox::in<T>(x), &incx);                                     \
        return place > 0 ? CBLAS_INDEX(place - 1) : 0;                                             \
    }
#define IAMAX_IAMIN(p, P, T)                                                                       \
    IAMAX(i##p##amax, I##P##AMAX, larger, T)                                                       \
    IAMAX(i##p##amin, I##P##AMIN, smaller, T)
VOX_PRECISIONS(IAMAX_IAMIN)
