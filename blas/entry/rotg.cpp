// rotg.cpp - ?rotg and ?rotmg in all their forms. They are scalar work, the same on every code path.
#include "blas/drivers/rotg.hpp"
#include "blas/blas.hpp"
#include "blas/entry/forms.hpp"
#include "vox/blas.h"
#include "vox/cblas.h"

// B: the type of b, which only real rotations replace.
#define ROTG(p, P, T, B, construct)                                                                \
    static constexpr auto p##rotg_driver = [](auto... a) { vox::level1::construct(a...); };        \
    VOX_BLAS_ROUTINE(void, p##rotg, P##ROTG, VOX_ROTG_PARAMETERS(T, B), VOX_ROTG_PARAMETERS(T, B), \
                     VOX_ROTG_ARGUMENTS, p##rotg_driver)
ROTG(s, S, float, float, rotg)
ROTG(d, D, double, double, rotg)
ROTG(c, C, vox_complex_float, const vox_complex_float, complex_rotg)
ROTG(z, Z, vox_complex_double, const vox_complex_double, complex_rotg)

#define CBLAS_ROTG(p, P, T)                                                                        \
    extern "C" void cblas_##p##rotg(T *a, T *b, T *c, T *s) { p##rotg(a, b, c, s); }
VOX_REAL_PRECISIONS(CBLAS_ROTG)
#define CBLAS_COMPLEX_ROTG(p, P, T)                                                                \
    extern "C" void cblas_##p##rotg(void *a, const void *b, vox::real_of<T> *c, void *s) {         \
        p##rotg(vox::out<T>(a), vox::in<T>(b), c, vox::out<T>(s));                                 \
    }
VOX_COMPLEX_PRECISIONS(CBLAS_COMPLEX_ROTG)

#define ROTMG(p, P, T)                                                                             \
    static constexpr auto p##rotmg_driver = [](auto... a) { vox::level1::rotmg(a...); };           \
    VOX_BLAS_ROUTINE(void, p##rotmg, P##ROTMG, VOX_ROTMG_PARAMETERS(T), VOX_ROTMG_PARAMETERS(T),   \
                     VOX_ROTMG_ARGUMENTS, p##rotmg_driver)                                         \
    extern "C" void cblas_##p##rotmg(T *d1, T *d2, T *x1, T y1, T *param) {                        \
        p##rotmg(d1, d2, x1, &y1, param);                                                          \
    }
VOX_REAL_PRECISIONS(ROTMG)
