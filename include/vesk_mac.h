/* Ethernet MAC addresses: six bytes (first octet first), canonical text
 * "XX:XX:XX:XX:XX:XX" in upper case (18 bytes with the terminator), and
 * plain text of 12 hexadecimal digits in either case. Colons may stand
 * anywhere in a text argument and are ignored; a text argument is at most
 * 79 characters, and a longer one is refused as no address. */
#ifndef VESK_MAC_H
#define VESK_MAC_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Writes mac_bin (6 bytes) as canonical text into dst_str (18 bytes).
 * Returns 17, or 0 with a message when dst_str is null. */
VESK_API int vesk_mac_bin_2_str(char *dst_str, const unsigned char *mac_bin);

/* Reads the first 12 hexadecimal digits of mac_str, colons removed, into
 * mac_bin (6 bytes). Returns 1, or 0 with mac_bin all zero when fewer than
 * six pairs scan or the text is longer than 79 characters. A null mac_str
 * returns 0 with a message and leaves mac_bin untouched. */
VESK_API int vesk_mac_str_2_bin(unsigned char *mac_bin, const char *mac_str);

/* Rewrites a text of exactly 12 characters in place as six pairs joined by
 * ':' (its buffer must hold 18 bytes); case is kept. Returns 1, or 0 with a
 * message and the text unchanged for any other length. */
VESK_API int vesk_mac_add_colon(char *macstr);

/* 1 when mac_str has exactly 12 characters below 0x80 once its colons are
 * removed (hexadecimal digits are not required), else 0; null and wrong
 * lengths print a message. */
VESK_API int vesk_mac_is_valid_str(const char *mac_str);

/* 1 when the two 6-byte addresses are equal, else 0 (with a message when
 * either is null). */
VESK_API int vesk_mac_bin_is_equal(const unsigned char *mac1, const unsigned char *mac2);

/* 1 when mac_str lies between bound1 and bound2 (either order, both ends
 * included) as 48-bit numbers, else 0. All three must pass
 * vesk_mac_is_valid_str; a text that passes but is not hexadecimal counts
 * as 00:00:00:00:00:00. */
VESK_API int vesk_mac_is_in_range_str(const char *bound1, const char *bound2, const char *mac_str);

VESK_END_DECLS

#endif
