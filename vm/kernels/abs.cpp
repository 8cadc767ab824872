// abs.cpp - magnitudes.
#include "vm/kernels/loops.hpp"

namespace {

template <class T>
struct abs_of {
    static constexpr int vectors = 4;
    static constexpr bool fixes = false;
    vm::vec<T> operator()(vm::vec<T> x, vm::mask<T> &) const { return simd::abs(x); }
};

} // namespace

VOX_VM_KERNEL_ONE(1I_1O, Abs, abs_of)
