// entry.hpp - from an exported Fortran-callable routine to its driver: integers widened to 64 bits,
// and the call printed when verbose mode is on.
//
//   return vox::logged("DDOT", vox_blas_ddot, n, x, incx, y, incy);
//
// calls the driver with pointers to 64-bit copies of the integers; everything else passes through.
// In verbose mode the line shows every argument by its type: integers by value, characters, and the
// addresses of everything else. With verbose mode off the cost is one load and a predicted branch.
#pragma once

#include "serv/base.hpp"
#include "serv/verbose.hpp"

namespace vox {

// How one argument is handed to the driver.
template <class A>
struct widened {
    A value;
    A pass() const { return value; }
};
template <>
struct widened<const vox_int *> {
    index_t value;
    explicit widened(const vox_int *p) : value(*p) {}
    const index_t *pass() const { return &value; }
};

// The text of a call, "DDOT(5,0x7f..,1,0x7f..,1)", cut where its buffer ends.
class call_text {
  public:
    explicit call_text(const char *routine);
    void add(const vox_int *integer); // a null pointer prints as 0
    void add(const char *character);
    void add(const void *address);
    const char *finish();

  private:
    void append(const char *format, ...) __attribute__((format(printf, 2, 3)));
    char text_[200];
    int length_ = 0;
    bool first_ = true;
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

template <class Result, class... Parameters, class... A>
inline Result logged(const char *routine, Result (*driver)(Parameters...), A... arguments) {
    if (VOX_LIKELY(!verbose_on()))
        return driver(widened<A>(arguments).pass()...);
    const logged_scope<A...> scope(routine, arguments...);
    return driver(widened<A>(arguments).pass()...);
}

} // namespace vox
