#include <errno.h>
#include <stdio.h>
#include <stdlib.h>

#include "cli.hpp"
#include "vesk_hr.h"

namespace {

bool parse_u64(const char *text, unsigned long long *out)
{
    errno = 0;
    char *end;
    if (*text == '-')
        return false;
    *out = strtoull(text, &end, 0);
    return !errno && end != text && !*end;
}

int bad_number(const char *text)
{
    fprintf(stderr, "vesk hr: %s is not a number\n", text);
    return 2;
}

int scaled(int argc, char **argv)
{
    unsigned long long val, unit = 0;
    if (!parse_u64(argv[0], &val))
        return bad_number(argv[0]);
    if (argc > 1 && !parse_u64(argv[1], &unit))
        return bad_number(argv[1]);
    return cli::print_text(vesk_hr_u64_to_str(val, unit));
}

int grouped(int, char **argv)
{
    unsigned int val;
    if (!cli::parse_uint(argv[0], &val))
        return bad_number(argv[0]);
    return cli::print_text(vesk_hr_u32_to_str(val));
}

int bytes(int, char **argv)
{
    unsigned long long val;
    if (!parse_u64(argv[0], &val))
        return bad_number(argv[0]);
    return cli::print_text(vesk_parse_pkt_unit(val));
}

constexpr cli::command kCommands[] = {
    {"scaled", "VALUE [UNIT]", "VALUE in steps of 1024 (1.5k), or divided by UNIT and rounded", 1, scaled},
    {"grouped", "VALUE", "32-bit VALUE with commas between groups of three digits", 1, grouped},
    {"bytes", "VALUE", "byte count in steps of 1000 (1.5 MBytes)", 1, bytes},
};

} // namespace

extern const cli::family family_hr = {"hr", "numbers as human-readable text", kCommands};
