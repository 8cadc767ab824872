// sums.cpp - sums and differences. Not finite ones are looked at again; small ones are exact.
#include "vm/kernels/ranges.hpp"

VOX_VM_DECLARE_FIX_2(Add)
VOX_VM_DECLARE_FIX_2(Sub)

namespace {

template <class T>
struct add {
    static constexpr int vectors = 4;
    VOX_VM_FIX(Add)
    vm::vec<T> operator()(vm::vec<T> x, vm::vec<T> y, vm::mask<T> &rare) const {
        const vm::vec<T> sum = x + y;
        rare = vm::not_finite(sum);
        return sum;
    }
    template <class Arguments, class Results>
    static bool suspicious(const Arguments &, const Results &sums) {
        return vm::any_lane(vm::not_finite_among(sums));
    }
};

template <class T>
struct subtract {
    static constexpr int vectors = 4;
    VOX_VM_FIX(Sub)
    vm::vec<T> operator()(vm::vec<T> x, vm::vec<T> y, vm::mask<T> &rare) const {
        const vm::vec<T> difference = x - y;
        rare = vm::not_finite(difference);
        return difference;
    }
    template <class Arguments, class Results>
    static bool suspicious(const Arguments &, const Results &differences) {
        return vm::any_lane(vm::not_finite_among(differences));
    }
};

} // namespace

VOX_VM_KERNEL_ONE(2I_1O, Add, add)
VOX_VM_KERNEL_ONE(2I_1O, Sub, subtract)
