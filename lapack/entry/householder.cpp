// householder.cpp - the forms of single reflectors and of blocks of them.
#include "lapack/drivers/householder.hpp"
#include "lapack/entry/forms.hpp"

VOX_LAPACK_PLAIN(ALL, larfg, larfg, LARFG, integer_in(n), vector_inout(alpha, 1),
                 vector_inout(x, n - 1, incx), integer_in(incx), vector_out(tau, 1))
VOX_LAPACK_QUIET_FORTRAN(ALL, larf, larf, LARF, letter(side), integer_in(m), integer_in(n),
                         vector_in(v, is(side, 'L') ? m : n, incv), integer_in(incv),
                         scalar_in(tau), kept(c, ldc, m, n), space(work, is(side, 'L') ? n : m))
VOX_LAPACK_QUIET(ALL, larft, larft, LARFT, letter(direct), letter(storev), integer_in(n),
                 integer_in(k),
                 in_reflectors(v, ldv, direct, storev, is(storev, 'C') ? n : k,
                               is(storev, 'C') ? k : n),
                 vector_in(tau, k), kept(t, ldt, k, k))
VOX_LAPACK_QUIET(ALL, larfb, larfb, LARFB, letter(side), letter(trans), letter(direct),
                 letter(storev), integer_in(m), integer_in(n), integer_in(k),
                 in_reflectors(v, ldv, direct, storev,
                               is(storev, 'C') ? (is(side, 'L') ? m : n) : k,
                               is(storev, 'C') ? k : (is(side, 'L') ? m : n)),
                 in_triangle(t, ldt, is(direct, 'F') ? 'U' : 'L', 'N', k), inout(c, ldc, m, n),
                 space_rows(work, ldwork, is(side, 'L') ? n : m, k))
