/* types.h - what every public header needs: integers and complex numbers of the interface, the
 * export mark, the spellings of a Fortran-callable routine. */
#ifndef VOX_TYPES_H
#define VOX_TYPES_H

#include <stddef.h>
#include <stdint.h>

/* Integers at the boundary have 32 bits (the LP64 interface), as a Fortran INTEGER has by default. */
typedef int32_t vox_int;

/* Complex numbers: real part, imaginary part. A program that would rather write its own type of this
 * layout (float _Complex, std::complex<float>) defines both macros before it includes a header. */
#ifndef vox_complex_float
typedef struct {
    float real, imag;
} vox_complex_float;
#define vox_complex_float vox_complex_float
#endif
#ifndef vox_complex_double
typedef struct {
    double real, imag;
} vox_complex_double;
#define vox_complex_double vox_complex_double
#endif

#if defined(__GNUC__)
#define VOX_API __attribute__((visibility("default")))
#else
#define VOX_API
#endif

/* Declares a Fortran-callable routine in its three spellings, all one function:
 * VOX_FORTRAN(void, daxpy, DAXPY, (parameters)) is daxpy, daxpy_ and DAXPY. */
#define VOX_FORTRAN(result, lower, upper, parameters)                                              \
    VOX_API result lower parameters;                                                               \
    VOX_API result lower##_ parameters;                                                            \
    VOX_API result upper parameters

#endif
