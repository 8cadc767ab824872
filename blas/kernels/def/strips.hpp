// strips.hpp - the inner loop of a full tile on this code path: SSE2, 4 x 4 in double precision.
//
// Two-operand instructions destroy a factor. Each value of B, which is packed as a full vector, is copied
// once and destroyed twice, and the last one destroys A's instead: 24 instructions a step, of which 16 are
// arithmetic. B is aligned to its vectors.
#pragma once

namespace {

#define VOX_COLUMN(S, u, j, s0, s1)                                                                \
    "movups " #u "*64+" #j "*16(%[b]), %[t0]\n\tmovaps %[t0], %[t1]\n\t"                           \
    "mulp" S " %[x0], %[t0]\n\tmulp" S " %[x1], %[t1]\n\t"                                         \
    "addp" S " %[t0], " s0 "\n\taddp" S " %[t1], " s1 "\n\t"
#define VOX_LAST_COLUMN(S, u, s0, s1)                                                              \
    "mulp" S " " #u "*64+48(%[b]), %[x0]\n\tmulp" S " " #u "*64+48(%[b]), %[x1]\n\t"               \
    "addp" S " %[x0], " s0 "\n\taddp" S " %[x1], " s1 "\n\t"
#define VOX_STEP(S, u)                                                                             \
    "movups " #u "*32(%[a]), %[x0]\n\tmovups " #u                                                  \
    "*32+16(%[a]), %[x1]\n\t" VOX_COLUMN(S, u, 0, "%0", "%1") VOX_COLUMN(S, u, 1, "%2", "%3")      \
        VOX_COLUMN(S, u, 2, "%4", "%5") VOX_LAST_COLUMN(S, u, "%6", "%7")
#define VOX_STRIPS(S)                                                                              \
    __asm__ volatile(                                                                              \
        "xorps %0, %0\n\txorps %1, %1\n\txorps %2, %2\n\txorps %3, %3\n\t"                         \
        "xorps %4, %4\n\txorps %5, %5\n\txorps %6, %6\n\txorps %7, %7\n\t"                         \
        "sub $4, %[n]\n\tjl 2f\n\t"                                                                \
        ".p2align 5\n"                                                                             \
        "1:\n\tprefetcht1 (%[next])\n\t" VOX_STEP(S, 0) VOX_STEP(S, 1) VOX_STEP(S, 2)              \
            VOX_STEP(S, 3) "add $4*32, %[a]\n\tadd $64*4, %[b]\n\tadd $32, %[next]\n\t"            \
                           "sub $4, %[n]\n\tjge 1b\n"                                              \
                           "2:\n\tadd $4, %[n]\n\tjz 4f\n"                                         \
                           "3:\n\t" VOX_STEP(                                                      \
                               S, 0) "add $32, %[a]\n\tadd $64*1, %[b]\n\tdec %[n]\n\tjnz 3b\n"    \
                                     "4:\n\t"                                                      \
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
        VOX_STRIPS("d");
    else
        VOX_STRIPS("s");
}

#undef VOX_STRIPS
#undef VOX_STEP
#undef VOX_LAST_COLUMN
#undef VOX_COLUMN

} // namespace
