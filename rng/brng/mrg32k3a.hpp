// mrg32k3a.hpp - the combined multiple recursive generator of two recurrences of order 3:
//
//   x_n = (1403580 x_(n-2) - 810728 x_(n-3)) mod m1
//   y_n = (527612 y_(n-1) - 1370589 y_(n-3)) mod m2
//   z_n = (x_n - y_n) mod m1
//
// P. L'Ecuyer, "Good parameters and implementations for combined multiple recursive random number generators",
// Operations Research 47 (1999) 159-164. Period near 2^191.
#pragma once

#include <stdint.h>

namespace vox::rng {

// The last three values, oldest first.
struct mrg32k3a_state {
    uint32_t x[3], y[3];
    static constexpr uint32_t m1 = 4294967087, m2 = 4294944443;
    static constexpr int x2 = 1403580, x3 = 810728, y1 = 527612, y3 = 1370589;
};

// What takes a state 0, distance, .., 15 distance steps on: for each component and row of its matrix, the
// coefficient of each of the three values for every multiple, cut into upper and lower 16 bits, so that sums of
// products with values are exact in doubles.
struct mrg32k3a_jumps {
    static constexpr int multiples = 16;
    float upper[2][3][3][multiples], lower[2][3][3][multiples];
};

// Distances of 8, 32 and 256.
extern const mrg32k3a_jumps mrg32k3a_jumps_of_8, mrg32k3a_jumps_of_32, mrg32k3a_jumps_of_256;

} // namespace vox::rng
