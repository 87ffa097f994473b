#include <stdio.h>

#include "cli.hpp"
#include "vesk_mac.h"

namespace {

int canonical(int, char **argv)
{
    unsigned char mac[6];
    if (!cli::parse_mac(argv[0], mac))
        return cli::kUsage;
    char text[18];
    vesk_mac_bin_2_str(text, mac);
    return cli::answer(text);
}

// The library's own test: 12 characters once colons are gone, digits not required.
int valid(int, char **argv) { return cli::number(vesk_mac_is_valid_str(argv[0])); }

int add_colon(int, char **argv)
{
    if (!cli::parse_mac12(argv[0]))
        return cli::kUsage;
    char text[18] = {};
    snprintf(text, sizeof text, "%s", argv[0]);
    vesk_mac_add_colon(text);
    return cli::answer(text);
}

int equal(int, char **argv)
{
    unsigned char a[6], b[6];
    if (!cli::parse_mac(argv[0], a) || !cli::parse_mac(argv[1], b))
        return cli::kUsage;
    return cli::number(vesk_mac_bin_is_equal(a, b));
}

int in_range(int, char **argv)
{
    for (int i = 0; i < 3; i++)
        if (!cli::is_mac(argv[i]))
            return cli::refuse("%s is not a MAC address", argv[i]);
    return cli::number(vesk_mac_is_in_range_str(argv[0], argv[1], argv[2]));
}

int vendor(int, char **argv)
{
    unsigned char mac[6];
    if (!cli::parse_mac(argv[0], mac))
        return cli::kUsage;
    return cli::answer(vesk_mac_to_vendor_name(argv[0]));
}

int oui_vendor(int, char **argv)
{
    vesk_oui_entry entry = {};
    if (!cli::parse_uint(argv[0], &entry.oui, 0xFFFFFF))
        return cli::kUsage;
    return cli::answer(vesk_mac_oui_to_vendor_name(entry));
}

constexpr cli::command kCommands[] = {
    {"text", "MAC", "canonical text of an address", 1, canonical},
    {"valid", "TEXT", "1 when TEXT has 12 characters without its colons, else 0 (the library's own test)", 1, valid},
    {"add-colon", "DIGITS", "12 hex digits as six pairs joined by colons", 1, add_colon},
    {"equal", "MAC1 MAC2", "1 when both are one address, else 0", 2, equal},
    {"in-range", "BOUND1 BOUND2 MAC", "1 when MAC lies between the bounds, both included, else 0", 3, in_range},
    {"vendor", "MAC", "registered vendor of the address", 1, vendor},
    {"oui-vendor", "OUI", "registered vendor of a 24-bit OUI number (0x001A2B)", 1, oui_vendor},
};

} // namespace

extern const cli::family family_mac = {"mac", "MAC addresses and their vendors", kCommands};
