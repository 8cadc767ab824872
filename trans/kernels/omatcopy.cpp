// omatcopy.cpp - ?omatcopy of one code path: B := alpha op(A), as a whole, for one thread, and the
// kernels of the four operations.
#include "trans/kernels/copy.hpp"
#include "trans/kernels/transpose.hpp"
#include "trans/trans.hpp"

namespace {
namespace trans {

// Elements that do not lie side by side, block by block so that lines met twice are still in cache.
template <class T, class Op>
VOX_APART void strided(const Op op, index_t outer, index_t inner, const T *a, index_t lda,
                       index_t stridea, T *b, index_t down, index_t along) {
    constexpr index_t side = 32;
    for (index_t i0 = 0; i0 < outer; i0 += side)
        for (index_t j0 = 0; j0 < inner; j0 += side)
            for (index_t i = i0; i < outer && i < i0 + side; ++i)
                for (index_t j = j0; j < inner && j < j0 + side; ++j)
                    one_element(op, a + i * lda + j * stridea, b + i * down + j * along);
}

// Calls body with the operation that alpha asks for.
template <bool Conjugate, class T, class Body>
VOX_INLINE void with_operation(T alpha, const Body &body) {
    if (!(vox::real(alpha) == 1 && vox::imag(alpha) == 0))
        body(scaled<T>{alpha, Conjugate});
    else if constexpr (Conjugate)
        body(conjugated<T>());
    else
        body(moved<T>());
}

template <bool Transposed, bool Conjugate, class T>
VOX_INLINE void kernel VOX_OMATCOPY2_KERNEL_PARAMETERS(T) {
    with_operation<Conjugate>(alpha, [&](auto op) VOX_INLINED {
        if (stridea != 1 || strideb != 1)
            strided(op, outer, inner, a, lda, stridea, b, Transposed ? strideb : ldb,
                    Transposed ? ldb : strideb);
        else if constexpr (Transposed)
            transpose(op, problem<T>{outer, inner, a, lda, b, ldb});
        else
            copy(op, outer, inner, a, lda, b, ldb);
    });
}

// The kernels of one thread by the letter of the operation; nothing for any other letter.
template <class T>
using kernel_type = void VOX_OMATCOPY2_KERNEL_PARAMETERS(T);
template <class T>
VOX_INLINE void sequential(kernel_type<T> *n, kernel_type<T> *t, kernel_type<T> *c,
                           kernel_type<T> *r, char ordering, char trans, index_t rows, index_t cols,
                           T alpha, const T *a, index_t lda, index_t stridea, T *b, index_t ldb,
                           index_t strideb) {
    const vox::trans::request asked(ordering, trans);
    if (!asked.valid)
        return;
    const index_t outer = asked.by_rows ? rows : cols, inner = asked.by_rows ? cols : rows;
    kernel_type<T> *const one =
        asked.transposed ? (asked.conjugated ? c : t) : (asked.conjugated ? r : n);
    one(outer, inner, alpha, a, lda, stridea, b, ldb, strideb);
}

template <class T, class Driver>
VOX_INLINE void entry(Driver *one_thread, Driver *threads, char ordering, char trans, index_t rows,
                      index_t cols, T alpha, const T *a, index_t lda, index_t stridea, T *b,
                      index_t ldb, index_t strideb) {
    if (rows <= 0 || cols <= 0)
        return;
    Driver *const driver = vox::trans::is_divided<T>(rows, cols) ? threads : one_thread;
    driver(ordering, trans, rows, cols, alpha, a, lda, stridea, b, ldb, strideb);
}

} // namespace trans
} // namespace

#define KERNEL(p, T, letter, transposed, conjugate)                                                \
    extern "C" void VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_##letter)                           \
        VOX_OMATCOPY2_KERNEL_PARAMETERS(T) {                                                       \
        trans::kernel<transposed, conjugate, T>(outer, inner, alpha, a, lda, stridea, b, ldb,      \
                                                strideb);                                          \
    }

// Real types conjugate by their kernels n and t.
#define DRIVERS(p, T, c, r)                                                                        \
    extern "C" void VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_seq) VOX_OMATCOPY2_PARAMETERS(T) {  \
        trans::sequential<T>(VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_n),                        \
                             VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_t),                        \
                             VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_##c),                      \
                             VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_##r), ordering, trans,     \
                             rows, cols, alpha, a, lda, stridea, b, ldb, strideb);                 \
    }                                                                                              \
    extern "C" void VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2) VOX_OMATCOPY2_PARAMETERS(T) {      \
        trans::entry(VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_seq),                              \
                     vox_trans_vox_##p##omatcopy2_par, ordering, trans, rows, cols, alpha, a, lda, \
                     stridea, b, ldb, strideb);                                                    \
    }                                                                                              \
    extern "C" void VOX_KERNEL_NAMED(trans, vox_##p##omatcopy) VOX_OMATCOPY_PARAMETERS(T) {        \
        trans::entry(VOX_KERNEL_NAMED(trans, vox_##p##omatcopy2_seq),                              \
                     vox_trans_vox_##p##omatcopy2_par, ordering, trans, rows, cols, alpha, a, lda, \
                     1, b, ldb, 1);                                                                \
    }

#define OMATCOPY(p, P, T)                                                                          \
    KERNEL(p, T, n, false, false)                                                                  \
    KERNEL(p, T, t, true, false)
VOX_PRECISIONS(OMATCOPY)
#define CONJUGATE(p, P, T)                                                                         \
    KERNEL(p, T, c, true, true)                                                                    \
    KERNEL(p, T, r, false, true)
VOX_COMPLEX_PRECISIONS(CONJUGATE)
#define REAL_DRIVERS(p, P, T) DRIVERS(p, T, t, n)
VOX_REAL_PRECISIONS(REAL_DRIVERS)
#define COMPLEX_DRIVERS(p, P, T) DRIVERS(p, T, c, r)
VOX_COMPLEX_PRECISIONS(COMPLEX_DRIVERS)
