#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_sd.h"

namespace {

// The words as one command, as the daemon gets it.
int send(int argc, char **argv)
{
    char command[1024];
    size_t used = 0;
    for (int i = 0; i < argc; i++) {
        const int n = snprintf(command + used, sizeof command - used, "%s%s", i ? " " : "", argv[i]);
        if (n < 0 || static_cast<size_t>(n) >= sizeof command - used)
            return cli::refuse("the command is longer than %zu bytes", sizeof command - 1);
        used += static_cast<size_t>(n);
    }
    char reply[128] = "";
    static constexpr const char *kMeaning[] = {"the exchange failed", "no reply within 40 seconds",
                                               "no system daemon runs"};
    const int result = vesk_sd_ctrl(command, reply);
    if (result < 0)
        return cli::miss("%s (%d)", result >= -3 ? kMeaning[-result - 1] : "failed", result);
    // A command ending in '&' is not waited for: there is no reply to print.
    return reply[0] ? cli::text(reply) : cli::kAnswer;
}

constexpr cli::command kCommands[] = {
    {"send", "WORD...", "sends a command to the system daemon and prints its final reply (a command ending in & "
                        "is not waited for)", 1, send},
};

} // namespace

extern const cli::family family_sd = {"sd", "the system daemon's control link", kCommands};
