// base.hpp - what every file of the library shares: the internal integer and the alias macros.
#pragma once

#include "vox/types.h"

namespace vox {

// Internal layers count in 64 bits, so that no product of dimensions overflows.
using index_t = int64_t;

} // namespace vox

#define VOX_LIKELY(condition) __builtin_expect(!!(condition), 1)
#define VOX_UNLIKELY(condition) __builtin_expect(!!(condition), 0)

// For lambdas, whose calls are not always inlined otherwise: [&](auto i) VOX_INLINED { ... }.
#define VOX_INLINED __attribute__((always_inline))

// A second name for a function of this file, as an ELF alias: no code, no call. The public header
// declares both names.
#define VOX_ALIAS(name, existing)                                                                  \
    extern "C" __typeof__(existing) name __attribute__((alias(#existing)))

// The same, overridable by a definition in the program, in a static link too.
#define VOX_WEAK_ALIAS(name, existing)                                                             \
    extern "C" __typeof__(existing) name __attribute__((weak, alias(#existing)))

// The three spellings of a Fortran-callable routine that is defined as routine_ (with underscore).
#define VOX_FORTRAN_ALIASES(lower, upper)                                                          \
    VOX_ALIAS(lower, lower##_);                                                                    \
    VOX_ALIAS(upper, lower##_)

// The Fortran forms of a C function that takes scalars by value: name_ and NAME, by address.
// parameters: the Fortran parameter list; arguments: what the C function receives; both
// parenthesised.
#define VOX_FORTRAN_FORM(result, lower, upper, parameters, arguments)                              \
    extern "C" result lower##_ parameters { return lower arguments; }                              \
    VOX_ALIAS(upper, lower##_)

// The same for a C function whose name has capitals: lower and upper are
// whole names, rsknewstream_ and RSKNEWSTREAM_.
#define VOX_FORTRAN_FORMS_OF(name, result, lower, upper, parameters, arguments)                    \
    extern "C" result lower parameters { return name arguments; }                                  \
    VOX_ALIAS(upper, lower)
