// forms.hpp - from one description to every form of a routine.
//
//   VOX_LAPACK(ALL, getrf, getrf, GETRF, size(m), size(n), inout(a, lda, m, n),
//              pivots_out(ipiv, least(m, n)))
//
// defines, for s, d, c and z, vox_lapack_dgetrf (internal, 64-bit integers) on the driver
// vox::lapack::getrf<double>, vox_lapack_errchk_dgetrf, dgetrf_, dgetrf, DGETRF, LAPACKE_dgetrf and
// LAPACKE_dgetrf_work. The first argument says for which types: ALL, REAL, COMPLEX; the second is the
// driver. lapack/entry/parameters.hpp lists the elements of a description.
//
//   VOX_LAPACK_FORTRAN         the same without the C forms
//   VOX_LAPACK_QUIET           a routine without info: unchecked, its C forms return 0
//   VOX_LAPACK_QUIET_FORTRAN   and without C forms
//   VOX_LAPACK_VALUE           a function with a real result
//   VOX_LAPACK_PLAIN, VOX_LAPACK_PLAIN_VALUE   the last two for routines without a matrix, whose C
//                              forms have no layout
//   VOX_LAPACK_VALUE_FORTRAN, VOX_LAPACK_NUMBER_FORTRAN   a real result, one of the element type
#pragma once

#include "lapack/entry/call.hpp"
#include "lapack/entry/parameters.hpp"
#include "lapack/lapacke/call.hpp"
#include "vox/lapack.h"
#include "vox/lapacke.h"

// What the parameter lists call their types, inside and at the boundary.
#define VOX_LAPACK_TYPES(p, P, E)                                                                  \
    namespace vox::lapack::p##_inside {                                                            \
        using T = E;                                                                               \
        using R = real_of<E>;                                                                      \
        using integer = index_t;                                                                   \
    }                                                                                              \
    namespace vox::lapack::p##_boundary {                                                          \
        using T = E;                                                                               \
        using R = real_of<E>;                                                                      \
        using integer = vox_int;                                                                   \
    }
VOX_PRECISIONS(VOX_LAPACK_TYPES)
#undef VOX_LAPACK_TYPES

#define VOX_LAPACK(types, ...) VOX_LAPACK_FOR_##types(VOX_LAPACK_BOTH, __VA_ARGS__)
#define VOX_LAPACK_FORTRAN(types, ...) VOX_LAPACK_FOR_##types(VOX_LAPACK_INFO, __VA_ARGS__)
#define VOX_LAPACK_QUIET(types, ...) VOX_LAPACK_FOR_##types(VOX_LAPACK_QUIET_BOTH, __VA_ARGS__)
#define VOX_LAPACK_QUIET_FORTRAN(types, ...) VOX_LAPACK_FOR_##types(VOX_LAPACK_NO_INFO, __VA_ARGS__)
#define VOX_LAPACK_VALUE(types, ...) VOX_LAPACK_FOR_##types(VOX_LAPACK_VALUE_BOTH, __VA_ARGS__)

#define VOX_LAPACK_PLAIN(types, ...) VOX_LAPACK_FOR_##types(VOX_LAPACK_PLAIN_BOTH, __VA_ARGS__)
#define VOX_LAPACK_PLAIN_VALUE(types, ...)                                                         \
    VOX_LAPACK_FOR_##types(VOX_LAPACK_PLAIN_VALUE_BOTH, __VA_ARGS__)
#define VOX_LAPACK_VALUE_FORTRAN(types, ...)                                                       \
    VOX_LAPACK_FOR_##types(VOX_LAPACK_ONLY_VALUE, __VA_ARGS__)
#define VOX_LAPACK_NUMBER_FORTRAN(types, ...)                                                      \
    VOX_LAPACK_FOR_##types(VOX_LAPACK_ONLY_NUMBER, __VA_ARGS__)

#define VOX_LAPACK_FOR_ALL(form, ...)                                                              \
    VOX_LAPACK_FOR_REAL(form, __VA_ARGS__)                                                         \
    VOX_LAPACK_FOR_COMPLEX(form, __VA_ARGS__)
