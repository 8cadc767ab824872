// pow_d.cpp - powers in double precision.
#include "vm/kernels/loops.hpp"
#include "vm/kernels/power_vectors.hpp"

VOX_VM_DECLARE_FIX_2(Pow)
VOX_VM_DECLARE_FIX_2(Powx)

namespace {

template <uint32_t accuracy>
constexpr vm::power_goal goal = accuracy == TQM_HA   ? vm::power_goal::ha
                                : accuracy == TQM_LA ? vm::power_goal::la
                                                     : vm::power_goal::ep;

template <class T, uint32_t accuracy>
struct pow {
    static constexpr int vectors = 1;
    VOX_VM_FIX(Pow)
    VOX_INLINED vm::vec<T> operator()(vm::vec<T> x, vm::vec<T> y, vm::mask<T> &rare) const {
        return vm::power_of<goal<accuracy>>(x, y, rare);
    }
};

template <class T, uint32_t accuracy>
struct powx {
    T y;
    static constexpr int vectors = 1;
    static constexpr bool fixes = true;
    void fix(const T *first, vm::index_t i, T x, T *r) const {
        vox_vm_fix_dPowx(first, i, x, y, r);
    }
    VOX_INLINED vm::vec<T> operator()(vm::vec<T> x, vm::mask<T> &rare) const {
        return vm::power_of<goal<accuracy>>(x, vm::vec<T>{} + y, rare);
    }
};

} // namespace

VOX_VM_KERNELS_2I_1O(d, double, Pow, pow)
VOX_VM_KERNELS_1I_1O_FIXED(d, double, Powx, powx)
