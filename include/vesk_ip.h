/* IPv4 addresses as dotted text and as host-order numbers, in which the first
 * dotted field is the most significant byte: "192.168.1.1" is 0xC0A80101. */
#ifndef VESK_IP_H
#define VESK_IP_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Writes ipaddr as "a.b.c.d" into dst (16 bytes).
 * Returns 1, or 0 with a message when dst is null. */
VESK_API int vesk_ipaddr_2_str(unsigned int ipaddr, char *dst);

/* The text of ipaddr in a static 16-byte buffer that the next call
 * overwrites. Never null. */
VESK_API char *vesk_get_ipaddr_str(unsigned int ipaddr);

/* Scans "%d.%d.%d.%d" and adds the fields in with their carries, so
 * "1.2.3.256" is 0x01020400; text behind the fourth field is ignored.
 * Returns 0 with a message for null, empty or short text. */
VESK_API unsigned int vesk_str_2_ipaddr(const char *ipaddr_str);

/* 1 when ((ip1 ^ ip2) & mask) == 0, else 0. */
VESK_API int vesk_check_same_subnet(unsigned int ip1, unsigned int ip2, unsigned int mask);

/* As vesk_check_same_subnet on two address texts; text that does not parse
 * takes part as 0. The mask is a number. */
VESK_API int vesk_check_same_subnet_str(const char *ip1, const char *ip2, unsigned int mask);

/* Resolves node (host name or address text) and returns the text of its
 * first IPv4 address in a static 16-byte buffer, or null when it does not
 * resolve (the buffer is then left empty). */
VESK_API char *vesk_ip_get_1st_addr_info(const char *node);

VESK_END_DECLS

#endif
