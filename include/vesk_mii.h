/* Ethernet PHYs. Status through MII requests on a socket (the functions
 * without _ex work on "eth2", the PHY address 1 when *port is non-zero,
 * else 0); settings through the device's mii_mgr and reg tools. The status
 * functions share one request record and must not run in two threads at
 * once. */
#ifndef VESK_MII_H
#define VESK_MII_H

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* Link speed codes of vesk_mii_get_link_partner_speed_ex. */
enum {
    VESK_MII_10_FULL = 0x01,
    VESK_MII_100_FULL = 0x02,
    VESK_MII_1000_FULL = 0x04,
    VESK_MII_10_HALF = 0x08,
    VESK_MII_100_HALF = 0x10,
    VESK_MII_1000_HALF = 0x20
};

/* ---- Status --------------------------------------------------------- */

/* With standard non-zero *link is bit 0x0004 of register 1 (SIOCGMIIREG),
 * 1 or 0; with standard 0 it is the driver's private answer (0x89FE) for
 * register 0. 1 when the read was done; 0 on a null argument, a socket
 * failure (*link untouched) or a failed request (*link 0). */
VESK_API int vesk_mii_check_link_ex(const char *ifname, int *link, int standard, int phy_id);
VESK_API int vesk_mii_check_link(const unsigned char *port, int *link, int standard);

/* The best ability that both sides offer, as a VESK_MII_ code (0 for
 * none); 1000 goes before 100 before 10, then full before half. 1 when the
 * reads were done, else 0 with *speed 0. */
VESK_API int vesk_mii_get_link_partner_speed_ex(const char *ifname, unsigned int *speed, int phy_id);
/* The same on "eth2", reduced to the speed whatever the duplex: 4 for
 * 1000, 2 for 100, 1 for 10, 0 for none. */
VESK_API int vesk_mii_get_link_partner_speed(const unsigned char *port, unsigned int *speed);

/* The partner's abilities from register 5: 2 for 100 full (or 0x0200),
 * 1 for 10 full, 0x10 for 100 half, 8 for 10 half, 4 for 0x0400 and 0x20
 * for 0x0800, added up. *full_duplex follows the last bit found in that
 * order and keeps its value when none is. 1 when the read was done. */
VESK_API int vesk_mii_get_link_partner_info(const char *ifname, unsigned int *abilities, unsigned int *full_duplex,
                                            int phy_id);

/* ---- Control: 0, or -1 when a register could not be read --------------- */

/* Powers the PHY at port up (on non-zero) or down. */
VESK_API int vesk_mii_set_power(int port, int on);
/* Nothing to do on this board: 0 and 1. */
VESK_API int vesk_mii_set_led(void);
VESK_API int vesk_mii_set_phy_ability(void);
/* Advertises one speed: 0 all (automatic), 1 10 half, 2 10 full, 3 100
 * half, 4 100 full, 5 1000 full; autonegotiation stays on and restarts.
 * A mode of 6 or more writes nothing and gives 0 with a message. */
VESK_API int vesk_mii_set_port_link_speed(unsigned int mode, int port);
/* The same modes on the GMAC's word (offset 0x18 for port 2, else 0x4). */
VESK_API int vesk_mii_set_gmac_link_speed(unsigned int mode, int port);
/* MDI mode 0, 1 or 2 (another mode writes as 0, with a message). */
VESK_API int vesk_mii_set_port_mdi_mode(int mode, int port);
/* Energy-Efficient Ethernet on for mode 1, off otherwise. Always 0. */
VESK_API int vesk_mii_set_802_3_az_mode(int mode, int port);
/* Advertises pause frames (enable non-zero) or not. */
VESK_API int vesk_mii_set_flow_control(int enable, int port);

VESK_END_DECLS

#endif
