// fixup.hpp - what kernels leave to scalar code: the rare elements.
//
// A kernel computes whole vectors and marks the elements for which its fast path does not hold: special values,
// results beyond the range, arguments that need care. Those come here, one at a time, and are computed again,
// in the highest accuracy for every mode and with the same bits on all paths (baseline code), and errors are
// reported. So a function's special values and errors stand once:
//
//   VOX_VM_FIXUP_1(Exp, exp)
//
// makes vox_vm_fix_sExp and vox_vm_fix_dExp of the template outcome<T> exp(T x).
//
// Fix-ups call no mathematical function of the C library whose result could differ between its versions.
#pragma once

#include "serv/base.hpp"
#include "vm/errors.hpp"

namespace vox::vm {

template <class T>
struct outcome {
    T value;
    int status;
};

// first: where the kernel's part of the first input begins; x, y: the arguments of element i, of which the
// vector's own may be gone; r: where the result goes.
template <class T>
inline void settle(outcome<T> o, const T *first, index_t i, const T *x, const T *y, T *r,
                   const char *name) {
    *r = o.value;
    if (o.status != TQM_STATUS_OK)
        report_element(o.status, element<T>{first, i, x, y, r, nullptr}, name);
}

} // namespace vox::vm

#define VOX_VM_FIXUP_1(Name, function)                                                             \
    VOX_VM_FIXUP_1_OF(s, float, Name, function) VOX_VM_FIXUP_1_OF(d, double, Name, function)
#define VOX_VM_FIXUP_1_OF(p, T, Name, function)                                                    \
    extern "C" void vox_vm_fix_##p##Name(const T *first, vox::index_t i, T x, T *r) {              \
        vox::vm::settle(function(x), first, i, &x, (const T *)nullptr, r, "v" #p #Name);           \
    }

// Of two arguments, the second perhaps a fixed one.
#define VOX_VM_FIXUP_2(Name, function)                                                             \
    VOX_VM_FIXUP_2_OF(s, float, Name, function) VOX_VM_FIXUP_2_OF(d, double, Name, function)
#define VOX_VM_FIXUP_2_OF(p, T, Name, function)                                                    \
    extern "C" void vox_vm_fix_##p##Name(const T *first, vox::index_t i, T x, T y, T *r) {         \
        vox::vm::settle(function(x, y), first, i, &x, &y, r, "v" #p #Name);                        \
    }
