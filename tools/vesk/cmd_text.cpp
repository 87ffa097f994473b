#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_string.h"

namespace {

// A character argument is exactly one byte.
bool char_arg(const char *arg)
{
    if (arg[0] && !arg[1])
        return true;
    cli::refuse("%s is not one character", arg);
    return false;
}

int match(int, char **argv) { return cli::number(vesk_reg_match(argv[0], argv[1])); }

int hexdump(int argc, char **argv)
{
    unsigned int base = 0;
    if (argc > 1 && !cli::parse_uint(argv[1], &base))
        return cli::kUsage;
    cli::library_output(true);
    vesk_dbg_hexdump(base, argv[0], static_cast<unsigned int>(strlen(argv[0])));
    cli::library_output(false);
    return cli::kAnswer;
}

int remove_char(int, char **argv)
{
    if (!char_arg(argv[1]))
        return cli::kUsage;
    const int n = vesk_string_remove_char(argv[0], argv[1][0]);
    cli::record().text("text", argv[0]).number("count", n);
    return cli::kAnswer;
}

int replace_char(int, char **argv)
{
    if (!char_arg(argv[1]) || !char_arg(argv[2]))
        return cli::kUsage;
    const int n = vesk_string_replace_char(argv[0], argv[1][0], argv[2][0]);
    cli::record().text("text", argv[0]).number("count", n);
    return cli::kAnswer;
}

int char_value(int, char **argv)
{
    if (!char_arg(argv[0]))
        return cli::kUsage;
    const int v = vesk_char_to_int(argv[0][0]);
    return v < 0 ? cli::miss("%s is neither a digit nor a letter", argv[0]) : cli::number(v);
}

int component(int, char **argv)
{
    char copy[4096];
    if (snprintf(copy, sizeof copy, "%s", argv[0]) >= static_cast<int>(sizeof copy))
        return cli::refuse("a path has fewer than %zu characters", sizeof copy);
    cli::record()
        .text("component", vesk_string_get_last_path_component_nostrip(argv[0]))
        .text("stripped", vesk_string_get_last_path_component_strip(copy));
    return cli::kAnswer;
}

int itoa(int, char **argv)
{
    int value, base;
    if (!cli::parse_int(argv[0], &value, -0x7FFFFFFFLL - 1, 0x7FFFFFFF) || !cli::parse_int(argv[1], &base, 2, 16))
        return cli::kUsage;
    // 0 has no digits in the library's form.
    return value ? cli::text(vesk_itoa(value, base)) : cli::text("0");
}

int url_cmp(int, char **argv)
{
    const int r = vesk_url_cmp(argv[0], argv[1]);
    return cli::number((r > 0) - (r < 0));
}

int msb(int, char **argv)
{
    unsigned int value;
    return cli::parse_uint(argv[0], &value) ? cli::number(vesk_math_msb32(value)) : cli::kUsage;
}

constexpr cli::command kCommands[] = {
    {"match", "PATTERN TEXT", "1 when the PCRE pattern is found in TEXT, else 0", 2, match},
    {"hexdump", "TEXT [BASE]", "hex dump of the bytes of TEXT, offsets from BASE", 1, hexdump},
    {"remove-char", "TEXT C", "TEXT without any C (text), and how many went (count)", 2, remove_char},
    {"replace-char", "TEXT FROM TO", "TEXT with every FROM made TO (text), and how many (count)", 3, replace_char},
    {"char-value", "C", "value of a digit or letter (a and A are 10)", 1, char_value},
    {"component", "PATH", "last path component as it stands (component) and with trailing slashes cut (stripped)",
     1, component},
    {"itoa", "VALUE BASE", "digits of VALUE in BASE 2..16", 2, itoa},
    {"url-cmp", "A B", "-1, 0 or 1 as the URLs compare without regard to case", 2, url_cmp},
    {"msb", "NUMBER", "one-based position of the highest set bit (0 for 0)", 1, msb},
};

} // namespace

extern const cli::family family_text = {"text", "text and number helpers", kCommands};
