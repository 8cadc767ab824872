// exp.cpp - exponentials.
//
// e^x = 2^n e^r, see exponents.hpp, and e^r - 1 is a polynomial, r + r^2 (c2 + c3 r + ...), whose coefficients make
// the largest error least, by Remez' algorithm with 60 digits.
#include "vm/kernels/exponents.hpp"
#include "vm/kernels/loops.hpp"

VOX_VM_DECLARE_FIX_1(Exp)

namespace {

using vm::vec;

// c0 r^k + c1 r^(k-1) + ...
template <class V, class... C>
VOX_INLINED inline V chain(V r, C... c) {
    V sum{};
    bool first = true;
    ((sum = first ? V{} + vm::element<V>(c) : vm::fma(sum, r, V{} + vm::element<V>(c)),
      first = false),
     ...);
    return sum;
}

// (e^r - 1 - r) / r^2.
template <int accuracy>
inline vec<double> exp_series(vec<double> r) {
    if constexpr (vm::steps<double> == 16) {
        if constexpr (accuracy == TQM_EP)
            return chain(r, 0x1.55555p-3, 0x1p-1);
        else // r^2 of it within 2^-56.2
            return chain(r, 0x1.6c185e5a3a16ep-10, 0x1.11123afbfcf9ap-7, 0x1.555555545e2ebp-5,
                         0x1.555555548f217p-3, 0x1.0000000000005p-1);
    } else {
        if constexpr (accuracy == TQM_EP)
            return chain(r, 0x1p-1);
        else // within 2^-59.3
            return chain(r, 0x1.111126b9975d8p-7, 0x1.555573ce33e92p-5, 0x1.55555555543bbp-3,
                         0x1.fffffffffdbbbp-2);
    }
}
template <int accuracy>
inline vec<float> exp_series(vec<float> r) {
    if constexpr (vm::steps<float> == 16) { // within 2^-29.2
        return chain(r, 0x1.555764p-3, 0x1.00022p-1);
    } else {
        if constexpr (accuracy == TQM_HA) // within 2^-28.2
            return chain(r, 0x1.6db4f4p-10, 0x1.123bdep-7, 0x1.55545cp-5, 0x1.55548ep-3, 0x1p-1);
        else // within 2^-23.3
            return chain(r, 0x1.126c5p-7, 0x1.573c06p-5, 0x1.55543cp-3, 0x1.fffdc2p-2);
    }
}

template <class T, int accuracy>
struct exp {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Exp)
    vec<T> operator()(vec<T> x, vm::mask<T> &rare) const {
        // Where the result and 2^n are normal.
        rare = vm::not_less_equal(simd::abs(x), vec<T>{} + T(sizeof(T) == 4 ? 87.33 : 708.39));
        const vec<T> t = vm::nearest_step(x);
        const auto reduced = vm::from_step(x, t);
        const vec<T> r = reduced.head - reduced.tail, series = exp_series<accuracy>(r);
        if constexpr (vm::steps < T >> 1) {
            const auto power = vm::two_to(t);
            if constexpr (accuracy == TQM_HA)
                return vm::fma(power.head, vm::fma(r * r, series, r + power.tail), power.head);
            else
                return vm::fma(power.head, vm::fma(r * r, series, r), power.head);
        } else if constexpr (accuracy == TQM_HA) {
            const vec<T> sum = reduced.head + T(1), rest = reduced.head - (sum - T(1));
            return vm::times_two_to(sum + (rest + (r * r * series - reduced.tail)), t);
        } else {
            return vm::times_two_to(vm::fma(r * r, series, r) + T(1), t);
        }
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(s, float, Exp, exp)
VOX_VM_KERNELS_1I_1O(d, double, Exp, exp)
