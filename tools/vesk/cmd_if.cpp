#include <stdio.h>
#include <string.h>
#include <sys/socket.h>

#include "cli.hpp"
#include "vesk_if.h"

namespace {

int hwaddr(int, char **argv)
{
    unsigned char mac[6];
    if (!vesk_if_get_hw_addr(argv[0], mac))
        return cli::miss("no hardware address for %s", argv[0]);
    char text[18];
    snprintf(text, sizeof text, "%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
    return cli::answer(text);
}

int ip(int, char **argv) { return cli::answer(vesk_if_get_ip(argv[0])); }
int dst(int, char **argv) { return cli::answer(vesk_if_get_dst_ip(argv[0])); }
int mask(int, char **argv) { return cli::answer(vesk_if_get_mask(argv[0])); }
int subnet(int, char **argv) { return cli::answer(vesk_if_get_subnet(argv[0])); }
int exists(int, char **argv) { return cli::number(vesk_if_is_existed(argv[0])); }
int ip_ready(int, char **argv) { return cli::number(vesk_if_is_ip_ready(argv[0])); }
int up(int, char **argv) { return cli::number(vesk_if_is_up(argv[0])); }

// 0 is the library's "cannot be read".
int nonzero(int value, const char *what, const char *ifname)
{
    return value ? cli::number(value) : cli::miss("no %s for %s", what, ifname);
}
int index(int, char **argv) { return nonzero(vesk_if_get_index(argv[0]), "index", argv[0]); }
int mtu(int, char **argv) { return nonzero(vesk_if_get_mtu(argv[0]), "MTU", argv[0]); }

int lan_state(int, char **argv)
{
    int state;
    if (!cli::parse_int(argv[1], &state, -0x7FFFFFFFLL - 1, 0x7FFFFFFF))
        return cli::kUsage;
    return cli::done(vesk_if_set_lan_state(argv[0], state), "the LAN-state request");
}

int hostname(int, char **argv)
{
    // The library hands any other character to the kernel only, not to /etc/hostname.
    if (!argv[0][0] || strspn(argv[0], "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.") !=
                           strlen(argv[0]))
        return cli::refuse("%s is not a host name (letters, digits, '-', '_', '.')", argv[0]);
    return cli::done(vesk_net_set_hostname(argv[0]) == 0, "setting the host name");
}

int host_ip(int argc, char **argv)
{
    static const char *const kFamilies[] = {"any", "4", "6", nullptr};
    static constexpr int kAf[] = {AF_UNSPEC, AF_INET, AF_INET6};
    int which = 0;
    if (argc > 1 && !cli::parse_choice(argv[1], kFamilies, &which))
        return cli::kUsage;
    return cli::answer(vesk_get_host_ip_by_name(argv[0], kAf[which]));
}

constexpr cli::command kCommands[] = {
    {"hwaddr", "IFNAME", "hardware address of an interface", 1, hwaddr},
    {"ip", "IFNAME", "IPv4 address", 1, ip},
    {"dst", "IFNAME", "destination (peer) address", 1, dst},
    {"mask", "IFNAME", "netmask", 1, mask},
    {"subnet", "IFNAME", "address and mask combined", 1, subnet},
    {"exists", "IFNAME", "1 when the interface exists, else 0", 1, exists},
    {"ip-ready", "IFNAME", "1 when the interface has an address other than 0.0.0.0, else 0", 1, ip_ready},
    {"up", "IFNAME", "1 when the interface is administratively up, else 0", 1, up},
    {"index", "IFNAME", "interface index", 1, index},
    {"mtu", "IFNAME", "MTU", 1, mtu},
    {"lan-state", "IFNAME STATE", "hand STATE to the Ethernet driver's LAN-state request", 2, lan_state},
    {"hostname", "NAME", "set the host name and /etc/hostname", 1, hostname, cli::changes_device},
    {"host-ip", "NAME [any|4|6]", "first address of a host name", 1, host_ip},
};

} // namespace

extern const cli::family family_if = {"if", "network interfaces: addresses, flags, index, MTU", kCommands};
