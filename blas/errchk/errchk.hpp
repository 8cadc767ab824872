// errchk.hpp - argument checks: the rules of the reference BLAS, in its order, with its parameter
// numbers.
#pragma once

#include "serv/base.hpp"

namespace vox::errchk {

// Reports parameter number `bad` of the routine through the error handler in force (that of the
// Fortran interface if none is registered). Returns 1.
int report_bad(const char *routine, int bad);

// For a checker: 0 when nothing is bad.
[[gnu::always_inline]] inline int report(const char *routine, int bad) {
    return VOX_LIKELY(bad == 0) ? 0 : report_bad(routine, bad);
}

} // namespace vox::errchk
