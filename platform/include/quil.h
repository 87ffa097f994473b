/* The device's configuration store. Values are numbers or fixed-size
 * records; the key fixes the kind and the size. Keys are printf formats. */
#ifndef VESK_QUIL_H
#define VESK_QUIL_H

#include "sysapi.h"

#ifdef __cplusplus
extern "C" {
#endif

#define QUIL_DAT_FILE "/storage/quil.dat"
#define QUIL_NEW_DAT_FILE "/storage/quil_new.dat"

/* Copies the value of the formatted key into dest (a number as an int).
 * dest is left alone when the key has no value or is not a known key.
 * Returns 1 when a value was copied, else 0. */
SYSAPI_EXPORT int quil_get_value(void *dest, const char *key_format, ...) SYSAPI_PRINTF(2, 3);

/* The value of the formatted number key, 0 when it has none. */
SYSAPI_EXPORT int quil_get_int_value(const char *key_format, ...) SYSAPI_PRINTF(1, 2);

/* Stores the value under key (a number is read as an int). Returns 0 on
 * success, -1 for an unknown key or a failed write. The file is replaced
 * atomically, so a failed write leaves the old settings in place. */
SYSAPI_EXPORT int quil_set_value(const void *value, const char *key);

/* Makes sure /storage/quil.dat holds the current settings. */
SYSAPI_EXPORT void quil_update_dat_file(void);

/* Carries every setting whose key begins with token into
 * /storage/quil_new.dat. An empty token selects nothing. */
SYSAPI_EXPORT void quil_save_new_file_by_token(const char *token);

/* Stand-in extension for the quil tool: size in bytes of the key's value
 * (4 for a number) and whether it is a number; 0 for an unknown key. */
SYSAPI_EXPORT int quil_key_info(const char *key, int *is_number);

/* Stand-in extension for the quil tool: stores a value given as text, a
 * number in decimal (32 bits) or a record in hex, two digits a byte, as the
 * file holds them. Returns 0, or -1 for an unknown key or a bad text. */
SYSAPI_EXPORT int quil_set_text(const char *key, const char *text);

#ifdef __cplusplus
}
#endif

#endif
