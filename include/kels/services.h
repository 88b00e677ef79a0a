/** @file
 *  Library services: aligned memory, the version record, processor queries, floating-point control, classification
 *  and the constants that stand for undefined results.
 *
 *  Nothing here is needed to call a signal function: none of them branches on the processor, and every one of them
 *  leaves the control words of the floating-point units as it found them.
 */
#ifndef KELS_SERVICES_H
#define KELS_SERVICES_H

#include "kels/status.h"

/** @name Allocation
 *  Room for `len` elements, aligned to 32 bytes and not cleared; null when `len` is below 1, when the byte count does
 *  not fit or when memory runs out. The block belongs to the caller, who gives it to `kelsFree`. As thread-safe as
 *  `malloc`.
 *  @{ */
KELS_API Kel8u*   kelsMalloc_8u  (int len);
KELS_API Kel8s*   kelsMalloc_8s  (int len);
KELS_API Kel16u*  kelsMalloc_16u (int len);
KELS_API Kel16s*  kelsMalloc_16s (int len);
KELS_API Kel32u*  kelsMalloc_32u (int len);
KELS_API Kel32s*  kelsMalloc_32s (int len);
KELS_API Kel64s*  kelsMalloc_64s (int len);
KELS_API Kel32f*  kelsMalloc_32f (int len);
KELS_API Kel64f*  kelsMalloc_64f (int len);
KELS_API Kel8sc*  kelsMalloc_8sc (int len);
KELS_API Kel16sc* kelsMalloc_16sc(int len);
KELS_API Kel32sc* kelsMalloc_32sc(int len);
KELS_API Kel64sc* kelsMalloc_64sc(int len);
KELS_API Kel32fc* kelsMalloc_32fc(int len);
KELS_API Kel64fc* kelsMalloc_64fc(int len);
/** @} */

/** Releases a block from any `kelsMalloc_*`. Null does nothing. */
KELS_API void kelsFree(void* p);

/** What was built. The texts and the record are constant and belong to the library. */
typedef struct {
    Kel32s      major;        /**< major version */
    Kel32s      minor;        /**< minor version */
    Kel32s      majorBuild;   /**< major build number */
    Kel32s      build;        /**< build number */
    char        targetCpu[4]; /**< processor target of this variant, ended by NUL */
    const char* name;         /**< short name of the library */
    const char* version;      /**< version text */
    const char* buildDate;    /**< month in three letters, day, year in four digits */
} kelLibraryVersion;

/** The version record: the same pointer on every call. */
KELS_API const kelLibraryVersion* kelsGetLibVersion(void);

/** What CPUID says about the processor. */
typedef struct {
    Kel32u family;            /**< leaf 1 EAX, bits 8 to 11 */
    Kel32u stepping;          /**< leaf 1 EAX, bits 0 to 3 */
    Kel32u model;             /**< leaf 1 EAX, bits 4 to 7 */
    Kel32u processorType;     /**< 0 */
    Kel32u features;          /**< leaf 1 EDX */
    Kel32u cacheDescriptorsA; /**< leaf 2 EAX */
    Kel32u cacheDescriptorsD; /**< leaf 2 EDX */
    Kel32u sx1Present;        /**< 1 with 64-bit packed integers (bit 23 of `features`), else 0 */
    Kel32u reserved;          /**< not written */
    Kel32u sx2Present;        /**< 1 with 128-bit packed singles (bit 25 of `features`), else 0 */
    Kel32u sx3Present;        /**< 1 with 128-bit packed doubles (bit 26 of `features`), else 0 */
} KelCpuIdent;

