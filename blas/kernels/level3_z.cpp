// level3_z.cpp - level 3 in this precision.
#include "blas/kernels/level3.hpp"

VOX_LEVEL3(z, vox_complex_double)
VOX_GEMM_PARTS(z, vox_complex_double, VOX_TILE_z)
