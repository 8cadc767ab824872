// power_vectors.hpp - powers of vectors: the arithmetic and the tables of a kernel set, and the lanes that are rare.
#pragma once

#include "vm/kernels/masks.hpp"
#include "vm/power.hpp"
#include "vm/power_tables.hpp"

namespace {
namespace vm {

#if defined(__AVX512F__)
// As vox_vm_power_log and vox_vm_power_exp, for 16 intervals, or 32 of the exact logarithm, and by columns: the entries
// of all lanes come out of two or four registers. Each m c - 1 is exact.
struct power_columns {
    alignas(64) static constexpr double short_log[2][16] = {
        {0x1.7p0, 0x1.6p0, 0x1.58p0, 0x1.48p0, 0x1.38p0, 0x1.3p0, 0x1.28p0, 0x1.18p0, 0x1.1p0,
         0x1.08p0, 0x1p0, 0x1.ep-1, 0x1.c8p-1, 0x1.bp-1, 0x1.98p-1, 0x1.88p-1},
        {-0x1.0c10500d63aa6p-1, -0x1.d6753e032ea0fp-2, -0x1.b47ebf73882a1p-2, -0x1.6e221cd9d0cdep-2,
         -0x1.24407ab0e073ap-2, -0x1.fbc16b902680ap-3, -0x1.acf5e2db4ec94p-3, -0x1.08c588cda79e4p-3,
         -0x1.663f6fac91316p-4, -0x1.6bad3758efd87p-5, 0, 0x1.7d60496cfbb4cp-4,
         0x1.563dc29ffacb2p-3, 0x1.f5fd8a9063e35p-3, 0x1.4f6fbb2cec598p-2, 0x1.8a8980abfbd32p-2}};
    alignas(64) static constexpr double log[3][32] = {
        {0x1.74p0,  0x1.6cp0,  0x1.64p0, 0x1.5cp0,  0x1.54p0,  0x1.5p0,  0x1.48p0,  0x1.4p0,
         0x1.3cp0,  0x1.34p0,  0x1.3p0,  0x1.28p0,  0x1.24p0,  0x1.2p0,  0x1.1cp0,  0x1.14p0,
         0x1.1p0,   0x1.0cp0,  0x1.08p0, 0x1.04p0,  0x1p0,     0x1.fp-1, 0x1.ep-1,  0x1.d4p-1,
         0x1.c8p-1, 0x1.b8p-1, 0x1.bp-1, 0x1.a4p-1, 0x1.98p-1, 0x1.9p-1, 0x1.88p-1, 0x1.7cp-1},
        {-0x1.7eaf83b82bp-2, -0x1.686c81e9b1p-2, -0x1.51aad872ep-2,
         -0x1.3a64c55694p-2, -0x1.22941fbcf8p-2, -0x1.1675cababap-2,
         -0x1.fb9186d5e4p-3, -0x1.c8ff7c79aap-3, -0x1.af3c94e80cp-3,
         -0x1.7ab890210ep-3, -0x1.5ff3070a7ap-3, -0x1.29552f82p-3,
         -0x1.0d77e7cd08p-3, -0x1.e27076e2bp-4,  -0x1.a926d3a4acp-4,
         -0x1.341d7961bcp-4, -0x1.f0a30c0118p-5, -0x1.77458f633p-5,
         -0x1.f829b0e78p-6,  -0x1.fc0a8b0fcp-7,  0,
         0x1.0415d89e78p-5,  0x1.08598b59e4p-4,  0x1.700d30aeacp-4,
         0x1.da72763844p-4,  0x1.365fcb015ap-3,  0x1.5bf406b544p-3,
         0x1.95a5adcf7p-3,   0x1.d1037f2656p-3,  0x1.f991c6cb3cp-3,
         0x1.1178e8227ep-2,  0x1.314f1e1d36p-2},
        {0x1.e4da62d0c25adp-49,  -0x1.2bb110af84054p-44, 0x1.f4bd8db0a7cc1p-44,
         -0x1.7a71cbcd735dp-44,  0x1.a6976f5eb0963p-44,  -0x1.8380e731f55c4p-44,
         0x1.d572aab993c87p-47,  0x1.7794f689f8434p-45,  0x1.a4e633fcd9066p-52,
         0x1.bdb9072534a58p-45,  0x1.8586f183bebf2p-44,  0x1.5b967f4471dfcp-44,
         -0x1.cb2cd2ee2f482p-44, 0x1.a342c2af0003cp-45,  -0x1.563650bd22a9cp-44,
         -0x1.1d0929983761p-44,  0x1.d599e83368e91p-45,  0x1.181dce586af09p-44,
         -0x1.980267c7e09e4p-45, -0x1.f1e7cf6d3a69cp-50, 0,
         -0x1.dddc7f461c516p-44, -0x1.7e5dd7009902cp-46, 0x1.c1e8da99ded32p-49,
         0x1.a89401fa71733p-46,  -0x1.fd3a0afb9691bp-44, -0x1.27023eb68981cp-46,
         0x1.7f22858a0ff6fp-47,  -0x1.84a7e75b6f6e4p-47, -0x1.90d04cd7cc834p-44,
         0x1.1ef78ce2d07f2p-44,  -0x1.8e27ad3213cb8p-45}};
    alignas(64) static constexpr double exp[2][16] = {
        {0x1p0, 0x1.fb5586cf9890fp-1, 0x1.f72b83c7d517bp-1, 0x1.f387a6e756238p-1,
         0x1.f06fe0a31b715p-1, 0x1.edea64c123422p-1, 0x1.ebfdad5362a27p-1, 0x1.eab07dd485429p-1,
         0x1.ea09e667f3bcdp-1, 0x1.ea11473eb0187p-1, 0x1.eace5422aa0dbp-1, 0x1.ec49182a3f09p-1,
         0x1.ee89f995ad3adp-1, 0x1.f199bdd85529cp-1, 0x1.f5818dcfba487p-1, 0x1.fa4afa2a490dap-1},
        {0, 0x1.79aa65d837b6dp-54, -0x1.01b15eaa59348p-55, 0x1.68efde3a8a894p-54,
         0x1.34d754db0abb6p-55, 0x1.59f48a72a4c6dp-55, 0x1.690cebb7aafbp-56, 0x1.063e1e21c5409p-54,
         -0x1.3b3efbf5e2228p-54, -0x1.b32dcb94da51dp-56, 0x1.db72fc1f0eab4p-55,
         0x1.1affc2b91ce27p-56, 0x1.c1a7792cb3387p-55, 0x1.36eae30af0cb3p-56, 0x1.4a385a63d07a7p-56,
         -0x1.ff7128fd391fp-55}};
};
#endif

struct vector_arithmetic {
    using real = vec<double>;
    using bits = vec<uint64_t>;
    static constexpr bool fused = vm::fused;
    static real fma(real a, real b, real c) { return vm::fma(a, b, c); }

#if defined(__AVX512F__)
    static constexpr int log_bits(power_goal goal) { return is_exact(goal) ? 5 : 4; }
    static constexpr int table_bits = 4;
    static real real_exponent(bits x) {
        return _mm512_maskz_getexp_pd(0xFF, __m512d(x)); // gcc warns about the plain one
    }
    static real entry(const double (&column)[16], bits i) { return entry_of_16(column, i); }
    static real entry_of_16(const double *column, bits i) {
        return _mm512_permutex2var_pd(simd::load(column), __m512i(i), simd::load(column + 8));
    }
    static real entry(const double (&column)[32], bits i) {
        const __mmask8 upper = _mm512_test_epi64_mask(__m512i(i), __m512i(bits{} + 16));
        return select(upper, entry_of_16(column + 16, i), entry_of_16(column, i));
    }
    struct log_rows {
        bits i;
        explicit log_rows(bits index) : i(index) {}
        void entry(real &c, real &log2) const {
            c = vector_arithmetic::entry(power_columns::short_log[0], i);
            log2 = vector_arithmetic::entry(power_columns::short_log[1], i);
        }
        void entry(real &c, real &high, real &low) const {
            c = vector_arithmetic::entry(power_columns::log[0], i);
            high = vector_arithmetic::entry(power_columns::log[1], i);
            low = vector_arithmetic::entry(power_columns::log[2], i);
        }
    };
    static real exp_power(bits n) { return entry(power_columns::exp[0], n); }
    static void exp_entry(bits i, real &power, real &tail) {
        power = entry(power_columns::exp[0], i);
        tail = entry(power_columns::exp[1], i);
    }
#else
    static constexpr int log_bits(power_goal) { return 7; }
    static constexpr int table_bits = 7;
    static real real_exponent(bits x) {
        return real((x >> 52) | 0x4330000000000000) - (0x1p52 + 1023);
    }
    // The lanes as scalars, by what takes the fewest cycles until they can be used.
    static void spill(bits i, uint64_t (&at)[lanes<double>]) {
#if defined(__AVX__)
        const __m128i low = _mm256_castsi256_si128(__m256i(i)),
                      high = _mm256_extractf128_si256(__m256i(i), 1);
        at[0] = uint64_t(_mm_cvtsi128_si64(low));
        at[1] = uint64_t(_mm_extract_epi64(low, 1));
        at[2] = uint64_t(_mm_cvtsi128_si64(high));
        at[3] = uint64_t(_mm_extract_epi64(high, 1));
#else
        at[0] = uint64_t(_mm_cvtsi128_si64(__m128i(i)));
        at[1] = uint64_t(_mm_cvtsi128_si64(_mm_shuffle_epi32(__m128i(i), 0xEE)));
#endif
    }
    static void spill(vec<uint32_t> i, uint32_t (&at)[lanes<float>]) {
#if defined(__AVX__)
        alignas(simd::vector_bytes) uint32_t memory[lanes<float>];
        simd::store(memory, i);
        simd::in_memory(memory);
        for (int lane = 0; lane < lanes<float>; ++lane)
            at[lane] = memory[lane];
#else
        uint64_t pair[2];
        spill(bits(i), pair);
        at[0] = uint32_t(pair[0]), at[1] = uint32_t(pair[0] >> 32);
        at[2] = uint32_t(pair[1]), at[3] = uint32_t(pair[1] >> 32);
#endif
    }
    // Two neighbours of each row come by one load.
    static void pairs(const double *const (&row)[lanes<double>], int first, real &a, real &b) {
        const auto pair = [&](int lane) { return simd::load<16>(row[lane] + first); };
#if defined(__AVX__)
        const auto r0 = pair(0), r1 = pair(1), r2 = pair(2), r3 = pair(3);
        const real even = __builtin_shufflevector(r0, r2, 0, 1, 2, 3),
                   odd = __builtin_shufflevector(r1, r3, 0, 1, 2, 3);
        a = _mm256_unpacklo_pd(even, odd);
        b = _mm256_unpackhi_pd(even, odd);
#else
        const auto r0 = pair(0), r1 = pair(1);
        a = _mm_unpacklo_pd(r0, r1);
        b = _mm_unpackhi_pd(r0, r1);
#endif
    }
    struct log_rows {
        const double *row[lanes<double>];
        explicit log_rows(bits i) {
            uint64_t at[lanes<double>];
            spill((i << 2) & 127 * 4, at);
            for (int lane = 0; lane < lanes<double>; ++lane)
                row[lane] = vox::vm::vox_vm_power_log[0] + at[lane];
        }
        // Of offsets that are scalars already.
        explicit log_rows(const uint32_t *at) {
            for (int lane = 0; lane < lanes<double>; ++lane)
                row[lane] = vox::vm::vox_vm_power_log[0] + at[lane];
        }
        void entry(real &c, real &log2) const { pairs(row, 0, c, log2); }
        void entry(real &c, real &high, real &low) const {
            real unused;
            pairs(row, 0, c, unused);
            pairs(row, 2, high, low);
        }
    };
    static void exp_entry(bits n, real &power, real &tail) {
        uint64_t at[lanes<double>];
        spill((n << 1) & 127 * 2, at);
        const double *row[lanes<double>];
        for (int lane = 0; lane < lanes<double>; ++lane)
            row[lane] = vox::vm::vox_vm_power_exp[0] + at[lane];
        pairs(row, 0, power, tail);
    }
    static real exp_power(bits n) {
#if defined(__AVX__)
        real power, tail;
        exp_entry(n, power, tail);
        return power;
#else
        uint64_t at[lanes<double>];
        spill((n << 1) & 127 * 2, at);
        const double *table = vox::vm::vox_vm_power_exp[0];
        return _mm_loadh_pd(_mm_load_sd(table + at[0]), table + at[1]);
#endif
    }
#endif
};

// x^y of a normal x > 0 where the result is well within the range of normal numbers. Other lanes are rare.
template <power_goal goal>
VOX_INLINED inline vec<double> power_of(vec<double> x, vec<double> y, mask<double> &rare) {
    using computation = power<vector_arithmetic, goal>;
    const auto parts = computation::split_of(x);
    vec<double> z, result;
    if constexpr (goal == power_goal::ha || goal == power_goal::la) {
        const auto exponent = computation::exponent(parts, y);
        z = exponent.high;
        result = computation::exp(exponent).value();
    } else {
        z = computation::short_exponent(parts, y);
        result = computation::exp2(z);
    }
    // The product that is added last must be a normal number, too.
    constexpr double most = !is_exact(goal) ? 1021 : fused ? 708 : 700;
    rare =
        not_less(simd::abs(z), vec<double>{} + most) | not_less_equal(vec<double>{} + 0x1p-1022, x);
    if constexpr (lanes<double> < 8) // with AVX-512 infinity has an infinite exponent
        rare = either(rare, not_less(x, vec<double>{} + __builtin_inf()));
    return result;
}

} // namespace vm
} // namespace
