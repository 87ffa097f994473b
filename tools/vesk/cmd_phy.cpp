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
    return argc < 2 || cli::parse_int(argv[1], phy, 0, 31);
}

int link(int argc, char **argv)
{
    const char *ifname;
    int phy, up = 0;
    if (!target(argc, argv, &ifname, &phy))
        return cli::kUsage;
    if (!vesk_mii_check_link_ex(ifname, &up, 1, phy))
        return cli::miss("no link state for %s", ifname);
    return cli::text(up ? "up" : "down");
}

int speed(int argc, char **argv)
{
    const char *ifname;
    int phy;
    unsigned int code = 0;
    if (!target(argc, argv, &ifname, &phy))
        return cli::kUsage;
    if (!vesk_mii_get_link_partner_speed_ex(ifname, &code, phy))
        return cli::miss("no abilities read from %s", ifname);
    static constexpr struct {
        unsigned int code;
        const char *text;
    } kCodes[] = {
        {VESK_MII_1000_FULL, "1000 full"}, {VESK_MII_1000_HALF, "1000 half"}, {VESK_MII_100_FULL, "100 full"},
        {VESK_MII_100_HALF, "100 half"},   {VESK_MII_10_FULL, "10 full"},     {VESK_MII_10_HALF, "10 half"},
    };
    const char *text = "none";
    for (const auto &c : kCodes)
        if (code == c.code)
            text = c.text;
    cli::record().number_u("code", code).text("mode", text);
    return cli::kAnswer;
}

int partner(int argc, char **argv)
{
    const char *ifname;
    int phy;
    unsigned int abilities = 0, full = 0;
    if (!target(argc, argv, &ifname, &phy))
        return cli::kUsage;
    if (!vesk_mii_get_link_partner_info(ifname, &abilities, &full, phy))
        return cli::miss("no abilities read from %s", ifname);
    // The duplex word keeps the caller's value when no ability bit is set.
    cli::record().number_u("abilities", abilities).number_u("full_duplex", full);
    return cli::kAnswer;
}

// PORT VALUE for the setters: VALUE is on/off, or a mode up to Max (the
// library writes another mode as 0 or not at all).
template <int (*Set)(int, int), int Max> int set(int, char **argv)
{
    static const char *const kSwitch[] = {"off", "on", nullptr};
    int port, value;
    if (!cli::parse_int(argv[0], &port, 0, 4) ||
        !(Max ? cli::parse_int(argv[1], &value, 0, Max) : cli::parse_choice(argv[1], kSwitch, &value)))
        return cli::kUsage;
    return cli::done(Set(port, value) == 0, "the PHY register access");
}

int power(int port, int on) { return vesk_mii_set_power(port, on); }
int advertise(int port, int mode) { return vesk_mii_set_port_link_speed(static_cast<unsigned int>(mode), port); }
int gmac(int port, int mode) { return vesk_mii_set_gmac_link_speed(static_cast<unsigned int>(mode), port); }
int mdi(int port, int mode) { return vesk_mii_set_port_mdi_mode(mode, port); }
int eee(int port, int on) { return vesk_mii_set_802_3_az_mode(on, port); }
int pause(int port, int on) { return vesk_mii_set_flow_control(on, port); }

constexpr cli::command kCommands[] = {
    {"link", "[IFNAME [PHY]]", "link state (register 1) of a PHY, eth2 and PHY 1 by default: up or down", 0, link},
    {"speed", "[IFNAME [PHY]]", "best ability that both link partners offer: code mode", 0, speed},
    {"partner", "[IFNAME [PHY]]", "the link partner's abilities and duplex", 0, partner},
    {"power", "PORT on|off", "power the PHY of port 0-4 up or down (mii_mgr)", 2, set<power, 0>},
    {"advertise", "PORT MODE", "advertise 0 all, 1 10 half, 2 10 full, 3 100 half, 4 100 full, 5 1000 full", 2,
     set<advertise, 5>},
    {"gmac", "PORT MODE", "the same modes on the GMAC's word (reg)", 2, set<gmac, 5>},
    {"mdi", "PORT MODE", "MDI mode 0, 1 or 2", 2, set<mdi, 2>},
    {"eee", "PORT on|off", "Energy-Efficient Ethernet", 2, set<eee, 0>},
    {"pause", "PORT on|off", "advertise flow control", 2, set<pause, 0>},
};

} // namespace

extern const cli::family family_phy = {"phy", "Ethernet PHY link, partner abilities and settings", kCommands};
