/* Neighbours in the kernel's ARP table (/proc/net/arp), looked up by IP or MAC
 * address, and the gratuitous ARP frame of the LAN bridge "br0". */
#ifndef VESK_ARP_H
#define VESK_ARP_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* The interface behind which ip ("a.b.c.d", compared whole) stands, in a
 * static 16-byte buffer that the next call overwrites. For a neighbour on a
 * bridge (a device whose name holds "br") it is the bridge port the MAC was
 * learnt on, or "unknown". Null when ip is null, the table cannot be read or
 * the address is not in it. */
VESK_API char *vesk_arp_get_ifname_by_ip(const char *ip);

/* The MAC address of ip as 12 digits without colons, in the case of the
 * table, in a static 32-byte buffer; the literal "000000000000" when it is
 * not in the table, null when ip is null. A non-zero do_ping first runs
 * "ping <ip> -c 1" so that the kernel learns the address. */
VESK_API const char *vesk_arp_get_macstr_by_ip(const char *ip, int do_ping);

/* The IP address of macstr (12 hexadecimal digits, no colons, either case)
 * in a static 32-byte buffer; the literal "0.0.0.0" when it is not in the
 * table or macstr has fewer than 12 characters, null when macstr is null.
 * Prints each row's MAC and the key looked for. */
VESK_API const char *vesk_arp_get_ip_by_macstr(const char *macstr);

/* Broadcasts one 60-byte ARP reply on ifname (at most 13 characters) from
 * sender_mac (6 bytes) and sender_ip to target_ip; both addresses in network
 * order, as inet_addr gives them. Returns 1 once the frame was handed over
 * or its failed send reported, -1 when the socket could not be set up or an
 * argument is unusable. */
VESK_API int arpping(unsigned int target_ip, unsigned int sender_ip, const unsigned char *sender_mac,
                     const char *ifname);

/* Sends the gratuitous ARP of "br0" from its own MAC and IPv4 address.
 * Returns what arpping returned, or 0 (with a message) when br0 has no
 * hardware address or no IPv4 address and nothing was sent. */
VESK_API int vesk_send_grat_arp(void);

VESK_END_DECLS

#endif
