/* User text made safe for web pages and shell command lines, and random
 * numbers from the kernel's pool. */
#ifndef VESK_UTIL_H
#define VESK_UTIL_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Copies text to out with a backslash in front of every character that
 * needs one: with for_shell non-zero the shell's special characters
 * (" # $ & ' ( ) * ; < > \ ` | ~ and blank), otherwise only " and \.
 * Nothing is refused. out must hold 2 * strlen(text) + 1 bytes; a null or
 * empty text gives an empty out. */
VESK_API void vesk_util_check_string(const char *text, char *out, int for_shell);

/* vesk_util_check_string for a quoted string of a web page (for_shell 0). */
VESK_API void vesk_util_check_string_on_web(const char *text, char *out);

/* vesk_util_check_string for a shell command line (for_shell 1). */
VESK_API void vesk_util_check_string_on_shell_cmd(const char *text, char *out);

/* Reseeds rand() from 4 bytes of /dev/urandom (a seed of 0 when it yields
 * fewer) and returns rand(); 0 when /dev/urandom cannot be opened. */
VESK_API int vesk_util_generate_random_num(void);

/* Mixes the last four bytes of ifname's hardware address (zero for a null or
 * unreadable interface) and the wall-clock time into /dev/urandom, printing
 * both. Returns what CMD returned for the "echo" into the pool: 0 on
 * success. */
VESK_API int vesk_util_generate_random_seed(const char *ifname);

VESK_END_DECLS

#endif
