// quasi_tables.cpp - the standard polynomials and initial direction integers, from rng/tables.
#include "vox/rsk.h"

extern "C" {

#define VOX_ROW(dimension, degree, polynomial, ...) degree,
const int32_t iSobolIrredPolyDeg[39] = {
#include "rng/tables/sobol.inc"
};
const int32_t iNiederrIrredPolyDeg[318] = {
#undef VOX_ROW
#define VOX_ROW(dimension, degree, polynomial) degree,
#include "rng/tables/niederreiter.inc"
};
#undef VOX_ROW

#define VOX_ROW(dimension, degree, polynomial, ...) polynomial,
const uint32_t uSobolIrredPoly[39] = {
#include "rng/tables/sobol.inc"
};
#undef VOX_ROW
#define VOX_ROW(dimension, degree, polynomial) polynomial,
const uint32_t uNiederrIrredPoly[318] = {
#include "rng/tables/niederreiter.inc"
};
#undef VOX_ROW

#define VOX_ROW(dimension, degree, polynomial, ...) __VA_ARGS__,
const uint32_t uSobolMInit[312] = {
#include "rng/tables/sobol.inc"
};
#undef VOX_ROW
}
