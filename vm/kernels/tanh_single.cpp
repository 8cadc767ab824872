// tanh_single.cpp - hyperbolic tangents in single precision.
//
// With AVX-512 from a table of polynomials (tanh_table.hpp); LA is computed as HA, since fewer terms would save little.
// Elsewhere, where a table's rows would be fetched lane by lane, by a quotient of polynomials.
#include <bit>

#include "vm/kernels/loops.hpp"
#include "vm/kernels/polynomials.hpp"
#include "vm/kernels/tanh_table.hpp"
#include "vm/kernels/widen.hpp"

VOX_VM_DECLARE_FIX_1(Tanh)

namespace {

using vm::fma;
using V = vm::vec<float>;

#if defined(__AVX512F__)
using indices = vm::vec<uint32_t>;

// A piece is looked up by the low five bits of the exponent and three first bits of mantissa of |x| + start.
constexpr int index_shift = 20;
constexpr int first_index(float start) {
    return int(std::bit_cast<uint32_t>(start) >> index_shift);
}

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

constexpr lookup_table<8> accurate_table(vm::tanh_accurate, vm::tanh_accurate_start);
constexpr lookup_table<4> rough_table(vm::tanh_rough, vm::tanh_rough_start);

// Of a magnitude. NaN stays a NaN; from the limit on, the result is 1.
template <int accuracy>
inline V of_size(V x) {
    constexpr bool rough = accuracy == TQM_EP;
    constexpr float start = rough ? vm::tanh_rough_start : vm::tanh_accurate_start;
    const V size = vm::min(V{} + (rough ? 7.25f : 12.0f), x);
    const V place = size + start; // rounded: a piece may begin below its first argument
    const auto index = indices(place) >> index_shift;
    if constexpr (rough) {
        V piece[4];
        look_up(rough_table, index, piece);
        const V h = size - piece[0];
        return fma(h, fma(h, piece[3], piece[2]), piece[1]);
    } else {
        V piece[8];
        look_up(accurate_table, index, piece);
        const V h = size - piece[0];
        const V value =
            vm::select(vm::less(place, V{} + (start + vm::tanh_first_end)), h, piece[1]);
        const V k[] = {piece[2], piece[3], piece[4], piece[5], piece[6]};
        return fma(h, vm::polynomial(h, h * h, k), value);
    }
}
#else
// Of a magnitude, by a quotient of polynomials of x^2 with equal constant terms, which make the largest error of the
// result up to 5 or 9 least, by Remez' algorithm with 50 digits or, HA, least squares with Lawson's weights. Their
// coefficients are positive: nothing cancels. The limits lie where the quotient, with all its roundings, is 1.
//
// EP: tanh x = x P / Q. LA and, in double precision, HA: tanh x = 2 t / (1 + t^2) with t = tanh(x/2) = (x/2) P / Q,
// for where P and Q are large, it hardly depends on their roundings, and beside the constant numbers are dense.
template <class W>
inline W from_half(W x_p, W q) {
    return x_p * q / fma(x_p * 0.25f, x_p, q * q);
}
inline vm::vec<double> accurate_quotient(vm::vec<double> x) { // within 2^-32.3
    const auto square = x * x;
    const auto p = vm::polynomial<double>(
        square, {1, 0x1.03a1dcfcea238p-5, 0x1.5a37f3b6aeb85p-13, 0x1.977fa7bdd66bfp-24});
    const auto q = vm::polynomial<double>(
        square, {1, 0x1.d72643941c502p-4, 0x1.738a9cbf242d2p-10, 0x1.8587520cf9983p-19});
    return from_half(x * p, q);
}
template <int accuracy>
inline V of_size(V x) {
    constexpr bool rough = accuracy == TQM_EP;
    const V size = vm::min(V{} + (rough ? 5.25f : 9.25f), x); // NaN stays a NaN
    const V square = size * size;
    if constexpr (rough) { // within 2^-13.7
        const V p = vm::polynomial<float>(square, {1.0f, 0x1.a4cdbcp-4f, 0x1.6367f2p-11f});
        const V q = vm::polynomial<float>(square, {1.0f, 0x1.be4ecp-2f, 0x1.a6d3dap-7f});
        return vm::min(V{} + 1.0f, size * p / q);
    } else if constexpr (accuracy == TQM_LA) { // within 2^-26.1
        const V p = vm::polynomial<float>(square, {1.75f, 0x1.a99f78p-5f, 0x1.9ca80ep-13f});
        const V q =
            vm::polynomial<float>(square, {1.75f, 0x1.95127ap-3f, 0x1.12b90ap-9f, 0x1.17dfaep-19f});
        return vm::min(V{} + 1.0f, from_half(size * p, q));
    } else {
        return vm::narrow(accurate_quotient(vm::widen_low(size)),
                          accurate_quotient(vm::widen_high(size)));
    }
}
#endif

template <class T, int accuracy>
struct tanh {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Tanh)
    V operator()(V x, vm::mask<T> &rare) const {
        rare = vm::subnormal(x);
        return vm::with_sign(of_size<accuracy>(simd::abs(x)), x);
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(s, float, Tanh, tanh)
