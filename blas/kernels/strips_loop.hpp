// strips_loop.hpp - the loop of a path's strips.hpp whose steps are assembly: four a turn, since what
// drives the loop would cost a fifth of a step, then the rest one by one.
//
// The path defines, for suffix S ("d", "s") and bytes of a value (size):
//   VOX_STEP(S, size, u)   step u from %[a] and %[b], into the sums %0, %1, ..., with %[t0] to %[t3]
//   VOX_CLEAR              the sums set to zero
//   VOX_SUMS               their operands
//   VOX_A_BYTES, VOX_B_BYTES(size)   what a step takes of A and of B, as text
// They are undefined again here.

namespace {

#define VOX_STRIPS(S, size)                                                                        \
    __asm__ volatile(                                                                              \
        VOX_CLEAR                                                                                  \
        "sub $4, %[n]\n\tjl 2f\n\t"                                                                \
        ".p2align 5\n"                                                                             \
        "1:\n\tprefetcht1 (%[next])\n\t" VOX_STEP(S, size, 0) VOX_STEP(S, size, 1)                 \
            VOX_STEP(S, size, 2)                                                                   \
                VOX_STEP(S, size, 3) "add $4*" VOX_A_BYTES ", %[a]\n\tadd $4*" VOX_B_BYTES(        \
                    size) ", %[b]\n\t"                                                             \
                          "add $32, %[next]\n\tsub $4, %[n]\n\tjge 1b\n"                           \
                          "2:\n\tadd $4, %[n]\n\tjz 4f\n"                                          \
                          "3:\n\t" VOX_STEP(S, size, 0) "add $" VOX_A_BYTES                        \
                                                        ", %[a]\n\tadd $" VOX_B_BYTES(             \
                                                            size) ", %[b]\n\t"                     \
                                                                  "dec %[n]\n\tjnz 3b\n"           \
                                                                  "4:\n\t"                         \
        : VOX_SUMS, [t0] "=&x"(t[0]), [t1] "=&x"(t[1]), [t2] "=&x"(t[2]), [t3] "=&x"(t[3]),        \
          [a] "+r"(a), [b] "+r"(b), [next] "+r"(next), [n] "+r"(depth)                             \
        :                                                                                          \
        : "cc", "memory")

template <class R, class NearEnd>
VOX_INLINE void multiply_strips(index_t depth, const R *a, const R *b, const R *next,
                                accumulators<R, tile_vectors, tile_columns> &sums,
                                const NearEnd &near_end) {
    near_end();
    vec<R> t[4];
    if constexpr (sizeof(R) == 8)
        VOX_STRIPS("d", "8");
    else
        VOX_STRIPS("s", "4");
}

} // namespace

#undef VOX_STRIPS
#undef VOX_B_BYTES
#undef VOX_A_BYTES
#undef VOX_SUMS
#undef VOX_CLEAR
#undef VOX_STEP
#undef VOX_COLUMN
