// omatcopy.cpp - ?omatcopy and ?omatcopy2 in all their forms, and their division among threads.
#include "serv/dispatch.hpp"
#include "trans/drivers/threads.hpp"
#include "vox/trans.h"

#define OMATCOPY(p, P, T)                                                                          \
    VOX_DISPATCH_NAMED(trans, vox_##p##omatcopy, p##omatcopy, void, VOX_OMATCOPY_PARAMETERS(T),    \
                       VOX_OMATCOPY_ARGUMENTS)                                                     \
    VOX_DISPATCH_NAMED(trans, vox_##p##omatcopy2, p##omatcopy2, void, VOX_OMATCOPY2_PARAMETERS(T), \
                       VOX_OMATCOPY2_ARGUMENTS)                                                    \
    VOX_DISPATCH_NAMED(trans, vox_##p##omatcopy2_seq, p##omatcopy2_seq, void,                      \
                       VOX_OMATCOPY2_PARAMETERS(T), VOX_OMATCOPY2_ARGUMENTS)                       \
    extern "C" void vox_trans_vox_##p##omatcopy2_par VOX_OMATCOPY2_PARAMETERS(T) {                 \
        vox::trans::copy_parts(p##omatcopy2_seq, ordering, trans, rows, cols, alpha, a, lda,       \
                               stridea, b, ldb, strideb);                                          \
    }                                                                                              \
    extern "C" void VOX_##P##omatcopy VOX_OMATCOPY_PARAMETERS(T) {                                 \
        p##omatcopy VOX_OMATCOPY_ARGUMENTS;                                                        \
    }                                                                                              \
    extern "C" void VOX_##P##omatcopy2 VOX_OMATCOPY2_PARAMETERS(T) {                               \
        p##omatcopy2 VOX_OMATCOPY2_ARGUMENTS;                                                      \
    }                                                                                              \
    extern "C" void vox_##p##omatcopy_(const char *ordering, const char *trans,                    \
                                       const vox_int *rows, const vox_int *cols, const T *alpha,   \
                                       const T *a, const vox_int *lda, T *b, const vox_int *ldb) { \
        p##omatcopy(*ordering, *trans, *rows, *cols, *alpha, a, *lda, b, *ldb);                    \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(vox_##p##omatcopy, VOX_##P##OMATCOPY);                                     \
    extern "C" void vox_##p##omatcopy2_(const char *ordering, const char *trans,                   \
                                        const vox_int *rows, const vox_int *cols, const T *alpha,  \
                                        const T *a, const vox_int *lda, const vox_int *stridea,    \
                                        T *b, const vox_int *ldb, const vox_int *strideb) {        \
        p##omatcopy2(*ordering, *trans, *rows, *cols, *alpha, a, *lda, *stridea, b, *ldb,          \
                     *strideb);                                                                    \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(vox_##p##omatcopy2, VOX_##P##OMATCOPY2);
VOX_PRECISIONS(OMATCOPY)
