#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_mii.h"

namespace {

// [IFNAME [PHY]], by default eth2 and PHY address 1.
bool target(int argc, char **argv, const char **ifname, int *phy)
{
    *ifname = argc > 0 ? argv[0] : "eth2";
    *phy = 1;
    if (argc > 1 && !cli::parse_int(argv[1], phy)) {
        fprintf(stderr, "vesk phy: %s is no PHY address\n", argv[1]);
        return false;
    }
    return true;
}

int link(int argc, char **argv)
{
    const char *ifname;
    int phy, up = 0;
    if (!target(argc, argv, &ifname, &phy))
        return 2;
    if (!vesk_mii_check_link_ex(ifname, &up, 1, phy))
        return 1;
    puts(up ? "up" : "down");
    return 0;
}

int speed(int argc, char **argv)
{
    const char *ifname;
    int phy;
    unsigned int code = 0;
    if (!target(argc, argv, &ifname, &phy))
        return 2;
    if (!vesk_mii_get_link_partner_speed_ex(ifname, &code, phy))
        return 1;
    static constexpr struct { unsigned int code; const char *text; } kCodes[] = {
        {VESK_MII_1000_FULL, "1000 full"}, {VESK_MII_1000_HALF, "1000 half"}, {VESK_MII_100_FULL, "100 full"},
        {VESK_MII_100_HALF, "100 half"},   {VESK_MII_10_FULL, "10 full"},     {VESK_MII_10_HALF, "10 half"},
    };
    const char *text = "none in common";
    for (const auto &c : kCodes)
        if (code == c.code)
            text = c.text;
    printf("0x%x %s\n", code, text);
    return 0;
}

int partner(int argc, char **argv)
{
    const char *ifname;
    int phy;
    unsigned int abilities = 0, full = 0;
    if (!target(argc, argv, &ifname, &phy))
        return 2;
    if (!vesk_mii_get_link_partner_info(ifname, &abilities, &full, phy))
        return 1;
    printf("abilities 0x%x full_duplex %u\n", abilities, full);
    return 0;
}

// PORT VALUE for the setters; VALUE "on"/"off" or a number.
template <int (*Set)(int, int)> int set(int, char **argv)
{
    int port, value = !strcmp(argv[1], "on");
    if (!cli::parse_int(argv[0], &port) || (strcmp(argv[1], "on") && strcmp(argv[1], "off") && !cli::parse_int(argv[1], &value))) {
        fprintf(stderr, "vesk phy: give PORT and on, off or a mode number\n");
        return 2;
    }
    const int result = Set(port, value);
    cli::print_int(result);
    return result == 0 ? 0 : 1;
}

int power(int port, int on) { return vesk_mii_set_power(port, on); }
int advertise(int port, int mode) { return vesk_mii_set_port_link_speed(static_cast<unsigned int>(mode), port); }
int gmac(int port, int mode) { return vesk_mii_set_gmac_link_speed(static_cast<unsigned int>(mode), port); }
int mdi(int port, int mode) { return vesk_mii_set_port_mdi_mode(mode, port); }
int eee(int port, int on) { return vesk_mii_set_802_3_az_mode(on, port); }
int pause(int port, int on) { return vesk_mii_set_flow_control(on, port); }

constexpr cli::command kCommands[] = {
    {"link", "[IFNAME [PHY]]", "link state (register 1) of a PHY, eth2 and PHY 1 by default", 0, link},
    {"speed", "[IFNAME [PHY]]", "best ability that both link partners offer", 0, speed},
    {"partner", "[IFNAME [PHY]]", "the link partner's abilities and duplex", 0, partner},
    {"power", "PORT on|off", "power a PHY up or down (mii_mgr)", 2, set<power>},
    {"advertise", "PORT MODE", "advertise 0 all, 1 10 half, 2 10 full, 3 100 half, 4 100 full, 5 1000 full", 2,
     set<advertise>},
    {"gmac", "PORT MODE", "the same modes on the GMAC's word (reg)", 2, set<gmac>},
    {"mdi", "PORT MODE", "MDI mode 0, 1 or 2", 2, set<mdi>},
    {"eee", "PORT on|off", "Energy-Efficient Ethernet", 2, set<eee>},
    {"pause", "PORT on|off", "advertise flow control", 2, set<pause>},
};

} // namespace

extern const cli::family family_phy = {"phy", "Ethernet PHY link, partner abilities and settings", kCommands};
