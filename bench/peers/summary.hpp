// summary.hpp - what the measured ratios come to, per routine.
#pragma once

#include "bench/peers/operands.hpp"

#include <cstdio>
#include <vector>

namespace peers {

// Time of the best of the others over that of the first candidate: above 1 is faster. And for level
// 3 the first candidate's share of the processor's peak, in percent.
struct measured {
    const routine *what;
    size_t type;
    extents size;
    double ratio, share;
};

// The name in one type, as "dgemv_n".
std::string case_name(const routine &r, size_t type);

// A markdown table: geometric means over all sizes per type and over all types, and the minimum.
void print_summary(const std::vector<measured> &all, std::FILE *to);

// The same for the shares of the peak: for each routine and type the lowest of those with at
// least the operations of n = 500. Nothing if there is none.
void print_shares(const std::vector<measured> &all, std::FILE *to);

// The cases below a ratio, lowest first.
void print_below(double bar, std::vector<measured> all, std::FILE *to);

} // namespace peers
