// errors.hpp - what is done about an error of a vector function, as the thread's mode asks.
#pragma once

#include "serv/base.hpp"
#include "vox/tqm.h"

namespace vox::vm {

// One element of a call: its values, and its place. The values may be copies, since the result of a call in
// place lies where the argument was; `vector` is where the kernel's part of the first input begins.
// T: float, double, or a complex type of types.h. a2 and r2 are null for functions without them.
template <class T>
struct element {
    const T *vector;
    index_t i;
    const T *a1, *a2;
    T *r1, *r2;
};

// An error at an element. The status is recorded; the callback may replace the results.
template <class T>
void report_element(int status, const element<T> &e, const char *name);

// TQM_STATUS_BADSIZE with the count, or TQM_STATUS_BADMEM.
void report_call(int status, index_t count, const char *name);

} // namespace vox::vm
