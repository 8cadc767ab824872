// routines.hpp - the compared routines as a table: a further one costs a line in routines.cpp.
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace peers {

// What stands at each place of a Fortran call.
enum class arg : unsigned char {
    end,
    m,
    n,
    k,
    one, // an increment
    lda, // leading dimensions: as many as there are rows
    ldx,
    ldy,
    band,  // diagonals on each side of the main one: min(n / 4, 16)
    ldb,   // 2 band + 1
    alpha, // not 0 or 1
    small, // a factor that may be added very often
    turn,  // a factor of modulus 1
    unity, // beta = 1
    beta,  // 1 unless asked for
    cosine,
    sine,
    a,
    x, // B in level 3
    y, // C in level 3
    uplo,
    trans,
    diag,
    no_transpose,
    transpose,
    left,
    right,
    upper,
    lower,
};

enum class returned : unsigned char { nothing, element, magnitude, index };

// How the matrix is stored, or no matrix, or level 3: all operands are full matrices.
enum class storage : unsigned char { none, full, triangle, packed, band, matrices };

// The sizes of a call; all the same below level 3.
struct extents {
    long m, n, k;

    double volume() const { return double(m) * double(n) * double(k); }
    std::string text() const; // "100" or "4000x64x64"
};

struct routine {
    const char *name;
    const char *symbols[4]; // in s, d, c and z; null where there is none
    returned result;
    storage matrix;
    int passes; // reads and writes of the matrix, or of a vector if there is none
    bool sums;  // whether an element of the result is a sum over n
    arg arguments[14];

    // Of level 3 only: rows and columns of A, B and C as they are stored, and the operations of a
    // call with real operands; a complex one has four times as many.
    const char *stored[3] = {};
    double (*operations)(const extents &) = nullptr;
    bool on_request = false; // not among the usual ones

    int level() const;
    bool has(arg argument) const;
    size_t argument_count() const;
    long rows(arg operand, const extents &size) const;       // a, x or y
    size_t elements(arg operand, const extents &size) const; // a, x or y
    double terms(const extents &size) const; // that an element of the result is the sum of
    double flops(size_t type, const extents &size) const;
};

std::span<const routine> routines();

// The name in one type, as "dgemv_n".
std::string case_name(const routine &r, size_t type);

// Elements that a call reads and writes, operands of lower order neglected.
double traffic(const routine &r, const extents &size);

} // namespace peers
