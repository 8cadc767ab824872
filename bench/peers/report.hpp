// report.hpp - what a comparison prints: a line per case, and what the ratios come to per routine.
#pragma once

#include "bench/peers/peers.hpp"

#include <cstdio>
#include <string>
#include <vector>

namespace peers {

// What one case comes to.
struct measured {
    std::string routine, name; // in the table, as "gemv_n"; and in one type, as "dgemv_n"
    size_t type;               // index into type_letters
    std::string size;          // "100"
    double rate;               // of the first candidate, in billions per second
    std::vector<double> times; // of each candidate, 0 where it takes no part
    double share = 0;   // of the processor's peak that the first candidate reaches, in percent
    bool large = false; // of the sizes whose shares are summed up

    // Time of the best of the others over that of the first candidate: above 1 is faster.
    double ratio() const;
};

// Above the lines of a routine in a type; the rate is named by its unit, and shares are printed if
// there are any.
void print_header(const std::string &name, const std::vector<library> &libraries, const char *unit,
                  bool shares);
void print_line(const measured &m);

// A markdown table: geometric means over all sizes per type and over all types, and the minimum.
void print_summary(const std::vector<measured> &all, std::FILE *to);

// The same for the shares of the peak: for each routine and type the lowest of the large cases.
// Nothing if there is none.
void print_shares(const std::vector<measured> &all, std::FILE *to);

// The cases below a ratio, lowest first.
void print_below(double bar, std::vector<measured> all, std::FILE *to);

} // namespace peers
