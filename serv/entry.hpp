// entry.hpp - from an exported Fortran-callable routine to its driver: integers widened to 64 bits,
// and the call printed when verbose mode is on.
//
//   return vox::logged("DDOT", driver, internal, n, x, incx, y, incy);
//
// calls the driver with the integers by value as 64-bit integers; everything else passes through.
// In verbose mode the line shows every argument by its type: integers by value, characters, and the
// addresses of everything else. With verbose mode off the cost is one load and a predicted branch.
// The driver is a function object, so that it is inlined here: a call on a few elements takes less
// time than the stack frames of three more functions.
#pragma once

#include "serv/base.hpp"
#include "serv/text.hpp"
#include "serv/verbose.hpp"

namespace vox {

// How one argument is handed to the driver.
template <class A>
inline A widened(A argument) {
    return argument;
}
inline index_t widened(const vox_int *integer) { return *integer; }
inline index_t widened(const index_t *integer) { return *integer; }

// The text of a call, "DDOT(5,0x7f..,1,0x7f..,1)", cut where its buffer ends.
class call_text {
  public:
    explicit call_text(const char *routine) : writer_(text_, sizeof text_) {
        writer_.add("%s(", routine);
    }
    void add(const vox_int *integer); // a null pointer prints as 0
    void add(const char *character);
    void add(const void *address);
    const char *finish();

  private:
    char text_[200];
    text_writer writer_;
    const char *separator_ = "";
};

// Times the call made in its scope and prints the line at its end.
template <class... A>
class logged_scope {
  public:
    logged_scope(const char *routine, A... arguments)
        : text_(routine), seconds_(-vox_serv_iface_dsecnd()) {
        (text_.add(arguments), ...);
    }
    ~logged_scope() {
        seconds_ += vox_serv_iface_dsecnd();
        vox_serv_iface_print_verbose_info(1, text_.finish(), seconds_);
    }

  private:
    call_text text_;
    double seconds_;
};

template <class Driver, class... A>
__attribute__((cold, noinline)) auto print_and_call(const char *routine, Driver driver,
                                                    A... arguments) {
    const logged_scope<A...> scope(routine, arguments...);
    return driver(widened(arguments)...);
}

// internal: the same driver out of line, for the printed call.
template <class Driver, class Internal, class... A>
__attribute__((always_inline)) inline auto logged(const char *routine, Driver driver,
                                                  Internal internal, A... arguments) {
    if (VOX_UNLIKELY(verbose_on()))
        return print_and_call(routine, internal, arguments...);
    return driver(widened(arguments)...);
}

} // namespace vox
