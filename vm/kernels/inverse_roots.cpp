// inverse_roots.cpp - 1/sqrt(x).
//
// Below the highest accuracy from an estimate (inverse_roots.hpp), or as the inverse of the root, both rounded: within
// 1.5 ulp. For the highest an approximation y is corrected by y e/2 with e = 1 - x y^2 as if computed in
// twice the precision: the error is 0.5 ulp and what rounding the correction adds, less than 0.01.
//
// Roots of zero and of negative numbers are looked at again, and subnormal arguments where they cost bits.
#include "vm/kernels/inverse_roots.hpp"
#include "vm/kernels/ranges.hpp"

VOX_VM_DECLARE_FIX_1(InvSqrt)

namespace {

// x without the lower half of its significand: products of two such are exact.
template <class V>
inline V upper_half(V x) {
    using bits = decltype(x < x);
    if constexpr (sizeof(x[0]) == 8)
        return V(bits(x) & (bits{} + ~0x7FFFFFFll)); // 26 bits are left
    else
        return V(bits(x) & (bits{} + ~0xFFF)); // 12
}

template <class T, int accuracy>
struct inverse_root {
    static constexpr int vectors = accuracy == TQM_HA ? 2 : 4;
    VOX_VM_FIX(InvSqrt)
    using V = vm::vec<T>;

    // e = 1 - x y^2, of an approximation y that has about the precision of T.
    static V residual(V x, V y, [[maybe_unused]] V root) {
        const V one = V{} + T(1);
        if constexpr (vm::fused) {
            const V s = x * y, tail = vm::fma(x, y, -s);
            return vm::fnma(tail, y, vm::fnma(s, y, one));
        } else {
            // sqrt(x) is root + error; y (root + error) by halves
            const V r = upper_half(root), r_low = root - r;
            const V h = upper_half(y), h_low = y - h;
            const V error = ((x - r * r) - r_low * (root + r)) * (y * T(0.5));
            // 1 - y sqrt(x), half of e but for its square
            const V half = (((one - h * r) - h * r_low) - h_low * root) - y * error;
            return half + half;
        }
    }

    V operator()(V x, vm::mask<T> &rare) const {
        V y;
        if constexpr (vm::estimated_root<T, accuracy> || (sizeof(T) == 4 && accuracy == TQM_LA)) {
            y = vm::inverse_root_estimate(x);
            y = vm::corrected<T, accuracy>(x, y, y);
        } else if constexpr (accuracy != TQM_HA) {
            y = T(1) / vm::sqrt(x);
        } else if constexpr (vm::good_estimates) {
            y = vm::inverse_root_estimate(x);
            if constexpr (sizeof(T) == 8) {
                const V e = vm::fnma(x * y, y, V{} + T(1));
                y = vm::fma(y * e, vm::fma(e, V{} + T(0.375), V{} + T(0.5)), y);
                y = vm::fma(y * T(0.5), residual(x, y, y), y);
            } else {
                const V e = residual(x, y, y);
                y = vm::fma(y * e, vm::fma(e, V{} + T(0.375), V{} + T(0.5)), y);
            }
        } else {
            const V root = vm::sqrt(x);
            y = T(1) / root;
            y = y + (y * T(0.5)) * residual(x, y, root);
        }
        // Without fused operations the residual of x needs x to be at least 2^-960, or 2^-100.
        if constexpr (vm::fused)
            rare = vm::not_finite(y);
        else
            rare =
                vm::not_less_equal(simd::abs(y), V{} + (sizeof(T) == 8 ? T(0x1p480) : T(0x1p50)));
        return y;
    }
    template <class Arguments, class Results>
    static bool suspicious(const Arguments &, const Results &y) requires vm::fused {
        return vm::any_lane(vm::not_finite_among(y));
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(s, float, InvSqrt, inverse_root)
VOX_VM_KERNELS_1I_1O(d, double, InvSqrt, inverse_root)
