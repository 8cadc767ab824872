// directions.hpp - direction numbers: the matrix over GF(2) that makes one coordinate of a digital sequence.
//
// Number i, counted from 0, is what bit i of a vector's number contributes, in units of 2^-32.
#pragma once

#include <stdint.h>

namespace vox::rng {

constexpr int direction_bits = 32;
using directions = uint32_t[direction_bits];

// From a primitive polynomial of degree s up to 31 and s initial integers.
void sobol_directions(uint32_t polynomial, const uint32_t *m, directions &v);
// From an irreducible polynomial of degree up to 31.
void niederreiter_directions(uint32_t polynomial, directions &v);

// m_1 to m_n are odd, and m_i < 2^i.
bool are_initial_integers(const uint32_t *m, int n);
// Over GF(2): no two vectors have the same coordinate.
bool are_independent(const directions &v);

} // namespace vox::rng
