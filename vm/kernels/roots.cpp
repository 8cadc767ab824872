// roots.cpp - square roots.
//
// In the highest accuracy the processor takes them. Below, where it estimates 1/sqrt(x): with y the estimate,
// s = x y and e = 1 - s y, sqrt(x) = s (1 - e)^(-1/2) = s (1 + e/2 + 3/8 e^2 + 5/16 e^3 + ...).
#include "vm/kernels/inverse_roots.hpp"
#include "vm/kernels/ranges.hpp"

VOX_VM_DECLARE_FIX_1(Sqrt)

namespace {

template <class T, int accuracy>
struct root {
    static constexpr int vectors = 4;
    VOX_VM_FIX(Sqrt)
    using V = vm::vec<T>;
    V operator()(V x, vm::mask<T> &rare) const {
        if constexpr (vm::estimated_root<T, accuracy>) {
            const V y = vm::inverse_root_estimate(x, vm::not_equal(x, V{}));
            const V s = vm::corrected<T, accuracy>(x, y, x * y);
            rare = vm::not_finite(s);
            return s;
        } else {
            const V s = vm::sqrt(x);
            rare = vm::not_equal(s, s);
            return s;
        }
    }
    template <class Arguments, class Results>
    static bool suspicious(const Arguments &, const Results &roots) {
        return vm::any_lane(vm::not_finite_among(roots));
    }
};

} // namespace

VOX_VM_KERNELS_1I_1O(s, float, Sqrt, root)
VOX_VM_KERNELS_1I_1O(d, double, Sqrt, root)
