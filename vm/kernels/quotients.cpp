// quotients.cpp - quotients and inverses.
//
// In the highest accuracy the processor divides. Below, where it estimates 1/y to 14 bits: with r the estimate and
// e = 1 - y r, 1/y = r (1 + e)(1 + e^2)..., of which EP takes the first factor (relative error 2^-28), and LA
// both (2^-56, and 1 ulp from rounding; quotients 2.25). In single precision LA takes the first factor and EP the
// estimate as it is; quotients are divided, which takes no longer.
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

template <class T, int accuracy>
constexpr bool divided =
    accuracy == TQM_HA || !vm::has_estimates<T> || (!vm::good_estimates && accuracy == TQM_LA);

template <class T, int accuracy>
struct divide {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Div)
    using V = vm::vec<T>;
    static constexpr bool exact = sizeof(T) == 4 || divided<T, accuracy>;
    // A multiple of the smallest normal number in its inverse.
    static constexpr T largest_divisor = sizeof(T) == 8 ? T(0x1p1021) : T(0x1p125);

    V operator()(V x, V y, vm::mask<T> &rare) const {
        V quotient;
        if constexpr (exact)
            quotient = x / y;
        else
            quotient = x * inverse_of<T, accuracy>(y);
        // Zeros divided by normal numbers are zeros.
        rare = vm::mask<T>(vm::not_surely_normal(quotient) &
                           (vm::not_equal(x, V{}) | vm::not_surely_normal(y)));
        if constexpr (!exact)
            rare = vm::either(rare, vm::less(V{} + largest_divisor, simd::abs(y)));
        return quotient;
    }
    template <int N>
    static bool suspicious(const V (&arguments)[N][2], const V (&quotients)[N]) {
        if constexpr (!exact) {
            V largest = simd::abs(arguments[0][1]);
            simd::unroll<N - 1>([&](auto v) VOX_INLINED {
                largest = vm::max(largest, simd::abs(arguments[v + 1][1]));
            });
            return vm::any_lane(vm::either(vm::less(V{} + largest_divisor, largest),
                                           vm::not_surely_normal_among(quotients)));
        }
        return vm::any_lane(vm::not_surely_normal_among(quotients));
    }
};

template <class T, int accuracy>
struct invert {
    static constexpr int vectors = 4;
    VOX_VM_FIX(Inv)
    using V = vm::vec<T>;
    V operator()(V x, vm::mask<T> &rare) const {
        V inverse;
        if constexpr (divided<T, accuracy>)
            inverse = T(1) / x;
        else
            inverse = inverse_of<T, accuracy>(x);
        rare = vm::not_surely_normal(inverse);
        return inverse;
    }
    template <class Arguments, class Results>
    static bool suspicious(const Arguments &, const Results &inverses) {
        return vm::any_lane(vm::not_surely_normal_among(inverses));
    }
};

} // namespace

VOX_VM_KERNELS_2I_1O(s, float, Div, divide)
VOX_VM_KERNELS_2I_1O(d, double, Div, divide)
VOX_VM_KERNELS_1I_1O(s, float, Inv, invert)
VOX_VM_KERNELS_1I_1O(d, double, Inv, invert)
