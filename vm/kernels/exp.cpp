// exp.cpp - exponentials.
//
// e^x = 2^n e^r, see exponents.hpp, and e^r is a polynomial.
#include "vm/kernels/exp_series.hpp"
#include "vm/kernels/loops.hpp"

VOX_VM_DECLARE_FIX_1(Exp)

namespace {

using vm::vec;

// 2^n e^r.
template <int accuracy, class V>
inline V accurate_exp(V x, V t) {
    using T = vm::element<V>;
    const auto reduced = vm::from_step(x, t);
    const V r = reduced.head - reduced.tail, square = r * r,
            series = vm::exp_series<accuracy>(r, square);
    if constexpr (vm::steps<T> != 1) {
        const auto power = vm::two_to(t);
        const V first = accuracy == TQM_HA ? r + power.tail : r;
        return vm::fma(power.head, vm::fma(square, series, first), power.head);
    } else if constexpr (accuracy == TQM_HA) {
        const V sum = reduced.head + T(1), rest = reduced.head - (sum - T(1));
        return vm::times_two_to(sum + (rest + (square * series - reduced.tail)), t);
    } else {
        return vm::times_two_to(vm::fma(square, series, r) + T(1), t);
    }
}
template <class V>
inline V rough_exp(V x, V t) {
    using T = vm::element<V>;
    const V r = vm::roughly_from_step(x, t);
    if constexpr (vm::steps<T> == 1) { // within 2^-13.7 of it
        return vm::times_two_to(
            vm::polynomial(r, r * r, {0x1.fff68ap-1, 0x1.000acep+0, 0x1.028bd6p-1, 0x1.5348ecp-3}),
            t);
    } else {
        const V power = vm::two_to(t).head;
        if constexpr (sizeof(T) == 4) // within 2^-12
            return vm::fma(power, r, power);
        else
            return vm::fma(power * r, vm::rough_series(r), power);
    }
}

template <class T, int accuracy>
struct exp {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Exp)
    vec<T> operator()(vec<T> x, vm::mask<T> &rare) const {
        // Where the result and 2^n are normal and, where it is rounded, so is 2^n (e^r - 1).
        constexpr double bound = sizeof(T) == 4 ? 87.33 : vm::fused ? 708.39 : 690;
        rare = vm::not_less_equal(simd::abs(x), vec<T>{} + T(bound));
        const vec<T> t = vm::nearest_step(x);
        if constexpr (accuracy == TQM_EP)
            return rough_exp(x, t);
        else
            return accurate_exp<accuracy>(x, t);
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(s, float, Exp, exp)
VOX_VM_KERNELS_1I_1O(d, double, Exp, exp)
