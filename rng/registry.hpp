// registry.hpp - the generators: their properties, and how identifiers name them.
//
// An identifier is (row + 1) << 20 | member of the family; numbers below 0x100000 are an older numbering,
// in which 0 to 3 are rows 0 to 3, 4 to 276 the members of WH, 277 SOBOL and 278 NIEDERR.
//
// The rows of the library's own generators are made by code rather than kept in a table, whose pointers
// would be relocated at every load.
#pragma once

#include "rng/stream.hpp"

namespace vox::rng {

using init_routine = int(int method, stream *s, int n, const uint32_t *params);
using single_routine = int(stream *s, int n, float *r, float a, float b);
using double_routine = int(stream *s, int n, double *r, double a, double b);
using integer_routine = int(stream *s, int n, uint32_t *r);

struct brng_properties {
    int32_t stream_size;   // bytes of the whole stream object
    int32_t seed_words;    // words of state
    int32_t includes_zero; // 1: the integer output can be 0
    int32_t word_size;     // bytes of one integer output: 4, 8 or 16
    int32_t bits;          // significant ones in an output word
    init_routine *init;
    single_routine *singles; // uniform on [a, b)
    double_routine *doubles;
    integer_routine *integers;
};

// X(row, NAME, name, stream size, seed words, includes zero, word size, bits, members)
#define VOX_BRNGS(X)                                                                               \
    X(0, MCG31M1, mcg31m1, 24, 1, 0, 4, 31, 1)                                                     \
    X(1, R250, r250, 1024, 252, 1, 4, 32, 1)                                                       \
    X(2, MRG32K3A, mrg32k3a, 40, 6, 1, 4, 32, 1)                                                   \
    X(3, MCG59, mcg59, 32, 1, 0, 8, 59, 1)                                                         \
    X(4, WH, wh, 48, 4, 1, 16, 24, 273)                                                            \
    X(5, SOBOL, sobol, 11712, 2604, 0, 4, 32, 1)                                                   \
    X(6, NIEDERR, niederr, 84288, 10498, 0, 4, 32, 1)                                              \
    X(7, MT19937, mt19937, 2520, 625, 1, 4, 32, 1)                                                 \
    X(8, MT2203, mt2203, 312, 70, 1, 4, 32, 6024)                                                  \
    X(9, IABSTRACT, iabstract, 48, 0, 1, 4, 32, 1)                                                 \
    X(10, DABSTRACT, dabstract, 64, 0, 1, 4, 32, 1)                                                \
    X(11, SABSTRACT, sabstract, 56, 0, 1, 4, 32, 1)                                                \
    X(12, SFMT19937, sfmt19937, 2536, 625, 1, 4, 32, 1)                                            \
    X(13, NONDETERM, nondeterm, 24, 1, 1, 4, 32, 1)                                                \
    X(14, ARS5, ars5, 72, 8, 1, 4, 32, 1)                                                          \
    X(15, PHILOX4X32X10, philox4x32x10, 64, 8, 1, 4, 32, 1)

#define VOX_BRNG_ROW(row, NAME, ...) NAME = row,
enum brng_row : int { VOX_BRNGS(VOX_BRNG_ROW) built_in_rows };
#undef VOX_BRNG_ROW

// What the library's generators are made of: initialisation in rng/brng/<name>.cpp, and the dispatching
// entries of the kernels that rng/kernels/<name>.cpp compiles once per kernel set.
#define VOX_BRNG_DECLARE(row, NAME, name, ...)                                                     \
    extern "C" {                                                                                   \
    init_routine vox_rng_##name##_init;                                                            \
    single_routine vox_rng_##name##_s;                                                             \
    double_routine vox_rng_##name##_d;                                                             \
    integer_routine vox_rng_##name##_i;                                                            \
    }
VOX_BRNGS(VOX_BRNG_DECLARE)
#undef VOX_BRNG_DECLARE

struct brng_place {
    enum numbering { legacy, current } table;
    int row, member;
    bool operator==(const brng_place &) const = default;
};

brng_place rskGetBrngBaseOffset(int id);
// The same in the newer numbering, for a valid identifier.
brng_place current_place(int id);
int rskIsBrngValid(brng_place place); // 0 or -1000
// Validates and copies the row.
int rskGetBrngProperties(int id, brng_properties *properties);
int rskGetNumRegBrngs();
// The new identifier, or a negative status. Without a lock: before other threads use the registry. Rows stay
// until the process ends.
int rskRegisterBrng(const brng_properties *properties);

} // namespace vox::rng
