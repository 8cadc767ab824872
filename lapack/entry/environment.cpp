// environment.cpp - the forms of what a program asks about the library: ilaenv and ilaver.
#include "lapack/block_sizes.hpp"
#include "vox/lapack.h"
#include "vox/lapacke.h"

extern "C" vox_int ilaenv_(const vox_int *ispec, const char *name, const char *opts,
                           const vox_int *n1, const vox_int *n2, const vox_int *n3,
                           const vox_int *n4, size_t name_length, size_t opts_length) {
    const vox::index_t wide[] = {*ispec, *n1, *n2, *n3, *n4};
    return vox_int(vox_lapack_ilaenv(wide, name, opts, wide + 1, wide + 2, wide + 3, wide + 4,
                                     name_length, opts_length));
}
VOX_FORTRAN_ALIASES(ilaenv, ILAENV);

// The version of LAPACK whose interface this is.
extern "C" void ilaver_(vox_int *major, vox_int *minor, vox_int *patch) {
    *major = 3;
    *minor = 11;
    *patch = 0;
}
VOX_FORTRAN_ALIASES(ilaver, ILAVER);
extern "C" void LAPACKE_ilaver(vox_int *major, vox_int *minor, vox_int *patch) {
    ilaver(major, minor, patch);
}
