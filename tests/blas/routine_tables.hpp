// routine_tables.hpp - the routines of levels 2 and 3, but for batches, for every test of them.
#pragma once

#include "tests/blas/calls.hpp"

namespace test {

// clang-format off
#define ROUTINES(p)                                                                                \
    ROUTINE(p, gemv, "tmnsALXibYj"), ROUTINE(p, gbmv, "tmnlksALXibYj"),                            \
    ROUTINE(p, trmv, "utdnALXi"), ROUTINE(p, tbmv, "utdnkALXi"), ROUTINE(p, tpmv, "utdnAXi"),      \
    ROUTINE(p, trsv, "utdnALXi"), ROUTINE(p, tbsv, "utdnkALXi"), ROUTINE(p, tpsv, "utdnAXi"),
#define REAL_ROUTINES(p)                                                                           \
    ROUTINE(p, symv, "unsALXibYj"), ROUTINE(p, sbmv, "unksALXibYj"),                               \
    ROUTINE(p, spmv, "unsAXibYj"), ROUTINE(p, ger, "mnsXiYjAL"), ROUTINE(p, syr, "unsXiAL"),       \
    ROUTINE(p, spr, "unsXiA"), ROUTINE(p, syr2, "unsXiYjAL"), ROUTINE(p, spr2, "unsXiYjA"),
#define COMPLEX_ROUTINES(p)                                                                        \
    ROUTINE(p, hemv, "unsALXibYj"), ROUTINE(p, hbmv, "unksALXibYj"),                               \
    ROUTINE(p, hpmv, "unsAXibYj"), ROUTINE(p, geru, "mnsXiYjAL"), ROUTINE(p, gerc, "mnsXiYjAL"),   \
    ROUTINE(p, her, "unsXiAL"), ROUTINE(p, hpr, "unsXiA"), ROUTINE(p, her2, "unsXiYjAL"),          \
    ROUTINE(p, hpr2, "unsXiYjA"), FORTRAN_ROUTINE(p, symv, "unsALXibYj"),                          \
    FORTRAN_ROUTINE(p, spmv, "unsAXibYj"), FORTRAN_ROUTINE(p, syr, "unsXiAL"),                     \
    FORTRAN_ROUTINE(p, spr, "unsXiA"),
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

ROUTINE_TABLE(routines, ROUTINES, REAL_ROUTINES, COMPLEX_ROUTINES)
ROUTINE_TABLE(level3_routines, LEVEL3_ROUTINES, REAL_LEVEL3_ROUTINES, COMPLEX_LEVEL3_ROUTINES)

} // namespace test