#define VOX_LAPACK_FOR_REAL(form, driver, lower, UPPER, ...)                                       \
    form(s, driver, s##lower, S##UPPER, __VA_ARGS__)                                               \
        form(d, driver, d##lower, D##UPPER, __VA_ARGS__)
#define VOX_LAPACK_FOR_COMPLEX(form, driver, lower, UPPER, ...)                                    \
    form(c, driver, c##lower, C##UPPER, __VA_ARGS__)                                               \
        form(z, driver, z##lower, Z##UPPER, __VA_ARGS__)

// A visitor's way through the elements; in a form, with what the form calls them.
#define VOX_LAPACK_DESCRIPTION(p, lower, ...)                                                      \
    namespace vox::lapack::p##_boundary {                                                          \
        static constexpr auto lower##_description =                                                \
            [](auto &visit VOX_EACH(VOX_ANY_, __VA_ARGS__))                                        \
                VOX_INLINED { VOX_SHOWN(__VA_ARGS__) };                                            \
    }
#define VOX_LAPACK_DESCRIBE(lower, names)                                                          \
    [&](auto &visit) VOX_INLINED { lower##_description(visit names); }

#define VOX_LAPACK_INFO(p, driver, lower, UPPER, ...)                                              \
    VOX_LAPACK_DESCRIPTION(p, lower, __VA_ARGS__)                                                  \
    namespace vox::lapack::p##_inside {                                                            \
        extern "C" void vox_lapack_##lower(VOX_TAIL(VOX_EACH(VOX_BY_ADDRESS_, __VA_ARGS__)),       \
                                           integer *info) {                                        \
            *info = driver<T>(VOX_TAIL(VOX_EACH(VOX_DRIVEN_, __VA_ARGS__)));                       \
        }                                                                                          \
    }                                                                                              \
    namespace vox::lapack::p##_boundary {                                                          \
        extern "C" int vox_lapack_errchk_##lower(VOX_TAIL(VOX_EACH(VOX_BY_ADDRESS_, __VA_ARGS__)), \
                                                 integer *info) {                                  \
            return refused<T>(#UPPER, info,                                                        \
                              VOX_LAPACK_DESCRIBE(lower, VOX_EACH(VOX_SEEN_, __VA_ARGS__)));       \
        }                                                                                          \
        extern "C" VOX_API void lower##_(VOX_TAIL(VOX_EACH(VOX_BY_ADDRESS_, __VA_ARGS__)),         \
                                         integer *info) {                                          \
            checked_call<T>(                                                                       \
                #UPPER, info, VOX_LAPACK_DESCRIBE(lower, VOX_EACH(VOX_SEEN_, __VA_ARGS__)),        \
                [&]([[maybe_unused]] index_t *wide_pivots) {                                       \
                    index_t result;                                                                \
                    p##_inside::vox_lapack_##lower(VOX_TAIL(VOX_EACH(VOX_WIDE_, __VA_ARGS__)),     \
                                                   &result);                                       \
                    *info = integer(result);                                                       \
                },                                                                                 \
                [&](auto &text) {                                                                  \
                    VOX_EACH(VOX_PRINTED_, __VA_ARGS__)                                            \
                    text.add(static_cast<const integer *>(info));                                  \
                });                                                                                \
        }                                                                                          \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, UPPER);
#define VOX_LAPACK_NO_INFO(p, driver, lower, UPPER, ...)                                           \
    VOX_LAPACK_RESULT(void, p, driver, lower, UPPER, __VA_ARGS__)
#define VOX_LAPACK_ONLY_VALUE(p, driver, lower, UPPER, ...)                                        \
    VOX_LAPACK_RESULT(R, p, driver, lower, UPPER, __VA_ARGS__)
#define VOX_LAPACK_ONLY_NUMBER(p, driver, lower, UPPER, ...)                                       \
    VOX_LAPACK_RESULT(T, p, driver, lower, UPPER, __VA_ARGS__)
#define VOX_LAPACK_RESULT(result, p, driver, lower, UPPER, ...)                                    \
    VOX_LAPACK_DESCRIPTION(p, lower, __VA_ARGS__)                                                  \
    namespace vox::lapack::p##_inside {                                                            \
        extern "C" result vox_lapack_##lower(VOX_TAIL(VOX_EACH(VOX_BY_ADDRESS_, __VA_ARGS__))) {   \
            return driver<T>(VOX_TAIL(VOX_EACH(VOX_DRIVEN_, __VA_ARGS__)));                        \
        }                                                                                          \
    }                                                                                              \
    namespace vox::lapack::p##_boundary {                                                          \
        extern "C" VOX_API result lower##_(VOX_TAIL(VOX_EACH(VOX_BY_ADDRESS_, __VA_ARGS__))) {     \
            return unchecked_call<T>(                                                              \
                #UPPER, VOX_LAPACK_DESCRIBE(lower, VOX_EACH(VOX_SEEN_, __VA_ARGS__)),              \
                [&]([[maybe_unused]] index_t *wide_pivots) {                                       \
                    return p##_inside::vox_lapack_##lower(                                         \
                        VOX_TAIL(VOX_EACH(VOX_WIDE_, __VA_ARGS__)));                               \
                },                                                                                 \
                [&](auto &text) { VOX_EACH(VOX_PRINTED_, __VA_ARGS__) });                          \
        }                                                                                          \
    }                                                                                              \
    VOX_FORTRAN_ALIASES(lower, UPPER);

