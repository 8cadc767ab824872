// triangular.cpp - the forms of what is done with triangular matrices.
#include "lapack/drivers/triangular.hpp"
#include "lapack/entry/forms.hpp"

VOX_LAPACK(ALL, trtri, trtri, TRTRI, option(uplo, "UL"), option(diag, "NU"), size(n),
           inout_triangle(a, lda, uplo, diag, n))
VOX_LAPACK_FORTRAN(ALL, trti2, trti2, TRTI2, option(uplo, "UL"), option(diag, "NU"), size(n),
                   inout_triangle(a, lda, uplo, diag, n))
VOX_LAPACK(ALL, trtrs, trtrs, TRTRS, option(uplo, "UL"), option(trans, "NTC"), option(diag, "NU"),
           size(n), size(nrhs), in_triangle(a, lda, uplo, diag, n), inout(b, ldb, n, nrhs))
