#include <ctype.h>
#include <limits.h>
#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "quil.h"
#include "vesk_core.h"

namespace {

constexpr int kMaxRecord = 128;

// Size of a known key's value; refuses an unknown key.
int key_arg(const char *key, int *is_number)
{
    const int size = quil_key_info(key, is_number);
    if (!size || size > kMaxRecord)
        cli::refuse("unknown key %s (quil list shows the store)", key);
    return size > kMaxRecord ? 0 : size;
}

int get(int, char **argv)
{
    int is_number = 0;
    const int size = key_arg(argv[0], &is_number);
    if (!size)
        return cli::kUsage;
    unsigned char value[kMaxRecord] = {}; // zeroed first: a missing key reads as zeros
    quil_get_value(value, "%s", argv[0]);
    if (is_number) {
        int v;
        memcpy(&v, value, sizeof v);
        return cli::number(v);
    }
    char hex[2 * kMaxRecord + 1];
    for (int i = 0; i < size; i++)
        snprintf(hex + 2 * i, 3, "%02x", value[i]);
    return cli::text(hex);
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
    int is_number = 0, v;
    unsigned char value[kMaxRecord] = {};
    const int size = key_arg(argv[0], &is_number);
    if (!size)
        return cli::kUsage;
    if (is_number) {
        if (!cli::parse_int(argv[1], &v, INT_MIN, INT_MAX))
            return cli::kUsage;
        memcpy(value, &v, sizeof v);
    } else if (!parse_record(argv[1], value, size)) {
        return cli::refuse("%s takes %d bytes as %d hex digits", argv[0], size, 2 * size);
    }
    return cli::done(quil_set_value(value, argv[0]) == 0, "writing the store");
}

int usboot(int, char **) { return cli::number(vesk_get_usboot()); }
int sch_en(int, char **) { return cli::number(vesk_util_get_sch_en()); }

constexpr cli::command kCommands[] = {
    {"get", "KEY", "value of a store key (records in hex, zeros when unset)", 1, get},
    {"set", "KEY VALUE", "set a key: a number, or a record in hex of its exact size", 2, set, cli::changes_device},
    {"usboot", "", "1 in USB-boot operation (/mnt/usboot exists), else 0", 0, usboot},
    {"schedule", "", "1 when the schedule is enabled (schedule_en), else 0", 0, sch_en},
};

} // namespace

extern const cli::family family_store = {"store", "the configuration store and device state", kCommands};
