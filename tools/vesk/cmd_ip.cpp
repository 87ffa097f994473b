#include <stdio.h>

#include "cli.hpp"
#include "vesk_ip.h"

namespace {

int to_num(int, char **argv)
{
    if (!cli::parse_ipv4(argv[0]))
        return cli::kUsage;
    char hex[11];
    snprintf(hex, sizeof hex, "0x%08X", vesk_str_2_ipaddr(argv[0]));
    return cli::text(hex);
}

// Address 0 is "0.0.0.0" here, an answer and no placeholder.
int to_str(int, char **argv)
{
    unsigned int ip;
    return cli::parse_uint(argv[0], &ip) ? cli::text(vesk_get_ipaddr_str(ip)) : cli::kUsage;
}

int same_subnet(int, char **argv)
{
    unsigned int mask;
    if (!cli::parse_ipv4(argv[0]) || !cli::parse_ipv4(argv[1]))
        return cli::kUsage;
    // A mask is a number or, for people, dotted text.
    if (cli::is_ipv4(argv[2]))
        mask = vesk_str_2_ipaddr(argv[2]);
    else if (!cli::parse_uint(argv[2], &mask))
        return cli::kUsage;
    return cli::number(vesk_check_same_subnet_str(argv[0], argv[1], mask));
}

int resolve(int, char **argv) { return cli::answer(vesk_ip_get_1st_addr_info(argv[0])); }

constexpr cli::command kCommands[] = {
    {"num", "IP", "dotted text to its host-order number", 1, to_num},
    {"str", "NUMBER", "host-order number (0x... or decimal) to dotted text", 1, to_str},
    {"same-subnet", "IP1 IP2 MASK", "1 when both addresses lie in one subnet, else 0", 3, same_subnet},
    {"resolve", "NAME", "first IPv4 address of a host name", 1, resolve},
};

} // namespace

extern const cli::family family_ip = {"ip", "IPv4 addresses as text and numbers", kCommands};
