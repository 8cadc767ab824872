// scalars.cpp - the forms of what is done with single numbers.
#include "lapack/drivers/scalars.hpp"
#include "lapack/entry/forms.hpp"

VOX_LAPACK_PLAIN_VALUE(REAL, lamch, lamch, LAMCH, letter(cmach))
VOX_LAPACK_PLAIN_VALUE(REAL, lapy2, lapy2, LAPY2, real_in(x), real_in(y))
VOX_LAPACK_PLAIN_VALUE(REAL, lapy3, lapy3, LAPY3, real_in(x), real_in(y), real_in(z))
VOX_LAPACK_PLAIN(ALL, lassq, lassq, LASSQ, integer_in(n), vector_in(x, n, incx), integer_in(incx),
                 real_inout(scale), real_inout(sumsq))

VOX_LAPACK_QUIET_FORTRAN(REAL, ladiv, ladiv, LADIV, real_in(a), real_in(b), real_in(c), real_in(d),
                         real_out(p), real_out(q))
VOX_LAPACK_NUMBER_FORTRAN(COMPLEX, ladiv, ladiv, LADIV, scalar_in(x), scalar_in(y))
VOX_LAPACK_QUIET_FORTRAN(REAL, labad, labad, LABAD, real_inout(small), real_inout(large))
VOX_LAPACK_QUIET_FORTRAN(ALL, lartg, lartg, LARTG, scalar_in(f), scalar_in(g), real_out(c),
                         vector_out(s, 1), vector_out(r, 1))
