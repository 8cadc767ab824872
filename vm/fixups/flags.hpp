// flags.hpp - an operation of the processor with the status that its exception flags tell.
#pragma once

#include <xmmintrin.h>

#include "vm/fixup.hpp"

namespace vox::vm {

// value of compute(), an arithmetic operation on x and y that the processor rounds. The caller's flags stay as
// they were. A NaN among the arguments is no error.
template <class T, class Compute>
inline outcome<T> by_flags(const Compute &compute, T x, T y) {
    const unsigned before = _mm_getcsr();
    _mm_setcsr(before & ~unsigned(_MM_EXCEPT_MASK));
    T value = compute();
    asm volatile("" : "+x"(value) : : "memory");
    const unsigned flags = _mm_getcsr();
    _mm_setcsr(before);
    if (x != x || y != y)
        return {value, TQM_STATUS_OK};
    return {value, flags & _MM_EXCEPT_INVALID     ? TQM_STATUS_ERRDOM
                   : flags & _MM_EXCEPT_DIV_ZERO  ? TQM_STATUS_SING
                   : flags & _MM_EXCEPT_OVERFLOW  ? TQM_STATUS_OVERFLOW
                   : flags & _MM_EXCEPT_UNDERFLOW ? TQM_STATUS_UNDERFLOW
                                                  : TQM_STATUS_OK};
}

} // namespace vox::vm
