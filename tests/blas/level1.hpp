// level1.hpp - level 1 for tests: one overload per routine for all element types, in the Fortran or the
// C form, and long double mathematics to compare with.
#pragma once

#include <cmath>
#include <complex>
#include <ostream>
#include <type_traits>
#include <vector>

#include "serv/scalar.hpp"
#include "tests/support/element_types.hpp"
#include "tests/support/guarded.hpp"
#include "tests/support/numbers.hpp"
#include "tests/support/thread_counts.hpp"
#include "vox/vox.h"

namespace test {

using cfloat = vox_complex_float;
using cdouble = vox_complex_double;
using wide = std::complex<long double>;

using vox::is_complex;
using vox::real_of;

template <class T>
wide widen(T a) {
    if constexpr (is_complex<T>)
        return {a.real, a.imag};
    else
        return a;
}
// The imaginary part is dropped for real types.
template <class T>
T narrow(wide a) {
    using R = real_of<T>;
    if constexpr (is_complex<T>)
        return T{R(a.real()), R(a.imag())};
    else
        return R(a.real());
}

// std::abs without its care for the ends of the range, which those of the tested types never reach.
inline long double modulus(wide a) { return std::sqrt(std::norm(a)); }

template <class T>
std::vector<T> random_numbers(size_t n, unsigned seed) {
    const std::vector<real_of<T>> parts = random_vector<real_of<T>>(2 * n, seed);
    std::vector<T> v(n);
    for (size_t i = 0; i < n; ++i)
        v[i] = narrow<T>({parts[2 * i], parts[2 * i + 1]});
    return v;
}

enum class form { fortran, c };

struct shape {
    vox_int n, incx, incy;
};
inline std::ostream &operator<<(std::ostream &out, const shape &s) {
    return out << "n " << s.n << " incx " << s.incx << " incy " << s.incy;
}

inline size_t extent(vox_int n, vox_int inc) {
    return n > 0 ? size_t(n - 1) * size_t(std::abs(inc)) + 1 : 0;
}
// Where element i of a BLAS vector lies: a negative increment walks it from its end.
inline size_t place(vox_int n, vox_int inc, vox_int i) {
    return size_t(inc < 0 ? int64_t(i + 1 - n) * inc : int64_t(i) * inc);
}

// Lengths past every unrolled loop; increments of all kinds on the short ones; then longer ones.
inline std::vector<shape> shapes() {
    std::vector<shape> all;
    for (vox_int n = 0; n <= 280; ++n)
        all.push_back({n, 1, 1});
    for (vox_int n : {0, 1, 2, 3, 5, 8, 13, 33})
        for (vox_int incx : {-3, -1, 0, 1, 2, 17})
            for (vox_int incy : {-3, -1, 0, 1, 2, 17})
                all.push_back({n, incx, incy});
    for (vox_int n : {1000, 2047, 10007})
        for (auto [incx, incy] : {std::pair{1, 1}, {-1, 1}, {2, -3}, {1, 0}})
            all.push_back({n, incx, incy});
    return all;
}

// What the forms get for an argument: a pointer as it is; in Fortran addresses of all others, in C those
// of complex numbers.
template <class A>
auto for_fortran(const A &a) {
    if constexpr (std::is_pointer_v<A> || std::is_null_pointer_v<A>)
        return a;
    else
        return &a;
}
template <class A>
auto for_c(const A &a) {
    if constexpr (std::is_class_v<A>)
        return &a;
    else
        return a;
}
template <class C, class F, class... A>
auto either(form f, C *c, F *fortran, const A &...a) {
    using result = decltype(fortran(for_fortran(a)...));
    return f == form::c ? result(c(for_c(a)...)) : fortran(for_fortran(a)...);
}
// The same where the result is the C form's last argument.
template <class C, class F, class... A>
auto either_sub(form f, C *c, F *fortran, const A &...a) {
    decltype(fortran(for_fortran(a)...)) result;
    if (f == form::c)
        c(for_c(a)..., &result);
    else
        result = fortran(for_fortran(a)...);
    return result;
}

// The type of the elements, which the first pointer among the arguments is to, but for indices.
template <class A, class... Rest>
struct element : element<Rest...> {};
template <class T, class... Rest>
requires(!std::is_same_v<T, const vox_int>) struct element<T *, Rest...> {
    using type = std::remove_const_t<T>;
};

// name(form, arguments by value) calls the Fortran or the C form.
#define BY_TYPE(name, of_float, of_double, of_cfloat, of_cdouble)                                  \
    template <class... A>                                                                          \
    auto name(form f, A... a) {                                                                    \
        using T = typename element<A...>::type;                                                    \
        if constexpr (std::is_same_v<T, float>)                                                    \
            return of_float;                                                                       \
        else if constexpr (std::is_same_v<T, double>)                                              \
            return of_double;                                                                      \
        else if constexpr (std::is_same_v<T, cfloat>)                                              \
            return of_cfloat;                                                                      \
        else                                                                                       \
            return of_cdouble;                                                                     \
    }
#define EITHER(routine) either(f, cblas_##routine, routine##_, a...)
#define SUB(routine) either_sub(f, cblas_##routine##_sub, routine##_, a...)
#define LEVEL1(name, s, d, c, z) BY_TYPE(name, EITHER(s), EITHER(d), EITHER(c), EITHER(z))
#define DOT(name, s, d, c, z) BY_TYPE(name, EITHER(s), EITHER(d), SUB(c), SUB(z))
#define REAL_ONLY(name, s, d) BY_TYPE(name, EITHER(s), EITHER(d), void(), void())
LEVEL1(copy, scopy, dcopy, ccopy, zcopy)
LEVEL1(swap, sswap, dswap, cswap, zswap)
LEVEL1(scal, sscal, dscal, cscal, zscal)
BY_TYPE(real_scal, void(), void(), EITHER(csscal), EITHER(zdscal))
LEVEL1(axpy, saxpy, daxpy, caxpy, zaxpy)
LEVEL1(axpby, saxpby, daxpby, caxpby, zaxpby)
LEVEL1(iamax, isamax, idamax, icamax, izamax)
LEVEL1(iamin, isamin, idamin, icamin, izamin)
LEVEL1(asum, sasum, dasum, scasum, dzasum)
LEVEL1(nrm2, snrm2, dnrm2, scnrm2, dznrm2)
DOT(dot, sdot, ddot, cdotu, zdotu)
DOT(dotc, sdot, ddot, cdotc, zdotc)
LEVEL1(rot, srot, drot, csrot, zdrot)
LEVEL1(rotg, srotg, drotg, crotg, zrotg)
REAL_ONLY(rotm, srotm, drotm)
REAL_ONLY(rotmg, srotmg, drotmg)
LEVEL1(axpyi, saxpyi, daxpyi, caxpyi, zaxpyi)
LEVEL1(gthr, sgthr, dgthr, cgthr, zgthr)
LEVEL1(gthrz, sgthrz, dgthrz, cgthrz, zgthrz)
LEVEL1(sctr, ssctr, dsctr, csctr, zsctr)
DOT(doti, sdoti, ddoti, cdotui, zdotui)
DOT(dotci, sdoti, ddoti, cdotci, zdotci)
REAL_ONLY(roti, sroti, droti)
#undef BY_TYPE
#undef EITHER
#undef SUB
#undef LEVEL1
#undef DOT
#undef REAL_ONLY

} // namespace test
