// quasi.hpp - the quasi-random sequences SOBOL and NIEDERR: digital sequences in base 2, in Gray code order.
//
// Vector number n of a sequence of dimension d is, in each coordinate, the xor of those of 32 direction numbers
// v_0, v_1, ... whose bit is set in n ^ n >> 1 (I. A. Antonov, V. M. Saleev, USSR Comput. Math. Math. Phys. 19
// (1979) 252-256). Vector 0, the origin, is left out: a stream begins with vector 1, ends with vector 2^32 - 1
// and delivers the d coordinates of each in turn. No number of SOBOL is 0; in the dimensions of NIEDERR whose
// degree does not divide 32, up to 7 of all its numbers are.
//
// Seed words, for both families:
//
//   d                               the standard tables; a dimension that they lack, and no word, stand for 1
//   d, 0                            the same
//   d, RSK_QUASI_POLYNOMIALS, f, records of the dimensions f, ..., d
//       SOBOL: a primitive polynomial, then as many initial direction integers m_1, m_2, ... as its degree says,
//       odd and m_i < 2^i; the first dimension has none, so f >= 2. NIEDERR: an irreducible polynomial. Both
//       of degree 1 to 31, bit i the coefficient of x^i.
//   d, RSK_QUASI_DIRECTIONS, f, records of the dimensions f, ..., d
//       32 direction numbers v_0, ..., v_31, the fractions v_i 2^-32, linearly independent over GF(2)
//
// Dimensions below f are those of the tables. Anything else is refused with -3, as is a dimension above
// 2896 (SOBOL) or 21040 (NIEDERR), for which a stream has no room.
//
// For speed, vectors come in rows: 2^k at once, k as small as makes a row of 64 numbers or more. Row number m + 1 is
// the xor of row m and one of 32 - k rows, chosen by the trailing zeros of m + 1. The state holds the row of the
// next vector; the other rows are a chunk of data that streams share.
#pragma once

#include "rng/brng/directions.hpp"
#include "rng/chunks.hpp"
#include "vox/rsk.h"

namespace vox::rng {

// What follows from the dimension.
struct quasi_shape {
    uint32_t dimension;
    int log_vectors; // k, of the vectors in a row

    [[gnu::always_inline]] explicit constexpr quasi_shape(uint32_t d)
        : dimension(d), log_vectors(0) {
        while (row_words() < 64)
            ++log_vectors;
    }
    [[gnu::always_inline]] constexpr uint32_t row_words() const { return dimension << log_vectors; }
    [[gnu::always_inline]] constexpr uint32_t stride() const {
        return (row_words() + 15) & ~15u;
    } // whole vectors
    [[gnu::always_inline]] constexpr int differences() const {
        return direction_bits - log_vectors;
    }
    [[gnu::always_inline]] constexpr uint32_t bytes() const {
        return uint32_t(differences() + 1) * stride() * 4;
    }
};

struct quasi_state {
    uint32_t dimension; // 0: seeding failed
    uint32_t vectors;   // delivered whole
    uint32_t position;  // in the next one
    uint32_t zeros[9];
    // The row follows, at byte 64 of the stream, with room for a vector beyond its end.

    static constexpr uint32_t all_vectors = 0xFFFFFFFF;

    [[gnu::always_inline]] uint32_t *row() { return reinterpret_cast<uint32_t *>(this + 1); }
    static constexpr uint32_t most_dimensions(uint32_t stream_bytes) {
        return (stream_bytes - sizeof(stream) - sizeof(quasi_state)) / 4 - 16;
    }
};
static_assert(sizeof(stream) + sizeof(quasi_state) == 64);

// Row 0 of the stream's sequence, then the differences; null for a stream whose seeding failed.
const uint32_t *quasi_rows(quasi_state &state);

} // namespace vox::rng
