// sparse.cpp - ?axpyi, ?doti, ?gthr, ?gthrz, ?roti and ?sctr in all their forms. Places are counted
// from 1 in Fortran and from 0 in C: the C forms pass y one element further on.
#include "blas/drivers/sparse.hpp"
#include "blas/entry/level1.hpp"

namespace {

template <class P>
P from_zero(P y) {
    return y ? y + 1 : y;
}

} // namespace

// What drivers and verbose lines get.
#define VOX_AXPYI_ARGUMENTS (nz, alpha, x, vox::level1::places{indx}, y)
#define VOX_DOTI_ARGUMENTS (nz, x, vox::level1::places{indx}, y)
#define VOX_GTHR_ARGUMENTS (nz, y, x, vox::level1::places{indx})
#define VOX_GTHRZ_ARGUMENTS (nz, y, x, vox::level1::places{indx})
#define VOX_ROTI_ARGUMENTS (nz, x, vox::level1::places{indx}, y, c, s)
#define VOX_SCTR_ARGUMENTS (nz, x, vox::level1::places{indx}, y)

#define SPARSE(result, lower, upper, SHAPE, driver, T, arguments)                                  \
    VOX_DISPATCH(blas, lower, result, VOX_##SHAPE##_PARAMETERS(T, vox::index_t), arguments)        \
    static constexpr auto lower##_driver = [](auto... a) {                                         \
        return vox::level1::driver(x##lower, a...);                                                \
    };                                                                                             \
    VOX_LEVEL1_ROUTINE(result, lower, upper, SHAPE, lower##_driver, T)

#define MOVES(p, P, T)                                                                             \
    SPARSE(void, p##axpyi, P##AXPYI, AXPYI, axpyi, T, (nz, alpha, x, indx, y))                     \
    SPARSE(void, p##gthr, P##GTHR, GTHR, sparse, T, (nz, y, x, indx))                              \
    SPARSE(void, p##gthrz, P##GTHRZ, GTHRZ, sparse, T, (nz, y, x, indx))                           \
    SPARSE(void, p##sctr, P##SCTR, SCTR, sparse, T, (nz, x, indx, y))                              \
    extern "C" void cblas_##p##axpyi(vox_int nz, vox::c_scalar<T> alpha, vox::c_in<T> x,           \
                                     const vox_int *indx, vox::c_out<T> y) {                       \
        p##axpyi(&nz, vox::scalar<T>(alpha), vox::in<T>(x), indx, from_zero(vox::out<T>(y)));      \
    }                                                                                              \
    extern "C" void cblas_##p##gthr(vox_int nz, vox::c_in<T> y, vox::c_out<T> x,                   \
                                    const vox_int *indx) {                                         \
        p##gthr(&nz, from_zero(vox::in<T>(y)), vox::out<T>(x), indx);                              \
    }                                                                                              \
    extern "C" void cblas_##p##gthrz(vox_int nz, vox::c_out<T> y, vox::c_out<T> x,                 \
                                     const vox_int *indx) {                                        \
        p##gthrz(&nz, from_zero(vox::out<T>(y)), vox::out<T>(x), indx);                            \
    }                                                                                              \
    extern "C" void cblas_##p##sctr(vox_int nz, vox::c_in<T> x, const vox_int *indx,               \
                                    vox::c_out<T> y) {                                             \
        p##sctr(&nz, vox::in<T>(x), indx, from_zero(vox::out<T>(y)));                              \
    }
VOX_PRECISIONS(MOVES)

#define DOTI(p, P, T)                                                                              \
    SPARSE(T, p##doti, P##DOTI, DOTI, sparse, T, (nz, x, indx, y))                                 \
    SPARSE(void, p##roti, P##ROTI, ROTI, sparse, T, (nz, x, indx, y, c, s))                        \
    extern "C" T cblas_##p##doti(vox_int nz, const T *x, const vox_int *indx, const T *y) {        \
        return p##doti(&nz, x, indx, from_zero(y));                                                \
    }                                                                                              \
    extern "C" void cblas_##p##roti(vox_int nz, T *x, const vox_int *indx, T *y, T c, T s) {       \
        p##roti(&nz, x, indx, from_zero(y), &c, &s);                                               \
    }
VOX_REAL_PRECISIONS(DOTI)

#define COMPLEX_DOTI(lower, upper, T)                                                              \
    SPARSE(T, lower, upper, DOTI, sparse, T, (nz, x, indx, y))                                     \
    extern "C" void cblas_##lower##_sub(vox_int nz, const void *x, const vox_int *indx,            \
                                        const void *y, void *result) {                             \
        *vox::out<T>(result) = lower(&nz, vox::in<T>(x), indx, from_zero(vox::in<T>(y)));          \
    }
#define BOTH_DOTI(p, P, T)                                                                         \
    COMPLEX_DOTI(p##dotui, P##DOTUI, T)                                                            \
    COMPLEX_DOTI(p##dotci, P##DOTCI, T)
VOX_COMPLEX_PRECISIONS(BOTH_DOTI)
