#include <arpa/inet.h>
#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_arp.h"
#include "vesk_mac.h"

namespace {

int ifname(int, char **argv) { return cli::print_text(vesk_arp_get_ifname_by_ip(argv[0])); }

int mac(int argc, char **argv)
{
    int do_ping = argc > 1 && !strcmp(argv[1], "--ping");
    return cli::print_text(vesk_arp_get_macstr_by_ip(argv[0], do_ping));
}

int ip(int, char **argv) { return cli::print_text(vesk_arp_get_ip_by_macstr(argv[0])); }

int send(int, char **argv)
{
    in_addr target, sender;
    unsigned char sender_mac[6];
    if (!inet_aton(argv[0], &target) || !inet_aton(argv[1], &sender) || !vesk_mac_str_2_bin(sender_mac, argv[2])) {
        fprintf(stderr, "usage: vesk arp send TARGET_IP SENDER_IP SENDER_MAC IFNAME\n");
        return 2;
    }
    int rc = arpping(target.s_addr, sender.s_addr, sender_mac, argv[3]);
    printf("%d\n", rc);
    return rc == 1 ? 0 : 1;
}

int grat(int, char **)
{
    int rc = vesk_send_grat_arp();
    printf("%d\n", rc);
    return rc == 1 ? 0 : 1;
}

constexpr cli::command kCommands[] = {
    {"ifname", "IP", "interface (bridge port for br0) of a neighbour", 1, ifname},
    {"mac", "IP [--ping]", "MAC of a neighbour as 12 digits; --ping asks it first", 1, mac},
    {"ip", "MAC12", "IP of a neighbour by its 12-digit MAC", 1, ip},
    {"send", "TARGET_IP SENDER_IP SENDER_MAC IFNAME", "broadcast one ARP reply frame", 4, send},
    {"grat", "", "gratuitous ARP of br0", 0, grat},
};

} // namespace

extern const cli::family family_arp = {"arp", "neighbours in the ARP table, gratuitous ARP", kCommands};
