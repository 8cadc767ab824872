// exponential.cpp - exponentials that are not normal numbers, or nearly too large.
#include "vm/fixup.hpp"
#include "vm/fixups/scaling.hpp"
#include "vm/roots_of_two.hpp"

namespace {

using vox::vm::outcome;

// e^x of |x| < 2^10, within 2^-60: (head + tail) 2^n, and 1/2 < head < 2.
vox::vm::scaled_pair exp_of(double x) {
    constexpr double ln2_head = 0x1.62e42fefcp-1,
                     ln2_tail = -0x1.c610ca86c3899p-37; // n ln2_head is exact
    const double shifted = x * (256 * 0x1.71547652b82fep+0) + 0x1.8p52;
    const int steps = int(shifted - 0x1.8p52);
    const double n = steps / 256.0, head = x - n * ln2_head, r = head - n * ln2_tail;
    const auto &root = vox::vm::roots_of_two.roots[steps & 255];
    // Taylor's series: |r| < 2^-9.5.
    const double p = r * r * (1.0 / 2 + r * (1.0 / 6 + r * (1.0 / 24 + r * (1.0 / 120))));
    // r has lost at most 2^-61 of e^x.
    return {root.head, root.head * (r + (p + root.tail)), (steps - (steps & 255)) / 256};
}

template <class T>
outcome<T> exp(T x) {
    constexpr T infinity = T(__builtin_inf());
    if (x != x)
        return {x + x, TQM_STATUS_OK};
    if (x == infinity)
        return {x, TQM_STATUS_OK};
    if (x == -infinity)
        return {0, TQM_STATUS_OK};
    if (x > 1000)
        return {infinity, TQM_STATUS_OVERFLOW};
    if (x < -1000)
        return {0, TQM_STATUS_UNDERFLOW};
    const T value = vox::vm::rounded<T>(exp_of(x));
    return {value, value == infinity                     ? TQM_STATUS_OVERFLOW
                   : value < vox::vm::smallest_normal<T> ? TQM_STATUS_UNDERFLOW
                                                         : TQM_STATUS_OK};
}

// Of a subnormal number, which is its own tangent to the nearest. The kernels leave no more.
template <class T>
outcome<T> tanh(T x) {
    return {x, TQM_STATUS_UNDERFLOW};
}

} // namespace

VOX_VM_FIXUP_1(Exp, exp)
VOX_VM_FIXUP_1(Tanh, tanh)
