// matrix_file.hpp - dense matrices from text files.
//
// Matrix Market files (they begin with %%MatrixMarket): array or coordinate, real, integer, complex or pattern
// (whose elements are 1), general, symmetric, skew-symmetric or Hermitian. Others are read as comma-separated
// values, a row of the matrix per line, complex numbers as 1.5-2i, comments after #.
#pragma once

#include <complex>
#include <string>
#include <vector>

struct matrix_file {
    std::string name;
    long size_line = 0; // where the file tells its size
    int rows = 0, columns = 0;
    std::vector<double> real, imaginary; // by columns; imaginary is empty if all numbers are real

    bool is_complex() const { return !imaginary.empty(); }
};

// Throws input_error (text_file.hpp) for what is wrong with the file.
matrix_file read_matrix(const std::string &name);

// Writes an array of real or complex numbers by columns; throws input_error if that fails.
template <class T>
void write_matrix(const std::string &name, int rows, int columns, const std::vector<T> &elements);
