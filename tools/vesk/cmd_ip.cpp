#include <stdio.h>

#include "cli.hpp"
#include "vesk_ip.h"

namespace {

int to_num(int, char **argv)
{
    printf("0x%08X\n", vesk_str_2_ipaddr(argv[0]));
    return 0;
}

int to_str(int, char **argv)
{
    unsigned int ip;
    if (!cli::parse_uint(argv[0], &ip)) {
        fprintf(stderr, "vesk ip str: %s is not a number\n", argv[0]);
        return 2;
    }
    return cli::print_text(vesk_get_ipaddr_str(ip));
}

int same_subnet(int, char **argv)
{
    unsigned int mask;
    if (!cli::parse_uint(argv[2], &mask)) {
        // A dotted mask is taken as well, for people.
        mask = vesk_str_2_ipaddr(argv[2]);
    }
    printf("%d\n", vesk_check_same_subnet_str(argv[0], argv[1], mask));
    return 0;
}

int resolve(int, char **argv) { return cli::print_text(vesk_ip_get_1st_addr_info(argv[0])); }

constexpr cli::command kCommands[] = {
    {"num", "TEXT", "dotted text to its host-order number", 1, to_num},
    {"str", "NUMBER", "host-order number (0x... or decimal) to dotted text", 1, to_str},
    {"same-subnet", "IP1 IP2 MASK", "1 when both addresses lie in one subnet", 3, same_subnet},
    {"resolve", "NAME", "first IPv4 address of a host name", 1, resolve},
};

} // namespace

extern const cli::family family_ip = {"ip", "IPv4 addresses as text and numbers", kCommands};
