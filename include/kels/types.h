/** @file
 *  Sample types. The letters behind `Kel` are the suffix that a function's name carries for the type.
 */
#ifndef KELS_TYPES_H
#define KELS_TYPES_H

#include <stdint.h>

/** @name Version
 *  That of these headers; kelsGetLibVersion() tells that of the object which has been loaded.
 *  @{ */
#define KELS_VERSION_MAJOR 2
#define KELS_VERSION_MINOR 0
#define KELS_VERSION_PATCH 6
/** @} */

/** Marks what the shared object exports. */
#if defined(__cplusplus)
#define KELS_API extern "C" __attribute__((visibility("default")))
#else
#define KELS_API extern __attribute__((visibility("default")))
#endif

typedef uint8_t  Kel8u;  /**< unsigned 8-bit */
typedef int8_t   Kel8s;  /**< signed 8-bit */
typedef uint16_t Kel16u; /**< unsigned 16-bit */
typedef int16_t  Kel16s; /**< signed 16-bit */
typedef uint32_t Kel32u; /**< unsigned 32-bit */
typedef int32_t  Kel32s; /**< signed 32-bit */
typedef int64_t  Kel64s; /**< signed 64-bit */
typedef float    Kel32f; /**< IEEE 754 single */
typedef double   Kel64f; /**< IEEE 754 double */

/** @name Complex samples
 *  Two members with nothing between them: an array of n complex samples has the layout of an array of 2n real
 *  ones, real parts at even indices.
 *  @{ */
typedef struct { Kel8s  re, im; } Kel8sc;
typedef struct { Kel16s re, im; } Kel16sc;
typedef struct { Kel32s re, im; } Kel32sc;
typedef struct { Kel64s re, im; } Kel64sc;
typedef struct { Kel32f re, im; } Kel32fc;
typedef struct { Kel64f re, im; } Kel64fc;
/** @} */

#endif
