// level3_table.hpp - the routines of level 3, but for batches, for every test of them.
#pragma once

#include "tests/blas/calls.hpp"

namespace test {

// clang-format off
#define LEVEL3_ROUTINES(p)                                                                         \
    ROUTINE(p, gemm, "tvmnKsALBMbCN"), ROUTINE(p, gemmt, "utvnKsALBMbCN"),                         \
    ROUTINE(p, symm, "eumnsALBMbCN"), ROUTINE(p, syrk, "utnKsALbCN"),                              \
    ROUTINE(p, syr2k, "utnKsALBMbCN"), ROUTINE(p, trmm, "eutdmnsALBM"),                            \
    ROUTINE(p, trsm, "eutdmnsALBM"),
#define REAL_LEVEL3_ROUTINES(p)
#define COMPLEX_LEVEL3_ROUTINES(p)                                                                 \
    ROUTINE(p, gemm3m, "tvmnKsALBMbCN"), ROUTINE(p, hemm, "eumnsALBMbCN"),                         \
    ROUTINE(p, herk, "utnKsALbCN"), ROUTINE(p, her2k, "utnKsALBMbCN"),
// clang-format on

ROUTINE_TABLE(level3_routines, LEVEL3_ROUTINES, REAL_LEVEL3_ROUTINES, COMPLEX_LEVEL3_ROUTINES)

} // namespace test
