// parameters.hpp - what a routine is called with, written once: a list of elements, from which every
// form takes its parameter list, its arguments and what it does about them.
//
//   size(m), size(n), inout(a, lda, m, n), pivots_out(ipiv, least(m, n))
//
// is the whole description of ?getrf. An element names one parameter of the Fortran form or two, in
// its order; its other arguments are expressions in the names, which stand for values there.
//
//   option(c, "UL")           a letter, one of these; option(c, "NT", "NC"): of real, of complex types
//   letter(c)                 a letter that is not checked
//   size(n)                   an integer of at least 0; size_within(n, most), size_from(n, least)
//   integer_in(k)             an integer that is not checked
//   scalar_in(x), real_in(x), norm_in(x)   a number; a real one; a real one that is not negative
//   real_out(x), real_inout(x)             an address of a real number
//   in, inout(a, lda, rows, cols)          a matrix that is read, changed
//   kept(a, lda, rows, cols)  one that is written, perhaps in part
//   in_triangle, inout_triangle(a, lda, uplo, diag, n)      one triangle of a matrix
//   in_trapezoid(a, lda, uplo, diag, m, n)
//   in_reflectors(v, ldv, direct, storev, rows, cols)       V without its triangle of known elements
//   vector_in, vector_inout(x, n), vector_out(x, n)
//   pivots_in, pivots_out, pivots_inout(ipiv, count)        integers that drivers see with 64 bits
//   queried(work, lwork, least)            workspace whose best size a call with lwork = -1 tells
//   space(work, n), real_space, integer_space(work, n)      workspace of a known size
//   space_rows(work, ldwork, rows, cols)   workspace with a leading dimension
//   require(condition, position)           a check of its own, of the parameter at this place
//
// visit.size(m); visit.size(n); ... is what becomes of the list in a description: a function object
// that shows the elements one by one to a visitor. The argument check, the NaN check, the copies of
// row-major matrices and the workspace of the C form are visitors.
#pragma once

// X(element) for each, up to 40.
#define VOX_PARENS ()
#define VOX_REPEAT(...) VOX_REPEAT_3(VOX_REPEAT_3(VOX_REPEAT_3(__VA_ARGS__)))
#define VOX_REPEAT_3(...) VOX_REPEAT_2(VOX_REPEAT_2(VOX_REPEAT_2(__VA_ARGS__)))
#define VOX_REPEAT_2(...) VOX_REPEAT_1(VOX_REPEAT_1(VOX_REPEAT_1(__VA_ARGS__)))
#define VOX_REPEAT_1(...) __VA_ARGS__

// The statements of a description.
#define VOX_SHOWN(...) __VA_OPT__(VOX_REPEAT(VOX_SHOW(__VA_ARGS__)))
#define VOX_SHOW(element, ...)                                                                     \
    visit.element;                                                                                 \
    __VA_OPT__(VOX_SHOW_AGAIN VOX_PARENS(__VA_ARGS__))
#define VOX_SHOW_AGAIN() VOX_SHOW

// Elements to parameters: (kind, type, name) for each.
#define VOX_PARAMETERS(...) __VA_OPT__(VOX_REPEAT(VOX_PARAMETER(__VA_ARGS__)))
#define VOX_PARAMETER(element, ...)                                                                \
    VOX_ELEMENT_##element __VA_OPT__(VOX_PARAMETER_AGAIN VOX_PARENS(__VA_ARGS__))
#define VOX_PARAMETER_AGAIN() VOX_PARAMETER

#define VOX_ELEMENT_option(name, ...) (letter, char, name),
#define VOX_ELEMENT_letter(name) (letter, char, name),
#define VOX_ELEMENT_size(name) (value, integer, name),
#define VOX_ELEMENT_size_within(name, most) (value, integer, name),
#define VOX_ELEMENT_size_from(name, least) (value, integer, name),
#define VOX_ELEMENT_integer_in(name) (value, integer, name),
#define VOX_ELEMENT_scalar_in(name) (value, T, name),
#define VOX_ELEMENT_real_in(name) (value, R, name),
#define VOX_ELEMENT_norm_in(name) (value, R, name),
#define VOX_ELEMENT_real_out(name) (array, R, name),
#define VOX_ELEMENT_real_inout(name) (array, R, name),
#define VOX_ELEMENT_in(name, ld, ...) (array, const T, name), (value, integer, ld),
#define VOX_ELEMENT_inout(name, ld, ...) (array, T, name), (value, integer, ld),
#define VOX_ELEMENT_kept(name, ld, ...) (array, T, name), (value, integer, ld),
#define VOX_ELEMENT_in_triangle(name, ld, ...) (array, const T, name), (value, integer, ld),
#define VOX_ELEMENT_inout_triangle(name, ld, ...) (array, T, name), (value, integer, ld),
#define VOX_ELEMENT_in_trapezoid(name, ld, ...) (array, const T, name), (value, integer, ld),
#define VOX_ELEMENT_in_reflectors(name, ld, ...) (array, const T, name), (value, integer, ld),
#define VOX_ELEMENT_vector_in(name, ...) (array, const T, name),
#define VOX_ELEMENT_vector_inout(name, ...) (array, T, name),
#define VOX_ELEMENT_vector_out(name, ...) (array, T, name),
#define VOX_ELEMENT_pivots_in(name, count) (pivots, const integer, name),
#define VOX_ELEMENT_pivots_out(name, count) (pivots, integer, name),
#define VOX_ELEMENT_pivots_inout(name, count) (pivots, integer, name),
#define VOX_ELEMENT_queried(name, length, least) (space, T, name), (extent, integer, length),
#define VOX_ELEMENT_space(name, count) (space, T, name),
#define VOX_ELEMENT_real_space(name, count) (space, R, name),
#define VOX_ELEMENT_integer_space(name, count) (space, vox_int, name),
#define VOX_ELEMENT_space_rows(name, ld, ...) (space, T, name), (extent, integer, ld),
#define VOX_ELEMENT_require(condition, position)

