// qr.cpp - the forms of QR and LQ factorisation and of the orthogonal factors.
#include "lapack/drivers/qr.hpp"
#include "lapack/drivers/orthogonal.hpp"
#include "lapack/drivers/pivoted_qr.hpp"
#include "lapack/entry/forms.hpp"

// Without rows, the reference is content with one element for any number of columns, here alone.
VOX_LAPACK(ALL, geqrf, geqrf, GEQRF, size(m), size(n), inout(a, lda, m, n),
           vector_out(tau, least(m, n)), queried(work, lwork, m > 0 ? most(1, n) : 1))
VOX_LAPACK(ALL, gelqf, gelqf, GELQF, size(m), size(n), inout(a, lda, m, n),
           vector_out(tau, least(m, n)), queried(work, lwork, most(1, m)))
VOX_LAPACK(ALL, geqr2, geqr2, GEQR2, size(m), size(n), inout(a, lda, m, n),
           vector_out(tau, least(m, n)), space(work, n))
VOX_LAPACK(ALL, gelq2, gelq2, GELQ2, size(m), size(n), inout(a, lda, m, n),
           vector_out(tau, least(m, n)), space(work, m))

VOX_LAPACK(REAL, geqp3, geqp3, GEQP3, size(m), size(n), inout(a, lda, m, n), pivots_inout(jpvt, n),
           vector_out(tau, least(m, n)),
           queried(work, lwork, least(m, n) == 0 ? 1 : 3 * index_t(n) + 1))
VOX_LAPACK(COMPLEX, geqp3, geqp3, GEQP3, size(m), size(n), inout(a, lda, m, n),
           pivots_inout(jpvt, n), vector_out(tau, least(m, n)),
           queried(work, lwork, least(m, n) == 0 ? 1 : index_t(n) + 1),
           real_space(rwork, 2 * index_t(n)))

// Q from its reflectors: k of them, n columns (or m rows) of it. The unblocked forms have no C form.
#define VOX_Q(types, qr, lq, QR, LQ, qr2, lq2, QR2, LQ2)                                           \
    VOX_LAPACK(types, orgqr, qr, QR, size(m), size_within(n, m), size_within(k, n),                \
               inout(a, lda, m, n), vector_in(tau, k), queried(work, lwork, most(1, n)))           \
    VOX_LAPACK(types, orglq, lq, LQ, size(m), size_from(n, m), size_within(k, m),                  \
               inout(a, lda, m, n), vector_in(tau, k), queried(work, lwork, most(1, m)))           \
    VOX_LAPACK_FORTRAN(types, org2r, qr2, QR2, size(m), size_within(n, m), size_within(k, n),      \
                       inout(a, lda, m, n), vector_in(tau, k), space(work, n))                     \
    VOX_LAPACK_FORTRAN(types, orgl2, lq2, LQ2, size(m), size_from(n, m), size_within(k, m),        \
                       inout(a, lda, m, n), vector_in(tau, k), space(work, m))
VOX_Q(REAL, orgqr, orglq, ORGQR, ORGLQ, org2r, orgl2, ORG2R, ORGL2)
VOX_Q(COMPLEX, ungqr, unglq, UNGQR, UNGLQ, ung2r, ungl2, UNG2R, UNGL2)
#undef VOX_Q

// Q, or its (conjugate) transpose, times a matrix C. length, others: the sizes of C in the direction
// that Q has, and in the other.
#define VOX_LENGTH (is(side, 'L') ? m : n)
#define VOX_OTHERS (is(side, 'L') ? n : m)
#define VOX_Q_TIMES(types, qr, lq, QR, LQ, qr2, lq2, QR2, LQ2)                                     \
    VOX_LAPACK(types, ormqr, qr, QR, option(side, "LR"), option(trans, "NT", "NC"), size(m),       \
               size(n), size_within(k, VOX_LENGTH), in(a, lda, VOX_LENGTH, k), vector_in(tau, k),  \
               inout(c, ldc, m, n), queried(work, lwork, most(1, VOX_OTHERS)))                     \
    VOX_LAPACK(types, ormlq, lq, LQ, option(side, "LR"), option(trans, "NT", "NC"), size(m),       \
               size(n), size_within(k, VOX_LENGTH), in(a, lda, k, VOX_LENGTH), vector_in(tau, k),  \
               inout(c, ldc, m, n), queried(work, lwork, most(1, VOX_OTHERS)))                     \
    VOX_LAPACK_FORTRAN(types, orm2r, qr2, QR2, option(side, "LR"), option(trans, "NT", "NC"),      \
                       size(m), size(n), size_within(k, VOX_LENGTH), in(a, lda, VOX_LENGTH, k),    \
                       vector_in(tau, k), inout(c, ldc, m, n), space(work, VOX_OTHERS))            \
    VOX_LAPACK_FORTRAN(types, orml2, lq2, LQ2, option(side, "LR"), option(trans, "NT", "NC"),      \
                       size(m), size(n), size_within(k, VOX_LENGTH), in(a, lda, k, VOX_LENGTH),    \
                       vector_in(tau, k), inout(c, ldc, m, n), space(work, VOX_OTHERS))
VOX_Q_TIMES(REAL, ormqr, ormlq, ORMQR, ORMLQ, orm2r, orml2, ORM2R, ORML2)
VOX_Q_TIMES(COMPLEX, unmqr, unmlq, UNMQR, UNMLQ, unm2r, unml2, UNM2R, UNML2)
#undef VOX_Q_TIMES
#undef VOX_LENGTH
#undef VOX_OTHERS
