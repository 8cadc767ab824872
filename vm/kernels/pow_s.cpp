// pow_s.cpp - powers in single precision, by doubles.
#include "vm/kernels/loops.hpp"
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
    constexpr int least = 0x3F300000 - (1 << 15);
    const ints from_least = ints(x) - least, k = from_least >> 23;
    const auto m = vm::vec<float>((from_least & 0x7FFFFF) + least);
    alignas(simd::vector_bytes) int32_t at[vm::lanes<float>];
    simd::store(at, (from_least >> 14) & 127 * 4);
    simd::in_memory(at);
    using rows = vm::vector_arithmetic::log_rows;
    return {{vm::widen_low(k), vm::widen_low(m), rows(at)},
            {vm::widen_high(k), vm::widen_high(m), rows(at + vm::lanes<double>)}};
}
#endif

constexpr float most = 125; // of the result's exponent

// x^y of a normal x > 0 where the result is well within the range of normal numbers. Other lanes are rare.
template <uint32_t accuracy>
VOX_INLINED inline vm::vec<float> by_doubles(vm::vec<float> x, vm::vec<float> y,
                                             vm::mask<float> &rare) {
    constexpr auto goal =
        accuracy == TQM_HA ? vm::power_goal::single_ha : vm::power_goal::single_la;
    using computation = vm::power<vm::vector_arithmetic, goal>;
    const auto parts = split<computation>(x);
    const auto z_low = computation::short_exponent(parts.low, vm::widen_low(y));
    const auto z_high = computation::short_exponent(parts.high, vm::widen_high(y));
    const vm::vec<double> limit = vm::vec<double>{} + most;
    rare = vm::either(vm::narrow_masks(vm::not_less(simd::abs(z_low), limit),
                                       vm::not_less(simd::abs(z_high), limit)),
                      vm::either(vm::not_less_equal(vm::vec<float>{} + 0x1p-126f, x),
                                 vm::not_less(x, vm::vec<float>{} + __builtin_inff())));
    return vm::narrow(computation::exp2(z_low).value(), computation::exp2(z_high).value());
}

template <class T, uint32_t accuracy>
struct pow {
    static constexpr int vectors = 1;
    VOX_VM_FIX(Pow)
    VOX_INLINED vm::vec<T> operator()(vm::vec<T> x, vm::vec<T> y, vm::mask<T> &rare) const {
        return by_doubles<accuracy>(x, y, rare);
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
        return by_doubles<accuracy>(x, vm::vec<T>{} + y, rare);
    }
};

} // namespace

VOX_VM_KERNELS_2I_1O(s, float, Pow, pow)
VOX_VM_KERNELS_1I_1O_FIXED(s, float, Powx, powx)
