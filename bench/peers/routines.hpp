// routines.hpp - the compared routines as a table: a further one costs a line in routines.cpp.
#pragma once

#include <span>
#include <string>

namespace peers {

// What stands at each place of a Fortran call.
enum class arg : unsigned char {
    end,
    n,
    one,   // an increment
    lda,   // n
    band,  // diagonals on each side of the main one: min(n / 4, 16)
    ldb,   // 2 band + 1
    alpha, // not 0 or 1
    small, // a factor that may be added very often
    turn,  // a factor of modulus 1
    unity, // beta = 1
    cosine,
    sine,
    x,
    y,
    a,
    uplo,
    trans,
    diag,
    no_transpose,
    transpose,
};

enum class returned : unsigned char { nothing, element, magnitude, index };

// How the matrix is stored, or no matrix.
enum class storage : unsigned char { none, full, triangle, packed, band };

struct routine {
    const char *name;
    const char *symbols[4]; // in s, d, c and z; null where there is none
    returned result;
    storage matrix;
    int passes; // reads and writes of the matrix, or of a vector if there is none
    bool sums;  // whether an element of the result is a sum over n
    arg arguments[14];

    bool is_level1() const { return matrix == storage::none; }
    bool has(arg argument) const;
    size_t argument_count() const;
};

constexpr char type_letters[] = "sdcz";

std::span<const routine> routines();

// Elements that a call reads and writes, operands of lower order neglected.
double traffic(const routine &r, long n);

} // namespace peers
