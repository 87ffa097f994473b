#include <stdio.h>

#include "cli.hpp"
#include "vesk_if.h"

namespace {

int gateway(int argc, char **argv)
{
    return cli::print_text(argc > 0 ? vesk_if_get_gateway(argv[0]) : vesk_if_get_default_gateway());
}

int dns(int argc, char **argv)
{
    int index = 0;
    if (argc > 0 && !cli::parse_int(argv[0], &index)) {
        fprintf(stderr, "vesk route dns: %s is not a number\n", argv[0]);
        return 2;
    }
    return cli::print_text(vesk_if_get_dns_full(index, argc > 1 ? argv[1] : nullptr));
}

int dns6(int argc, char **argv)
{
    int index = 0;
    if (argc > 0 && !cli::parse_int(argv[0], &index)) {
        fprintf(stderr, "vesk route dns6: %s is not a number\n", argv[0]);
        return 2;
    }
    return cli::print_text(vesk_if_get_v6_dns(index));
}

constexpr cli::command kCommands[] = {
    {"gateway", "[IFNAME]", "gateway of IFNAME's first route that has one, or the default gateway", 0, gateway},
    {"dns", "[INDEX [SUFFIX]]", "IPv4 DNS servers of /etc/resolv.conf[.SUFFIX]; INDEX 1 or 2 for one of them", 0,
     dns},
    {"dns6", "[INDEX]", "DNS servers of /etc/resolv_ipv6.conf, IPv6 included", 0, dns6},
};

} // namespace

extern const cli::family family_route = {"route", "gateways and DNS servers", kCommands};