// Elements to what a form makes of their parameters: KIND_letter(char, uplo) KIND_value(integer, n) ...
#define VOX_EACH(prefix, ...) VOX_EACH_OF(prefix, VOX_PARAMETERS(__VA_ARGS__) end)
#define VOX_EACH_OF(prefix, ...) VOX_REPEAT(VOX_EACH_STEP(prefix, __VA_ARGS__))
#define VOX_EACH_STEP(prefix, parameter, ...)                                                      \
    __VA_OPT__(VOX_MADE_OF(prefix, VOX_BARE parameter)                                             \
                   VOX_EACH_AGAIN VOX_PARENS(prefix, __VA_ARGS__))
#define VOX_EACH_AGAIN() VOX_EACH_STEP
#define VOX_MADE_OF(...) VOX_MADE_OF_(__VA_ARGS__)
#define VOX_MADE_OF_(prefix, kind, type, name) prefix##kind(type, name)
// A list without the comma that it begins with.
#define VOX_TAIL(...) VOX_TAIL_(__VA_ARGS__)
#define VOX_TAIL_(nothing, ...) __VA_ARGS__

// Fortran: everything by address.
#define VOX_BY_ADDRESS_letter(type, name) , const type *name
#define VOX_BY_ADDRESS_value(type, name) , const type *name
#define VOX_BY_ADDRESS_array(type, name) , type *name
#define VOX_BY_ADDRESS_pivots(type, name) , type *name
#define VOX_BY_ADDRESS_space(type, name) , type *name
#define VOX_BY_ADDRESS_extent(type, name) , const type *name
// ... and what a description sees of that,
#define VOX_SEEN_letter(type, name) , *name
#define VOX_SEEN_value(type, name) , *name
#define VOX_SEEN_array(type, name) , name
#define VOX_SEEN_pivots(type, name) , name
#define VOX_SEEN_space(type, name) , name
#define VOX_SEEN_extent(type, name) , *name
// ... what the internal routine gets,
#define VOX_WIDE_letter(type, name) , name
#define VOX_WIDE_value(type, name) , vox::addressed(vox::widened(name))
#define VOX_WIDE_array(type, name) , name
#define VOX_WIDE_pivots(type, name) , wide_pivots
#define VOX_WIDE_space(type, name) , name
#define VOX_WIDE_extent(type, name) , vox::addressed(vox::widened(name))
// ... what the driver gets of that,
#define VOX_DRIVEN_letter(type, name) , vox::lapack::upper_case(*name)
#define VOX_DRIVEN_value(type, name) , *name
#define VOX_DRIVEN_array(type, name) , name
#define VOX_DRIVEN_pivots(type, name) , name
#define VOX_DRIVEN_space(type, name) , name
#define VOX_DRIVEN_extent(type, name) , *name
// ... and a verbose line.
#define VOX_PRINTED_letter(type, name) text.add(name);
#define VOX_PRINTED_value(type, name) text.add(name);
#define VOX_PRINTED_array(type, name) text.add(static_cast<const void *>(name));
#define VOX_PRINTED_pivots(type, name) text.add(static_cast<const void *>(name));
#define VOX_PRINTED_space(type, name) text.add(static_cast<const void *>(name));
#define VOX_PRINTED_extent(type, name) text.add(name);

// A description's own parameters, and the names alone.
#define VOX_ANY_letter(type, name) , [[maybe_unused]] auto &name
#define VOX_ANY_value(type, name) , [[maybe_unused]] auto &name
#define VOX_ANY_array(type, name) , [[maybe_unused]] auto &name
#define VOX_ANY_pivots(type, name) , [[maybe_unused]] auto &name
#define VOX_ANY_space(type, name) , [[maybe_unused]] auto &name
#define VOX_ANY_extent(type, name) , [[maybe_unused]] auto &name
#define VOX_NAME_letter(type, name) , name
#define VOX_NAME_value(type, name) , name
#define VOX_NAME_array(type, name) , name
#define VOX_NAME_pivots(type, name) , name
#define VOX_NAME_space(type, name) , name
#define VOX_NAME_extent(type, name) , name

// C: scalars by value,
#define VOX_BY_VALUE_letter(type, name) , type name
#define VOX_BY_VALUE_value(type, name) , type name
#define VOX_BY_VALUE_array(type, name) , type *name
#define VOX_BY_VALUE_pivots(type, name) , type *name
#define VOX_BY_VALUE_space(type, name) , type *name
#define VOX_BY_VALUE_extent(type, name) , type name
// ... the high-level form without workspace,
#define VOX_SHORT_letter(type, name) , type name
#define VOX_SHORT_value(type, name) , type name
#define VOX_SHORT_array(type, name) , type *name
#define VOX_SHORT_pivots(type, name) , type *name
#define VOX_SHORT_space(type, name)
#define VOX_SHORT_extent(type, name)
// ... which is its own,
#define VOX_OWN_letter(type, name)
#define VOX_OWN_value(type, name)
#define VOX_OWN_array(type, name)
#define VOX_OWN_pivots(type, name)
#define VOX_OWN_space(type, name) type *name = nullptr;
#define VOX_OWN_extent(type, name) type name = 0;
// ... and what the Fortran form gets.
#define VOX_ADDRESS_letter(type, name) , &name
#define VOX_ADDRESS_value(type, name) , &name
#define VOX_ADDRESS_array(type, name) , name
#define VOX_ADDRESS_pivots(type, name) , name
#define VOX_ADDRESS_space(type, name) , name
#define VOX_ADDRESS_extent(type, name) , &name
