// least_squares.cpp - the forms of the least-squares drivers.
#include "lapack/drivers/least_squares.hpp"
#include "lapack/entry/forms.hpp"

VOX_LAPACK(ALL, gels, gels, GELS, option(trans, "NT", "NC"), size(m), size(n), size(nrhs),
           inout(a, lda, m, n), inout(b, ldb, larger(m, n), nrhs),
           queried(work, lwork, larger(1, smaller(m, n) + larger(smaller(m, n), index_t(nrhs)))))
