// level3_s.cpp - level 3 in this precision.
#include "blas/kernels/level3.hpp"

VOX_LEVEL3(s, float)
VOX_KEPT_FACTORS(s, float)
VOX_GEMM_PARTS(s, float, VOX_TILE_s)
