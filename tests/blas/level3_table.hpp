// level3_table.hpp - the routines of level 3, but for batches, for every test of them.
#pragma once

#include "tests/blas/calls.hpp"

namespace test {

// clang-format off
#define LEVEL3_ROUTINES(p)                                                                         \
    ROUTINE(p, gemm, "tvmnKsALBMbCN"), ROUTINE(p, gemmt, "utvnKsALBMbCN"),                         \
    ROUTINE(p, symm, "eumnsALBMbCN"), ROUTINE(p, syrk, "utnKsALbCN"),                              \
    ROUTINE(p, syr2k, "utnKsALBMbCN"), ROUTINE(p, trmm, "eutdmnsALBM"),                            \
    ROUTINE(p, trsm, "eutdmnsALBM")
#define COMPLEX_LEVEL3_ROUTINES(p)                                                                 \
    ROUTINE(p, gemm3m, "tvmnKsALBMbCN"), ROUTINE(p, hemm, "eumnsALBMbCN"),                         \
    ROUTINE(p, herk, "utnKsALbCN"), ROUTINE(p, her2k, "utnKsALBMbCN")
// clang-format on

template <class T>
const std::vector<routine<T>> &level3_routines() {
    static const std::vector<routine<T>> all = [] {
        if constexpr (std::is_same_v<T, float>)
            return std::vector<routine<T>>{LEVEL3_ROUTINES(s)};
        else if constexpr (std::is_same_v<T, double>)
            return std::vector<routine<T>>{LEVEL3_ROUTINES(d)};
        else if constexpr (std::is_same_v<T, vox_complex_float>)
            return std::vector<routine<T>>{LEVEL3_ROUTINES(c), COMPLEX_LEVEL3_ROUTINES(c)};
        else
            return std::vector<routine<T>>{LEVEL3_ROUTINES(z), COMPLEX_LEVEL3_ROUTINES(z)};
    }();
    return all;
}

} // namespace test
