/* Network interfaces as the kernel knows them, asked by name. Each call opens
 * its own socket and closes it again; nothing is cached. Names longer than
 * 15 characters name no interface and fail like an absent one. */
#ifndef VESK_IF_H
#define VESK_IF_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* ---- Interface queries ---------------------------------------------------- */

/* Copies the 6-byte hardware address of ifname into mac_bin.
 * Returns 1, or 0 (mac_bin untouched) when it cannot be read or an argument
 * is null. */
VESK_API int vesk_if_get_hw_addr(const char *ifname, unsigned char *mac_bin);

/* The IPv4 address of ifname as dotted text in a static 16-byte buffer that
 * the next call overwrites; the buffer holds "---" when the interface is
 * absent or has no address. Null for a null ifname. */
VESK_API char *vesk_if_get_ip(const char *ifname);

/* As vesk_if_get_ip for the destination (point-to-point peer) address, in a
 * static buffer of its own. */
VESK_API char *vesk_if_get_dst_ip(const char *ifname);

/* As vesk_if_get_ip for the netmask, in a static buffer of its own. */
VESK_API char *vesk_if_get_mask(const char *ifname);

/* As vesk_if_get_ip for the subnet (address and mask), in a static buffer of
 * its own; "---" when either cannot be read. */
VESK_API char *vesk_if_get_subnet(const char *ifname);

/* 1 when ifname exists (its hardware address can be read), else 0. */
VESK_API int vesk_if_is_existed(const char *ifname);

/* 1 when ifname has an IPv4 address other than 0.0.0.0, else 0. */
VESK_API int vesk_if_is_ip_ready(const char *ifname);

/* 1 when ifname is administratively up (carrier does not matter), else 0. */
VESK_API int vesk_if_is_up(const char *ifname);

/* The interface index of ifname, or 0 when it cannot be read. */
VESK_API int vesk_if_get_index(const char *ifname);

/* The MTU of ifname, or 0 when it cannot be read. */
VESK_API int vesk_if_get_mtu(const char *ifname);

/* Hands state to the Ethernet driver's private LAN-state request (0x89FD).
 * Returns 1 on success and when the device is absent, 0 on any other
 * failure (with a message) and for a null ifname. */
VESK_API int vesk_if_set_lan_state(const char *ifname, int state);

/* Sets the kernel's host name ("localhost.localdomain" for a null or empty
 * hostname) and writes hostname to /etc/hostname (an empty line for null or
 * empty). Returns what the file-writing command returned: 0 on success. */
VESK_API int vesk_net_set_hostname(const char *hostname);

/* Resolves node for family (AF_INET, AF_INET6 or AF_UNSPEC) and returns the
 * text of its first address in a static 46-byte buffer; never null. On
 * failure the buffer keeps the last success ("" before the first one). */
VESK_API char *vesk_get_host_ip_by_name(const char *node, int family);

VESK_END_DECLS

#endif
