// solvers.hpp - the compared factorisations and solvers of LAPACK: what each is given, how it is
// called, and whether its result solves the problem.
#pragma once

#include "bench/peers/peers.hpp"

#include <span>
#include <string>
#include <vector>

namespace peers {

// A routine in one type, on a matrix of m rows and n columns; all but getrf, geqrf and gels take
// square ones only.
struct problem_shape {
    size_t type; // index into type_letters
    int m, n;
};

struct solver {
    const char *name;   // as "gesv_100", with the number of right-hand sides
    const char *symbol; // as "gesv"
    bool square;        // m = n only

    // Of a call with real operands; a complex one has four times as many.
    double (*operations)(double m, double n);

    // Of the function's result, in units of rounding: eps times norms. Inversions begin with the
    // factors that the helper computes. Infinite if the function reports a failure.
    double (*residual)(const problem_shape &shape, void *function, const library &helper);

    // Best seconds per call of each function.
    std::vector<double> (*seconds)(const problem_shape &shape, const std::vector<void *> &functions,
                                   const library &helper, effort allowed);

    std::string symbol_in(size_t type) const { return type_letters[type] + std::string(symbol); }
};

std::span<const solver> solvers();

} // namespace peers
