// strips.hpp - the inner loop of a full tile on this code path: SSE2, 4 x 4 in double precision.
//
// Two-operand instructions destroy a factor. Each value of B, which is packed as a full vector, is copied
// once and destroyed twice, and the last one destroys A's instead: 24 instructions a step, of which 16 are
// arithmetic. B is aligned to its vectors.
#pragma once

#define VOX_COLUMN(S, u, j, s0, s1)                                                                \
    "movups " #u "*64+" #j "*16(%[b]), %[t2]\n\tmovaps %[t2], %[t3]\n\t"                           \
    "mulp" S " %[t0], %[t2]\n\tmulp" S " %[t1], %[t3]\n\t"                                         \
    "addp" S " %[t2], " s0 "\n\taddp" S " %[t3], " s1 "\n\t"
#define VOX_STEP(S, size, u)                                                                       \
    "movups " #u "*32(%[a]), %[t0]\n\tmovups " #u                                                  \
    "*32+16(%[a]), %[t1]\n\t" VOX_COLUMN(S, u, 0, "%0", "%1") VOX_COLUMN(S, u, 1, "%2", "%3")      \
        VOX_COLUMN(S, u, 2, "%4", "%5") "mulp" S " " #u "*64+48(%[b]), %[t0]\n\tmulp" S " " #u     \
                                        "*64+48(%[b]), %[t1]\n\t"                                  \
                                        "addp" S " %[t0], %6\n\taddp" S " %[t1], %7\n\t"
#define VOX_CLEAR                                                                                  \
    "xorps %0, %0\n\txorps %1, %1\n\txorps %2, %2\n\txorps %3, %3\n\t"                             \
    "xorps %4, %4\n\txorps %5, %5\n\txorps %6, %6\n\txorps %7, %7\n\t"
#define VOX_SUMS                                                                                   \
    "=&x"(sums[0]), "=&x"(sums[1]), "=&x"(sums[2]), "=&x"(sums[3]), "=&x"(sums[4]),                \
        "=&x"(sums[5]), "=&x"(sums[6]), "=&x"(sums[7])
#define VOX_A_BYTES "32"
#define VOX_B_BYTES(size) "64"
#include "blas/kernels/strips_loop.hpp"
