// arithmetic.cpp - sums, products, quotients and roots beyond the range, or of special values.
#include "vm/fixups/flags.hpp"

namespace {

using vox::vm::by_flags;
using vox::vm::outcome;

// The operands pass through registers that the compiler knows nothing of, so the operation is done between the
// readings of the flags.
template <class T>
T hidden(T x) {
    asm volatile("" : "+x"(x) : : "memory");
    return x;
}

template <class T>
outcome<T> add(T x, T y) {
    return by_flags([&] { return hidden(x) + hidden(y); }, x, y);
}

template <class T>
outcome<T> sqrt(T x) {
    return by_flags(
        [&] {
            T r = hidden(x);
            if constexpr (sizeof(T) == 4)
                asm volatile("sqrtss %0, %0" : "+x"(r));
            else
                asm volatile("sqrtsd %0, %0" : "+x"(r));
            return r;
        },
        x, x);
}

} // namespace

VOX_VM_FIXUP_2(Add, add)
VOX_VM_FIXUP_1(Sqrt, sqrt)
