// strips.hpp - as def.
#include "blas/kernels/def/strips.hpp"
