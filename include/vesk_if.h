/* Network interfaces as the kernel knows them, asked by name. Each call opens
 * its own socket and closes it again; nothing is cached. Names longer than
 * 15 characters name no interface and fail like an absent one. */
#ifndef VESK_IF_H
#define VESK_IF_H

#include <stdint.h>

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

/* ---- Routes, DNS and interface statistics --------------------------------- */

/* Gateway of the first route of ifname in /proc/net/route that has one,
 * whatever its destination, as "a.b.c.d" in a static 16-byte buffer; "---"
 * when there is none or the table cannot be read. Null (with a message)
 * when ifname is null. */
VESK_API char *vesk_if_get_gateway(const char *ifname);

/* Gateway of the first default route (destination 0) that has one, in a
 * static 16-byte buffer; "---" when there is none. */
VESK_API char *vesk_if_get_default_gateway(void);

/* DNS servers of the resolver file path (or of "path.suffix" when suffix is
 * not null), from its "nameserver" lines. "10.64.64.68" and "0.0.0.0" never
 * count, nor do IPv6 addresses unless allow_ipv6 is non-zero. index 1 or 2
 * answers the index-th nameserver line alone (dropped lines count too); any
 * other index lists every server, separated by ",". The text lies in the
 * static 128-byte DNS buffer shared by the wrappers below; "---" when there
 * is no server. Servers that would not fit whole are left out. */
VESK_API char *__vesk_if_get_dns_full(const char *path, int index, const char *suffix, int allow_ipv6);

/* __vesk_if_get_dns_full on "/etc/resolv.conf", IPv4 only. */
VESK_API char *vesk_if_get_dns_full(int index, const char *suffix);

/* __vesk_if_get_dns_full on "/etc/resolv_ipv6.conf", IPv6 allowed. */
VESK_API char *vesk_if_get_v6_dns(int index);

/* Every IPv4 DNS server of "/etc/resolv.conf", as vesk_if_get_dns_full(0, NULL). */
VESK_API char *vesk_if_get_dns(void);

/* Traffic counters of one interface, filled by vesk_if_get_stats. Fields
 * the kernel's /proc/net/dev does not give stay 0. */
typedef struct vesk_if_stats {
    uint64_t rx_packets;
    uint64_t tx_packets;
    uint64_t rx_bytes;
    uint64_t tx_bytes;
    uint32_t rx_errors;
    uint32_t tx_errors;
    uint32_t rx_dropped;
    uint32_t tx_dropped;
    uint32_t rx_multicast;
    uint32_t rx_compressed;
    uint32_t tx_compressed;
    uint32_t collisions;
    uint32_t rx_length_errors;
    uint32_t rx_over_errors;
    uint32_t rx_crc_errors;
    uint32_t rx_frame_errors;
    uint32_t rx_fifo_errors;
    uint32_t rx_missed_errors;
    uint32_t tx_aborted_errors;
    uint32_t tx_carrier_errors;
    uint32_t tx_fifo_errors;
    uint32_t tx_heartbeat_errors;
    uint32_t tx_window_errors;
} vesk_if_stats;

/* Reads the counters of ifname from /proc/net/dev, whichever of its three
 * layouts the kernel writes, into stats. Returns 1 when the interface's row
 * was found (counters it did not reach are 0), 0 when it was not (stats all
 * zero; an empty ifname matches no row), when the file cannot be opened
 * (stats untouched), or with a message when an argument is null. */
VESK_API int vesk_if_get_stats(const char *ifname, vesk_if_stats *stats);

VESK_END_DECLS

#endif
