// The vesk tool: one file a family (cmd_<family>.cpp), each defining a
// cli::family object named family_<family>. The build collects them.
#pragma once

#include <span>

namespace cli {

struct command {
    const char *name;
    const char *args; // argument synopsis for --help
    const char *help;
    int min_args;
    int (*run)(int argc, char **argv); // argv[0] is the first argument
};

struct family {
    const char *name;
    const char *help;
    std::span<const command> commands;
};

// Parses a number in decimal, hex (0x) or octal (0); false when it is not one.
bool parse_uint(const char *text, unsigned int *out);
bool parse_int(const char *text, int *out);

// Prints a returned text, or "(null)" for a null pointer.
int print_text(const char *text);
// Prints a returned number on a line of its own; returns 0.
int print_int(int value);

} // namespace cli
