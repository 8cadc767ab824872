// trans.hpp - the internal routines of matrix copy and transposition, and their parameter lists.
//
// Characters and sizes come by value, sizes with 64 bits. Shape OMATCOPY is the plain copy, OMATCOPY2
// the one with element strides, OMATADD the sum of two matrices.
#pragma once

#include "serv/base.hpp"
#include "serv/scalar.hpp"

#define VOX_OMATCOPY_PARAMETERS(T)                                                                 \
    (char ordering, char trans, vox::index_t rows, vox::index_t cols, T alpha, const T *a,         \
     vox::index_t lda, T *b, vox::index_t ldb)
#define VOX_OMATCOPY_ARGUMENTS (ordering, trans, rows, cols, alpha, a, lda, b, ldb)

#define VOX_OMATCOPY2_PARAMETERS(T)                                                                \
    (char ordering, char trans, vox::index_t rows, vox::index_t cols, T alpha, const T *a,         \
     vox::index_t lda, vox::index_t stridea, T *b, vox::index_t ldb, vox::index_t strideb)
#define VOX_OMATCOPY2_ARGUMENTS                                                                    \
    (ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb)

// One of the kernels behind an operation: `outer` rows of A, `inner` elements in each.
#define VOX_OMATCOPY2_KERNEL_PARAMETERS(T)                                                         \
    (vox::index_t outer, vox::index_t inner, T alpha, const T *a, vox::index_t lda,                \
     vox::index_t stridea, T *b, vox::index_t ldb, vox::index_t strideb)

#define VOX_OMATADD_PARAMETERS(T)                                                                  \
    (char ordering, char transa, char transb, vox::index_t m, vox::index_t n, T alpha, const T *a, \
     vox::index_t lda, T beta, const T *b, vox::index_t ldb, T *c, vox::index_t ldc)
#define VOX_OMATADD_ARGUMENTS (ordering, transa, transb, m, n, alpha, a, lda, beta, b, ldb, c, ldc)

#define VOX_IMATCOPY_PARAMETERS(T)                                                                 \
    (char ordering, char trans, vox::index_t rows, vox::index_t cols, T alpha, T *ab,              \
     vox::index_t lda, vox::index_t ldb)

// Dispatching entries of the copies, as a whole and for one thread; the division among threads.
#define VOX_TRANS_DECLARE(p, P, T)                                                                 \
    extern "C" void vox_trans_vox_##p##omatcopy VOX_OMATCOPY_PARAMETERS(T);                        \
    extern "C" void vox_trans_vox_##p##omatcopy2 VOX_OMATCOPY2_PARAMETERS(T);                      \
    extern "C" void vox_trans_vox_##p##omatcopy2_seq VOX_OMATCOPY2_PARAMETERS(T);                  \
    extern "C" void vox_trans_vox_##p##omatcopy2_par VOX_OMATCOPY2_PARAMETERS(T);                  \
    extern "C" void vox_trans_vox_##p##omatadd VOX_OMATADD_PARAMETERS(T);                          \
    extern "C" void vox_trans_vox_##p##omatadd_seq VOX_OMATADD_PARAMETERS(T);                      \
    extern "C" void vox_trans_vox_##p##imatcopy VOX_IMATCOPY_PARAMETERS(T);
VOX_PRECISIONS(VOX_TRANS_DECLARE)
#undef VOX_TRANS_DECLARE

namespace vox::trans {

// Inlined always, since kernels use them too.
#define VOX_TRANS_RULE [[gnu::always_inline]] inline

VOX_TRANS_RULE char folded(char letter) {
    return letter >= 'A' && letter <= 'Z' ? char(letter + ('a' - 'A')) : letter;
}

// What the two characters ask for.
struct request {
    bool valid, by_rows, transposed, conjugated;

    VOX_TRANS_RULE request(char ordering, char trans) {
        const char order = folded(ordering), op = folded(trans);
        by_rows = order == 'r';
        transposed = op == 't' || op == 'c';
        conjugated = op == 'c' || op == 'r';
        valid = (by_rows || order == 'c') && (transposed || conjugated || op == 'n');
    }
};

// Whether an operation on so many elements is divided among threads.
template <class T>
VOX_TRANS_RULE bool is_divided(index_t rows, index_t cols) {
    return rows > 16 && cols > 16 && rows > index_t(32768 / sizeof(T)) / cols;
}

} // namespace vox::trans
