// omatadd.cpp - ?omatadd in all its forms.
#include "serv/dispatch.hpp"
#include "trans/drivers/threads.hpp"
#include "vox/trans.h"

#define OMATADD(p, P, T)                                                                           \
    VOX_DISPATCH_NAMED(trans, vox_##p##omatadd_seq, p##omatadd_seq, void,                          \
                       VOX_OMATADD_PARAMETERS(T), VOX_OMATADD_ARGUMENTS)                           \
    extern "C" void vox_trans_vox_##p##omatadd VOX_OMATADD_PARAMETERS(T) {                         \
        vox::trans::add(p##omatadd_seq, ordering, transa, transb, m, n, alpha, a, lda, beta, b,    \
                        ldb, c, ldc);                                                              \
    }                                                                                              \
    extern "C" void VOX_##P##omatadd VOX_OMATADD_PARAMETERS(T) {                                   \
        vox_trans_vox_##p##omatadd VOX_OMATADD_ARGUMENTS;                                          \
    }                                                                                              \
    extern "C" void vox_##p##omatadd_(                                                             \
        const char *ordering, const char *transa, const char *transb, const vox_int *m,            \
        const vox_int *n, const T *alpha, const T *a, const vox_int *lda, const T *beta,           \
        const T *b, const vox_int *ldb, T *c, const vox_int *ldc) {                                \
        vox_trans_vox_##p##omatadd(*ordering, *transa, *transb, *m, *n, *alpha, a, *lda, *beta, b, \
                                   *ldb, c, *ldc);                                                 \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(vox_##p##omatadd, VOX_##P##OMATADD);
VOX_PRECISIONS(OMATADD)
