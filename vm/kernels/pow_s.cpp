// pow_s.cpp - powers in single precision, by doubles but for the lowest accuracy.
#include "vm/kernels/loops.hpp"
#include "vm/kernels/polynomials.hpp"
#include "vm/kernels/power_vectors.hpp"
#include "vm/kernels/widen.hpp"

VOX_VM_DECLARE_FIX_2(Pow)
VOX_VM_DECLARE_FIX_2(Powx)

namespace {

template <class Computation>
struct halves {
    typename Computation::split low, high;
};

#if defined(__AVX512F__)
template <class Computation>
inline halves<Computation> split(vm::vec<float> x) {
    return {Computation::split_of(vm::widen_low(x)), Computation::split_of(vm::widen_high(x))};
}
#else
// As Computation::split_of, before they are widened.
template <class Computation>
VOX_INLINED inline halves<Computation> split(vm::vec<float> x) {
    using ints = vm::vec<int32_t>;
    constexpr uint32_t least = 0x3F300000 - (1 << 15);
    const ints from_least = ints(vm::vec<uint32_t>(x) - least), k = from_least >> 23;
    const auto m = vm::vec<float>((from_least & 0x7FFFFF) + int(least));
    uint32_t at[vm::lanes<float>];
    vm::vector_arithmetic::spill(vm::vec<uint32_t>((from_least >> 14) & 127 * 4), at);
    using rows = vm::vector_arithmetic::log_rows;
    return {{vm::widen_low(k), vm::widen_low(m), rows(at)},
            {vm::widen_high(k), vm::widen_high(m), rows(at + vm::lanes<double>)}};
}
#endif

// Bases that are no normal numbers, besides powers that are not well within their range.
inline vm::mask<float> outside(vm::vec<float> x, vm::mask<float> too_large) {
#if defined(__AVX512F__)
    return vm::either(too_large, vm::either(vm::not_less_equal(vm::vec<float>{} + 0x1p-126f, x),
                                            vm::not_less(x, vm::vec<float>{} + __builtin_inff())));
#else
    // In one comparison: with this sum the normal numbers' bits are the least integers.
    const auto bits = vm::mask<float>(vm::vec<uint32_t>(x) + 0x7F800000u);
    return too_large | (bits > -0x01000001);
#endif
}
template <class V>
inline auto too_large(V exponent) {
    return vm::not_less(simd::abs(exponent), V{} + 125.0f);
}

template <uint32_t accuracy>
VOX_INLINED inline vm::vec<float> by_doubles(vm::vec<float> x, vm::vec<float> y,
                                             vm::mask<float> &rare) {
    constexpr auto goal =
        accuracy == TQM_HA ? vm::power_goal::single_ha : vm::power_goal::single_la;
    using computation = vm::power<vm::vector_arithmetic, goal>;
    const auto parts = split<computation>(x);
    const auto z_low = computation::short_exponent(parts.low, vm::widen_low(y));
    const auto z_high = computation::short_exponent(parts.high, vm::widen_high(y));
    rare = outside(x, vm::narrow_masks(too_large(z_low), too_large(z_high)));
    return vm::narrow(computation::exp2(z_low), computation::exp2(z_high));
}

// To 12 bits, without tables: with m = 1 + f between 2/3 and 4/3, y log2 x = y (k + log2(1 + f)) = n + s, and the
// relative errors are 2^-19.7 of log2(1 + f), 2^-13.1 of 2^s.
VOX_INLINED inline vm::vec<float> by_floats(vm::vec<float> x, vm::vec<float> y,
                                            vm::mask<float> &rare) {
    constexpr double log2_series[] = {0x1.715472p0,  -0x1.7158b2p-1, 0x1.ec8226p-2, -0x1.6efe78p-2,
                                      0x1.2474d4p-2, -0x1.1eae86p-2, 0x1.f94d9cp-3},
                     exp2_series[] = {1, 0x1.62f6ep-1, 0x1.efff1cp-3, 0x1.c1e5ecp-5};
    constexpr float shift = 0x1.8p23f;
    constexpr uint32_t least = 0x3F2AAAAB;
    using reals = vm::vec<float>;
    using bits = vm::vec<uint32_t>;
    using ints = vm::vec<int32_t>;
    const ints from_least = ints(bits(x) - least);
    const reals k = __builtin_convertvector(from_least >> 23, reals);
    const reals f = reals((from_least & 0x7FFFFF) + int(least)) - 1.0f;
    const reals z = y * vm::fma(f, vm::polynomial(f, f * f, log2_series), k);
    const reals shifted = z + shift, s = z - (shifted - shift);
    rare = outside(x, too_large(z));
    return reals(bits(vm::polynomial(s, s * s, exp2_series)) + (bits(shifted) << 23));
}

template <uint32_t accuracy>
VOX_INLINED inline vm::vec<float> power_of(vm::vec<float> x, vm::vec<float> y,
                                           vm::mask<float> &rare) {
    if constexpr (accuracy == TQM_EP)
        return by_floats(x, y, rare);
    else
        return by_doubles<accuracy>(x, y, rare);
}

template <class T, uint32_t accuracy>
struct pow {
    static constexpr int vectors = 1;
    VOX_VM_FIX(Pow)
    VOX_INLINED vm::vec<T> operator()(vm::vec<T> x, vm::vec<T> y, vm::mask<T> &rare) const {
        return power_of<accuracy>(x, y, rare);
    }
};

template <class T, uint32_t accuracy>
struct powx {
    T y;
    static constexpr int vectors = 1;
    static constexpr bool fixes = true;
    void fix(const T *first, vm::index_t i, T x, T *r) const {
        vox_vm_fix_sPowx(first, i, x, y, r);
    }
    VOX_INLINED vm::vec<T> operator()(vm::vec<T> x, vm::mask<T> &rare) const {
        return power_of<accuracy>(x, vm::vec<T>{} + y, rare);
    }
};

} // namespace

VOX_VM_KERNELS_2I_1O(s, float, Pow, pow)
VOX_VM_KERNELS_1I_1O_FIXED(s, float, Powx, powx)
