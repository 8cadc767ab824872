// strips.hpp - the inner loop of a full tile on this code path: AVX, 8 x 4 in double precision.
//
// Four steps a turn, since what drives the loop would cost a fifth of a step; 22 instructions a step,
// of which 16 are arithmetic.
#pragma once

namespace {

#define VOX_COLUMN(S, size, u, j, s0, s1)                                                          \
    "vbroadcasts" S " (" #u "*4+" #j ")*" size "(%[b]), %[t0]\n\t"                                 \
    "vmulp" S " %[x0], %[t0], %[t1]\n\tvmulp" S " %[x1], %[t0], %[t0]\n\t"                         \
    "vaddp" S " %[t1], " s0 ", " s0 "\n\tvaddp" S " %[t0], " s1 ", " s1 "\n\t"
#define VOX_STEP(S, size, u)                                                                       \
    "vmovups " #u "*64(%[a]), %[x0]\n\tvmovups " #u                                                \
    "*64+32(%[a]), %[x1]\n\t" VOX_COLUMN(S, size, u, 0, "%0", "%1")                                \
        VOX_COLUMN(S, size, u, 1, "%2", "%3") VOX_COLUMN(S, size, u, 2, "%4", "%5")                \
            VOX_COLUMN(S, size, u, 3, "%6", "%7")
#define VOX_STRIPS(S, size)                                                                        \
    __asm__ volatile(                                                                              \
        "vxorps %0, %0, %0\n\tvxorps %1, %1, %1\n\tvxorps %2, %2, %2\n\tvxorps %3, %3, %3\n\t"     \
        "vxorps %4, %4, %4\n\tvxorps %5, %5, %5\n\tvxorps %6, %6, %6\n\tvxorps %7, %7, %7\n\t"     \
        "sub $4, %[n]\n\tjl 2f\n\t"                                                                \
        ".p2align 5\n"                                                                             \
        "1:\n\tprefetcht1 (%[next])\n\t" VOX_STEP(S, size, 0) VOX_STEP(S, size, 1)                 \
            VOX_STEP(S, size, 2) VOX_STEP(                                                         \
                S, size, 3) "add $4*64, %[a]\n\tadd $4*" size "*4, %[b]\n\tadd $32, %[next]\n\t"   \
                            "sub $4, %[n]\n\tjge 1b\n"                                             \
                            "2:\n\tadd $4, %[n]\n\tjz 4f\n"                                        \
                            "3:\n\t" VOX_STEP(S, size, 0) "add $64, %[a]\n\tadd $4*" size          \
                                                          "*1, %[b]\n\tdec %[n]\n\tjnz 3b\n"       \
                                                          "4:\n\t"                                 \
        : "=&x"(sums[0]), "=&x"(sums[1]), "=&x"(sums[2]), "=&x"(sums[3]), "=&x"(sums[4]),          \
          "=&x"(sums[5]), "=&x"(sums[6]),                                                          \
          "=&x"(sums[7]), [x0] "=&x"(x0), [x1] "=&x"(x1), [t0] "=&x"(t0), [t1] "=&x"(t1),          \
          [a] "+r"(a), [b] "+r"(b), [next] "+r"(next), [n] "+r"(depth)                             \
        :                                                                                          \
        : "cc", "memory")

template <class R, class NearEnd>
VOX_INLINE void multiply_strips(index_t depth, const R *a, const R *b, const R *next,
                                accumulators<R, tile_vectors, tile_columns> &sums,
                                const NearEnd &near_end) {
    static_assert(tile_vectors == 2 && tile_columns == 4);
    near_end();
    vec<R> x0, x1, t0, t1;
    if constexpr (sizeof(R) == 8)
        VOX_STRIPS("d", "8");
    else
        VOX_STRIPS("s", "4");
}

#undef VOX_STRIPS
#undef VOX_STEP
#undef VOX_COLUMN

} // namespace
