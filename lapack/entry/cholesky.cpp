// cholesky.cpp - the forms of Cholesky factorisation and what is done with it.
#include "lapack/drivers/cholesky.hpp"
#include "lapack/drivers/triangular.hpp"
#include "lapack/entry/forms.hpp"

VOX_LAPACK(ALL, potrf, potrf, POTRF, option(uplo, "UL"), size(n),
           inout_triangle(a, lda, uplo, 'N', n))
VOX_LAPACK_FORTRAN(ALL, potrf, potf2, POTF2, option(uplo, "UL"), size(n),
                   inout_triangle(a, lda, uplo, 'N', n))
VOX_LAPACK(ALL, potrf, potrf2, POTRF2, option(uplo, "UL"), size(n),
           inout_triangle(a, lda, uplo, 'N', n))
VOX_LAPACK(ALL, potrs, potrs, POTRS, option(uplo, "UL"), size(n), size(nrhs),
           in_triangle(a, lda, uplo, 'N', n), inout(b, ldb, n, nrhs))
VOX_LAPACK(ALL, posv, posv, POSV, option(uplo, "UL"), size(n), size(nrhs),
           inout_triangle(a, lda, uplo, 'N', n), inout(b, ldb, n, nrhs))
VOX_LAPACK(ALL, potri, potri, POTRI, option(uplo, "UL"), size(n),
           inout_triangle(a, lda, uplo, 'N', n))
VOX_LAPACK(ALL, lauum, lauum, LAUUM, option(uplo, "UL"), size(n),
           inout_triangle(a, lda, uplo, 'N', n))
