// level3_d.cpp - level 3 in this precision.
#include "blas/kernels/level3.hpp"

VOX_LEVEL3(d, double)
VOX_KEPT_FACTORS(d, double)
VOX_GEMM_PARTS(d, double, VOX_TILE_d)
