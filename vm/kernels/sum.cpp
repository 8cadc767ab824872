// sum.cpp - sums. Not finite ones are looked at again.
#include "vm/kernels/loops.hpp"

VOX_VM_DECLARE_FIX_2(Add)

namespace {

template <class T>
struct add {
    static constexpr int vectors = 2;
    VOX_VM_FIX(Add)
    vm::vec<T> operator()(vm::vec<T> x, vm::vec<T> y, vm::mask<T> &rare) const {
        const vm::vec<T> sum = x + y;
        rare = vm::not_less(simd::abs(sum), vm::vec<T>{} + T(__builtin_inf()));
        return sum;
    }
};

} // namespace

VOX_VM_KERNEL_ONE(2I_1O, Add, add)
