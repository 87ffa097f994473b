/* The WAN side: PPP link state, the services a WAN detector found, and
 * lists of port ranges as text. */
#ifndef VESK_WAN_H
#define VESK_WAN_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* State of a PPP link whose daemon writes "/var/run/<pid_name>.pid":
 * 0 the daemon is not running (also for a null pid_name, or one too long
 *   for an 80-byte path),
 * 1 it runs, the default gateway is real and "netstat -rn | grep <ifname>"
 *   could be run,
 * 2 it runs but there is no real default gateway ("---" or the placeholder
 *   "10.64.64.68"), or the route check could not be run (also for a null
 *   ifname or one longer than 15 characters). */
VESK_API int vesk_wan_get_ppp_status(const char *pid_name, const char *ifname);

/* The services a WAN detector has left marker files for: 1 DHCP
 * ("/tmp/detector.dhcp"), 2 PPPoE ("/tmp/detector.pppoe"), 4 PPTP
 * ("/tmp/detector.pptp"), and 8, which is always set. */
VESK_API int vesk_wan_detection(void);

/* Writes the port ranges of list (count entries, taken in start/end pairs;
 * an end of 0 means a single port) as text such as "80, 443, 1000-2000"
 * into dst, cut to dst_size - 1 characters. Entry 0 is always written;
 * entries past count read as 0, so an odd count works. Returns 1, or 0
 * when list or dst is null. A count below 1 gives an empty text, and a
 * dst_size below 1 writes nothing. */
VESK_API int vesk_wan_port_range_list_to_string(const unsigned short *list, int count, char *dst, int dst_size);

/* Reads text such as "80, 443, 1000-2000" back into list (count entries,
 * all zeroed first): each range starts at an even entry, "-" gives its end.
 * Numbers are cut to 16 bits; nothing is written past count. Returns 1, or
 * 0 when str or list is null. */
VESK_API int vesk_wan_port_ranger_string_to_list(const char *str, unsigned short *list, int count);

VESK_END_DECLS

#endif
