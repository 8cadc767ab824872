// study.hpp - data for a linear regression y = b0 + b1 x1 + ..., with certified results if there are any.
//
// A file of comma-separated values: a line with the names of the columns, y first, then a line per observation.
// Lines that begin with # are comments; there, "b2 -0.0358" certifies a coefficient and "residual standard
// deviation 304.85" that.
#pragma once

#include <cmath>
#include <string>
#include <vector>

constexpr double unknown = NAN;

struct study {
    std::string file;
    int m = 0, n = 0;               // observations, coefficients
    std::vector<std::string> names; // of the columns in the file; the first is the response's
    std::vector<double> A, y;       // A by rows; its first column is 1
    std::vector<double> certified;  // coefficients; unknown where the file does not say
    double certified_deviation = unknown;
};

// Throws input_error (text_file.hpp) for what is wrong with the file.
study read_study(const std::string &name);
