#include <string.h>

#include "cli.hpp"
#include "vesk_util.h"

namespace {

constexpr size_t kMaxText = 4096;

// Escapes argv[0] into a buffer of the size the library asks for.
template <void (*Escape)(const char *, char *)>
int escape(int, char **argv)
{
    static char out[2 * kMaxText + 1];
    if (!*argv[0] || strlen(argv[0]) > kMaxText)
        return cli::refuse("a text has 1 to %zu bytes", kMaxText);
    Escape(argv[0], out);
    return cli::text(out);
}

int random_num(int, char **) { return cli::number(vesk_util_generate_random_num()); }

int random_seed(int argc, char **argv)
{
    return cli::done(vesk_util_generate_random_seed(argc > 0 ? argv[0] : nullptr) == 0, "stirring the pool");
}

constexpr cli::command kCommands[] = {
    {"web", "TEXT", "TEXT escaped for a quoted string of a web page", 1, escape<vesk_util_check_string_on_web>},
    {"shell", "TEXT", "TEXT escaped for a shell command line", 1, escape<vesk_util_check_string_on_shell_cmd>},
    {"random", "", "a random number, reseeded from /dev/urandom", 0, random_num},
    {"seed", "[IFNAME]", "stirs IFNAME's MAC and the clock into /dev/urandom", 0, random_seed},
};

} // namespace

extern const cli::family family_util = {"util", "escaping user text, random numbers", kCommands};
