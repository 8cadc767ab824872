// strips.hpp - the inner loop of a full tile on this code path: AVX, 8 x 4 in double precision.
//
// 22 instructions a step, of which 16 are arithmetic.
#pragma once

#define VOX_COLUMN(S, size, u, j, s0, s1)                                                          \
    "vbroadcasts" S " (" #u "*4+" #j ")*" size "(%[b]), %[t2]\n\t"                                 \
    "vmulp" S " %[t0], %[t2], %[t3]\n\tvmulp" S " %[t1], %[t2], %[t2]\n\t"                         \
    "vaddp" S " %[t3], " s0 ", " s0 "\n\tvaddp" S " %[t2], " s1 ", " s1 "\n\t"
#define VOX_STEP(S, size, u)                                                                       \
    "vmovups " #u "*64(%[a]), %[t0]\n\tvmovups " #u                                                \
    "*64+32(%[a]), %[t1]\n\t" VOX_COLUMN(S, size, u, 0, "%0", "%1")                                \
        VOX_COLUMN(S, size, u, 1, "%2", "%3") VOX_COLUMN(S, size, u, 2, "%4", "%5")                \
            VOX_COLUMN(S, size, u, 3, "%6", "%7")
#define VOX_CLEAR                                                                                  \
    "vxorps %0, %0, %0\n\tvxorps %1, %1, %1\n\tvxorps %2, %2, %2\n\tvxorps %3, %3, %3\n\t"         \
    "vxorps %4, %4, %4\n\tvxorps %5, %5, %5\n\tvxorps %6, %6, %6\n\tvxorps %7, %7, %7\n\t"
#define VOX_SUMS                                                                                   \
    "=&x"(sums[0]), "=&x"(sums[1]), "=&x"(sums[2]), "=&x"(sums[3]), "=&x"(sums[4]),                \
        "=&x"(sums[5]), "=&x"(sums[6]), "=&x"(sums[7])
#define VOX_A_BYTES "64"
#define VOX_B_BYTES(size) "4*" size
#include "blas/kernels/strips_loop.hpp"
