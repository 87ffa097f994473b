#include "cli.hpp"
#include "vesk_snmp.h"

namespace {

int index_of(int, char **argv)
{
    const int index = vesk_snmp_get_index_by_ifname(0, argv[0]);
    return index ? cli::number(index) : cli::miss("no SNMP number for %s", argv[0]);
}

constexpr cli::command kCommands[] = {
    {"index", "IFNAME", "the SNMP interface number", 1, index_of},
};

} // namespace

extern const cli::family family_snmp = {"snmp", "SNMP interface numbers", kCommands};
