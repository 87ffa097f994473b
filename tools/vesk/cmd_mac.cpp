#include <stdio.h>

#include "cli.hpp"
#include "vesk_mac.h"

namespace {

int canonical(int, char **argv)
{
    unsigned char mac[6];
    if (!vesk_mac_str_2_bin(mac, argv[0])) {
        fprintf(stderr, "vesk mac text: %s is not a MAC address\n", argv[0]);
        return 1;
    }
    char text[18];
    vesk_mac_bin_2_str(text, mac);
    return cli::print_text(text);
}

int valid(int, char **argv) { return cli::print_int(vesk_mac_is_valid_str(argv[0])); }

int add_colon(int, char **argv)
{
    char text[18] = {};
    // Copy at most 13 characters: enough for the length test to refuse.
    snprintf(text, 14, "%s", argv[0]);
    if (!vesk_mac_add_colon(text))
        return 1;
    return cli::print_text(text);
}

int equal(int, char **argv)
{
    unsigned char a[6], b[6];
    if (!vesk_mac_str_2_bin(a, argv[0]) || !vesk_mac_str_2_bin(b, argv[1])) {
        fprintf(stderr, "vesk mac equal: two MAC addresses, please\n");
        return 2;
    }
    return cli::print_int(vesk_mac_bin_is_equal(a, b));
}

int in_range(int, char **argv) { return cli::print_int(vesk_mac_is_in_range_str(argv[0], argv[1], argv[2])); }

int vendor(int, char **argv) { return cli::print_text(vesk_mac_to_vendor_name(argv[0])); }

int oui_vendor(int, char **argv)
{
    vesk_oui_entry entry = {};
    if (!cli::parse_uint(argv[0], &entry.oui)) {
        fprintf(stderr, "vesk mac oui-vendor: %s is not a number\n", argv[0]);
        return 2;
    }
    return cli::print_text(vesk_mac_oui_to_vendor_name(entry));
}

constexpr cli::command kCommands[] = {
    {"text", "MAC", "canonical text of an address (colons anywhere, either case)", 1, canonical},
    {"valid", "MAC", "1 when MAC has 12 characters without its colons, else 0", 1, valid},
    {"add-colon", "DIGITS", "12 characters as six pairs joined by colons", 1, add_colon},
    {"equal", "MAC1 MAC2", "1 when both are one address", 2, equal},
    {"in-range", "BOUND1 BOUND2 MAC", "1 when MAC lies between the bounds, both included", 3, in_range},
    {"vendor", "MAC", "registered vendor of the address", 1, vendor},
    {"oui-vendor", "OUI", "registered vendor of a 24-bit OUI number (0x001A2B)", 1, oui_vendor},
};

} // namespace

extern const cli::family family_mac = {"mac", "MAC addresses and their vendors", kCommands};
