/* Ethernet MAC addresses: six bytes (first octet first), canonical text
 * "XX:XX:XX:XX:XX:XX" in upper case (18 bytes with the terminator), and
 * plain text of 12 hexadecimal digits in either case. Colons may stand
 * anywhere in a text argument and are ignored; a text argument is at most
 * 79 characters, and a longer one is refused as no address. */
#ifndef VESK_MAC_H
#define VESK_MAC_H

#include <stdint.h>

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* One record of the vendor table: 104 bytes. */
typedef struct vesk_oui_entry {
    uint32_t oui;          /* 00:1A:2B is 0x001A2B; the top byte is 0 */
    char vendor_name[100]; /* registry text as plain bytes, zero-filled */
} vesk_oui_entry;

/* The IEEE OUI registry, read-only: record 0 is a sentinel ("DUMMY", oui
 * 0xFFFFFF) that no look-up returns, then the registry in ascending order
 * of oui; an oui may stand on several adjacent rows. */
VESK_API extern const vesk_oui_entry vesk_oui_list[];

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

/* Vendor of the address in mac_str (any form vesk_mac_str_2_bin takes; a
 * text it refuses counts as 00:00:00:00:00:00). The locally administered
 * bit is cleared before the look-up. Returns vendor_name of a row of
 * vesk_oui_list (never to be freed or written), or null for an unknown
 * prefix or a null mac_str. */
VESK_API const char *vesk_mac_to_vendor_name(const char *mac_str);

/* Vendor of oui_entry.oui (only that field is read), found by bisection
 * in at most as many probes as the record count has bits. Among rows of one
 * oui the first one probed is returned. Returns vendor_name inside
 * vesk_oui_list, or null when the oui is not listed. */
VESK_API const char *vesk_mac_oui_to_vendor_name(vesk_oui_entry oui_entry);

VESK_END_DECLS

#endif
