// condition.cpp - the forms of the condition estimators: rcond, the reciprocal of the condition number.
#include "lapack/drivers/condition.hpp"
#include "lapack/entry/forms.hpp"

VOX_LAPACK(REAL, gecon, gecon, GECON, option(norm, "1OI"), size(n), in(a, lda, n, n),
           norm_in(anorm), real_out(rcond), space(work, 4 * index_t(n)), integer_space(iwork, n))
VOX_LAPACK(COMPLEX, gecon, gecon, GECON, option(norm, "1OI"), size(n), in(a, lda, n, n),
           norm_in(anorm), real_out(rcond), space(work, 2 * index_t(n)),
           real_space(rwork, 2 * index_t(n)))
VOX_LAPACK(REAL, pocon, pocon, POCON, option(uplo, "UL"), size(n),
           in_triangle(a, lda, uplo, 'N', n), norm_in(anorm), real_out(rcond),
           space(work, 3 * index_t(n)), integer_space(iwork, n))
VOX_LAPACK(COMPLEX, pocon, pocon, POCON, option(uplo, "UL"), size(n),
           in_triangle(a, lda, uplo, 'N', n), norm_in(anorm), real_out(rcond),
           space(work, 2 * index_t(n)), real_space(rwork, n))
VOX_LAPACK(REAL, trcon, trcon, TRCON, option(norm, "1OI"), option(uplo, "UL"), option(diag, "NU"),
           size(n), in_triangle(a, lda, uplo, diag, n), real_out(rcond),
           space(work, 3 * index_t(n)), integer_space(iwork, n))
VOX_LAPACK(COMPLEX, trcon, trcon, TRCON, option(norm, "1OI"), option(uplo, "UL"),
           option(diag, "NU"), size(n), in_triangle(a, lda, uplo, diag, n), real_out(rcond),
           space(work, 2 * index_t(n)), real_space(rwork, n))

// Reverse communication: kase says what the caller is to do with x before the next call.
VOX_LAPACK_PLAIN(REAL, lacn2, lacn2, LACN2, integer_in(n), vector_out(v, n), vector_inout(x, n),
                 integer_space(isgn, n), real_inout(est), integer_space(kase, 1),
                 integer_space(isave, 3))
VOX_LAPACK_PLAIN(COMPLEX, lacn2, lacn2, LACN2, integer_in(n), vector_out(v, n), vector_inout(x, n),
                 real_inout(est), integer_space(kase, 1), integer_space(isave, 3))
