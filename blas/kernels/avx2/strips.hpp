// strips.hpp - the inner loop of a full tile on this code path: AVX2, 12 x 4 in double precision.
//
// Twelve sums, three vectors of A and one value of B are all sixteen registers, which compilers do not
// manage without spilling; 19 instructions a step, of which 12 are multiply-adds.
#pragma once

#define VOX_COLUMN(S, size, u, j, s0, s1, s2)                                                      \
    "vbroadcasts" S " (" #u "*4+" #j ")*" size "(%[b]), %[t3]\n\t"                                 \
    "vfmadd231p" S " %[t0], %[t3], " s0 "\n\tvfmadd231p" S " %[t1], %[t3], " s1 "\n\t"             \
    "vfmadd231p" S " %[t2], %[t3], " s2 "\n\t"
#define VOX_STEP(S, size, u)                                                                       \
    "vmovups " #u "*96(%[a]), %[t0]\n\tvmovups " #u "*96+32(%[a]), %[t1]\n\t"                      \
    "vmovups " #u "*96+64(%[a]), %[t2]\n\t" VOX_COLUMN(S, size, u, 0, "%0", "%1", "%2")            \
        VOX_COLUMN(S, size, u, 1, "%3", "%4", "%5") VOX_COLUMN(S, size, u, 2, "%6", "%7", "%8")    \
            VOX_COLUMN(S, size, u, 3, "%9", "%10", "%11")
#define VOX_CLEAR                                                                                  \
    "vxorps %0, %0, %0\n\tvxorps %1, %1, %1\n\tvxorps %2, %2, %2\n\tvxorps %3, %3, %3\n\t"         \
    "vxorps %4, %4, %4\n\tvxorps %5, %5, %5\n\tvxorps %6, %6, %6\n\tvxorps %7, %7, %7\n\t"         \
    "vxorps %8, %8, %8\n\tvxorps %9, %9, %9\n\tvxorps %10, %10, %10\n\tvxorps %11, %11, %11\n\t"
#define VOX_SUMS                                                                                   \
    "=&x"(sums[0]), "=&x"(sums[1]), "=&x"(sums[2]), "=&x"(sums[3]), "=&x"(sums[4]),                \
        "=&x"(sums[5]), "=&x"(sums[6]), "=&x"(sums[7]), "=&x"(sums[8]), "=&x"(sums[9]),            \
        "=&x"(sums[10]), "=&x"(sums[11])
#define VOX_A_BYTES "96"
#define VOX_B_BYTES(size) "4*" size
#include "blas/kernels/strips_loop.hpp"
