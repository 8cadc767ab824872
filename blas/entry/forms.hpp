// forms.hpp - what stands around a driver: its internal name, the Fortran spellings, the check, the
// verbose line, and the types of the C forms.
//
// A driver is a function object that takes integers by value and everything else as Fortran passes
// it. One line gives a routine its internal and Fortran forms:
//
//   VOX_BLAS_ROUTINE(void, daxpy, DAXPY, VOX_AXPY_PARAMETERS(double, vox_int),
//                    VOX_AXPY_PARAMETERS(double, index_t), VOX_AXPY_ARGUMENTS, driver)
//   defines vox_blas_daxpy, daxpy_, daxpy, DAXPY
#pragma once

#include "blas/errchk/errchk.hpp"
#include "serv/base.hpp"
#include "serv/entry.hpp"
#include "serv/scalar.hpp"

namespace vox {

// A driver as the internal layers call it: integers by address.
template <class Driver>
constexpr auto by_value(Driver driver) {
    return [driver](auto... arguments) __attribute__((always_inline)) {
        return driver(widened(arguments)...);
    };
}

// The other way round: an internal routine as a driver.
[[gnu::always_inline]] inline const index_t *addressed(const index_t &integer) { return &integer; }
template <class A>
[[gnu::always_inline]] inline A addressed(const A &argument) {
    return argument;
}
template <class R, class... A>
constexpr auto out_of_line(R (*routine)(A...)) {
    return [routine](auto... arguments) { return routine(addressed(arguments)...); };
}

// Real scalars come by value in C, complex ones by address; arrays of complex numbers are void.
template <class T>
using c_scalar = std::conditional_t<is_complex<T>, const void *, T>;
template <class T>
using c_in = std::conditional_t<is_complex<T>, const void *, const T *>;
template <class T>
using c_out = std::conditional_t<is_complex<T>, void *, T *>;

template <class T>
[[gnu::always_inline]] inline const T *scalar(const c_scalar<T> &argument) {
    if constexpr (is_complex<T>)
        return static_cast<const T *>(argument);
    else
        return &argument;
}
template <class T>
[[gnu::always_inline]] inline const T *in(c_in<T> array) {
    return static_cast<const T *>(array);
}
template <class T>
[[gnu::always_inline]] inline T *out(c_out<T> array) {
    return static_cast<T *>(array);
}

} // namespace vox

#define VOX_BARE(...) __VA_ARGS__

#define VOX_BLAS_ROUTINE(result, lower, upper, parameters, internal, arguments, driver)            \
    extern "C" result vox_blas_##lower internal { return vox::by_value(driver) arguments; }        \
    extern "C" result lower##_ parameters {                                                        \
        return vox::logged(#upper, driver, driver, VOX_BARE arguments);                            \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, upper);

// The same with a check: rule takes the Fortran arguments and gives the number of the first bad
// one, or 0. Defines vox_blas_errchk_<lower> too.
#define VOX_BLAS_CHECKED_ROUTINE(lower, upper, parameters, internal, arguments, rule, driver)      \
    extern "C" void vox_blas_##lower internal { vox::by_value(driver) arguments; }                 \
    extern "C" int vox_blas_errchk_##lower parameters {                                            \
        return vox::errchk::report(#upper, rule arguments);                                        \
    }                                                                                              \
    extern "C" void lower##_ parameters {                                                          \
        const int bad = rule arguments;                                                            \
        if (VOX_UNLIKELY(bad))                                                                     \
            vox::errchk::report_bad(#upper, bad);                                                  \
        else                                                                                       \
            vox::logged(#upper, driver, vox::out_of_line(vox_blas_##lower), VOX_BARE arguments);   \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, upper);
