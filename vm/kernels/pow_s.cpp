// pow_s.cpp - powers in single precision, by doubles.
#include "vm/kernels/loops.hpp"
#include "vm/kernels/power_vectors.hpp"
#include "vm/kernels/widen.hpp"

VOX_VM_DECLARE_FIX_2(Pow)
VOX_VM_DECLARE_FIX_2(Powx)

namespace {

template <uint32_t accuracy>
inline vm::vec<float> by_doubles(vm::vec<float> x, vm::vec<float> y, vm::mask<float> &rare) {
    constexpr auto goal =
        accuracy == TQM_HA ? vm::power_goal::single_ha : vm::power_goal::single_la;
    vm::mask<double> rare_low, rare_high;
    const auto low = vm::power_of<goal>(vm::widen_low(x), vm::widen_low(y), rare_low);
    const auto high = vm::power_of<goal>(vm::widen_high(x), vm::widen_high(y), rare_high);
    rare = vm::narrow_masks(rare_low, rare_high);
    return vm::narrow(low, high);
}

template <class T, uint32_t accuracy>
struct pow {
    static constexpr int vectors = 1;
    VOX_VM_FIX(Pow)
    vm::vec<T> operator()(vm::vec<T> x, vm::vec<T> y, vm::mask<T> &rare) const {
        return by_doubles<accuracy>(x, y, rare);
    }
};

template <class T, uint32_t accuracy>
struct powx {
    T y;
    static constexpr int vectors = 1;
    static constexpr bool fixes = true;
    void fix(const T *first, vm::index_t i, T x, T *r) const {
        vox_vm_fix_sPowx(first, i, x, y, r);
    }
    vm::vec<T> operator()(vm::vec<T> x, vm::mask<T> &rare) const {
        return by_doubles<accuracy>(x, vm::vec<T>{} + y, rare);
    }
};

} // namespace

VOX_VM_KERNELS_2I_1O(s, float, Pow, pow)
VOX_VM_KERNELS_1I_1O_FIXED(s, float, Powx, powx)
