#include <errno.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "cli.hpp"

#define VESK_FAMILY(name) extern const cli::family family_##name;
#include "families.inc"
#undef VESK_FAMILY

namespace {

#define VESK_FAMILY(name) &family_##name,
const cli::family *const kFamilies[] = {
#include "families.inc"
};
#undef VESK_FAMILY

void print_family(const cli::family &f)
{
    printf("%s: %s\n", f.name, f.help);
    for (const cli::command &c : f.commands)
        printf("  vesk %s %s %s\n      %s\n", f.name, c.name, c.args, c.help);
}

int usage(FILE *out)
{
    fputs("usage: vesk FAMILY COMMAND [ARGS...]\n"
          "       vesk FAMILY --help\n"
          "Asks the device through libvesk and prints the answers.\n\nfamilies:\n",
          out);
    for (const cli::family *f : kFamilies)
        fprintf(out, "  %-10s %s\n", f->name, f->help);
    return out == stdout ? 0 : 2;
}

} // namespace

namespace cli {

bool parse_uint(const char *text, unsigned int *out)
{
    errno = 0;
    char *end;
    unsigned long v = strtoul(text, &end, 0);
    if (errno || end == text || *end || v > UINT_MAX)
        return false;
    *out = static_cast<unsigned int>(v);
    return true;
}

bool parse_int(const char *text, int *out)
{
    errno = 0;
    char *end;
    long v = strtol(text, &end, 0);
    if (errno || end == text || *end || v < INT_MIN || v > INT_MAX)
        return false;
    *out = static_cast<int>(v);
    return true;
}

int print_text(const char *text)
{
    puts(text ? text : "(null)");
    return text ? 0 : 1;
}

int print_int(int value)
{
    printf("%d\n", value);
    return 0;
}

} // namespace cli

int main(int argc, char **argv)
{
    if (argc < 2)
        return usage(stderr);
    if (!strcmp(argv[1], "--help") || !strcmp(argv[1], "-h"))
        return usage(stdout);
    for (const cli::family *f : kFamilies) {
        if (strcmp(f->name, argv[1]))
            continue;
        if (argc < 3 || !strcmp(argv[2], "--help") || !strcmp(argv[2], "-h")) {
            print_family(*f);
            return argc < 3 ? 2 : 0;
        }
        for (const cli::command &c : f->commands) {
            if (strcmp(c.name, argv[2]))
                continue;
            if (argc - 3 < c.min_args) {
                fprintf(stderr, "usage: vesk %s %s %s\n", f->name, c.name, c.args);
                return 2;
            }
            return c.run(argc - 3, argv + 3);
        }
        fprintf(stderr, "vesk %s: no command %s\n", f->name, argv[2]);
        print_family(*f);
        return 2;
    }
    fprintf(stderr, "vesk: no family %s\n", argv[1]);
    return usage(stderr);
}
