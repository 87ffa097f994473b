/* SNMP interface numbers: a fixed number per interface name, by the board's
 * radio layout. */
#ifndef VESK_SNMP_H
#define VESK_SNMP_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Fills in the interface names of the index table ("eth2", "ra0" to "ra15",
 * "wds0" to "wds3", "ath0" to "ath15", "wds16" to "wds19", "br0" and the
 * empty name). The look-up calls it itself on first use. */
VESK_API void vesk_snmp_init_ifname(void);

/* The SNMP number of ifname (compared whole) in the column of the board's
 * layout (vesk_wlan_get_board_dual_mode of radio: 4, 3 or 1); 255 when the
 * interface has no number in that column, 0 for an unknown or null name and,
 * with a message, for an unknown layout. */
VESK_API int vesk_snmp_get_index_by_ifname(int radio, const char *ifname);

VESK_END_DECLS

#endif