/** @name Processor
 *  Queries; each asks the processor anew.
 *
 *  | Function                | Result                                                                            |
 *  |-------------------------|-----------------------------------------------------------------------------------|
 *  | `kelGetCpuType`         | generation, see below                                                             |
 *  | `kelGetCpuClocks`       | time-stamp counter                                                                |
 *  | `kel_get_cpu_counter`   | time-stamp counter                                                                |
 *  | `kel_has_cpuid`         | 1 if the processor has CPUID                                                      |
 *  | `kel_max_cpuid_input`   | highest basic CPUID leaf                                                          |
 *  | `kel_has_rdtsc`         | 1 if it has a time-stamp counter                                                  |
 *  | `kel_is_sx1_extension`  | 1 if it has 64-bit packed integers                                                |
 *  | `kel_is_sx2_extension`  | 1 if it has 128-bit packed singles                                                |
 *  | `kel_is_sx3_extension`  | 1 if it has 128-bit packed doubles                                                |
 *  | `kel_is_TargetVendor`   | 1 if CPUID gives the vendor whose generations `kelGetCpuType` tells apart         |
 *  | `kel_get_cpu_ident`     | fills the record, except its `reserved` word                                      |
 *
 *  `kelGetCpuType` is 16 for family 7; for family 15, 6 with packed doubles, else 0; for family 6, the highest of
 *  6 (packed doubles), 5 (packed singles), 4 (packed integers) and 3 (none); for family 5, 2 with packed integers,
 *  else 1; and 0 for any other family, another vendor or a processor without CPUID.
 *  @{ */
KELS_API int                kelGetCpuType       (void);
KELS_API unsigned long long kelGetCpuClocks     (void);
KELS_API int                kel_has_cpuid       (void);
KELS_API int                kel_max_cpuid_input (void);
KELS_API int                kel_has_rdtsc       (void);
KELS_API int                kel_is_sx1_extension(void);
KELS_API int                kel_is_sx2_extension(void);
KELS_API int                kel_is_sx3_extension(void);
KELS_API int                kel_is_TargetVendor (void);
KELS_API void               kel_get_cpu_ident   (KelCpuIdent* record);
KELS_API unsigned long long kel_get_cpu_counter (void);
/** @} */

/** @name Denormal control
 *  Not supported on this target: both do nothing, whatever the flag.
 *  @return `kelStatusCpuNotSupported`
 *  @{ */
KELS_API KelStatus kelSetFlushToZero   (int flag);
KELS_API KelStatus kelSetDenormAreZeros(int flag);
/** @} */

/** @name x87 control and status words
 *  Bits 0 to 5 of the control word mask exceptions, bits 8 and 9 control the precision, bits 10 and 11 the rounding;
 *  bits 0 to 5 of the status word are the exceptions that were raised. The words belong to the calling thread. An
 *  exception that is unmasked while its flag is raised traps in the next x87 instruction.
 *
 *  | Function           | Effect                                                                     | Result       |
 *  |--------------------|----------------------------------------------------------------------------|--------------|
 *  | `kel_set_rcpc_fpu` | unless the bits under `mask` equal `value`: clears them, ORs all of `value` in, loads | word before |
 *  | `kel_set_cw_fpu`   | loads `word`                                                               |              |
 *  | `ks_set_cw_fpu`    | loads the word with the bits under `mask` taken from `value`; mask 0 only reads | word before |
 *  | `ks_get_cw_fpu`    |                                                                            | control word |
 *  | `ks_get_sw_fpu`    |                                                                            | status word  |
 *  | `ks_clear_fpu`     | clears the exception flags                                                 | status word before |
 *  @{ */
KELS_API Kel32u kel_set_rcpc_fpu(Kel32u value, Kel32u mask);
KELS_API void   kel_set_cw_fpu  (Kel32u word);
KELS_API Kel32u ks_set_cw_fpu   (Kel32u value, Kel32u mask);
KELS_API Kel32u ks_get_cw_fpu   (void);
KELS_API Kel32u ks_get_sw_fpu   (void);
KELS_API Kel32u ks_clear_fpu    (void);
/** @} */

