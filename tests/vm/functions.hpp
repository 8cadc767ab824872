// functions.hpp - the vector functions with what their tests know of them: one row each.
//
// A row is: how many arguments it has (one, two, or one and a fixed one) | the function in its three spellings |
// always where every result is the correctly rounded one, exact where it is in TQM_HA, else near | the function on
// the numbers of the C library, in the type and in a wider one | the same by MPFR | its strata (strata.hpp).
#pragma once

#include <cmath>
#include <mpfr.h>

#include "tests/vm/strata.hpp"
#include "vox/tqm.h"

// clang-format off
#define VM_FUNCTIONS(X)                                                            \
    X(one, Abs, abs, ABS, always, std::abs(a), mpfr_abs(r, a, MPFR_RNDN), anything) \
    X(two, Add, add, ADD, always, a + b, mpfr_add(r, a, b, MPFR_RNDN), sums<1>) \
    X(one, Ceil, ceil, CEIL, always, std::ceil(a), mpfr_ceil(r, a), anything) \
    X(two, Div, div, DIV, exact, a / b, mpfr_div(r, a, b, MPFR_RNDN), products<-1>) \
    X(one, Exp, exp, EXP, near, std::exp(a), mpfr_exp(r, a, MPFR_RNDN), exponentials) \
    X(one, Floor, floor, FLOOR, always, std::floor(a), mpfr_floor(r, a), anything) \
    X(one, Inv, inv, INV, exact, 1 / a, mpfr_ui_div(r, 1, a, MPFR_RNDN), powers<-1>) \
    X(one, InvSqrt, invsqrt, INVSQRT, near, 1 / std::sqrt(a), mpfr_rec_sqrt(r, a, MPFR_RNDN), roots) \
    X(one, Ln, ln, LN, near, std::log(a), mpfr_log(r, a, MPFR_RNDN), logarithms) \
    X(one, Log1p, log1p, LOG1P, near, std::log1p(a), mpfr_log1p(r, a, MPFR_RNDN), logarithms_of_1p) \
    X(two, Mul, mul, MUL, always, a * b, mpfr_mul(r, a, b, MPFR_RNDN), products<1>) \
    X(two, Pow, pow, POW, near, std::pow(a, b), mpfr_pow(r, a, b, MPFR_RNDN), general_powers) \
    X(fixed, Powx, powx, POWX, near, std::pow(a, b), mpfr_pow(r, a, b, MPFR_RNDN), fixed_powers) \
    X(one, Round, round, ROUND, always, std::round(a), mpfr_round(r, a), anything) \
    X(one, Sqr, sqr, SQR, always, a * a, mpfr_sqr(r, a, MPFR_RNDN), powers<2>) \
    X(one, Sqrt, sqrt, SQRT, exact, std::sqrt(a), mpfr_sqrt(r, a, MPFR_RNDN), roots) \
    X(two, Sub, sub, SUB, always, a - b, mpfr_sub(r, a, b, MPFR_RNDN), sums<-1>) \
    X(one, Tanh, tanh, TANH, near, std::tanh(a), mpfr_tanh(r, a, MPFR_RNDN), hyperbolic_tangents)
// clang-format on

namespace test {

// How close results are to the exact value.
enum class rounding { always, exact, near };
enum class arguments { one, two, fixed };

// What has 11 bits more, or 29.
template <class T>
using wider = std::conditional_t<sizeof(T) == 4, double, long double>;

template <class T>
struct vector_function {
    // All forms with the same parameters; fixed arguments are the first of b.
    using plain = void (*)(vox_int n, const T *a, const T *b, T *r);
    using moded = void (*)(vox_int n, const T *a, const T *b, T *r, int64_t mode);

    const char *name; // "vdExp"
    arguments shape;
    rounding ha;
    plain v, v_lower, v_upper;
    moded vm, vm_lower, vm_upper;
    wider<T> (*wide)(wider<T> a, wider<T> b);
    T (*rounded)(T a, T b); // of exact functions
    int (*mpfr)(mpfr_ptr r, mpfr_srcptr a, mpfr_srcptr b);
    void (*strata)(samples<T> &);
};

#define VM_CALL_one(f, T) [](vox_int n, const T *a, const T *, T *r) { f(n, a, r); }
#define VM_CALL_two(f, T) [](vox_int n, const T *a, const T *b, T *r) { f(n, a, b, r); }
#define VM_CALL_fixed(f, T) [](vox_int n, const T *a, const T *b, T *r) { f(n, a, *b, r); }
#define VM_MODED_one(f, T)                                                                         \
    [](vox_int n, const T *a, const T *, T *r, int64_t mode) { f(n, a, r, mode); }
#define VM_MODED_two(f, T)                                                                         \
    [](vox_int n, const T *a, const T *b, T *r, int64_t mode) { f(n, a, b, r, mode); }
#define VM_MODED_fixed(f, T)                                                                       \
    [](vox_int n, const T *a, const T *b, T *r, int64_t mode) { f(n, a, *b, r, mode); }
#define VM_FORTRAN_one(f, T) [](vox_int n, const T *a, const T *, T *r) { f(&n, a, r); }
#define VM_FORTRAN_two(f, T) [](vox_int n, const T *a, const T *b, T *r) { f(&n, a, b, r); }
#define VM_FORTRAN_fixed(f, T) VM_FORTRAN_two(f, T)
#define VM_FORTRAN_MODED_one(f, T)                                                                 \
    [](vox_int n, const T *a, const T *, T *r, int64_t mode) { f(&n, a, r, &mode); }
#define VM_FORTRAN_MODED_two(f, T)                                                                 \
    [](vox_int n, const T *a, const T *b, T *r, int64_t mode) { f(&n, a, b, r, &mode); }
#define VM_FORTRAN_MODED_fixed(f, T) VM_FORTRAN_MODED_two(f, T)

#define VM_FUNCTION_IN(p, P, T, shape, Name, lower, upper, ha, value, by_mpfr, strata)             \
    vector_function<T>{                                                                            \
        "v" #p #Name,                                                                              \
        arguments::shape,                                                                          \
        rounding::ha,                                                                              \
        VM_CALL_##shape(v##p##Name, T),                                                            \
        VM_FORTRAN_##shape(v##p##lower##_, T),                                                     \
        VM_FORTRAN_##shape(V##P##upper##_, T),                                                     \
        VM_MODED_##shape(vm##p##Name, T),                                                          \
        VM_FORTRAN_MODED_##shape(vm##p##lower##_, T),                                              \
        VM_FORTRAN_MODED_##shape(VM##P##upper##_, T),                                              \
        [](wider<T> a, [[maybe_unused]] wider<T> b) -> wider<T> { return value; },                 \
        [](T a, [[maybe_unused]] T b) -> T { return value; },                                      \
        [](mpfr_ptr r, mpfr_srcptr a, [[maybe_unused]] mpfr_srcptr b) { return by_mpfr; },         \
        strata},
#define VM_SINGLE(...) VM_FUNCTION_IN(s, S, float, __VA_ARGS__)
#define VM_DOUBLE(...) VM_FUNCTION_IN(d, D, double, __VA_ARGS__)

template <class T>
const auto &vector_functions() {
    if constexpr (sizeof(T) == 4) {
        static const vector_function<float> all[] = {VM_FUNCTIONS(VM_SINGLE)};
        return all;
    } else {
        static const vector_function<double> all[] = {VM_FUNCTIONS(VM_DOUBLE)};
        return all;
    }
}

} // namespace test
