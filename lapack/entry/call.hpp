// call.hpp - a call of a Fortran form: the check, pivots of 64 bits, the verbose line.
#pragma once

#include "blas/entry/forms.hpp"
#include "lapack/entry/check.hpp"
#include "serv/entry.hpp"
#include "vox/service.h"

namespace vox::lapack {

// The info of a form that has no memory for its pivots, which it reports; nothing has been computed.
constexpr vox_int info_no_memory = -1010;

// The caller's pivots, of 32 bits, as the drivers see them.
class pivot_list {
  public:
    explicit pivot_list(const caller_pivots &caller) : caller_(caller) {
        if (caller.count > few)
            list_ = static_cast<index_t *>(
                vox_serv_allocate(size_t(caller.count) * sizeof(index_t), 128));
        if (list_ && caller.in)
            for (index_t i = 0; i < caller.count; ++i)
                list_[i] = caller.in[i];
    }
    ~pivot_list() {
        if (list_ != on_stack_)
            vox_serv_deallocate(list_);
    }
    pivot_list(const pivot_list &) = delete;
    pivot_list &operator=(const pivot_list &) = delete;

    // False, and reported, if there is no memory.
    bool ready(const char *routine) const {
        if (VOX_LIKELY(list_))
            return true;
        vox_serv_set_xerbla_interface(cdecl_xerbla);
        return !vox_serv_check_ptr(list_, routine);
    }
    index_t *data() const { return list_; }
    void give_back() const {
        if (caller_.out)
            for (index_t i = 0; i < caller_.count; ++i)
                caller_.out[i] = vox_int(list_[i]);
    }

  private:
    static constexpr index_t few = 16;
    caller_pivots caller_;
    index_t on_stack_[few];
    index_t *list_ = on_stack_;
};

// Times the call made in its scope and prints its line at the end, results included.
template <class Print>
class trace {
  public:
    trace(const char *routine, const Print &print)
        : routine_(routine), print_(print), seconds_(-vox_serv_iface_dsecnd()) {}
    ~trace() {
        seconds_ += vox_serv_iface_dsecnd();
        call_text text(routine_);
        print_(text);
        vox_serv_iface_print_verbose_info(1, text.finish(), seconds_);
    }

  private:
    const char *routine_;
    const Print &print_;
    double seconds_;
};
template <class Call, class Print>
auto traced(const char *routine, const Call &call, const Print &print) {
    if (VOX_UNLIKELY(verbose_on())) {
        const trace<Print> scope(routine, print);
        return call();
    }
    return call();
}

// The checks alone; 0, or 1 and a report. info: the parameter's number, negative.
template <class T, class Describe>
int refused(const char *routine, vox_int *info, const Describe &describe) {
    argument_check<T> check;
    describe(check);
    *info = -check.bad();
    return errchk::report(routine, check.bad());
}

// call(pivots) runs the driver and sets info. Routines without one are not checked.
template <class T, class Describe, class Call, class Print>
void checked_call(const char *routine, vox_int *info, const Describe &describe, const Call &call,
                  const Print &print) {
    argument_check<T> check;
    describe(check);
    *info = -check.bad();
    if (errchk::report(routine, check.bad()))
        return;
    const pivot_list pivots(check.pivots());
    if (!pivots.ready(routine)) {
        *info = info_no_memory;
        return;
    }
    traced(
        routine, [&] { call(pivots.data()); }, print);
    pivots.give_back();
}
template <class T, class Describe, class Call, class Print>
auto unchecked_call(const char *routine, const Describe &describe, const Call &call,
                    const Print &print) -> decltype(call(nullptr)) {
    argument_check<T> check;
    describe(check);
    const pivot_list pivots(check.pivots());
    if (!pivots.ready(routine))
        return decltype(call(nullptr))();
    return traced(
        routine, [&] { return call(pivots.data()); }, print);
}

} // namespace vox::lapack
