#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_util.h"

namespace {

// Escapes argv[0] into a buffer of the size the library asks for.
template <void (*Escape)(const char *, char *)>
int escape(int, char **argv)
{
    static char out[2 * 4096 + 1];
    if (strlen(argv[0]) > 4096) {
        fputs("vesk util: text longer than 4096 bytes\n", stderr);
        return 2;
    }
    Escape(argv[0], out);
    puts(out);
    return 0;
}

int random_num(int, char **)
{
    printf("%d\n", vesk_util_generate_random_num());
    return 0;
}

int random_seed(int argc, char **argv)
{
    int rc = vesk_util_generate_random_seed(argc > 0 ? argv[0] : nullptr);
    printf("%d\n", rc);
    return rc == 0 ? 0 : 1;
}

constexpr cli::command kCommands[] = {
    {"web", "TEXT", "TEXT escaped for a quoted string of a web page", 1, escape<vesk_util_check_string_on_web>},
    {"shell", "TEXT", "TEXT escaped for a shell command line", 1, escape<vesk_util_check_string_on_shell_cmd>},
    {"random", "", "a random number, reseeded from /dev/urandom", 0, random_num},
    {"seed", "[IFNAME]", "stirs IFNAME's MAC and the clock into /dev/urandom", 0, random_seed},
};

} // namespace

extern const cli::family family_util = {"util", "escaping user text, random numbers", kCommands};
