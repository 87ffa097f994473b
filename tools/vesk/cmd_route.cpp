#include <string.h>

#include "cli.hpp"
#include "vesk_if.h"

namespace {

int gateway(int argc, char **argv)
{
    return cli::answer(argc > 0 ? vesk_if_get_gateway(argv[0]) : vesk_if_get_default_gateway());
}

// INDEX 1 or 2 picks one server; 0 (or none) lists them all.
bool index_arg(int argc, char **argv, int *index)
{
    *index = 0;
    return argc < 1 || cli::parse_int(argv[0], index, 0, 2);
}

int dns(int argc, char **argv)
{
    int index;
    if (!index_arg(argc, argv, &index))
        return cli::kUsage;
    if (argc > 1 && (!argv[1][0] || strchr(argv[1], '/')))
        return cli::refuse("%s is not a file name suffix", argv[1]);
    return cli::answer_list(vesk_if_get_dns_full(index, argc > 1 ? argv[1] : nullptr), ',');
}

int dns6(int argc, char **argv)
{
    int index;
    return index_arg(argc, argv, &index) ? cli::answer_list(vesk_if_get_v6_dns(index), ',') : cli::kUsage;
}

constexpr cli::command kCommands[] = {
    {"gateway", "[IFNAME]", "gateway of IFNAME's first route that has one, or the default gateway", 0, gateway},
    {"dns", "[INDEX [SUFFIX]]",
     "IPv4 DNS servers of /etc/resolv.conf[.SUFFIX], separated by ','; INDEX 1 or 2 for one of them", 0, dns},
    {"dns6", "[INDEX]", "DNS servers of /etc/resolv_ipv6.conf, IPv6 included; INDEX 1 or 2 for one of them", 0,
     dns6},
};

} // namespace

extern const cli::family family_route = {"route", "gateways and DNS servers", kCommands};
