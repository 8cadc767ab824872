// strips.hpp - as avx512.
#include "blas/kernels/avx512/strips.hpp"
