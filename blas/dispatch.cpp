// dispatch.cpp - the dispatching entries of the BLAS: one line per routine.
#include "serv/dispatch.hpp"

#include "blas/blas.hpp"

VOX_DISPATCH(blas, ddot, double, VOX_DOT_PARAMETERS(double), VOX_DOT_ARGUMENTS)
