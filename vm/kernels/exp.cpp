// exp.cpp - exponentials.
//
// e^x = 2^n e^r, see exponents.hpp, and e^r is a polynomial.
#include "vm/kernels/exp_series.hpp"
#include "vm/kernels/loops.hpp"

VOX_VM_DECLARE_FIX_1(Exp)

namespace {

using vm::vec;

// (e^r - 1 - r) / r^2.
template <int accuracy>
inline vec<double> series(vec<double> r, vec<double> square) {
    if constexpr (accuracy == TQM_HA && vm::steps<double> == 16)
        return vm::growth_series(r, square);
    else
        return vm::exp_series(r, square);
}
template <int accuracy>
inline vec<float> series(vec<float> r, vec<float> square) {
    if constexpr (vm::steps<float> == 16) // r^2 of it within 2^-29.2
        return vm::polynomial(r, square, {0x1.00022p-1, 0x1.555764p-3});
    else if constexpr (accuracy == TQM_HA) // within 2^-28.2
        return vm::polynomial(
            r, square, {0x1p-1, 0x1.55548ep-3, 0x1.55545cp-5, 0x1.123bdep-7, 0x1.6db4f4p-10});
    else // within 2^-23.3
        return vm::polynomial(r, square,
                              {0x1.fffdc2p-2, 0x1.55543cp-3, 0x1.573c06p-5, 0x1.126c5p-7});
}

// 2^n e^r.
template <int accuracy, class V>
inline V accurate_exp(V x, V t) {
    using T = vm::element<V>;
    const auto reduced = vm::from_step(x, t);
    const V r = reduced.head - reduced.tail, square = r * r, rest = series<accuracy>(r, square);
    if constexpr (vm::steps<T> != 1) {
        const auto power = vm::two_to(t);
        const V first = accuracy == TQM_HA ? r + power.tail : r;
        return vm::fma(power.head, vm::fma(square, rest, first), power.head);
    } else if constexpr (accuracy == TQM_HA) {
        const V sum = reduced.head + T(1), lost = reduced.head - (sum - T(1));
        return vm::times_two_to(sum + (lost + (square * rest - reduced.tail)), t);
    } else {
        return vm::times_two_to(vm::fma(square, rest, r) + T(1), t);
    }
}
template <class V>
inline V rough_exp(V x, V t) {
    using T = vm::element<V>;
    const V r = vm::roughly_from_step(x, t);
    if constexpr (vm::steps<T> == 1) { // within 2^-11.1 of it, and 1 where r is 0
        return vm::times_two_to(
            vm::polynomial(r, r * r, {1.0, 0x1.00f7b2p0, 0x1.01ec2ap-1, 0x1.006f42p-3}), t);
    } else {
        const V power = vm::two_to(t).head;
        if constexpr (sizeof(T) == 4) // within 2^-12
            return vm::fma(power, r, power);
        else
            return vm::fma(power * r, vm::rough_exp_series(r), power);
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
