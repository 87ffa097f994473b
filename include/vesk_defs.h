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

#ifdef __cplusplus
#define VESK_BEGIN_DECLS extern "C" {
#define VESK_END_DECLS }
#else
#define VESK_BEGIN_DECLS
#define VESK_END_DECLS
#endif

#endif