/** @name x87 words in portable form
 *  The same control and status bits under other positions. For the control word a set bit masks the exception, for the
 *  status word it means raised.
 *
 *  | Meaning               | x87              | Here    |
 *  |-----------------------|------------------|---------|
 *  | invalid operation     | 0x0001           | 0x10    |
 *  | denormal              | 0x0002           | 0x80000 |
 *  | divide by zero        | 0x0004           | 0x8     |
 *  | overflow              | 0x0008           | 0x4     |
 *  | underflow             | 0x0010           | 0x2     |
 *  | inexact               | 0x0020           | 0x1     |
 *  | round to nearest      | 0x0000 of 0x0C00 | 0       |
 *  | round down            | 0x0400 of 0x0C00 | 0x100   |
 *  | round up              | 0x0800 of 0x0C00 | 0x200   |
 *  | round toward zero     | 0x0C00 of 0x0C00 | 0x300   |
 *  | precision of 64 bits  | 0x0300 of 0x0300 | 0       |
 *  | precision of 53 bits  | 0x0200 of 0x0300 | 0x10000 |
 *  | precision of 24 bits  | 0x0000 of 0x0300 | 0x20000 |
 *  | infinity control      | 0x1000           | 0x40000 |
 *
 *  `kel_control87` loads the control word with the bits under `mask` taken from `value` and gives the new word;
 *  `kel_status87` gives the raised flags; `kel_clear87` clears them and gives those that were raised.
 *  @{ */
KELS_API Kel32u kel_control87(Kel32u value, Kel32u mask);
KELS_API Kel32u kel_status87 (void);
KELS_API Kel32u kel_clear87  (void);
/** @} */

/** @name SIMD control register
 *  | Function          | Effect                                                                     | Result         |
 *  |-------------------|----------------------------------------------------------------------------|----------------|
 *  | `ks_set_sx2`      | loads MXCSR with the bits under `mask` taken from `value`; mask 0 only reads | MXCSR before |
 *  | `ks_get_sx2`      |                                                                            | MXCSR          |
 *  | `kel_clear_sx2`   | loads 0x1F80: everything masked, nothing raised, round to nearest          | MXCSR before   |
 *  | `kel_set_rc_sx2`  | loads the rounding bits (0x6000) from `value`, unless they are set already | MXCSR before   |
 *  | `kel_set_cw_sx2`  | loads `word`                                                               |                |
 *  | `kel_tst_daz_sx2` |                                                                            | 1 if the register knows denormals-are-zeros, else 0 |
 *
 *  A word with bits that the processor reserves faults.
 *  @{ */
KELS_API Kel32u ks_set_sx2     (Kel32u value, Kel32u mask);
KELS_API Kel32u ks_get_sx2     (void);
KELS_API Kel32u kel_clear_sx2  (void);
KELS_API Kel32u kel_set_rc_sx2 (Kel32u value);
KELS_API void   kel_set_cw_sx2 (Kel32u word);
KELS_API int    kel_tst_daz_sx2(void);
/** @} */

/** @name Classification of doubles
 *  `kel_isnan` is 1 for a NaN, quiet or signalling, else 0; `kel_finite` is 0 for infinities and NaNs, else 1. Neither
 *  raises an exception.
 *  @{ */
KELS_API int kel_isnan (double x);
KELS_API int kel_finite(double x);
/** @} */

/** @name Constants of undefined results
 *  What the library stores where a result has no number. The NaNs are quiet, with the sign bit set: 0xFFC00000 and
 *  0xFFF8000000000000.
 *  @{ */
KELS_API const Kel32f kelConstantOfNAN_32f;
KELS_API const Kel32f kelConstantOfINF_32f;
KELS_API const Kel32f kelConstantOfINF_NEG_32f;
KELS_API const Kel64f kelConstantOfNAN_64f;
KELS_API const Kel64f kelConstantOfINF_64f;
KELS_API const Kel64f kelConstantOfINF_NEG_64f;
/** @} */

#endif
