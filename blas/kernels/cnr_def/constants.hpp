// constants.hpp - as def.
#include "blas/kernels/def/constants.hpp"
