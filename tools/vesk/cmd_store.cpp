#include <ctype.h>
#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "quil.h"
#include "vesk_core.h"

namespace {

int get(int, char **argv)
{
    int is_number = 0;
    int size = quil_key_info(argv[0], &is_number);
    if (!size) {
        fprintf(stderr, "vesk store: unknown key %s\n", argv[0]);
        return 2;
    }
    unsigned char value[128] = {}; // zeroed first: a missing key reads as zeros
    quil_get_value(value, "%s", argv[0]);
    if (is_number) {
        int v;
        memcpy(&v, value, sizeof v);
        printf("%d\n", v);
        return 0;
    }
    for (int i = 0; i < size; i++)
        printf("%02x", value[i]);
    putchar('\n');
    return 0;
}

// Hex digits, two per byte, exactly as many as the record holds.
bool parse_record(const char *text, unsigned char *out, int size)
{
    if (strlen(text) != static_cast<size_t>(2 * size))
        return false;
    for (int i = 0; i < size; i++) {
        unsigned int byte;
        if (!isxdigit(static_cast<unsigned char>(text[2 * i])) || !isxdigit(static_cast<unsigned char>(text[2 * i + 1])) ||
            sscanf(text + 2 * i, "%2x", &byte) != 1)
            return false;
        out[i] = static_cast<unsigned char>(byte);
    }
    return true;
}

// Number keys take a number; record keys take hex of exactly their size.
int set(int, char **argv)
{
    int is_number = 0;
    const int size = quil_key_info(argv[0], &is_number);
    unsigned char value[128] = {};
    if (!size || size > static_cast<int>(sizeof value)) {
        fprintf(stderr, "vesk store: unknown key %s\n", argv[0]);
        return 2;
    }
    if (is_number) {
        int v;
        if (!cli::parse_int(argv[1], &v)) {
            fprintf(stderr, "vesk store: %s is not a number\n", argv[1]);
            return 2;
        }
        memcpy(value, &v, sizeof v);
    } else if (!parse_record(argv[1], value, size)) {
        fprintf(stderr, "vesk store: %s takes %d bytes as %d hex digits\n", argv[0], size, 2 * size);
        return 2;
    }
    return quil_set_value(value, argv[0]) == 0 ? 0 : 1;
}

int usboot(int, char **) { return printf("%d\n", vesk_get_usboot()) < 0; }
int sch_en(int, char **) { return printf("%d\n", vesk_util_get_sch_en()) < 0; }

constexpr cli::command kCommands[] = {
    {"get", "KEY", "value of a store key (records in hex, zeros when unset)", 1, get},
    {"set", "KEY VALUE", "set a key: a number, or a record in hex of its exact size", 2, set},
    {"usboot", "", "1 in USB-boot operation (/mnt/usboot exists)", 0, usboot},
    {"schedule", "", "1 when the schedule is enabled (schedule_en)", 0, sch_en},
};

} // namespace

extern const cli::family family_store = {"store", "the configuration store and device state", kCommands};
