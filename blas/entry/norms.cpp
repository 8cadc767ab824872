// norms.cpp - ?asum, ?nrm2 and ?cabs1 in all their forms.
#include "blas/drivers/reductions.hpp"
#include "blas/entry/level1.hpp"

#define ASUM(p, P, T)                                                                              \
    VOX_LEVEL1(vox::real_of<T>, p##asum, P##ASUM, VECTOR, asum, T)                                 \
    extern "C" vox::real_of<T> cblas_##p##asum(vox_int n, vox::c_in<T> x, vox_int incx) {          \
        return p##asum(&n, vox::in<T>(x), &incx);                                                  \
    }
ASUM(s, S, float)
ASUM(d, D, double)
ASUM(sc, SC, vox_complex_float)
ASUM(dz, DZ, vox_complex_double)

// real: the kernel that joins the norms of parts.
#define NRM2(p, P, T, real)                                                                        \
    VOX_LEVEL1_DISPATCH(vox::real_of<T>, p##nrm2, VECTOR, T)                                       \
    static constexpr auto p##nrm2_driver = [](auto... a) {                                         \
        return vox::level1::nrm2(x##p##nrm2, real, a...);                                          \
    };                                                                                             \
    VOX_LEVEL1_ROUTINE(vox::real_of<T>, p##nrm2, P##NRM2, VECTOR, p##nrm2_driver, T)               \
    extern "C" vox::real_of<T> cblas_##p##nrm2(vox_int n, vox::c_in<T> x, vox_int incx) {          \
        return p##nrm2(&n, vox::in<T>(x), &incx);                                                  \
    }
NRM2(s, S, float, xsnrm2)
NRM2(d, D, double, xdnrm2)
NRM2(sc, SC, vox_complex_float, xsnrm2)
NRM2(dz, DZ, vox_complex_double, xdnrm2)

#define CABS1(p, P, T)                                                                             \
    VOX_BLAS_ROUTINE(vox::real_of<T>, p##cabs1, P##CABS1, (const T *z), (const T *z), (z),         \
                     [](const T *a) { return vox::level1::magnitude(*a); })                        \
    extern "C" vox::real_of<T> cblas_##p##cabs1(const void *z) { return p##cabs1(vox::in<T>(z)); }
CABS1(s, S, vox_complex_float)
CABS1(d, D, vox_complex_double)
