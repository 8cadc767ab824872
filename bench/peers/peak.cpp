// peak.cpp - see peak.hpp.
//
// The loops are written out in assembly: the rest of the program is for any processor, and a compiler
// would see through arithmetic that nobody uses. 14 independent chains of fused operations hide a
// latency of 4 cycles at three per cycle; 6 of multiplications (registers 0 to 5) beside 6 of
// additions (10 to 15) a latency of 3 with two units for each. One after the other, not in blocks:
// 7 multiplications before 7 additions reach 95% of what the pairs do on Zen 4.
#include "bench/peers/peak.hpp"

#include <algorithm>
#include <chrono>
#include <iterator>

namespace {

constexpr long rounds = 300000; // about a millisecond

// All registers hold 1 at the start: factors of 1 and growing sums stay normal numbers.
#define LOOP(load, registers, body, end)                                                           \
    [](long count, const void *ones) {                                                             \
        asm volatile(                                                                              \
            ".irp i, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15\n" load                  \
            " (%1), %%" registers "\\i\n.endr\n.p2align 5\n1:\n" body "dec %0\njnz 1b\n" end       \
            : "+r"(count)                                                                          \
            : "r"(ones)                                                                            \
            : "cc", "memory", "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7",      \
              "xmm8", "xmm9", "xmm10", "xmm11", "xmm12", "xmm13", "xmm14", "xmm15");               \
    }
#define FUSED(operation, r)                                                                        \
    ".irp i, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13\n" operation " %%" r "14, %%" r          \
    "15, %%" r "\\i\n.endr\n"
#define SEPARATE_VEX(multiply, add)                                                                \
    ".irp i, 0, 1, 2, 3, 4, 5\n" multiply " %%ymm6, %%ymm\\i, %%ymm\\i\n" add                      \
    " %%ymm6, %%ymm1\\i, %%ymm1\\i\n.endr\n"
#define SEPARATE(multiply, add)                                                                    \
    ".irp i, 0, 1, 2, 3, 4, 5\n" multiply " %%xmm6, %%xmm\\i\n" add " %%xmm6, %%xmm1\\i\n.endr\n"

struct loop {
    void (*run)(long count, const void *ones);
    double operations_per_round;
};

// By the lowest path that has the instructions; single and double.
struct path_loops {
    int path;
    loop loops[2];
};

// clang-format off
constexpr path_loops all_loops[] = {
    {6, {{LOOP("vmovups", "zmm", FUSED("vfmadd231ps", "zmm"), "vzeroupper"), 14 * 2 * 16},
         {LOOP("vmovups", "zmm", FUSED("vfmadd231pd", "zmm"), "vzeroupper"), 14 * 2 * 8}}},
    {5, {{LOOP("vmovups", "ymm", FUSED("vfmadd231ps", "ymm"), "vzeroupper"), 14 * 2 * 8},
         {LOOP("vmovups", "ymm", FUSED("vfmadd231pd", "ymm"), "vzeroupper"), 14 * 2 * 4}}},
    {4, {{LOOP("vmovups", "ymm", SEPARATE_VEX("vmulps", "vaddps"), "vzeroupper"), 12 * 8},
         {LOOP("vmovups", "ymm", SEPARATE_VEX("vmulpd", "vaddpd"), "vzeroupper"), 12 * 4}}},
    {0, {{LOOP("movups", "xmm", SEPARATE("mulps", "addps"), ""), 12 * 4},
         {LOOP("movups", "xmm", SEPARATE("mulpd", "addpd"), ""), 12 * 2}}},
};
// clang-format on

} // namespace

double peers::peak_flops(int path, bool is_double) {
    alignas(64) float singles[16];
    alignas(64) double doubles[8];
    std::fill_n(singles, 16, 1.0F);
    std::fill_n(doubles, 8, 1.0);
    const void *const ones = is_double ? static_cast<const void *>(doubles) : singles;
    const auto *const found = std::find_if(std::begin(all_loops), std::end(all_loops),
                                           [path](const auto &p) { return p.path <= path; });
    const loop &chosen = found->loops[is_double];
    double best = 0;
    for (int run = 0; run < 6; ++run) {
        using clock = std::chrono::steady_clock;
        const auto start = clock::now();
        chosen.run(rounds, ones);
        const std::chrono::duration<double> time = clock::now() - start;
        best = std::max(best, chosen.operations_per_round * double(rounds) / time.count());
    }
    return best;
}
