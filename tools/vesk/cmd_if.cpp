#include <stdio.h>
#include <string.h>
#include <sys/socket.h>

#include "cli.hpp"
#include "vesk_if.h"

namespace {

int hwaddr(int, char **argv)
{
    unsigned char mac[6];
    if (!vesk_if_get_hw_addr(argv[0], mac)) {
        fprintf(stderr, "vesk if hwaddr: cannot read the address of %s\n", argv[0]);
        return 1;
    }
    printf("%02X:%02X:%02X:%02X:%02X:%02X\n", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    return 0;
}

int ip(int, char **argv) { return cli::print_text(vesk_if_get_ip(argv[0])); }
int dst(int, char **argv) { return cli::print_text(vesk_if_get_dst_ip(argv[0])); }
int mask(int, char **argv) { return cli::print_text(vesk_if_get_mask(argv[0])); }
int subnet(int, char **argv) { return cli::print_text(vesk_if_get_subnet(argv[0])); }
int exists(int, char **argv) { return cli::print_int(vesk_if_is_existed(argv[0])); }
int ip_ready(int, char **argv) { return cli::print_int(vesk_if_is_ip_ready(argv[0])); }
int up(int, char **argv) { return cli::print_int(vesk_if_is_up(argv[0])); }
int index(int, char **argv) { return cli::print_int(vesk_if_get_index(argv[0])); }
int mtu(int, char **argv) { return cli::print_int(vesk_if_get_mtu(argv[0])); }

int lan_state(int, char **argv)
{
    int state;
    if (!cli::parse_int(argv[1], &state)) {
        fprintf(stderr, "vesk if lan-state: %s is not a number\n", argv[1]);
        return 2;
    }
    return cli::print_int(vesk_if_set_lan_state(argv[0], state));
}

int hostname(int argc, char **argv) { return cli::print_int(vesk_net_set_hostname(argc > 0 ? argv[0] : "")); }

int host_ip(int argc, char **argv)
{
    int family = AF_UNSPEC;
    if (argc > 1) {
        if (!strcmp(argv[1], "4"))
            family = AF_INET;
        else if (!strcmp(argv[1], "6"))
            family = AF_INET6;
        else if (strcmp(argv[1], "any")) {
            fprintf(stderr, "vesk if host-ip: family is 4, 6 or any\n");
            return 2;
        }
    }
    return cli::print_text(vesk_get_host_ip_by_name(argv[0], family));
}

constexpr cli::command kCommands[] = {
    {"hwaddr", "IFNAME", "hardware address of an interface", 1, hwaddr},
    {"ip", "IFNAME", "IPv4 address (\"---\" when none)", 1, ip},
    {"dst", "IFNAME", "destination (peer) address", 1, dst},
    {"mask", "IFNAME", "netmask", 1, mask},
    {"subnet", "IFNAME", "address and mask combined", 1, subnet},
    {"exists", "IFNAME", "1 when the interface exists", 1, exists},
    {"ip-ready", "IFNAME", "1 when the interface has an address other than 0.0.0.0", 1, ip_ready},
    {"up", "IFNAME", "1 when the interface is administratively up", 1, up},
    {"index", "IFNAME", "interface index (0: unknown)", 1, index},
    {"mtu", "IFNAME", "MTU (0: unknown)", 1, mtu},
    {"lan-state", "IFNAME STATE", "hand STATE to the Ethernet driver's LAN-state request", 2, lan_state},
    {"hostname", "[NAME]", "set the host name and /etc/hostname", 0, hostname},
    {"host-ip", "NAME [4|6|any]", "first address of a host name", 1, host_ip},
};

} // namespace

extern const cli::family family_if = {"if", "network interfaces: addresses, flags, index, MTU", kCommands};
