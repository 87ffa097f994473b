#include <arpa/inet.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_arp.h"

namespace {

int ifname(int, char **argv)
{
    return cli::parse_ipv4(argv[0]) ? cli::answer(vesk_arp_get_ifname_by_ip(argv[0])) : cli::kUsage;
}

int mac(int argc, char **argv)
{
    static const char *const kPing[] = {"--ping", nullptr};
    int unused;
    if (!cli::parse_ipv4(argv[0]) || (argc > 1 && !cli::parse_choice(argv[1], kPing, &unused)))
        return cli::kUsage;
    return cli::answer(vesk_arp_get_macstr_by_ip(argv[0], argc > 1));
}

int ip(int, char **argv) { return cli::parse_mac12(argv[0]) ? cli::answer(vesk_arp_get_ip_by_macstr(argv[0])) : cli::kUsage; }

int send(int, char **argv)
{
    unsigned char sender_mac[6];
    if (!cli::parse_ipv4(argv[0]) || !cli::parse_ipv4(argv[1]) || !cli::parse_mac(argv[2], sender_mac))
        return cli::kUsage;
    // The packet socket carries the name in a 14-byte field, terminator included.
    if (strlen(argv[3]) > 13)
        return cli::refuse("an interface name for sending has at most 13 characters");
    return cli::done(arpping(inet_addr(argv[0]), inet_addr(argv[1]), sender_mac, argv[3]) == 1, "sending");
}

int grat(int, char **) { return cli::done(vesk_send_grat_arp() == 1, "the gratuitous ARP of br0"); }

constexpr cli::command kCommands[] = {
    {"ifname", "IP", "interface (bridge port for br0) of a neighbour", 1, ifname},
    {"mac", "IP [--ping]", "MAC of a neighbour as 12 digits; --ping asks it first", 1, mac},
    {"ip", "MAC12", "IP of a neighbour by its 12-digit MAC", 1, ip},
    {"send", "TARGET_IP SENDER_IP SENDER_MAC IFNAME", "broadcast one ARP reply frame", 4, send},
    {"grat", "", "gratuitous ARP of br0", 0, grat},
};

} // namespace

extern const cli::family family_arp = {"arp", "neighbours in the ARP table, gratuitous ARP", kCommands};
