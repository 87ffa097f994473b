#include "cli.hpp"
#include "vesk_hr.h"

namespace {

int scaled(int argc, char **argv)
{
    unsigned long long val, unit = 0;
    if (!cli::parse_u64(argv[0], &val) || (argc > 1 && !cli::parse_u64(argv[1], &unit)))
        return cli::kUsage;
    return cli::text(vesk_hr_u64_to_str(val, unit));
}

int grouped(int, char **argv)
{
    unsigned int val;
    return cli::parse_uint(argv[0], &val) ? cli::text(vesk_hr_u32_to_str(val)) : cli::kUsage;
}

int bytes(int, char **argv)
{
    unsigned long long val;
    return cli::parse_u64(argv[0], &val) ? cli::text(vesk_parse_pkt_unit(val)) : cli::kUsage;
}

constexpr cli::command kCommands[] = {
    {"scaled", "VALUE [UNIT]", "VALUE in steps of 1024 (1.5k), or divided by UNIT and rounded", 1, scaled},
    {"grouped", "VALUE", "32-bit VALUE with commas between groups of three digits", 1, grouped},
    {"bytes", "VALUE", "byte count in steps of 1000 (1.5 MBytes)", 1, bytes},
};

} // namespace

extern const cli::family family_hr = {"hr", "numbers as human-readable text", kCommands};
