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
outcome<T> subtract(T x, T y) {
    return by_flags([&] { return hidden(x) - hidden(y); }, x, y);
}

template <class T>
outcome<T> multiply(T x, T y) {
    return by_flags([&] { return hidden(x) * hidden(y); }, x, y);
}

template <class T>
outcome<T> square(T x) {
    return multiply(x, x);
}

template <class T>
outcome<T> divide(T x, T y) {
    return by_flags([&] { return hidden(x) / hidden(y); }, x, y);
}

template <class T>
outcome<T> invert(T x) {
    return divide(T(1), x);
}

template <class T>
T root(T x) {
    x = hidden(x);
    if constexpr (sizeof(T) == 4)
        asm volatile("sqrtss %0, %0" : "+x"(x));
    else
        asm volatile("sqrtsd %0, %0" : "+x"(x));
    return x;
}

template <class T>
outcome<T> sqrt(T x) {
    return by_flags([&] { return root(x); }, x, x);
}

// In extended precision, whose range has all results and whose 11 bits more keep them within 0.501 ulp.
template <class T>
outcome<T> inverse_root(T x) {
    if (x != x || x < 0)
        return sqrt(x);
    if (x == 0)
        return divide(T(1), x);
    long double r = x;
    asm("fsqrt" : "+t"(r));
    return {T(1 / r), TQM_STATUS_OK};
}

} // namespace

VOX_VM_FIXUP_2(Add, add)
VOX_VM_FIXUP_2(Div, divide)
VOX_VM_FIXUP_1(Inv, invert)
VOX_VM_FIXUP_1(InvSqrt, inverse_root)
VOX_VM_FIXUP_2(Mul, multiply)
VOX_VM_FIXUP_1(Sqr, square)
VOX_VM_FIXUP_1(Sqrt, sqrt)
VOX_VM_FIXUP_2(Sub, subtract)
