// products.cpp - products and squares. Those that are no normal numbers are looked at again, but for zeros of zero.
#include "vm/kernels/ranges.hpp"

VOX_VM_DECLARE_FIX_2(Mul)
VOX_VM_DECLARE_FIX_1(Sqr)

namespace {

template <class T>
struct multiply {
    static constexpr int vectors = 4;
    VOX_VM_FIX(Mul)
    vm::vec<T> operator()(vm::vec<T> x, vm::vec<T> y, vm::mask<T> &rare) const {
        const vm::vec<T> product = x * y;
        const vm::vec<T> magnitude = simd::abs(product);
        rare = vm::either(vm::too_large(magnitude),
                          vm::mask<T>(vm::too_small(magnitude) & vm::not_equal(x, vm::vec<T>{}) &
                                      vm::not_equal(y, vm::vec<T>{})));
        return product;
    }
    template <class Arguments, class Results>
    static bool suspicious(const Arguments &, const Results &products) {
        return vm::any_lane(vm::not_surely_normal_among(products));
    }
};

template <class T>
struct square {
    static constexpr int vectors = 4;
    VOX_VM_FIX(Sqr)
    vm::vec<T> operator()(vm::vec<T> x, vm::mask<T> &rare) const {
        const vm::vec<T> product = x * x;
        rare = vm::mask<T>(vm::not_surely_normal(product) & vm::not_equal(x, vm::vec<T>{}));
        return product;
    }
    template <class Arguments, class Results>
    static bool suspicious(const Arguments &, const Results &squares) {
        return vm::any_lane(vm::not_surely_normal_among<false>(squares));
    }
};

} // namespace

VOX_VM_KERNEL_ONE(2I_1O, Mul, multiply)
VOX_VM_KERNEL_ONE(1I_1O, Sqr, square)
