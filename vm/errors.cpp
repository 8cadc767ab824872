// errors.cpp - see errors.hpp.
#include "vm/errors.hpp"

#include <errno.h>
#include <string.h>

#include "serv/catalogue.hpp"
#include "vm/thread_block.hpp"
#include "vox/service.h"

namespace {

using namespace vox;
using namespace vox::vm;

// The numbers that other programs rely on, whatever errno.h calls them.
int errno_of(int status) {
    switch (status) {
    case TQM_STATUS_OK:
        return 0;
    case TQM_STATUS_BADMEM:
        return 13;
    case TQM_STATUS_BADSIZE:
        return 22;
    case TQM_STATUS_ERRDOM:
        return 33;
    case TQM_STATUS_SING:
    case TQM_STATUS_OVERFLOW:
    case TQM_STATUS_UNDERFLOW:
        return 34;
    default:
        return 14;
    }
}

bool of_an_element(int status) {
    return status != TQM_STATUS_BADSIZE && status != TQM_STATUS_BADMEM;
}

// The layout of FNSTENV's memory image in protected mode.
struct x87_environment {
    uint16_t control, unused1, status, unused2, tag, unused3;
    uint32_t instruction[2], operand[2];
};
constexpr uint16_t all_exceptions = 0x3F;

// The exception of a status, as the x87 unit counts them: 1 invalid, 4 division by zero, 8 overflow,
// 16 underflow. Traps when the mode selects it; the flag stays set, with all exceptions masked.
void raise_exception(int status, uint32_t mode) {
    constexpr uint16_t flags[] = {0, 1, 4, 8, 16};
    if (status < TQM_STATUS_ERRDOM || status > TQM_STATUS_UNDERFLOW)
        return;
    uint16_t trapping = 0;
    for (int s = TQM_STATUS_ERRDOM; s <= TQM_STATUS_UNDERFLOW; ++s)
        if (mode & (uint32_t(TQM_TRAP_INVALID) << (s - TQM_STATUS_ERRDOM)))
            trapping |= flags[s];
    x87_environment saved;
    asm volatile("fnstenv %0" : "=m"(saved));
    saved.control |= all_exceptions;
    saved.status |= flags[status];
    x87_environment raised = saved;
    raised.control &= uint16_t(~trapping);
    asm volatile("fldenv %0\n\tfwait" : : "m"(raised));
    asm volatile("fldenv %0" : : "m"(saved));
}

// First arguments and results only: a second one is there when its array is.
struct values {
    bool a2, r2;
};

void print(const tqmErrorContext &context, values present) {
    const bool known = context.iCode >= TQM_STATUS_BADMEM &&
                       context.iCode <= TQM_STATUS_UNDERFLOW && context.iCode != TQM_STATUS_OK;
    const int number =
        known ? message_tqm_bad_pointer + context.iCode - TQM_STATUS_BADMEM : message_tqm_unknown;
    if (context.iCode == TQM_STATUS_BADSIZE)
        vox_serv_print(1, number, 2, context.cFuncName, context.iIndex);
    else
        vox_serv_print(1, number, 1, context.cFuncName);
    if (!of_an_element(context.iCode))
        return;
    const auto line = [&](const char *letter, double value) {
        vox_serv_print(1, message_tqm_value, 3, letter, context.iIndex, value);
    };
    line("a", context.dbA1);
    if (present.a2)
        line("b", context.dbA2);
    line(present.r2 ? "y" : "r", context.dbR1);
    if (present.r2)
        line("z", context.dbR2);
}

// Steps 4 to 6 of an error; false when the callback has dealt with it.
bool act(tqmErrorContext &context, uint32_t mode, values present) {
    const tqmErrorCallBack callback = this_block.callback;
    if ((mode & TQM_ERRMODE_CALLBACK) && callback) {
        const void *const base =
            this_block.base; // calls from the callback have vectors of their own
        this_block.base = nullptr;
        const int dealt_with = callback(&context);
        this_block.base = base;
        if (dealt_with)
            return false;
    }
    if (mode & TQM_ERRMODE_ERRNO)
        errno = errno_of(context.iCode);
    if (mode & TQM_ERRMODE_STDERR)
        print(context, present);
    if (mode & TQM_ERRMODE_EXCEPT)
        raise_exception(context.iCode, mode);
    return true;
}

// Records the status; the mode if more is to be done, 0 otherwise.
uint32_t record(int status) {
    const uint32_t mode = tqmGetMode();
    const uint32_t errors = mode & TQM_ERRMODE_MASK;
    if (errors == TQM_ERRMODE_NOERR)
        return 0;
    this_block.status = status;
    return errors == TQM_ERRMODE_IGNORE ? 0 : mode;
}

void set_name(tqmErrorContext &context, const char *name) {
    const size_t length = strnlen(name, sizeof context.cFuncName - 1);
    memcpy(context.cFuncName, name, length);
    context.iFuncNameLen = int32_t(length);
}

void load(float x, double &re, double &) { re = x; }
void load(double x, double &re, double &) { re = x; }
void load(const vox_complex_float &x, double &re, double &im) { re = x.real, im = x.imag; }
void load(const vox_complex_double &x, double &re, double &im) { re = x.real, im = x.imag; }

void keep(float &x, double re, double) { x = float(re); }
void keep(double &x, double re, double) { x = re; }
void keep(vox_complex_float &x, double re, double im) { x = {float(re), float(im)}; }
void keep(vox_complex_double &x, double re, double im) { x = {re, im}; }

} // namespace

template <class T>
void vox::vm::report_element(int status, const element<T> &e, const char *name) {
    const uint32_t mode = record(status);
    if (!mode)
        return;
    const auto *base = static_cast<const T *>(this_block.base);
    tqmErrorContext context = {};
    context.iCode = status;
    context.iIndex = int32_t((base ? e.vector - base : 0) + e.i);
    set_name(context, name);
    load(*e.a1, context.dbA1, context.dbA1Im);
    if (e.a2)
        load(*e.a2, context.dbA2, context.dbA2Im);
    load(*e.r1, context.dbR1, context.dbR1Im);
    if (e.r2)
        load(*e.r2, context.dbR2, context.dbR2Im);
    if (!act(context, mode, {e.a2 != nullptr, e.r2 != nullptr}))
        return;
    keep(*e.r1, context.dbR1, context.dbR1Im);
    if (e.r2)
        keep(*e.r2, context.dbR2, context.dbR2Im);
}

void vox::vm::report_call(int status, index_t count, const char *name) {
    const uint32_t mode = record(status);
    if (!mode)
        return;
    tqmErrorContext context = {};
    context.iCode = status;
    context.iIndex = int32_t(count);
    set_name(context, name);
    act(context, mode, {});
}

namespace vox::vm {
template void report_element(int, const element<float> &, const char *);
template void report_element(int, const element<double> &, const char *);
template void report_element(int, const element<vox_complex_float> &, const char *);
template void report_element(int, const element<vox_complex_double> &, const char *);
} // namespace vox::vm
