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

int set_number(int, char **argv)
{
    int is_number = 0, v;
    if (!key_arg(argv[0], &is_number))
        return cli::kUsage;
    if (!is_number)
        return cli::refuse("%s holds a record, not a number (quil set writes records)", argv[0]);
    if (!cli::parse_int(argv[1], &v, INT_MIN, INT_MAX))
        return cli::kUsage;
    return cli::done(quil_set_value(&v, argv[0]) == 0, "writing the store");
}

int usboot(int, char **) { return cli::number(vesk_get_usboot()); }
int sch_en(int, char **) { return cli::number(vesk_util_get_sch_en()); }

constexpr cli::command kCommands[] = {
    {"get", "KEY", "value of a store key (records in hex, zeros when unset)", 1, get},
    {"set", "KEY NUMBER", "set a number key", 2, set_number, cli::changes_device},
    {"usboot", "", "1 in USB-boot operation (/mnt/usboot exists), else 0", 0, usboot},
    {"schedule", "", "1 when the schedule is enabled (schedule_en), else 0", 0, sch_en},
};

} // namespace

extern const cli::family family_store = {"store", "the configuration store and device state", kCommands};
