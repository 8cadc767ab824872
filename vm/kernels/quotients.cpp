// quotients.cpp - quotients and inverses.
//
// In the highest accuracy the processor divides. Below, where it estimates 1/y to 14 bits: with r the estimate and
// e = 1 - y r, 1/y = r (1 + e)(1 + e^2)..., of which EP takes the first factor (relative error 2^-28), and LA
// both (2^-56, and about 1 ulp from rounding; quotients 2). A single-precision estimate serves as it is for EP.
#include "vm/kernels/estimates.hpp"
#include "vm/kernels/ranges.hpp"

VOX_VM_DECLARE_FIX_2(Div)
VOX_VM_DECLARE_FIX_1(Inv)

namespace {

// LA and EP.
template <class T, int accuracy>
inline vm::vec<T> inverse_of(vm::vec<T> y) {
    using V = vm::vec<T>;
    const V r = vm::inverse_estimate(y);
    if constexpr (accuracy == TQM_EP && sizeof(T) == 4)
        return r;
    const V e = vm::fnma(y, r, V{} + T(1));
    const V better = vm::fma(r, e, r);
    if constexpr (accuracy == TQM_EP || sizeof(T) == 4)
        return better;
    return vm::fma(better, e * e, better);
}

// Whether estimates serve.
template <class T, int accuracy>
constexpr bool estimated = accuracy != TQM_HA &&vm::has_estimates<T> &&
                           (vm::good_estimates || accuracy == TQM_EP);

template <class T, int accuracy>
struct divide {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Div)
    using V = vm::vec<T>;
    V operator()(V x, V y, vm::mask<T> &rare) const {
        if constexpr (estimated<T, accuracy>) {
            const V inverse = inverse_of<T, accuracy>(y), quotient = x * inverse;
            rare = vm::mask<T>(vm::not_surely_normal(quotient) | vm::not_surely_normal(inverse));
            return quotient;
        } else {
            const V quotient = x / y;
            rare = vm::not_surely_normal(quotient);
            return quotient;
        }
    }
    // Zeros divided by normal numbers are zeros.
    vm::mask<T> confirm(V x, V y, vm::mask<T> rare) const {
        return vm::mask<T>(rare & (vm::not_equal(x, V{}) | vm::not_surely_normal(y)));
    }
};

template <class T, int accuracy>
struct invert {
    static constexpr int vectors = 4;
    VOX_VM_FIX(Inv)
    vm::vec<T> operator()(vm::vec<T> x, vm::mask<T> &rare) const {
        vm::vec<T> inverse;
        if constexpr (estimated<T, accuracy>)
            inverse = inverse_of<T, accuracy>(x);
        else
            inverse = T(1) / x;
        rare = vm::not_surely_normal(inverse);
        return inverse;
    }
};

} // namespace

VOX_VM_KERNELS_2I_1O(s, float, Div, divide)
VOX_VM_KERNELS_2I_1O(d, double, Div, divide)
VOX_VM_KERNELS_1I_1O(s, float, Inv, invert)
VOX_VM_KERNELS_1I_1O(d, double, Inv, invert)
