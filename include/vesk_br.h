/* The LAN bridge's forwarding table: which port a MAC address stands behind,
 * read from the kernel 128 entries at a time, and removal of an address with
 * the bridge tool. */
#ifndef VESK_BR_H
#define VESK_BR_H

#include <stdint.h>

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* One forwarding entry as the library keeps it. */
typedef struct vesk_br_fdb_entry {
    unsigned char mac_addr[6];
    uint16_t port_no; /* the bridge's port number; 0 is never a port */
    uint8_t is_local; /* non-zero for an address of the bridge itself */
} vesk_br_fdb_entry;

/* Reads up to num entries of bridge's forwarding table, skipping the first
 * offset, into fdbs (room for num entries), issuing the request on the
 * caller's socket sock. A busy table (EAGAIN) is asked up to 10 times.
 * Returns the number of entries read, 0 at the end of the table, or a
 * negative value with errno set. */
VESK_API int br_read_fdb(const char *bridge, vesk_br_fdb_entry *fdbs, unsigned long offset, unsigned long num,
                         int sock);

/* The name of the port of bridge that mac_bin (6 bytes) was learnt on, in a
 * static 16-byte buffer that the next call overwrites; "unknown" when the
 * address is not in the table or the table cannot be read. Never null. */
VESK_API char *brtable_find_if_by_mac(const unsigned char *mac_bin, const char *bridge);

/* Removes mac_str ("xx:xx:xx:xx:xx:xx", in the case that "bridge fdb show"
 * prints) from every device that the bridge tool shows it on. Returns 1 when
 * the table was searched (also when nothing matched), 0 when mac_str is not
 * such a text or the tool could not be run. */
VESK_API int vesk_del_br_fdb(const char *mac_str);

VESK_END_DECLS

#endif
