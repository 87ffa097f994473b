#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_string.h"

namespace {

// A character argument is its first byte; "" is the terminator.
char char_arg(const char *arg) { return arg[0]; }

int match(int, char **argv) { return cli::print_int(vesk_reg_match(argv[0], argv[1])); }

int hexdump(int argc, char **argv)
{
    unsigned int base = 0;
    if (argc > 1 && !cli::parse_uint(argv[1], &base)) {
        fprintf(stderr, "vesk text hexdump: %s is not a number\n", argv[1]);
        return 2;
    }
    vesk_dbg_hexdump(base, argv[0], static_cast<unsigned int>(strlen(argv[0])));
    return 0;
}

int remove_char(int, char **argv)
{
    int n = vesk_string_remove_char(argv[0], char_arg(argv[1]));
    printf("%s\n%d removed\n", argv[0], n);
    return 0;
}

int replace_char(int, char **argv)
{
    int n = vesk_string_replace_char(argv[0], char_arg(argv[1]), char_arg(argv[2]));
    printf("%s\n%d replaced\n", argv[0], n);
    return 0;
}

int char_value(int, char **argv) { return cli::print_int(vesk_char_to_int(char_arg(argv[0]))); }

int component(int, char **argv)
{
    printf("%s\n", vesk_string_get_last_path_component_nostrip(argv[0]));
    return cli::print_text(vesk_string_get_last_path_component_strip(argv[0]));
}

int itoa(int, char **argv)
{
    int value, base;
    if (!cli::parse_int(argv[0], &value) || !cli::parse_int(argv[1], &base)) {
        fprintf(stderr, "vesk text itoa: VALUE and BASE are numbers\n");
        return 2;
    }
    return cli::print_text(vesk_itoa(value, base));
}

int url_cmp(int, char **argv)
{
    int r = vesk_url_cmp(argv[0], argv[1]);
    return cli::print_int((r > 0) - (r < 0));
}

int msb(int, char **argv)
{
    unsigned int value;
    if (!cli::parse_uint(argv[0], &value)) {
        fprintf(stderr, "vesk text msb: %s is not a number\n", argv[0]);
        return 2;
    }
    return cli::print_int(vesk_math_msb32(value));
}

constexpr cli::command kCommands[] = {
    {"match", "PATTERN TEXT", "1 when the PCRE pattern is found in TEXT, else 0", 2, match},
    {"hexdump", "TEXT [BASE]", "hex dump of the bytes of TEXT, offsets from BASE", 1, hexdump},
    {"remove-char", "TEXT C", "TEXT without any C, and how many went", 2, remove_char},
    {"replace-char", "TEXT FROM TO", "TEXT with every FROM made TO, and how many", 3, replace_char},
    {"char-value", "C", "value of a digit or letter (a and A are 10), else -1", 1, char_value},
    {"component", "PATH", "last path component, as it stands and with trailing slashes cut", 1, component},
    {"itoa", "VALUE BASE", "digits of VALUE in BASE 2..16 (0 gives an empty line)", 2, itoa},
    {"url-cmp", "A B", "-1, 0 or 1 as the URLs compare without regard to case", 2, url_cmp},
    {"msb", "NUMBER", "one-based position of the highest set bit", 1, msb},
};

} // namespace

extern const cli::family family_text = {"text", "text and number helpers", kCommands};
