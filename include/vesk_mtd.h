/* Flash partitions by name, and the device's UUIDs derived from the board's
 * MAC address. */
#ifndef VESK_MTD_H
#define VESK_MTD_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Finds the flash partition called name (exactly, at most 31 characters) in
 * /proc/mtd. Returns its number, the position of its line after the header,
 * which is also stored in *index; the device is "/dev/mtd%d" of it. *size
 * gets the partition's size in bytes.
 * Returns -1 when there is no such partition (*index -1, *size 0), when
 * /proc/mtd cannot be read (*index -1, *size untouched) or, with a message,
 * when name is null (both untouched). A null index or size is not written. */
VESK_API int vesk_get_mtd_by_name(const char *name, int *index, int *size);

/* The UUID that "uuidgen -m" makes of the board MAC (of the MAC plus one in
 * its last byte when which is 1), as the tool printed it, line end
 * included. The fixed "18de43f8-677c-4d3a-8920-00aabbccdd10" when uuidgen
 * fails. Returns a static 80-byte buffer that the next call overwrites. */
VESK_API char *vesk_get_uuid_by_wlan_mac(int which);

/* "f0015eb6-69b9-436e-a383-" followed by the board MAC in lower-case hex,
 * 36 characters; the MAC is 00:AA:BB:CC:DD:10 when the board tool fails.
 * Returns a static 80-byte buffer that the next call overwrites. */
VESK_API char *vesk_get_uuid(void);

VESK_END_DECLS

#endif
