#include "cli.hpp"
#include "vesk_snmp.h"

namespace {

int index_of(int, char **argv)
{
    int index = vesk_snmp_get_index_by_ifname(0, argv[0]);
    cli::print_int(index);
    return index ? 0 : 1;
}

constexpr cli::command kCommands[] = {
    {"index", "IFNAME", "the SNMP interface number (0: unknown)", 1, index_of},
};

} // namespace

extern const cli::family family_snmp = {"snmp", "SNMP interface numbers", kCommands};
