// level3_c.cpp - level 3 in this precision.
#include "blas/kernels/level3.hpp"

VOX_LEVEL3(c, vox_complex_float)
VOX_GEMM_PARTS(c, vox_complex_float, VOX_TILE_c)