// The C forms: result and what a call of the Fortran form is.
#define VOX_LAPACKE(result, p, lower, fortran, ...)                                                \
    namespace vox::lapack::p##_boundary {                                                          \
        extern "C" VOX_API result LAPACKE_##lower##_work(                                          \
            int matrix_layout VOX_EACH(VOX_BY_VALUE_, __VA_ARGS__)) {                              \
            return lapacke::work_form<T, result>(                                                  \
                "LAPACKE_" #lower "_work", matrix_layout,                                          \
                VOX_LAPACK_DESCRIBE(lower, VOX_EACH(VOX_NAME_, __VA_ARGS__)), [&] { fortran });    \
        }                                                                                          \
        extern "C" VOX_API result LAPACKE_##lower(                                                 \
            int matrix_layout VOX_EACH(VOX_SHORT_, __VA_ARGS__)) {                                 \
            VOX_EACH(VOX_OWN_, __VA_ARGS__)                                                        \
            return lapacke::high_form<T, result>(                                                  \
                "LAPACKE_" #lower, matrix_layout,                                                  \
                VOX_LAPACK_DESCRIBE(lower, VOX_EACH(VOX_NAME_, __VA_ARGS__)), [&] {                \
                    return LAPACKE_##lower##_work(matrix_layout VOX_EACH(VOX_NAME_, __VA_ARGS__)); \
                });                                                                                \
        }                                                                                          \
    }
#define VOX_LAPACK_BOTH(p, driver, lower, UPPER, ...)                                              \
    VOX_LAPACK_INFO(p, driver, lower, UPPER, __VA_ARGS__)                                          \
    VOX_LAPACKE(vox_int, p, lower, integer info = 0;                                               \
                lower##_(VOX_TAIL(VOX_EACH(VOX_ADDRESS_, __VA_ARGS__)), &info); return info;       \
                , __VA_ARGS__)
#define VOX_LAPACK_QUIET_BOTH(p, driver, lower, UPPER, ...)                                        \
    VOX_LAPACK_NO_INFO(p, driver, lower, UPPER, __VA_ARGS__)                                       \
    VOX_LAPACKE(vox_int, p, lower, lower##_(VOX_TAIL(VOX_EACH(VOX_ADDRESS_, __VA_ARGS__)));        \
                return 0;, __VA_ARGS__)
#define VOX_LAPACK_VALUE_BOTH(p, driver, lower, UPPER, ...)                                        \
    VOX_LAPACK_RESULT(R, p, driver, lower, UPPER, __VA_ARGS__)                                     \
    VOX_LAPACKE(R, p, lower, return lower##_(VOX_TAIL(VOX_EACH(VOX_ADDRESS_, __VA_ARGS__)));       \
                , __VA_ARGS__)

#define VOX_LAPACKE_PLAIN(result, p, lower, fortran, ...)                                          \
    namespace vox::lapack::p##_boundary {                                                          \
        extern "C" VOX_API result LAPACKE_##lower##_work(                                          \
            VOX_TAIL(VOX_EACH(VOX_BY_VALUE_, __VA_ARGS__))) {                                      \
            fortran                                                                                \
        }                                                                                          \
        extern "C" VOX_API result LAPACKE_##lower(                                                 \
            VOX_TAIL(VOX_EACH(VOX_BY_VALUE_, __VA_ARGS__))) {                                      \
            const vox_int bad = lapacke::first_nan<T>(                                             \
                VOX_LAPACK_DESCRIBE(lower, VOX_EACH(VOX_NAME_, __VA_ARGS__)));                     \
            return bad ? result(bad)                                                               \
                       : LAPACKE_##lower##_work(VOX_TAIL(VOX_EACH(VOX_NAME_, __VA_ARGS__)));       \
        }                                                                                          \
    }
#define VOX_LAPACK_PLAIN_BOTH(p, driver, lower, UPPER, ...)                                        \
    VOX_LAPACK_NO_INFO(p, driver, lower, UPPER, __VA_ARGS__)                                       \
    VOX_LAPACKE_PLAIN(vox_int, p, lower, lower##_(VOX_TAIL(VOX_EACH(VOX_ADDRESS_, __VA_ARGS__)));  \
                      return 0;, __VA_ARGS__)
#define VOX_LAPACK_PLAIN_VALUE_BOTH(p, driver, lower, UPPER, ...)                                  \
    VOX_LAPACK_RESULT(R, p, driver, lower, UPPER, __VA_ARGS__)                                     \
    VOX_LAPACKE_PLAIN(R, p, lower, return lower##_(VOX_TAIL(VOX_EACH(VOX_ADDRESS_, __VA_ARGS__))); \
                      , __VA_ARGS__)
