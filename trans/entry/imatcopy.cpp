// imatcopy.cpp - ?imatcopy in all its forms.
#include "trans/drivers/in_place.hpp"
#include "vox/trans.h"

#define IMATCOPY(p, P, T)                                                                          \
    extern "C" void vox_trans_vox_##p##imatcopy VOX_IMATCOPY_PARAMETERS(T) {                       \
        vox::trans::imatcopy(vox_trans_vox_##p##omatcopy2, vox_trans_vox_##p##omatcopy2_seq,       \
                             ordering, trans, rows, cols, alpha, ab, lda, ldb);                    \
    }                                                                                              \
    extern "C" void VOX_##P##imatcopy VOX_IMATCOPY_PARAMETERS(T) {                                 \
        vox_trans_vox_##p##imatcopy(ordering, trans, rows, cols, alpha, ab, lda, ldb);             \
    }                                                                                              \
    extern "C" void vox_##p##imatcopy_(const char *ordering, const char *trans,                    \
                                       const vox_int *rows, const vox_int *cols, const T *alpha,   \
                                       T *ab, const vox_int *lda, const vox_int *ldb) {            \
        vox_trans_vox_##p##imatcopy(*ordering, *trans, *rows, *cols, *alpha, ab, *lda, *ldb);      \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(vox_##p##imatcopy, VOX_##P##IMATCOPY);
VOX_PRECISIONS(IMATCOPY)
