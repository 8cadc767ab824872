// tanh_single.cpp - hyperbolic tangents in single precision.
//
// HA and, with AVX-512, all accuracies come from a table of polynomials (tanh_table.hpp); there LA is computed as HA:
// fewer terms would save little. Elsewhere rows of a table are fetched lane by lane, and a quotient of polynomials
// does for LA and EP.
#include <bit>

#include "vm/kernels/loops.hpp"
#include "vm/kernels/polynomials.hpp"
#include "vm/kernels/tanh_table.hpp"

VOX_VM_DECLARE_FIX_1(Tanh)

namespace {

using vm::fma;
using V = vm::vec<float>;
using indices = vm::vec<uint32_t>;

// A piece is looked up by the low five bits of the exponent and three first bits of mantissa of |x| + start.
constexpr int index_shift = 20;
constexpr int first_index(float start) {
    return int(std::bit_cast<uint32_t>(start) >> index_shift);
}

#if defined(__AVX512F__)
// By columns, which two registers hold.
template <int N>
struct lookup_table {
    alignas(64) float at[N][32];
    constexpr lookup_table(const float (&rows)[32][N], float start) : at() {
        for (int i = 0; i < 32; ++i)
            for (int k = 0; k < N; ++k)
                at[k][(first_index(start) + i) % 32] = rows[i][k];
    }
};
template <int N>
VOX_INLINED inline void look_up(const lookup_table<N> &table, indices index, V (&entries)[N]) {
    simd::unroll<N>([&](auto k) VOX_INLINED {
        entries[k] = _mm512_permutex2var_ps(simd::load(table.at[k]), __m512i(index),
                                            simd::load(table.at[k] + 16));
    });
}
#else
// By rows.
template <int N>
struct lookup_table {
    alignas(16) float at[32][N];
    constexpr lookup_table(const float (&rows)[32][N], float start) : at() {
        for (int i = 0; i < 32; ++i)
            for (int k = 0; k < N; ++k)
                at[(first_index(start) + i) % 32][k] = rows[i][k];
    }
};

template <int N>
VOX_INLINED inline void look_up(const lookup_table<N> &table, indices index, V (&entries)[N]) {
    uint32_t at[simd::lanes<float>];
    simd::store(at, index);
    simd::in_memory(at);
    // Four entries of a lane's row; with AVX beside them those of the fourth lane from it.
    const auto part = [&](int lane, int k) VOX_INLINED {
        const __m128 low = _mm_load_ps(&table.at[at[lane] % 32][k]);
#if defined(__AVX__)
        return _mm256_set_m128(_mm_load_ps(&table.at[at[lane + 4] % 32][k]), low);
#else
        return low;
#endif
    };
    simd::unroll<N / 4>([&](auto quarter) VOX_INLINED {
        constexpr int k = 4 * quarter;
        const V a = part(0, k), b = part(1, k), c = part(2, k), d = part(3, k);
#if defined(__AVX__)
        const __m256d ab = __m256d(_mm256_unpacklo_ps(a, b)),
                      AB = __m256d(_mm256_unpackhi_ps(a, b));
        const __m256d cd = __m256d(_mm256_unpacklo_ps(c, d)),
                      CD = __m256d(_mm256_unpackhi_ps(c, d));
        entries[k] = V(_mm256_unpacklo_pd(ab, cd));
        entries[k + 1] = V(_mm256_unpackhi_pd(ab, cd));
        entries[k + 2] = V(_mm256_unpacklo_pd(AB, CD));
        entries[k + 3] = V(_mm256_unpackhi_pd(AB, CD));
#else
        const __m128d ab = __m128d(_mm_unpacklo_ps(a, b)), AB = __m128d(_mm_unpackhi_ps(a, b));
        const __m128d cd = __m128d(_mm_unpacklo_ps(c, d)), CD = __m128d(_mm_unpackhi_ps(c, d));
        entries[k] = V(_mm_unpacklo_pd(ab, cd));
        entries[k + 1] = V(_mm_unpackhi_pd(ab, cd));
        entries[k + 2] = V(_mm_unpacklo_pd(AB, CD));
        entries[k + 3] = V(_mm_unpackhi_pd(AB, CD));
#endif
    });
}
#endif

constexpr lookup_table<8> accurate_table(vm::tanh_accurate, vm::tanh_accurate_start);
constexpr lookup_table<4> rough_table(vm::tanh_rough, vm::tanh_rough_start);

// Of a magnitude, by a quotient of polynomials of x^2 with equal constant terms, which make the largest error of the
// result up to 5 or 9 least, by Remez' algorithm with 50 digits. Their coefficients are positive: nothing cancels. The
// limits lie where the quotient is 1 or more with all its roundings.
//
// EP: tanh x = x P / Q. LA: tanh x = 2 t / (1 + t^2) with t = tanh(x/2) = (x/2) P / Q, for where P and Q are large,
// it hardly depends on their roundings, and beside the constant numbers are dense.
template <int accuracy>
inline V by_quotient(V x) {
    constexpr bool rough = accuracy == TQM_EP;
    const V size = vm::min(V{} + (rough ? 5.25f : 9.25f), x); // NaN stays a NaN
    const V square = size * size;
    if constexpr (rough) { // within 2^-13.7
        const V p = vm::polynomial<float>(square, {1.0f, 0x1.a4cdbcp-4f, 0x1.6367f2p-11f});
        const V q = vm::polynomial<float>(square, {1.0f, 0x1.be4ecp-2f, 0x1.a6d3dap-7f});
        return vm::min(V{} + 1.0f, size * p / q);
    } else { // within 2^-26.1
        const V p = vm::polynomial<float>(square, {1.75f, 0x1.a99f78p-5f, 0x1.9ca80ep-13f});
        const V q =
            vm::polynomial<float>(square, {1.75f, 0x1.95127ap-3f, 0x1.12b90ap-9f, 0x1.17dfaep-19f});
        const V numerator = size * p;
        return vm::min(V{} + 1.0f, numerator * q / fma(numerator * 0.25f, numerator, q * q));
    }
}

template <class T, int accuracy>
struct tanh {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Tanh)
    V operator()(V x, vm::mask<T> &rare) const {
        rare = vm::subnormal(x);
        if constexpr (accuracy != TQM_HA && sizeof(V) < 64)
            return vm::with_sign(by_quotient<accuracy>(simd::abs(x)), x);
        // NaN stays a NaN. From the limit on, the result is 1.
        constexpr bool rough = accuracy == TQM_EP;
        constexpr float start = rough ? vm::tanh_rough_start : vm::tanh_accurate_start;
        const V size = vm::min(V{} + (rough ? 7.25f : 12.0f), simd::abs(x));
        const V place = size + start; // rounded: a piece may begin below its first argument
        const auto index = indices(place) >> index_shift;
        if constexpr (rough) {
            V piece[4];
            look_up(rough_table, index, piece);
            const V h = size - piece[0];
            return vm::with_sign(fma(h, fma(h, piece[3], piece[2]), piece[1]), x);
        } else {
            V piece[8];
            look_up(accurate_table, index, piece);
            const V h = size - piece[0];
            const V value =
                vm::select(vm::less(place, V{} + (start + vm::tanh_first_end)), h, piece[1]);
            const V k[] = {piece[2], piece[3], piece[4], piece[5], piece[6]};
            return vm::with_sign(fma(h, vm::polynomial(h, h * h, k), value), x);
        }
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(s, float, Tanh, tanh)
