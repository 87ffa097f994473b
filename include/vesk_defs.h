/* Export and linkage macros shared by every public libvesk header. */
#ifndef VESK_DEFS_H
#define VESK_DEFS_H

#if defined(__GNUC__)
#define VESK_API __attribute__((visibility("default")))
#define VESK_PRINTF(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define VESK_API
#define VESK_PRINTF(fmt, args)
#endif

/* The library is built with a 64-bit time_t on every target (with
 * -D_FILE_OFFSET_BITS=64 -D_TIME_BITS=64 on 32-bit ones, as pkg-config and
 * the CMake package pass them). A caller with another time_t would hand it
 * records of another layout: refuse to compile instead. */
#include <time.h>
typedef char vesk_needs_D_TIME_BITS_64_and_D_FILE_OFFSET_BITS_64[sizeof(time_t) == 8 ? 1 : -1];

#ifdef __cplusplus
#define VESK_BEGIN_DECLS extern "C" {
#define VESK_END_DECLS }
#else
#define VESK_BEGIN_DECLS
#define VESK_END_DECLS
#endif

#endif
