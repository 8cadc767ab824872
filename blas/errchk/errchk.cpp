// errchk.cpp - how a bad argument is reported.
#include "blas/errchk/errchk.hpp"

#include <string.h>

#include "vox/service.h"

namespace vox::errchk {

// Routine names are reported blank-padded to six characters, as Fortran programs expect them.
[[gnu::cold]] int report_bad(const char *routine, int bad) {
    char name[] = "      ";
    static_assert(sizeof name == 7);
    const size_t length = strlen(routine);
    const vox_int code = bad;
    vox_serv_set_xerbla_interface(cdecl_xerbla);
    if (length < 6)
        vox_serv_xerbla(static_cast<const char *>(memcpy(name, routine, length)), &code, 6);
    else
        vox_serv_xerbla(routine, &code, int(length));
    return 1;
}

} // namespace vox::errchk
