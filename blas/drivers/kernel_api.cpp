// kernel_api.cpp - alone in its file, so that a program linked to the static library can replace it.
#include "blas/kernel_api.hpp"

int vox_blas_get_kernel_api_version() { return 1; }
