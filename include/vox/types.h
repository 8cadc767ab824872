/* types.h - what every public header needs: the integer of the interface and the export mark. */
#ifndef VOX_TYPES_H
#define VOX_TYPES_H

#include <stddef.h>
#include <stdint.h>

/* Integers at the boundary have 32 bits (the LP64 interface), as a Fortran INTEGER has by default. */
typedef int32_t vox_int;

#if defined(__GNUC__)
#define VOX_API __attribute__((visibility("default")))
#else
#define VOX_API
#endif

#endif
