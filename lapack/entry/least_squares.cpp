// least_squares.cpp - the forms of the least-squares drivers.
#include "lapack/drivers/least_squares.hpp"
#include "lapack/entry/forms.hpp"

VOX_LAPACK(ALL, gels, gels, GELS, option(trans, "NT", "NC"), size(m), size(n), size(nrhs),
           inout(a, lda, m, n), inout(b, ldb, most(m, n), nrhs),
           queried(work, lwork, most(1, least(m, n) + most(least(m, n), index_t(nrhs)))))
